// What it costs to find out what became of the objects of a model, beside reading it. The hardest case: all ids are new
// and the whole was turned and shifted, so that every object is found by its shape and place.

#include "IfcBuilding.h"
#include "comparison/Comparison.h"
#include "comparison/Rotation.h"
#include "state/ShapeMeasure.h"

#include <IfcReader/Model.h>
#include <PluginKit/Checksum.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using Surfaces = std::vector<PluginKit::SolidSurface>;

/** A model in a file while this lives; it has a little more than so many objects. */
class ModelFile {
public:
    explicit ModelFile(std::size_t objects) {
        constexpr std::size_t bytesPerObject = 4300;
        IfcBuilding::write(name_, objects * bytesPerObject);
    }
    ~ModelFile() { std::remove(name_.c_str()); }

    ModelFile(const ModelFile&) = delete;
    ModelFile& operator=(const ModelFile&) = delete;

    const std::string& name() const { return name_; }

private:
    const std::string name_ = (std::filesystem::temp_directory_path() / "comparison-benchmark.ifc").string();
};

Surfaces surfacesOf(const IfcReader::Shape& shape) {
    Surfaces surfaces;
    for (const IfcReader::ShapePart& part : shape.parts) {
        PluginKit::SolidSurface& surface = surfaces.emplace_back();
        for (const IfcReader::Point& p : part.vertices) {
            surface.vertices.push_back({shape.origin.x + p.x, shape.origin.y + p.y, shape.origin.z + p.z});
        }
        surface.sizes = part.sizes;
        surface.corners = part.corners;
    }
    return surfaces;
}

void takeShape(const Surfaces& surfaces, ObjectRecord& record) {
    record.box = boxOf(surfaces).value_or(Box());
    record.shape = shapeOf(surfaces);
    record.position = (record.box.low + record.box.high) * 0.5;
    record.version = ImportCommon::createFromBoundingBox(record.box.size(0), record.box.size(1), record.box.size(2));
}

ObjectRecord recordOf(const IfcReader::Product& product) {
    ObjectRecord record;
    record.identity = ImportCommon::ExternalGUID::fromIFCGlobalID(product.globalId.c_str());
    record.className = product.className;
    record.name = product.name.value_or("");
    for (const IfcReader::IfcPropertySet& set : product.properties) {
        for (const IfcReader::IfcProperty& property : set.properties) {
            record.properties.text += (record.properties.text.empty() ? "" : "\t") + set.name + '\t' + property.name +
                                      "\t'" + property.value.text;
        }
    }
    record.properties.isKnown = true;
    record.properties.digest = PluginKit::checksum(record.properties.text);
    return record;
}

struct ReadObject {
    ObjectRecord record;
    Surfaces surfaces;
};

std::vector<ReadObject> readModel(const std::string& fileName) {
    const IfcReader::Model model(fileName);
    std::vector<ReadObject> objects;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const IfcReader::Product product = model.product(i);
        if (!product.shape.parts.empty()) {
            objects.push_back({recordOf(product), surfacesOf(product.shape)});
            takeShape(objects.back().surfaces, objects.back().record);
        }
    }
    return objects;
}

/** The first objects of a model. */
std::vector<ReadObject> objectsOfModel(std::size_t count) {
    std::vector<ReadObject> objects = readModel(ModelFile(count).name());
    objects.resize(std::min(objects.size(), count));
    return objects;
}

std::vector<ObjectRecord> recordsOf(const std::vector<ReadObject>& objects) {
    std::vector<ObjectRecord> records;
    for (const ReadObject& object : objects) {
        records.push_back(object.record);
    }
    return records;
}

/** As another tool would hand over the same: with new ids, in another place, and without names if it drops them. */
std::vector<ObjectRecord> displaced(const std::vector<ReadObject>& objects, bool hasNames) {
    const RigidMotion motion = {rotationAbout({0.0, 0.0, 1.0}, 0.7), {120.0, -35.0, 2.0}};
    std::vector<ObjectRecord> records;
    for (const ReadObject& object : objects) {
        ObjectRecord& record = records.emplace_back(object.record);
        Surfaces surfaces = object.surfaces;
        for (PluginKit::SolidSurface& surface : surfaces) {
            for (Vector3& vertex : surface.vertices) {
                vertex = motion.apply(vertex);
            }
        }
        takeShape(surfaces, record);
        char id[32];
        std::snprintf(id, sizeof id, "3%021zu", records.size());
        record.identity = ImportCommon::ExternalGUID::fromIFCGlobalID(id);
        record.name = hasNames ? record.name : "";
    }
    return records;
}

void BM_Read(benchmark::State& state) {
    const ModelFile model(static_cast<std::size_t>(state.range(0)));
    std::size_t count = 0;
    for (auto _ : state) {
        count = readModel(model.name()).size();
    }
    state.counters["objects"] = static_cast<double>(count);
}

void compareDisplaced(benchmark::State& state, bool hasNames) {
    const std::vector<ReadObject> objects = objectsOfModel(static_cast<std::size_t>(state.range(0)));
    const std::vector<ObjectRecord> before = recordsOf(objects);
    const std::vector<ObjectRecord> now = displaced(objects, hasNames);
    std::size_t found = 0;
    for (auto _ : state) {
        const Comparison comparison = compare(before, now);
        found = comparison.displacement ? comparison.count(Status::Reidentified) : 0;
    }
    if (found != now.size()) {
        state.SkipWithError("objects were not found again");
    }
}

void BM_CompareDisplacedWithNewIds(benchmark::State& state) {
    compareDisplaced(state, true);
}

void BM_CompareDisplacedWithNewIdsWithoutNames(benchmark::State& state) {
    compareDisplaced(state, false);
}

void BM_CompareUnchanged(benchmark::State& state) {
    const std::vector<ObjectRecord> records = recordsOf(objectsOfModel(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        benchmark::DoNotOptimize(compare(records, records).count(Status::Unchanged));
    }
}

BENCHMARK(BM_Read)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareDisplacedWithNewIds)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareDisplacedWithNewIdsWithoutNames)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareUnchanged)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);

} // namespace
