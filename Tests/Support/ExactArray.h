/**
 * @file ExactArray.h
 * Memory without a spare byte, and a check that also stops a program without a test framework.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

/** Bytes that stand where an access in front of or behind them is found. */
template <typename T>
class ExactArray {
public:
    explicit ExactArray(std::size_t size, T value = T()) : size_(size), items_(new T[size]) {
        std::fill_n(items_.get(), size, value);
    }
    ExactArray(const T* items, std::size_t size) : size_(size), items_(new T[size]) {
        std::copy_n(items, size, items_.get());
    }

    T* get() const { return items_.get(); }
    std::size_t size() const { return size_; }
    T& operator[](std::size_t i) const { return items_[i]; }

private:
    std::size_t size_;
    std::unique_ptr<T[]> items_;
};

/** Ends the run unless @p condition holds; the fuzzer then keeps the input. */
inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "wrong result: %s\n", what);
        std::abort();
    }
}
