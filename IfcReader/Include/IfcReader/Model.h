/**
 * @file Model.h
 * IFC 2x3 files as products with shapes, properties and what else the file says of them.
 *
 *     const Model model("house.ifc");
 *     for (std::size_t i = 0; i < model.size(); ++i) {
 *         const Product product = model.product(i);
 *         ...
 *     }
 */
#pragma once

#include <IfcReader/IfcError.h>
#include <IfcReader/PropertySet.h>
#include <IfcReader/Shape.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace IfcReader {

/** A layer of a wall or slab, or all that an object is made of. */
struct Material {
    std::string name;
    std::optional<double> thickness; ///< of a layer, in metres
};

/** How a surface looks; each number from 0 to 1. */
struct Look {
    double red = 0.6;
    double green = 0.6;
    double blue = 0.6;
    double opacity = 1.0;
    std::string name; ///< of the style
};

/** A place in the model's tree. */
struct Place {
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    std::uint64_t id = 0;      ///< number of the instance in the file
    std::string className;     ///< upper case, such as IFCDOOR
    std::string globalId;      ///< as it stands in the file, which may be no valid one
    std::size_t parent = none; ///< what holds it: a storey, an assembly, or the wall that an opening is in
};

/** What a file says of a product. */
struct Product : Place {
    std::optional<std::string> name;
    std::optional<std::string> description;
    std::optional<std::string> objectType;
    std::optional<std::string> tag;
    std::optional<std::string> typeName; ///< of its type object
    std::optional<std::string> storey;   ///< name of the storey that it belongs to, else of the space, building or site
    std::optional<double> elevation;     ///< of a storey, in metres; none beyond a million kilometres
    std::vector<Material> materials;
    std::vector<std::string> layers; ///< names of the presentation layers that its shape is on

    Shape shape;                            ///< without parts where there is no body, and for openings, grids, notes
    std::vector<std::optional<Look>> looks; ///< of each part of the shape
    std::vector<IfcPropertySet> properties; ///< own sets, laid over those of its type
};

/**
 * A file that was read. It is not changed afterwards: any number of threads may ask it for products at once, and get
 * the same ones in whatever order they ask.
 */
class Model {
public:
    /** Called with the part of the file that has been read, from 0 to 1. */
    using Progress = std::function<void(double)>;

    /** Reads a file. Throws IfcError when it can't be read, is no IFC 2x3 model, or is damaged. */
    explicit Model(const std::string& fileName, const Progress& progress = {});
    ~Model();

    /** The same with a file's text that is in memory already. */
    static std::unique_ptr<Model> ofText(std::string text);

    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /** How many products there are: each after what holds it, then those that nothing holds. */
    std::size_t size() const;

    /** A place in the tree, below size(). */
    Place place(std::size_t index) const;

    /**
     * All about a product. This builds its shape and takes as long as that does. Throws IfcError for a model whose
     * products share so much that writing it out for each of them would fill a disk, or building it take for ever.
     * @param index  below size()
     */
    Product product(std::size_t index) const;

    /** Metres in the model's unit of length. */
    double metresPerUnit() const;

private:
    struct Parts;
    explicit Model(std::unique_ptr<const Parts> parts);

    std::unique_ptr<const Parts> parts_;
};

} // namespace IfcReader
