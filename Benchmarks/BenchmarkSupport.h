/**
 * @file BenchmarkSupport.h
 * What the benchmarks share: their names, their data and the memory of the process.
 *
 * A benchmark is called AREA/TASK/SIZE/CONTENDER, and the library's own contender is called "library". The report
 * divides its time by that of the best other contender of the same AREA/TASK/SIZE.
 */
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/** Registers a benchmark; each iteration of @p body's loop makes @p operations operations. */
template <typename Body>
benchmark::internal::Benchmark* addBenchmark(const std::string& name, std::size_t operations, Body body) {
    const auto run = [body, operations](benchmark::State& state) {
        body(state);
        state.counters["operations"] = static_cast<double>(operations);
    };
    return benchmark::RegisterBenchmark(name.c_str(), run);
}

/** The 22 characters of a GlobalId. */
struct Key {
    std::array<char, 22> text;

    std::string_view view() const { return {text.data(), text.size()}; }
    bool operator==(const Key& other) const { return std::memcmp(text.data(), other.text.data(), text.size()) == 0; }
};

/** GlobalIds of random bits, which are all different for any number that fits in memory. */
inline std::vector<Key> randomKeys(std::size_t count) {
    const std::string_view alphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
    std::mt19937 random(1);
    std::vector<Key> keys(count);
    for (Key& key : keys) {
        for (char& c : key.text) {
            c = alphabet[random() % alphabet.size()];
        }
    }
    return keys;
}

/** The values in random order, the same at every call. */
template <typename T>
std::vector<T> shuffled(std::vector<T> values) {
    std::mt19937 random(2);
    std::shuffle(values.begin(), values.end(), random);
    return values;
}
