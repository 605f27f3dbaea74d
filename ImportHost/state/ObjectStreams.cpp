#include "state/ObjectStreams.h"

#include "Failure.h"
#include "state/Files.h"
#include "state/Numbers.h"
#include "state/ShapeMeasure.h"

#include <PluginKit/Solids.h>
#include <PluginKit/Text.h>

#include <algorithm>
#include <future>
#include <iterator>
#include <stdexcept>

namespace {

std::vector<ObjectRecord> readObjectLines(std::string_view stream) {
    std::vector<ObjectRecord> records;
    bool complete = false;
    for (const std::string_view line : split(stream, '\n')) {
        try {
            if (complete && !line.empty()) {
                throw std::runtime_error("text behind the closing line");
            }
            if (line.compare(0, 4, "end\t") == 0) {
                complete = line.substr(4) == std::to_string(records.size());
            } else if (!line.empty()) {
                records.push_back(recordFromStream(line));
            }
        } catch (const std::runtime_error& e) {
            throw std::runtime_error("wrong objects stream, line " + std::to_string(records.size() + 1) + ": " +
                                     e.what());
        }
    }
    if (!complete) {
        throw std::runtime_error("incomplete objects stream: no closing line with the number of objects");
    }
    return records;
}

void takeFootprints(std::string_view stream, std::vector<ObjectRecord>& records) {
    std::vector<Footprint> footprints = readFootprints(stream, records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].footprint = std::move(footprints[i]);
    }
}

void takeData(std::string_view stream, std::vector<ObjectRecord>& records) {
    std::vector<ObjectData> data = readObjectData(stream, records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].attributes = std::move(data[i].attributes);
        records[i].properties = std::move(data[i].properties);
    }
}

/** Measures all surfaces of an object. Throws std::runtime_error for coordinates out of range. */
void takeShape(const std::vector<SolidSurface>& surfaces, ObjectRecord& record) {
    const std::optional<Box> box = boxOf(surfaces);
    if (!box) {
        return;
    }
    if (largestPart(box->low) > farthest || largestPart(box->high) > farthest) {
        throw std::runtime_error("a coordinate of object " + identityText(record) + " is out of range");
    }
    record.box = *box;
    record.shape = shapeOf(surfaces);
}

/** The parts of an object's shape stand together. */
void takeShapes(std::string_view stream, std::vector<ObjectRecord>& records) {
    std::vector<bool> isTaken(records.size(), false);
    std::vector<SolidSurface> surfaces;
    std::size_t object = 0;
    const auto finish = [&] {
        if (object > 0) {
            takeShape(surfaces, records[object - 1]);
            isTaken[object - 1] = true;
        }
        surfaces.clear();
    };
    SolidsReader reader(stream);
    for (Solid solid; reader.next(solid);) {
        if (solid.object < 1 || solid.object > records.size()) {
            throw std::runtime_error("there is no object " + std::to_string(solid.object));
        }
        if (solid.object != object) {
            finish();
            object = solid.object;
            if (isTaken[object - 1]) {
                throw std::runtime_error("the solids of object " + std::to_string(object) + " do not stand together");
            }
        }
        std::move(solid.surfaces.begin(), solid.surfaces.end(), std::back_inserter(surfaces));
    }
    finish();
}

/** Reads a stream that adds to the records; what is wrong with it is the plug-in's fault. */
void readStream(const std::string& folder, const std::string& plugin, const char* stream,
                void (*take)(std::string_view, std::vector<ObjectRecord>&), std::vector<ObjectRecord>& records) {
    const std::string content = readFile(folder + '/' + stream);
    try {
        take(content, records);
    } catch (const std::runtime_error& e) {
        throw Failure(plugin, std::string("wrong ") + stream + " stream, " + e.what());
    }
}

} // namespace

std::vector<ObjectRecord> readObjects(const std::string& folder, const std::string& plugin) {
    std::vector<ObjectRecord> records;
    try {
        records = readObjectLines(readFile(folder + "/objects"));
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw Failure(plugin, e.what());
    }

    // Shapes take as long as all the rest and fill other members, so they are read at the same time; where no thread can
    // be had, behind the others.
    std::future<void> shapes = std::async([&] { readStream(folder, plugin, "solids", takeShapes, records); });
    readStream(folder, plugin, "polygons", takeFootprints, records);
    readStream(folder, plugin, "attributes", takeData, records);
    shapes.get();
    return records;
}
