/**
 * @file OrderedWork.h
 * Work that is done on all processors and handed on in order.
 */
#pragma once

#include <ImportCommon/ThreadOperations.h>

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/**
 * Makes results in any order, several at once, and takes them one by one in the order of their numbers: what is taken
 * is the same however many threads there are. An exception comes out of run() when its number would be taken, and ends
 * the work.
 */
template <typename Result>
class OrderedWork {
public:
    using Make = std::function<Result(std::size_t)>;
    using Take = std::function<void(std::size_t, Result&&)>;

    /**
     * @param count  numbers from 0 to count - 1 are worked on
     * @param make   called in any thread, several at once
     * @param take   called in any thread, one at a time
     */
    OrderedWork(std::size_t count, Make make, Take take)
        : count_(count), make_(std::move(make)), take_(std::move(take)) {}

    /** Returns when all is done. A thread that can't be started leaves more to the others. */
    void run() {
        OrderedWork* self = this;
        const auto entry = [](void* data, unsigned long) -> unsigned int {
            if (data != nullptr) {
                (*static_cast<OrderedWork**>(data))->work();
            }
            return 0;
        };
        std::vector<pthread_t> threads;
        try {
            for (unsigned int i = 1; i < std::thread::hardware_concurrency() && i < count_; ++i) {
                threads.reserve(threads.size() + 1);
                threads.push_back(ImportCommon::ThreadOperations::createThread(entry, &self, sizeof self, false));
            }
        } catch (const std::bad_alloc&) {
            // fewer threads
        }
        work();
        for (const pthread_t thread : threads) {
            ImportCommon::ThreadOperations::closeThread(thread);
        }
        if (error_) {
            std::rethrow_exception(error_);
        }
    }

private:
    /** What has been made and waits to be taken: bounded, since results may be large. */
    static constexpr std::size_t room = 64;

    /** A thread that found no room waits until there is so much again, so that threads don't wake for every result. */
    static constexpr std::size_t enoughRoom = room / 2;

    struct Slot {
        std::optional<Result> result;
        std::exception_ptr error;
    };

    void work() {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            // The thread that has the lowest number never waits here, so the others don't wait for ever.
            if (next_ >= taken_ + room) {
                changed_.wait(lock, [&] { return error_ || next_ == count_ || next_ + enoughRoom <= taken_ + room; });
            }
            if (error_ || next_ == count_) {
                return;
            }
            const std::size_t number = next_++;
            lock.unlock();
            Slot slot;
            try {
                slot.result = make_(number);
            } catch (...) {
                slot.error = std::current_exception();
            }
            lock.lock();
            slots_[number % room] = std::move(slot);
            takeAllInOrder(lock);
        }
    }

    void takeAllInOrder(std::unique_lock<std::mutex>& lock) {
        while (!isTaking_ && !error_ && (slots_[taken_ % room].result || slots_[taken_ % room].error)) {
            Slot slot = std::move(slots_[taken_ % room]);
            slots_[taken_ % room] = Slot();
            isTaking_ = true;
            lock.unlock();
            if (slot.result) {
                try {
                    take_(taken_, std::move(*slot.result));
                } catch (...) {
                    slot.error = std::current_exception();
                }
            }
            lock.lock();
            isTaking_ = false;
            error_ = slot.error;
            ++taken_;
            if (error_ || next_ == count_ || next_ + enoughRoom <= taken_ + room) {
                changed_.notify_all();
            }
        }
    }

    const std::size_t count_;
    const Make make_;
    const Take take_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Slot, room> slots_;
    std::size_t next_ = 0;  ///< number that is made next
    std::size_t taken_ = 0; ///< number that is taken next
    bool isTaking_ = false;
    std::exception_ptr error_;
};
