/**
 * @file StreamWriter.h
 * Writes what a plug-in imports to the host's streams.
 */
#pragma once

#include <ImportCommon/ForeignObjectEnv.h>
#include <ImportCommon/IFC2X3_PSet_Custom.h>

#include <PluginKit/StreamError.h>
#include <PluginKit/StreamLines.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace PluginKit {

/**
 * One function for each stream. The streams stay the host's: nothing here opens or closes one, a stream that the host
 * did not give is left out, and the host notices what a full disk swallows.
 *
 * Functions throw StreamError for a field that no host could read, and write nothing then.
 */
class StreamWriter {
public:
    /** @param env  must outlive the writer */
    explicit StreamWriter(const ForeignObjectEnv_t& env) : env_(env) {}

    /** A fact about the model; the keys that hosts know stand in FORMATS.md. */
    void info(std::string_view key, std::string_view value);

    /** Something that people should know, though the import goes on. */
    void warning(std::string_view text);

    /** Why the import fails; the host shows the last one. */
    void error(std::string_view text);

    /** How much of the whole import is done, from 0 to 1: passed on at once when it has grown by a hundredth. */
    void progress(double part, std::string_view what);

    /** Materials are numbered from 0 in the order of the calls. @return the number of this one */
    std::uint32_t material(const MaterialLine& material);

    /** A storey. */
    void layer(const LayerLine& layer);

    /** A product and the one that holds it; for every product, with or without geometry. */
    void hierarchy(const HierarchyLine& place);

    /** An object and its runtime ids. @return its number, from 1 */
    std::size_t object(const ObjectLine& object, const ForeignObjectLine& ids);

    /** How many objects have been written; also the number of the last one. */
    std::size_t objectCount() const { return objectCount_; }

    /** One surface of an object, for pictures: coordinates are rounded to hundredths of a millimetre. */
    void polygons(std::size_t object, const SolidSurface& surface);

    /** The shape of an object, exactly. */
    void solid(std::size_t object, const std::vector<SolidSurface>& surfaces);

    /** A solid in any form. */
    void solid(const SolidLine& solid);

    /** The polygons and the solid of the object that was written last. */
    void shape(const std::vector<SolidSurface>& surfaces);

    /** An image. */
    void texture(const TextureLine& texture);

    /** A property set whose properties the next calls of property() give. */
    void set(const SetLine& set);

    /** A property of the set that was written last. */
    void property(const PropertyLine& property);

    /** Whether the source gives a property; a record also has values for what it does not give. */
    using IsGiven = std::function<bool(std::string_view name)>;

    /**
     * A set with all its properties, however deep they nest. Names, descriptions and texts come from the library's
     * types, which cut them at 256 characters; properties of Type_Null are left out.
     * @param owner    object, globalId and form count; the set's own texts come from @p set
     * @param set      a set, or a record such as IFC2X3_PSet_WallCommon_s, which converts to one
     * @param isGiven  called with the name of each property of the set itself; false leaves it out
     */
    void propertySet(const SetLine& owner, const ImportCommon::IFC2X3_PSet_Custom_s& set,
                     const IsGiven& isGiven = nullptr);

    /** The closing line: without it the host takes the import for incomplete. */
    void end();

private:
    class Line;

    const ForeignObjectEnv_t& env_;
    std::size_t objectCount_ = 0;
    std::size_t counts_[16] = {}; ///< lines of each stream, in the order of streamNames
    std::size_t materialCount_ = 0;
    std::size_t deepest_ = 0; ///< the greatest depth that the next property may have
    bool isInSet_ = false;
    double shownProgress_ = -1.0;
    std::string lines_; ///< those that are being made, the innermost last
};

} // namespace PluginKit
