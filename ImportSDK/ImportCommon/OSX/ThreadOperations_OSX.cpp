#include <ImportCommon/Signal.h>
#include <ImportCommon/ThreadOperations.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <set>

namespace ImportCommon {

namespace {

/** What a new thread starts from. It is never released; a list keeps all of them reachable. */
struct Launch {
    unsigned int (*function)(void*, unsigned long);
    const void* data;
    unsigned long size;
    std::unique_ptr<Signal> started;
    Launch* earlier;
};

/** Guards both lists. Held while a thread is created, so that nothing it does comes before it is entered. */
std::mutex listsMutex;

/** Threads that were created and not closed yet. A handle is in use again as soon as its first thread was joined. */
std::multiset<pthread_t> s_pthreads;

Launch* latestLaunch = nullptr;

void* threadStart(void* argument) {
    const Launch* launch = static_cast<const Launch*>(argument);
    void* copy = std::malloc(launch->size);
    if (copy != nullptr && launch->size > 0) {
        std::memcpy(copy, launch->data, launch->size);
    }
    launch->started->raise();
    unsigned int result = 0;
    pthread_cleanup_push(&std::free, copy); // also when the function leaves by pthread_exit
    result = launch->function(copy, launch->size);
    pthread_cleanup_pop(1);
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(result));
}

} // namespace

pthread_t ThreadOperations::createThread(unsigned int (*function)(void* data, unsigned long size), const void* data,
                                         unsigned long size, bool) {
    std::unique_ptr<Launch> launch(new (std::nothrow) Launch{function, data, size, nullptr, nullptr});
    if (!launch) {
        return pthread_t{};
    }
    launch->started = std::make_unique<Signal>();
    // The place in the set comes first: once the thread runs nothing may fail any more.
    std::multiset<pthread_t> place = {pthread_t{}};
    auto node = place.extract(place.begin());
    pthread_t thread;
    const std::lock_guard<std::mutex> lock(listsMutex);
    if (pthread_create(&thread, nullptr, threadStart, launch.get()) != 0) {
        return pthread_t{};
    }
    node.value() = thread;
    launch->earlier = latestLaunch;
    latestLaunch = launch.release();
    s_pthreads.insert(std::move(node));
    return thread;
}

void ThreadOperations::terminateThread(pthread_t, unsigned int) {
}

int ThreadOperations::closeThread(pthread_t thread) {
    if (thread == pthread_t{}) {
        return 0;
    }
    void* exitValue = nullptr;
    pthread_join(thread, &exitValue);
    const std::lock_guard<std::mutex> lock(listsMutex);
    const auto place = s_pthreads.find(thread);
    if (place == s_pthreads.end()) {
        return 0;
    }
    s_pthreads.erase(place);
    return 1;
}

bool ThreadOperations::hasEnded(pthread_t thread, unsigned int*) {
    const std::lock_guard<std::mutex> lock(listsMutex);
    return s_pthreads.count(thread) != 0;
}

int ThreadOperations::usleep(int microseconds) {
    return ::usleep(static_cast<useconds_t>(microseconds));
}

} // namespace ImportCommon
