/**
 * @file Streams.h
 * Writes results to the host's streams, one line each; the formats stand in ImportHost/FORMATS.md.
 */
#pragma once

#include "IfcModel.h"
#include "Measure.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>
#include <ImportCommon/ForeignObjectEnv.h>

#include <string>
#include <string_view>

/** The streams stay the host's: nothing here opens or closes one. A stream that the host did not give is left out. */
class Streams {
public:
    explicit Streams(const ForeignObjectEnv_t& env) : env_(env) {}

    void info(std::string_view key, std::string_view value);
    void warning(std::string_view text);
    void error(std::string_view text);

    /** How much of the whole import is done, from 0 to 1; passed on when it has grown visibly. */
    void progress(double part, std::string_view what);

    void material(const aiMaterial& material);

    /** A place in the model's tree: every product, with or without geometry. */
    void hierarchy(const Product& product, const Product* parent);

    void storey(const Product& storey);

    /** The object and its runtime ids. */
    void object(const ImportCommon::ExternalGUID& identity, ImportCommon::ExternalGUIDRuntimeID_e identityId,
                const ImportCommon::ExternalGUID& hash, ImportCommon::ExternalGUIDRuntimeID_e hashId,
                const ImportCommon::ExternalVersion& version, const Vector& position, const Product& product);

    /** One surface of the object that was written last. */
    void polygons(const Surface& surface, const Vector& origin);

    /** The closing line: without it the host takes the import for incomplete. */
    void end();

    /** How many objects have been written. */
    unsigned int objectCount() const { return objectCount_; }

private:
    const ForeignObjectEnv_t& env_;
    unsigned int objectCount_ = 0;
    double shownProgress_ = -1.0;
};
