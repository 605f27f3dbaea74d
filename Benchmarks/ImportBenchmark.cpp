// What an import costs in the library alone: every object gets its identities, a version that is compared with the
// stored one, a property set, and a line on a stream. Once more with a clock around each step, for their shares.

#include "BenchmarkSupport.h"

#include <ImportCommon/ImportCommon.h>

#include <chrono>
#include <cstdio>
#include <cwchar>
#include <memory>

using namespace ImportCommon;

namespace {

constexpr unsigned int vertexCount = 24;

/** An object as a reader would deliver it, with what the last import stored of it. */
struct Object {
    Key globalId;
    double vertices[3 * vertexCount];
    double centroid[3];
    double distances[8];
    double box[3];
    char stored[CExternalVersion::MaximumStreamSize];
};

ExternalVersion versionOf(const Object& object) {
    const double volume = object.box[0] * object.box[1] * object.box[2];
    return createFromSolid(object.box[0], object.box[1], object.box[2], object.distances, volume, object.centroid);
}

std::vector<Object> randomObjects(std::size_t count) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(0, 1000);
    std::uniform_real_distribution<double> extent(0.1, 5);
    const std::vector<Key> keys = randomKeys(count);
    std::vector<Object> objects(count);
    for (std::size_t i = 0; i < count; ++i) {
        Object& object = objects[i];
        object.globalId = keys[i];
        std::generate_n(object.centroid, 3, [&] { return place(random); });
        std::generate_n(object.distances, 8, [&] { return extent(random); });
        std::generate_n(object.box, 3, [&] { return extent(random); });
        versionOf(object).toByteStream(sizeof object.stored, object.stored);
        if (i % 10 == 0) {
            object.box[0] += 0.2; // reshaped since the last import
        }
        for (unsigned int v = 0; v < 3 * vertexCount; ++v) {
            object.vertices[v] = object.centroid[v % 3] + extent(random) * object.box[v % 3];
        }
    }
    return objects;
}

enum Step { Identities, SpatialHashes, Versions, Properties, Lines, StepCount };
constexpr const char* stepNames[StepCount] = {"identity", "spatial hash", "version", "property set", "line"};

/** Sums up the time between its calls, step by step. */
class StepClock {
public:
    void start() { last_ = std::chrono::steady_clock::now(); }
    void finish(Step step) {
        const auto now = std::chrono::steady_clock::now();
        seconds_[step] += std::chrono::duration<double>(now - last_).count();
        last_ = now;
    }
    double share(Step step) const {
        double sum = 0;
        for (const double seconds : seconds_) {
            sum += seconds;
        }
        return seconds_[step] / sum;
    }

private:
    std::chrono::steady_clock::time_point last_;
    double seconds_[StepCount] = {};
};

struct NoClock {
    void start() {}
    void finish(Step) {}
};

template <typename Clock>
void importObject(const Object& object, ExternalGUIDDatabase& database, std::FILE* stream, Clock& clock) {
    clock.start();
    const ExternalGUIDRuntimeID_e id = database.insertGUID(ExternalGUID::fromIFCGlobalID(object.globalId.text.data()));
    clock.finish(Identities);
    const ExternalGUIDRuntimeID_e place =
        database.insertGUID(ExternalGUID::spatialHashFromVertexes(vertexCount, object.vertices));
    clock.finish(SpatialHashes);

    const ExternalVersion now = versionOf(object);
    ExternalVersion before;
    before.fromByteStream(sizeof object.stored, object.stored);
    const double similarity = now == before ? 1.0 : now.similarity(before);
    char bytes[CExternalVersion::MaximumStreamSize];
    benchmark::DoNotOptimize(now.toByteStream(sizeof bytes, bytes));
    clock.finish(Versions);

    IFC2X3_PSet_WallCommon_s wall{};
    std::wcscpy(wall.Reference, L"Exterior - Brick on Block");
    std::wcscpy(wall.FireRating, L"REI 90");
    wall.ThermalTransmittance = 0.24;
    wall.hasThermalTransmittance = true;
    const IFC2X3_PSet_Custom_s set = wall;
    clock.finish(Properties);

    std::fprintf(stream, "%d %d %.22s %u %.4f\n", static_cast<int>(id), static_cast<int>(place),
                 object.globalId.text.data(), set.properties.getCount(), similarity);
    clock.finish(Lines);
}

template <typename Clock>
void importAll(benchmark::State& state, std::size_t count, Clock& clock) {
    const std::vector<Object> objects = randomObjects(count);
    std::FILE* stream = std::fopen("/dev/null", "w");
    if (stream == nullptr) {
        state.SkipWithError("no /dev/null");
        return;
    }
    for (auto _ : state) {
        auto database = std::make_unique<ExternalGUIDDatabase>();
        for (const Object& object : objects) {
            importObject(object, *database, stream, clock);
        }
        state.PauseTiming();
        database.reset();
        state.ResumeTiming();
    }
    std::fclose(stream);
}

const bool added = [] {
    for (const std::size_t count : std::initializer_list<std::size_t>{10000, 100000, 1000000}) {
        const std::string size = "/" + std::to_string(count) + "/library";
        addBenchmark("import/whole" + size, count, [count](benchmark::State& state) {
            NoClock clock;
            importAll(state, count, clock);
        });
        addBenchmark("import/shares" + size, count, [count](benchmark::State& state) {
            StepClock clock;
            importAll(state, count, clock);
            for (int step = 0; step < StepCount; ++step) {
                state.counters[stepNames[step]] = clock.share(static_cast<Step>(step));
            }
        });
    }
    return true;
}();

} // namespace
