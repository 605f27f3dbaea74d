/**
 * @file ObjectWriter.h
 * Hands products on to the host.
 */
#pragma once

#include "Measure.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <IfcReader/Model.h>
#include <PluginKit/StreamWriter.h>

#include <map>
#include <unordered_set>

/** A product with what many threads can find out at once. */
struct MeasuredProduct {
    IfcReader::Product product;
    Measurement measurement;
    ImportCommon::ExternalGUID spatialHash;        ///< finds an object again whose GlobalId was changed
    std::vector<PluginKit::SolidSurface> surfaces; ///< the parts of the shape in the world, still without materials

    /** Something to be seen, or something that should be: a product whose shape could not be built is one as well. */
    bool isObject() const { return !surfaces.empty() || !product.shape.doubts.empty(); }
};

MeasuredProduct measured(IfcReader::Product&& product);

/** Writes products to the streams, in the order of the model's tree. */
class ObjectWriter {
public:
    /** Everything must outlive the writer. */
    ObjectWriter(const IfcReader::Model& model, ImportCommon::ExternalGUIDDatabase& identities,
                 PluginKit::StreamWriter& writer)
        : model_(model), identities_(identities), writer_(writer) {}

    void write(MeasuredProduct&& measured);

    /** Objects whose shape could not be built in full. */
    std::size_t doubtfulCount() const { return doubtfulCount_; }

private:
    void writePlace(const IfcReader::Product& product);
    void writeObject(MeasuredProduct& measured);
    std::uint32_t materialOf(const std::optional<IfcReader::Look>& look);

    const IfcReader::Model& model_;
    ImportCommon::ExternalGUIDDatabase& identities_;
    PluginKit::StreamWriter& writer_;
    std::unordered_set<int> knownIds_;
    std::map<std::pair<std::string, std::array<double, 4>>, std::uint32_t> materials_; ///< numbers by name and colour
    std::size_t doubtfulCount_ = 0;
};
