#include "FailingAllocator.h"

#include <ImportCommon/CriticalSection.h>
#include <ImportCommon/ProcessOperations.h>
#include <ImportCommon/Signal.h>
#include <ImportCommon/ThreadOperations.h>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <list>
#include <new>
#include <numeric>
#include <thread>
#include <utility>

using ImportCommon::CriticalSection;
using ImportCommon::ProcessOperations;
using ImportCommon::Signal;
using ImportCommon::ThreadOperations;

// As without a sanitizer: an allocation that is too large fails.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
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

    pthread_t handle() const { return thread_; }

private:
    static unsigned int run(void* data, unsigned long) {
        (*static_cast<Worker**>(data))->work_();
        return 0;
    }

    const std::function<void()> work_;
    Worker* const self_;
    const pthread_t thread_;
};

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

/** In each of many rounds an event that was raised in some way lets one wait pass; the next one waits for a raise. */
void expectOnePass(const std::function<void(Signal&)>& raise) {
    constexpr int rounds = 1000;
    Signal event;
    Signal isRaised;
    Signal isDone;
    std::atomic<bool> waitsAgain{false};
    std::atomic<bool> mayPass{false};
    int tooEarly = 0;
    {
        const Worker waiting([&] {
            for (int i = 0; i < rounds; ++i) {
                isRaised.wait();
                event.wait();
                waitsAgain = true;
                event.wait();
                tooEarly += mayPass ? 0 : 1;
                isDone.raise();
            }
        });
        for (int i = 0; i < rounds; ++i) {
            mayPass = false;
            waitsAgain = false;
            raise(event);
            isRaised.raise();
            for (int patience = 20; patience > 0; patience -= waitsAgain ? 1 : 0) {
                std::this_thread::yield();
            }
            mayPass = true;
            event.raise();
            isDone.wait();
        }
    }
    EXPECT_EQ(tooEarly, 0);
}

TEST_F(ThreadTest, eventIsRaisedOnce) {
    expectOnePass([](Signal& event) {
        event.raise();
        event.raise();
        event.raise();
    });
}

TEST_F(ThreadTest, eventIsRaisedOnceByTwoThreads) {
    expectOnePass([](Signal& event) {
        std::atomic<int> ready{0};
        const auto raise = [&] {
            for (++ready; ready < 2;) {
                std::this_thread::yield();
            }
            event.raise();
        };
        const Worker other(raise);
        raise();
    });
}

TEST_F(ThreadTest, contendersForALockLoseNothing) {
    CriticalSection section;
    long count = 0;
    int refused = 0;
    {
        std::list<Worker> workers;
        for (int i = 0; i < 4; ++i) {
            workers.emplace_back([&] {
                for (int k = 0; k < 25000; ++k) {
                    {
                        const CriticalSection::Lock lock(&section);
                        ++count;
                    }
                    const int entered = section.Enter(nullptr);
                    ++count;
                    refused += entered != 0 ? 1 : 0;
                    if (section.Leave(nullptr) != 0) {
                        std::abort();
                    }
                }
            });
        }
    }
    EXPECT_EQ(count, 4 * 2 * 25000);
    EXPECT_EQ(refused, 0);
}

TEST_F(ThreadTest, sectionsThatDoNotLock) {
    const CriticalSection::Lock none(nullptr);
    if (!FailingAllocator::isAvailable()) {
        GTEST_SKIP() << "allocations can't be made to fail here";
    }
    const FailingAllocator failing(1);
    CriticalSection section;
    const CriticalSection::Lock lock(&section);
    EXPECT_NE(section.Enter(nullptr), 0);
    EXPECT_NE(section.Leave(nullptr), 0);
}

TEST_F(ThreadTest, dataIsCopied) {
    struct Shared {
        Signal started, changed;
        const void* address = nullptr;
        unsigned long size = 0;
        int sum = 0;
    } shared;
    struct Input {
        Shared* shared;
        std::array<int, 1000> numbers;
    } input{&shared, {}};
    input.numbers.fill(3);
    const auto add = [](void* data, unsigned long size) {
        const Input& copy = *static_cast<const Input*>(data);
        copy.shared->address = data;
        copy.shared->size = size;
        copy.shared->started.raise();
        copy.shared->changed.wait();
        copy.shared->sum = std::accumulate(copy.numbers.begin(), copy.numbers.end(), 0);
        return 7u;
    };
    const pthread_t thread = ThreadOperations::createThread(add, &input, sizeof input, true);
    shared.started.wait();
    input.numbers.fill(5);
    unsigned int exitCode = 77;
    EXPECT_TRUE(ThreadOperations::hasEnded(thread, &exitCode));
    ThreadOperations::terminateThread(thread, 1);
    shared.changed.raise();
    EXPECT_EQ(ThreadOperations::closeThread(thread), 1);
    EXPECT_FALSE(ThreadOperations::hasEnded(thread, &exitCode));
    EXPECT_EQ(exitCode, 77u);
    EXPECT_EQ(shared.sum, 3000);
    EXPECT_EQ(shared.size, sizeof input);
    EXPECT_NE(shared.address, &input);
}

