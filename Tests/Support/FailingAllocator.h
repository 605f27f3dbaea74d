/**
 * @file FailingAllocator.h
 * Makes chosen allocations of the whole program fail, in the library as well as in operator new.
 */
#pragma once

#include <gtest/gtest.h>

/** While one lives, allocations of this thread fail from a chosen one on. */
class FailingAllocator {
public:
    enum Extent_e { Once, FromThenOn };

    /** The allocation to fail, counted from 1. */
    explicit FailingAllocator(long which, Extent_e extent = FromThenOn);
    ~FailingAllocator();

    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;

    /** Whether an allocation has failed. */
    static bool hasFailed();

    /** False where the program's allocator can't be replaced. */
    static bool isAvailable();
};

/** Skips its tests where allocations can't be made to fail. */
class AllocationFailureTest : public testing::Test {
protected:
    void SetUp() override {
        if (!FailingAllocator::isAvailable()) {
            GTEST_SKIP() << "the allocator can't be replaced here";
        }
    }
};

/** Which allocations fail. */
struct Failure {
    long which;
    FailingAllocator::Extent_e extent;

    /** Runs an action with that failure, and tells whether it came to it. */
    template <typename Action>
    bool during(const Action& action) const {
        const FailingAllocator failing(which, extent);
        action();
        return FailingAllocator::hasFailed();
    }
};

constexpr Failure noMemory = {1, FailingAllocator::FromThenOn};

/** Calls the attempt with its first, second, third ... allocation failing, until it gets by without a failure. */
template <typename Attempt>
void forEachFailure(const Attempt& attempt) {
    for (const auto extent : {FailingAllocator::Once, FailingAllocator::FromThenOn}) {
        long which = 1;
        while (attempt(Failure{which, extent}) && !testing::Test::HasFailure()) {
            ++which;
        }
        EXPECT_GT(which, 1) << "nothing was allocated";
        if (testing::Test::HasFailure()) {
            FAIL() << "at allocation " << which << (extent == FailingAllocator::Once ? "" : " and all later ones");
        }
    }
}
