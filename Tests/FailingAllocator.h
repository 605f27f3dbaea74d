/**
 * @file FailingAllocator.h
 * Makes chosen allocations of the whole program fail, in the library as well as in operator new.
 */
#pragma once

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
