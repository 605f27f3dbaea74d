// Property sets beside the plain cost of writing the bytes that they hold.

#include "BenchmarkSupport.h"

#include <ImportCommon/CIFC2X3Property.h>
#include <ImportCommon/IFC2X3_PSet_WallCommon.h>

#include <cwchar>
#include <memory>

using namespace ImportCommon;

namespace {

constexpr unsigned int setSize = 50;
constexpr unsigned int wallProperties = 8;

IFC2X3_PSet_WallCommon_s fullWall() {
    IFC2X3_PSet_WallCommon_s wall{};
    std::wcscpy(wall.Reference, L"Exterior - Brick on Block");
    std::wcscpy(wall.AcousticRating, L"52 dB");
    std::wcscpy(wall.FireRating, L"REI 90");
    std::wcscpy(wall.SurfaceSpreadOfFlame, L"Class 1");
    wall.ThermalTransmittance = 0.24;
    wall.hasThermalTransmittance = wall.hasCombustible = wall.hasExtendToStructure = wall.hasCompartmentation = true;
    return wall;
}

std::vector<std::wstring> fiftyNames() {
    std::vector<std::wstring> names;
    for (unsigned int i = 0; i < setSize; ++i) {
        names.push_back(L"Property " + std::to_wstring(i));
    }
    return names;
}

IFC2X3PropertySet setOf(const std::vector<std::wstring>& names) {
    IFC2X3PropertySet set;
    for (const std::wstring& name : names) {
        set.addProperty(createPropertySingleValueString(name.c_str(), L"", L"a value of usual length"));
    }
    return set;
}

/**
 * Frees as much memory as the sets need in the midst of the heap, as in a program that has been running for a while. At
 * the end of the heap each iteration would give it back to the system and ask for it again.
 */
std::unique_ptr<char[]> prepareHeap(const std::vector<std::wstring>& names) {
    const auto sets = std::make_unique<std::array<IFC2X3PropertySet, 2>>();
    sets->fill(setOf(names));
    return std::make_unique<char[]>(1000);
}

/** Writes as many bytes as a result holds: the least that building it can cost. */
void writeBytes(benchmark::State& state, std::size_t count) {
    std::vector<char> bytes(count);
    for (auto _ : state) {
        std::memset(bytes.data(), 1, bytes.size());
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
}

void wallConvert(benchmark::State& state) {
    const IFC2X3_PSet_WallCommon_s wall = fullWall();
    for (auto _ : state) {
        const IFC2X3_PSet_Custom_s set = wall;
        benchmark::DoNotOptimize(set.properties.getCount());
    }
}

void wallMemset(benchmark::State& state) {
    writeBytes(state, sizeof(IFC2X3_PSet_Custom_s) + wallProperties * sizeof(IFC2X3Property));
}

void setBuild(benchmark::State& state) {
    const std::vector<std::wstring> names = fiftyNames();
    const auto behind = prepareHeap(names);
    for (auto _ : state) {
        benchmark::DoNotOptimize(setOf(names).getCount());
    }
}

void setCopy(benchmark::State& state) {
    const IFC2X3PropertySet set = setOf(fiftyNames());
    const auto behind = prepareHeap(fiftyNames());
    for (auto _ : state) {
        const IFC2X3PropertySet copy = set;
        benchmark::DoNotOptimize(copy.getCount());
    }
}

void setMemset(benchmark::State& state) {
    writeBytes(state, setSize * sizeof(IFC2X3Property));
}

const bool added = [] {
    addBenchmark("properties/convert a wall/8/library", 1, wallConvert);
    addBenchmark("properties/convert a wall/8/memset", 1, wallMemset);
    addBenchmark("properties/build a set/50/library", 1, setBuild);
    addBenchmark("properties/build a set/50/memset", 1, setMemset);
    addBenchmark("properties/copy a set/50/library", 1, setCopy);
    addBenchmark("properties/copy a set/50/memset", 1, setMemset);
    return true;
}();

} // namespace
