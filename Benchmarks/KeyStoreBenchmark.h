/**
 * @file KeyStoreBenchmark.h
 * The work that stores of GlobalIds and their numbers are compared at.
 *
 * The numbers are those of an identity database: -2, -3 and so on. A store reads its inputs in the order of memory; what
 * it is given for a GlobalId is what its function `inputsOf` makes.
 */
#pragma once

#include "KeyStores.h"

#include <memory>
#include <numeric>

/** The GlobalIds that are stored, the same at every call. */
inline const std::vector<Key>& keysOf(std::size_t count) {
    static std::vector<Key> keys;
    if (keys.size() != count) {
        keys = randomKeys(count);
    }
    return keys;
}

template <typename Store, typename Inputs>
void fill(Store& store, const Inputs& inputs) {
    std::int32_t id = -2;
    for (const auto& input : inputs) {
        benchmark::DoNotOptimize(store.findOrInsert(id--, input));
    }
}

/** A store of that many keys, kept for the next benchmark. */
template <typename Store>
Store& filledStore(std::size_t count) {
    static std::size_t size = 0;
    static std::unique_ptr<Store> store;
    if (size != count) {
        store.reset();
        store = std::make_unique<Store>();
        fill(*store, Store::inputsOf(keysOf(count)));
        size = count;
    }
    return *store;
}

template <typename Store>
void insertAll(benchmark::State& state, std::size_t count) {
    const auto inputs = Store::inputsOf(keysOf(count));
    for (auto _ : state) {
        auto store = std::make_unique<Store>();
        fill(*store, inputs);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

template <typename Store>
void findAll(benchmark::State& state, std::size_t count) {
    Store& store = filledStore<Store>(count);
    const auto inputs = Store::inputsOf(shuffled(keysOf(count)));
    for (auto _ : state) {
        for (const auto& input : inputs) {
            benchmark::DoNotOptimize(store.find(input));
        }
    }
}

template <typename Store>
void findAllById(benchmark::State& state, std::size_t count) {
    Store& store = filledStore<Store>(count);
    std::vector<std::int32_t> ids(count);
    std::iota(ids.rbegin(), ids.rend(), -1 - static_cast<std::int32_t>(count));
    ids = shuffled(std::move(ids));
    for (auto _ : state) {
        for (const std::int32_t id : ids) {
            benchmark::DoNotOptimize(store.keyOf(id));
        }
    }
}
