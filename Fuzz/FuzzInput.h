/**
 * @file FuzzInput.h
 * Takes a fuzzer's bytes apart.
 */
#pragma once

#include "Support/ExactArray.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

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