TEST_F(ThreadTest, nothingToCopy) {
    static void* copy;
    static unsigned long copySize;
    const auto note = [](void* data, unsigned long size) {
        copy = data;
        copySize = size;
        return 0u;
    };
    // A copy that there is no memory for is null; the thread runs all the same.
    for (const unsigned long size : {0ul, ~0ul / 2 + 1}) {
        copy = &copy;
        copySize = 77;
        EXPECT_EQ(ThreadOperations::closeThread(ThreadOperations::createThread(note, nullptr, size, false)), 1);
        EXPECT_EQ(copySize, size);
        EXPECT_TRUE(size == 0 || copy == nullptr);
    }
}

TEST_F(ThreadTest, manyThreadsAtATime) {
    CriticalSection section;
    int count = 0;
    for (int round = 1; round <= 5; ++round) {
        std::list<Worker> workers;
        const CriticalSection::Lock lock(&section); // none can end before all have been created
        for (int i = 0; i < 100; ++i) {
            workers.emplace_back([&] {
                const CriticalSection::Lock workersLock(&section);
                ++count;
            });
            EXPECT_NE(workers.back().handle(), pthread_t{});
        }
        EXPECT_EQ(count, (round - 1) * 100);
    }
    EXPECT_EQ(count, 500);
}

TEST_F(ThreadTest, foreignThreadsAreJoinedToo) {
    int value = 0;
    pthread_t thread;
    const auto work = [](void* data) -> void* {
        *static_cast<int*>(data) = 5;
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, work, &value), 0);
    EXPECT_FALSE(ThreadOperations::hasEnded(thread, nullptr));
    EXPECT_EQ(ThreadOperations::closeThread(thread), 0);
    EXPECT_EQ(value, 5);
    EXPECT_FALSE(ThreadOperations::hasEnded(pthread_self(), nullptr));
}

unsigned int neverCalled(void*, unsigned long) {
    std::abort();
}

TEST_F(ThreadTest, threadsThatCannotBeCreated) {
#ifdef __GLIBC__
    pthread_attr_t usual, excessive;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    pthread_attr_init(&excessive);
    ASSERT_EQ(pthread_attr_setstacksize(&excessive, std::size_t{1} << 50), 0);
    ASSERT_EQ(pthread_setattr_default_np(&excessive), 0);
    const pthread_t thread = ThreadOperations::createThread(&neverCalled, nullptr, 0, false);
    pthread_setattr_default_np(&usual);
    EXPECT_EQ(thread, pthread_t{});
    EXPECT_FALSE(ThreadOperations::hasEnded(thread, nullptr));
    EXPECT_EQ(ThreadOperations::closeThread(thread), 0);
    const Worker next([] {}); // all is well again
#else
    GTEST_SKIP() << "every thread can be created here";
#endif
}

TEST_F(ThreadTest, lackOfMemoryStartsNothing) {
    if (!FailingAllocator::isAvailable()) {
        GTEST_SKIP() << "allocations can't be made to fail here";
    }
    static std::atomic<int> calls;
    const auto work = [](void*, unsigned long) {
        ++calls;
        return 0u;
    };
    bool failed = true;
    for (long which = 1; failed; ++which) {
        pthread_t thread{};
        try {
            const FailingAllocator failing(which);
            thread = ThreadOperations::createThread(work, nullptr, 0, false);
            failed = FailingAllocator::hasFailed();
        } catch (const std::bad_alloc&) {
            EXPECT_GT(which, 1) << "without a record there is no thread, but no exception either";
        }
        EXPECT_EQ(ThreadOperations::hasEnded(thread, nullptr), !failed) << which;
        EXPECT_EQ(ThreadOperations::closeThread(thread), failed ? 0 : 1) << which;
    }
    EXPECT_EQ(calls, 1);
}

// In a program of its own, since the thread is never closed.
TEST_F(ThreadTest, resultIsTheExitValue) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto joinedResult = [] {
        const auto work = [](void*, unsigned long) { return 4000000000u; };
        void* result = nullptr;
        pthread_join(ThreadOperations::createThread(work, nullptr, 0, false), &result);
        return reinterpret_cast<std::uintptr_t>(result);
    };
    EXPECT_EXIT(std::exit(joinedResult() == 4000000000u ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(ThreadOperations, sleepsAsLongAsTold) {
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(ThreadOperations::usleep(20000), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::microseconds(20000));
}

TEST(ProcessOperations, startNothing) {
    EXPECT_EQ(ProcessOperations::createProcess(L"/bin/sh", L"-c true", true), 0);
    EXPECT_EQ(ProcessOperations::InvalidHandle(), 0);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    unsigned int exitCode = 77;
    ProcessOperations::terminateProcess(getpid(), 1);
    ProcessOperations::closeProcess(getpid());
    EXPECT_TRUE(ProcessOperations::hasEnded(getpid(), &exitCode));
    EXPECT_EQ(exitCode, 77u);
}

} // namespace
