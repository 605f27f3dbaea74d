/**
 * @file FuzzInput.h
 * What the fuzz targets share: taking a fuzzer's bytes apart, and stopping at a wrong result.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

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

/** Takes values off the front of an input; zeros follow its end. */
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool empty() const { return size_ == 0; }

    template <typename T>
    T take() {
        T value{};
        const std::size_t taken = std::min(sizeof value, size_);
        if (taken > 0) {
            std::memcpy(&value, data_, taken);
        }
        skip(taken);
        return value;
    }

    /** A number from 0 to @p limit - 1. */
    unsigned int below(unsigned int limit) { return take<std::uint8_t>() % limit; }

    /** As many bytes as are left, but not more than @p limit. */
    std::string bytes(std::size_t limit = SIZE_MAX) {
        const std::size_t taken = std::min(limit, size_);
        const std::string result(reinterpret_cast<const char*>(data_), taken);
        skip(taken);
        return result;
    }

    /** The bytes in front of the next @p separator, which is skipped. */
    std::string field(char separator) {
        const std::uint8_t* const end = std::find(data_, data_ + size_, static_cast<std::uint8_t>(separator));
        const std::string result = bytes(static_cast<std::size_t>(end - data_));
        skip(std::min<std::size_t>(1, size_));
        return result;
    }

private:
    void skip(std::size_t count) {
        data_ += count;
        size_ -= count;
    }

    const std::uint8_t* data_;
    std::size_t size_;
};

/** Ends the run unless @p condition holds; the fuzzer then keeps the input. */
inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "wrong result: %s\n", what);
        std::abort();
    }
}
