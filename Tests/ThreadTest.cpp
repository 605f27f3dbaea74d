#include <ImportCommon/CriticalSection.h>
#include <ImportCommon/Signal.h>
#include <ImportCommon/ThreadOperations.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using ImportCommon::CriticalSection;
using ImportCommon::Signal;
using ImportCommon::ThreadOperations;

namespace {

std::function<void()> afterJoin; // called once, between the end of a thread and what the library does then

} // namespace

/** A sanitizer's own, where there is one. */
extern "C" __attribute__((weak)) int __interceptor_pthread_join(pthread_t thread, void** result);

extern "C" int pthread_join(pthread_t thread, void** result) {
    using Join = int (*)(pthread_t, void**);
    static const auto next = reinterpret_cast<Join>(dlsym(RTLD_NEXT, "pthread_join"));
    const Join join = __interceptor_pthread_join != nullptr ? &__interceptor_pthread_join : next;
    const int error = join(thread, result);
    if (afterJoin) {
        std::exchange(afterJoin, nullptr)();
    }
    return error;
}

namespace {

/** Threads that wait for ever end the program, long after any of them should be done. */
class ThreadTest : public testing::Test {
protected:
    ThreadTest() { alarm(300); }
    ~ThreadTest() override { alarm(0); }
};

/** A thread of the library, closed at the end. */
class Worker {
public:
    explicit Worker(std::function<void()> work)
        : work_(std::move(work)),
          self_(this),
          thread_(ThreadOperations::createThread(&run, &self_, sizeof self_, false)) {}
    ~Worker() {
        EXPECT_TRUE(ThreadOperations::hasEnded(thread_, nullptr));
        EXPECT_EQ(ThreadOperations::closeThread(thread_), 1);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

private:
    static unsigned int run(void* data, unsigned long) {
        (*static_cast<Worker**>(data))->work_();
        return 0;
    }

    const std::function<void()> work_;
    Worker* const self_;
    const pthread_t thread_;
};

/** Whether a thread of this process waits for something. */
bool isAsleep(pid_t thread) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(status, text);
    const std::size_t state = text.rfind(") "); // behind the program's name
    return state != std::string::npos && text.substr(state + 2, 1) == "S";
}

TEST_F(ThreadTest, handOversLoseNothing) {
    constexpr long count = 100000;
    Signal there;
    Signal back;
    long value = 0; // deliberately not atomic: the events alone order the accesses
    long outOfStep = 0;
    {
        const Worker answering([&] {
            for (long i = 0; i < count; ++i) {
                outOfStep += there.wait() != 0 || value != 2 * i + 1 ? 1 : 0;
                value = 2 * i + 2;
                back.raise();
            }
        });
        for (long i = 0; i < count; ++i) {
            ASSERT_EQ(value, 2 * i);
            value = 2 * i + 1;
            there.raise();
            ASSERT_EQ(back.wait(), 0);
        }
    }
    EXPECT_EQ(outOfStep, 0);
}

TEST_F(ThreadTest, twoRaisesLetOneWaitPass) {
    Signal event;
    event.raise();
    event.raise();
    event.wait();
    std::atomic<pid_t> waiting{0};
    std::atomic<bool> passed{false};
    {
        const Worker worker([&] {
            waiting = gettid();
            event.wait();
            passed = true;
        });
        while (!passed && !(waiting != 0 && isAsleep(waiting))) {
            std::this_thread::yield();
        }
        EXPECT_FALSE(passed);
        event.raise();
    }
    EXPECT_TRUE(passed);
}

TEST_F(ThreadTest, contendersForALockLoseNothing) {
    CriticalSection section;
    long count = 0;
    std::atomic<int> refused{0};
    {
        std::list<Worker> workers;
        const CriticalSection::Lock lock(&section); // none can end before all have been created
        for (int i = 0; i < 100; ++i) {
            workers.emplace_back([&] {
                for (int k = 0; k < 1000; ++k) {
                    const CriticalSection::Lock workersLock(&section);
                    ++count;
                }
                refused += section.Enter(nullptr) != 0 ? 1 : 0;
                refused += section.Leave(nullptr) != 0 ? 1 : 0;
            });
        }
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(count, 100 * 1000);
    EXPECT_EQ(refused, 0);
}

TEST_F(ThreadTest, dataIsCopied) {
    struct Observed {
        Signal started, changed;
        std::string text;
        unsigned long size = 0;
    } observed;
    struct Input {
        Observed* observed;
        char text[1000];
    } input{&observed, "original"};
    const auto observe = [](void* data, unsigned long size) {
        const Input& copy = *static_cast<const Input*>(data);
        copy.observed->size = size;
        copy.observed->started.raise();
        copy.observed->changed.wait();
        copy.observed->text = copy.text;
        return 7u;
    };
    const pthread_t thread = ThreadOperations::createThread(observe, &input, sizeof input, true);
    observed.started.wait();
    input = {&observed, "changed"};
    unsigned int exitCode = 77;
    EXPECT_TRUE(ThreadOperations::hasEnded(thread, &exitCode));
    ThreadOperations::terminateThread(thread, 1);
    observed.changed.raise();
    EXPECT_EQ(ThreadOperations::closeThread(thread), 1);
    EXPECT_FALSE(ThreadOperations::hasEnded(thread, &exitCode));
    EXPECT_EQ(exitCode, 77u);
    EXPECT_EQ(observed.text, "original");
    EXPECT_EQ(observed.size, sizeof input);
}

TEST_F(ThreadTest, dataIsReleasedHoweverTheThreadEnds) {
    const std::vector<char> data(64 << 20); // a block of the system's own, which the allocator counts
    const auto leave = [](void* copy, unsigned long) -> unsigned int {
        if (copy != nullptr) {
            pthread_exit(nullptr);
        }
        return 0;
    };
    const auto comeBack = [](void* copy, unsigned long) { return copy != nullptr ? 1U : 0U; };
    for (unsigned int (*function)(void*, unsigned long) : {+leave, +comeBack}) {
        const std::size_t before = mallinfo2().hblkhd;
        const pthread_t thread = ThreadOperations::createThread(function, data.data(), data.size(), false);
        EXPECT_EQ(ThreadOperations::closeThread(thread), 1);
        EXPECT_EQ(mallinfo2().hblkhd, before);
    }
}

// The system gives a new thread the handle of one that was joined, also while the library still has that one listed.
TEST_F(ThreadTest, aHandleThatIsUsedAgainIsAThreadOfItsOwn) {
    const auto create = [] {
        return ThreadOperations::createThread([](void*, unsigned long) { return 0U; }, nullptr, 0, false);
    };
    const pthread_t first = create();
    pthread_t second{};
    afterJoin = [&] { second = create(); };
    EXPECT_EQ(ThreadOperations::closeThread(first), 1);
    EXPECT_EQ(second, first) << "the test shows nothing otherwise";
    EXPECT_TRUE(ThreadOperations::hasEnded(second, nullptr));
    EXPECT_EQ(ThreadOperations::closeThread(second), 1);
    EXPECT_FALSE(ThreadOperations::hasEnded(second, nullptr));
}

} // namespace
