#include "IfcReader/Model.h"

#include "OutputBudget.h"
#include "Units.h"
#include "geometry/ShapeBuilder.h"
#include "products/Looks.h"
#include "products/Materials.h"
#include "products/PlacementCheck.h"
#include "products/ProductClasses.h"
#include "products/ProductTree.h"
#include "products/Relations.h"
#include "properties/PropertySets.h"
#include "step/StepFile.h"

#include <cmath>

namespace IfcReader {

namespace {

/** Reading a file takes this much of the time that reading and scanning take. */
constexpr double readingShare = 0.3;

/** In points read, made or looked at: some minutes. A model of 140 MB takes less than a hundredth. */
constexpr std::uint64_t maxWork = 5'000'000'000;

constexpr std::size_t nameArgument = 2;
constexpr std::size_t placementArgument = 5;
constexpr std::size_t shapeArgument = 6;
constexpr std::size_t tagArgument = 7;
constexpr std::size_t elevationArgument = 9;

/** Progress of a part of the work, which begins at a point of the whole. */
Model::Progress partOf(const Model::Progress& whole, double begin, double share) {
    if (!whole) {
        return {};
    }
    return [&whole, begin, share](double part) { whole(begin + share * part); };
}

std::string_view argumentOf(const StepInstance& instance, std::size_t number) {
    return StepArguments(instance.arguments).nextAfter(number);
}

std::optional<std::string> textOf(std::string_view argument) {
    const auto quoted = stepQuoted(argument);
    return quoted ? std::optional<std::string>(decodeStepText(*quoted)) : std::nullopt;
}

std::optional<std::string> textAt(const StepInstance& instance, std::size_t number) {
    return textOf(argumentOf(instance, number));
}

} // namespace

struct Model::Parts {
    Parts(std::string text, const StepFile::Progress& progress)
        : file(std::move(text), progress),
          units(checked(file)),
          relations(file),
          tree(productTree(file, relations)),
          looks(file, relations),
          shapes(file, units),
          budget(file.textSize()) {
        checkPlacements(file, tree);
        checkReach();
    }

    /** Other schemas have other classes and arguments. */
    static const StepFile& checked(const StepFile& file) {
        if (file.schema().compare(0, 6, "IFC2X3") != 0) {
            throw IfcError("not an IFC 2x3 model: its schema is " +
                           (file.schema().empty() ? std::string("missing") : file.schema()));
        }
        return file;
    }

    void checkReach() const;
    Place place(std::size_t index) const;
    void describe(Product& product, const StepInstance& instance) const;
    MaterialUse materialsOf(std::uint64_t product) const;
    void addLayers(Product& product, const StepInstance& instance) const;
    void addLayersOf(std::uint64_t instance, std::vector<std::string>& layers) const;
    void addShape(Product& product, const std::vector<std::uint64_t>& materials) const;

