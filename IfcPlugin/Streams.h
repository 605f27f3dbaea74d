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
#include <ImportCommon/ForeignObjectSolid.h>
#include <ImportCommon/IFC2X3_PSet_Custom.h>
#include <ImportCommon/PngTexture.h>

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

    /** The geometry of the object that was written last. */
    void solid(const ForeignObjectSolid& solid);

    void texture(const ImportCommon::PngTexture& texture, std::string_view name);

    /**
     * A property set, whose properties follow.
     * @param isObject  whether the product is the object that was written last
     * @param form      the record that the set comes from, or "custom"
     * @param source    the set in the file: its texts may be longer than the library's
     * @param name      the set's name, which may be another one than in the file
     */
    void propertySet(const Product& product, bool isObject, std::string_view form,
                     const ImportCommon::IFC2X3_PSet_Custom_s& set, const IfcPropertySet& source,
                     std::string_view name);

    /** A property of the set that was written last; the name may be another one than in the file. */
    void property(const ImportCommon::IFC2X3Property& property, const IfcProperty& source, std::string_view name,
                  int depth = 0);

    /** The closing line: without it the host takes the import for incomplete. */
    void end();

    /** How many objects have been written. */
    unsigned int objectCount() const { return objectCount_; }

private:
    const ForeignObjectEnv_t& env_;
    unsigned int objectCount_ = 0;
    double shownProgress_ = -1.0;
};
