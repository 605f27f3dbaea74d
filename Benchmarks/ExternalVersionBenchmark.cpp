// Versions beside copying the bytes of their stream and printing their numbers.

#include "BenchmarkSupport.h"

#include <ImportCommon/ExternalVersion.h>

#include <cmath>
#include <cstdio>

using namespace ImportCommon;

namespace {

constexpr double box[3] = {4.2, 0.2, 3.0};
constexpr double distances[8] = {2.61, 2.62, 2.63, 2.64, 2.65, 2.66, 2.67, 2.68};
constexpr double centroid[3] = {4.0, 0.1, 1.5};
constexpr double volume = 2.52;
constexpr std::size_t streamSize = CExternalVersion::MaximumStreamSize;

ExternalVersion solid() {
    return createFromSolid(box[0], box[1], box[2], distances, volume, centroid);
}

void equality(benchmark::State& state) {
    const ExternalVersion a = solid();
    const ExternalVersion b = solid();
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
    }
}

void similarity(benchmark::State& state) {
    const ExternalVersion a = solid();
    const ExternalVersion b = createFromSolid(box[0] + 0.1, box[1], box[2], distances, volume + 0.1, centroid);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a.similarity(b));
    }
}

void streamOut(benchmark::State& state) {
    const ExternalVersion version = solid();
    char stream[streamSize];
    for (auto _ : state) {
        benchmark::DoNotOptimize(version.toByteStream(streamSize, stream));
        benchmark::ClobberMemory();
    }
}

void streamIn(benchmark::State& state) {
    char stream[streamSize];
    solid().toByteStream(streamSize, stream);
    ExternalVersion version;
    for (auto _ : state) {
        version.fromByteStream(streamSize, stream);
        benchmark::ClobberMemory();
    }
}

void copyStream(benchmark::State& state) {
    char stream[streamSize] = {};
    char copy[streamSize];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::memcpy(copy, stream, sizeof copy));
        benchmark::ClobberMemory();
    }
}

void text(benchmark::State& state) {
    const ExternalVersion version = solid();
    char line[512];
    for (auto _ : state) {
        version.toString(sizeof line, line);
        benchmark::ClobberMemory();
    }
}

void printNumbers(benchmark::State& state) {
    char line[512];
    for (auto _ : state) {
        const double* d = distances;
        const double diagonal = std::sqrt(box[0] * box[0] + box[1] * box[1] + box[2] * box[2]);
        std::snprintf(line, sizeof line, "bb=%e d1=%e d2=%e d3=%e d4=%e d5=%e d6=%e d7=%e d8=%e c1=%e c2=%e c3=%e",
                      diagonal, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], centroid[0], centroid[1], centroid[2]);
        benchmark::ClobberMemory();
    }
}

const bool added = [] {
    addBenchmark("versions/equality/1/library", 1, equality);
    addBenchmark("versions/similarity/1/library", 1, similarity);
    addBenchmark("versions/stream out/1/library", 1, streamOut);
    addBenchmark("versions/stream out/1/memcpy", 1, copyStream);
    addBenchmark("versions/stream in/1/library", 1, streamIn);
    addBenchmark("versions/stream in/1/memcpy", 1, copyStream);
    addBenchmark("versions/text/1/library", 1, text);
    addBenchmark("versions/text/1/snprintf", 1, printNumbers);
    return true;
}();

} // namespace
