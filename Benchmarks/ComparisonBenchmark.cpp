// What it costs to find out what became of the objects of a model, beside reading it. The hardest case: all ids are new
// and the whole was turned and shifted, so that every object is found by its shape and place.

#include "comparison/Comparison.h"
#include "state/ShapeMeasure.h"

#include <IfcReader/Model.h>
#include <PluginKit/Checksum.h>
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

/** Writes the instances of a model of blocks on a grid, each with a property set. */
class ModelWriter {
public:
    /** @param seed  of the GlobalIds, and of nothing else */
    ModelWriter(std::size_t objects, unsigned int seed, bool displaced) : ids_(seed) {
        line("IFCCARTESIANPOINT(%s)", displaced ? "(12.5,-7.25,0.5)" : "(0.,0.,0.)");
        line("IFCDIRECTION((0.,0.,1.))");
        line("IFCDIRECTION(%s)", displaced ? "(0.8660254037844387,0.5,0.)" : "(1.,0.,0.)");
        line("IFCAXIS2PLACEMENT3D(#1,#2,#3)");
        line("IFCLOCALPLACEMENT($,#4)");
        line("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)");
        line("IFCUNITASSIGNMENT((#6))");
        line("IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#4,$)");
        line("IFCPROJECT('%s',$,'Model',$,$,$,$,(#8),#7)", globalId().c_str());
        line("IFCBUILDINGSTOREY('%s',$,'Storey',$,$,#5,$,$,.ELEMENT.,0.)", globalId().c_str());
        line("IFCRELAGGREGATES('%s',$,$,$,#9,(#10))", globalId().c_str());
        std::mt19937 sizes(9);
        std::string contained;
        for (std::size_t i = 0; i < objects; ++i) {
            contained += (i > 0 ? ",#" : "#") + std::to_string(writeObject(i, sizes));
        }
        text_ += '#' + std::to_string(next_++) + "=IFCRELCONTAINEDINSPATIALSTRUCTURE('" + globalId() + "',$,$,$,(" +
                 contained + "),#10);\n";
    }

    std::string text() const {
        return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
               "FILE_SCHEMA(('IFC2X3'));\nENDSEC;\nDATA;\n" +
               text_ + "ENDSEC;\nEND-ISO-10303-21;\n";
    }

private:
    std::size_t line(const char* text) {
        text_ += '#' + std::to_string(next_) + '=' + text + ";\n";
        return next_++;
    }

    template <typename... Values>
    std::size_t line(const char* format, Values... values) {
        std::array<char, 400> buffer{};
        std::snprintf(buffer.data(), buffer.size(), format, values...);
        return line(static_cast<const char*>(buffer.data()));
    }

    std::string globalId() {
        static const char digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
        std::string id = "0";
        while (id.size() < 22) {
            id += digits[ids_() % 64];
        }
        return id;
    }

    /** One of forty sizes, in a place of its own. */
    std::size_t writeObject(std::size_t i, std::mt19937& sizes) {
        const double x = 1.5 * static_cast<double>(i % 100);
        const double y = 1.7 * static_cast<double>(i / 100 % 100);
        const double z = 3.0 * static_cast<double>(i / 10000);
        const std::size_t corner = line("IFCCARTESIANPOINT((%.3f,%.3f,%.3f))", x, y, z);
        const std::size_t axes = line("IFCAXIS2PLACEMENT3D(#%zu,$,$)", corner);
        const std::size_t place = line("IFCLOCALPLACEMENT(#5,#%zu)", axes);
        const double size = 0.2 + 0.02 * static_cast<double>(sizes() % 40);
        const std::size_t profile = line("IFCRECTANGLEPROFILEDEF(.AREA.,$,$,%.3f,0.15)", size);
        const std::size_t solid = line("IFCEXTRUDEDAREASOLID(#%zu,#4,#2,%.3f)", profile, 2.0 * size);
        const std::size_t body = line("IFCSHAPEREPRESENTATION(#8,'Body','SweptSolid',(#%zu))", solid);
        const std::size_t shape = line("IFCPRODUCTDEFINITIONSHAPE($,$,(#%zu))", body);
        const std::size_t object =
            line("IFCMEMBER('%s',$,'Member %.2f',$,$,#%zu,#%zu,'%zu')", globalId().c_str(), size, place, shape, i);
        const std::size_t first = next_;
        for (int p = 0; p < 8; ++p) {
            line("IFCPROPERTYSINGLEVALUE('Property %d',$,IFCLABEL('Value %zu'),$)", p, i * 7 % 100);
        }
        const std::size_t set =
            line("IFCPROPERTYSET('%s',$,'Set',$,(#%zu,#%zu,#%zu,#%zu,#%zu,#%zu,#%zu,#%zu))", globalId().c_str(), first,
                 first + 1, first + 2, first + 3, first + 4, first + 5, first + 6, first + 7);
        line("IFCRELDEFINESBYPROPERTIES('%s',$,$,$,(#%zu),#%zu)", globalId().c_str(), object, set);
        return object;
    }