    StepFile file;
    Units units;
    Relations relations;
    std::vector<TreeNode> tree;
    Looks looks;
    ShapeBuilder shapes;
    mutable OutputBudget budget; ///< spent by whichever thread asks
};

/** One product that stands too far away is a mistake of its own; when all do, it is the model's unit of length. */
void Model::Parts::checkReach() const {
    std::size_t shaped = 0;
    std::size_t farAway = 0;
    for (const TreeNode& node : tree) {
        StepArguments arguments(file[node.instance].arguments);
        const auto placement = stepReference(arguments.nextAfter(placementArgument));
        if (node.isShown && stepReference(arguments.nextAfter(0))) {
            ++shaped;
            farAway += placement && shapes.isFarAway(*placement) ? 1 : 0;
        }
    }
    if (shaped > 0 && farAway == shaped) {
        throw IfcError(std::string("the model is refused: all of its products stand ") + beyondReach +
                       ": a missing unit of length may be the reason");
    }
}

Place Model::Parts::place(std::size_t index) const {
    const StepInstance instance = file[tree[index].instance];
    Place place;
    place.id = instance.id;
    place.className = std::string(instance.keyword);
    place.globalId = stepText(argumentOf(instance, 0));
    place.parent = tree[index].parent == TreeNode::none ? Place::none : tree[index].parent;
    return place;
}

void Model::Parts::describe(Product& product, const StepInstance& instance) const {
    StepArguments arguments(instance.arguments);
    product.name = textOf(arguments.nextAfter(nameArgument));
    product.description = textOf(arguments.nextAfter(0));
    product.objectType = textOf(arguments.nextAfter(0));
    if (!isSpatial(instance.keyword)) {
        product.tag = textAt(instance, instance.keyword == "IFCPROXY" ? tagArgument + 1 : tagArgument);
    }
    if (instance.keyword == "IFCBUILDINGSTOREY") {
        const auto elevation = stepReal(argumentOf(instance, elevationArgument));
        const double metres = elevation.value_or(0.0) * units.metre;
        product.elevation =
            elevation && std::abs(metres) <= farthestPlace ? std::optional<double>(metres) : std::nullopt;
    }
    for (const Links::Link& link : relations.types.of(instance.id)) {
        product.typeName = product.typeName ? product.typeName : textAt(*file.find(link.to), nameArgument);
    }
}

/** A product's own materials, or those of its types. */
MaterialUse Model::Parts::materialsOf(std::uint64_t product) const {
    MaterialUse use;
    for (const Links::Link& link : relations.materials.of(product)) {
        appendMaterials(file, link.to, units.metre, use);
    }
    if (use.materials.empty()) {
        for (const Links::Link& type : relations.types.of(product)) {
            for (const Links::Link& link : relations.materials.of(type.to)) {
                appendMaterials(file, link.to, units.metre, use);
            }
        }
    }
    for (const Material& material : use.materials) {
        budget.spend(32 + material.name.size());
    }
    return use;
}

/** Layers hold representations, or items of them. */
void Model::Parts::addLayers(Product& product, const StepInstance& instance) const {
    const auto shape = file.find(argumentOf(instance, shapeArgument));
    StepArguments representations = listMembers(shape ? argumentOf(*shape, 2) : std::string_view());
    for (auto member = representations.next(); member; member = representations.next()) {
        if (const auto representation = file.find(*member)) {
            addLayersOf(representation->id, product.layers);
            StepArguments items = listMembers(argumentOf(*representation, 3));
            for (auto item = items.next(); item; item = items.next()) {
                budget.spend(8);
                addLayersOf(stepReference(*item).value_or(0), product.layers);
            }
        }
    }
    std::sort(product.layers.begin(), product.layers.end());
    product.layers.erase(std::unique(product.layers.begin(), product.layers.end()), product.layers.end());
}

void Model::Parts::addLayersOf(std::uint64_t instance, std::vector<std::string>& layers) const {
    for (const Links::Link& link : relations.layers.of(instance)) {
        layers.push_back(stepText(argumentOf(*file.find(link.to), 0)));
        budget.spend(32 + layers.back().size());
    }
}

void Model::Parts::addShape(Product& product, const std::vector<std::uint64_t>& materials) const {
    product.shape = shapes.build(product.id);
    if (shapes.work() > maxWork) {
        throw IfcError("the model is refused: its shapes are too much work to build");
    }
    const auto ofMaterials = looks.ofMaterials(materials);
    for (const ShapePart& part : product.shape.parts) {
        const auto own = looks.ofItems(part.items);
        product.looks.push_back(own ? own : ofMaterials);
    }
}

Model::Model(std::unique_ptr<const Parts> parts) : parts_(std::move(parts)) {
}

Model::Model(const std::string& fileName, const Progress& progress)
    : parts_(std::make_unique<const Parts>(readFileText(fileName, partOf(progress, 0.0, readingShare)),
                                           partOf(progress, readingShare, 1.0 - readingShare))) {
}

std::unique_ptr<Model> Model::ofText(std::string text) {
    return std::unique_ptr<Model>(new Model(std::make_unique<const Parts>(std::move(text), Progress())));
}

Model::~Model() = default;

std::size_t Model::size() const {
    return parts_->tree.size();
}

Place Model::place(std::size_t index) const {
    return parts_->place(index);
}

Product Model::product(std::size_t index) const {
    const TreeNode& node = parts_->tree[index];
    const StepInstance instance = parts_->file[node.instance];
    Product product;
    static_cast<Place&>(product) = parts_->place(index);
    parts_->describe(product, instance);
    if (node.storey != TreeNode::none) {
        product.storey = textAt(parts_->file[parts_->tree[node.storey].instance], nameArgument);
    }
    parts_->budget.spend(product.typeName.value_or("").size() + product.storey.value_or("").size());
    MaterialUse use = parts_->materialsOf(instance.id);
    product.materials = std::move(use.materials);
    parts_->addLayers(product, instance);
    if (node.isShown) {
        parts_->addShape(product, use.instances);
    }
    product.properties = PropertySets(parts_->file, parts_->relations, parts_->units, parts_->budget).of(instance.id);
    return product;
}

double Model::metresPerUnit() const {
    return parts_->units.metre;
}

} // namespace IfcReader