    std::string text_;
    std::size_t next_ = 1;
    std::mt19937 ids_;
};

ObjectRecord recordOf(const IfcReader::Product& product) {
    std::vector<PluginKit::SolidSurface> surfaces;
    for (const IfcReader::ShapePart& part : product.shape.parts) {
        PluginKit::SolidSurface& surface = surfaces.emplace_back();
        for (const IfcReader::Point& p : part.vertices) {
            surface.vertices.push_back(
                {product.shape.origin.x + p.x, product.shape.origin.y + p.y, product.shape.origin.z + p.z});
        }
        for (const std::vector<std::uint32_t>& polygon : part.polygons) {
            surface.addPolygon(polygon);
        }
    }
    ObjectRecord record;
    record.identity = ImportCommon::ExternalGUID::fromIFCGlobalID(product.globalId.c_str());
    record.spatialHash = record.identity;
    record.className = product.className;
    record.name = product.name.value_or("");
    record.box = boxOf(surfaces).value_or(Box());
    record.shape = shapeOf(surfaces);
    record.position = (record.box.low + record.box.high) * 0.5;
    record.version = ImportCommon::createFromBoundingBox(record.box.size(0), record.box.size(1), record.box.size(2));
    record.properties.isKnown = true;
    for (const IfcReader::IfcPropertySet& set : product.properties) {
        for (const IfcReader::IfcProperty& property : set.properties) {
            record.properties.text += (record.properties.text.empty() ? "" : "\t") + set.name + '\t' + property.name +
                                      "\t'" + property.value.text;
        }
    }
    record.properties.digest = PluginKit::checksum(record.properties.text);
    return record;
}

std::vector<ObjectRecord> readModel(const std::string& text) {
    const std::unique_ptr<IfcReader::Model> model = IfcReader::Model::ofText(text);
    std::vector<ObjectRecord> records;
    for (std::size_t i = 0; i < model->size(); ++i) {
        const IfcReader::Product product = model->product(i);
        if (!product.shape.parts.empty()) {
            records.push_back(recordOf(product));
        }
    }
    return records;
}

void BM_Read(benchmark::State& state) {
    const std::string text = ModelWriter(static_cast<std::size_t>(state.range(0)), 1, false).text();
    for (auto _ : state) {
        benchmark::DoNotOptimize(readModel(text));
    }
    state.counters["megabytes"] = static_cast<double>(text.size()) / 1e6;
}

void BM_CompareDisplacedWithNewIds(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<ObjectRecord> before = readModel(ModelWriter(count, 1, false).text());
    const std::vector<ObjectRecord> now = readModel(ModelWriter(count, 2, true).text());
    std::size_t found = 0;
    for (auto _ : state) {
        const Comparison comparison = compare(before, now);
        found = comparison.count(Status::Reidentified);
    }
    if (found != count) {
        state.SkipWithError("objects were not found again");
    }
}

void BM_CompareUnchanged(benchmark::State& state) {
    const std::vector<ObjectRecord> objects =
        readModel(ModelWriter(static_cast<std::size_t>(state.range(0)), 1, false).text());
    for (auto _ : state) {
        benchmark::DoNotOptimize(compare(objects, objects).count(Status::Unchanged));
    }
}

BENCHMARK(BM_Read)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareDisplacedWithNewIds)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareUnchanged)->Arg(2500)->Arg(25000)->Unit(benchmark::kMillisecond);

} // namespace
