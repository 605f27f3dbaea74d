#include "geometry/ShapeBuilder.h"

#include "geometry/Cutting.h"
#include "geometry/HalfSpaces.h"
#include "geometry/Item.h"
#include "geometry/ItemBuilder.h"
#include "geometry/ShapeParts.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** How many points of mapped shapes are kept: about as much memory as the file's text takes. */
std::size_t roomForMapped(const StepFile& file) {
    return file.textSize() / 64 + 100'000;
}

std::string identifierOf(const Item& representation) {
    return representation.text(1);
}

/** The representations that show a product's body: those named so, else all that aren't known to be something else. */
std::vector<Item> bodyRepresentations(const Item& product) {
    std::vector<Item> named;
    std::vector<Item> others;
    const auto shape = product.referenceIf(6);
    if (!shape) {
        return {};
    }
    for (const std::uint64_t id : product.items().at(*shape).references(2)) {
        const Item representation = product.items().at(id);
        const std::string name = identifierOf(representation);
        if (name == "Body") {
            named.push_back(representation);
        } else if (name != "Axis" && name != "FootPrint" && name != "Box" && name != "Annotation" && name != "Plan") {
            others.push_back(representation);
        }
    }
    return named.empty() ? others : named;
}

/**
 * Representations of one context make up a body together; those of another one show the same body for another purpose,
 * in less detail for example. The first context with a body is taken.
 */
void appendBodies(const Item& product, ItemBuilder& builder) {
    const std::size_t before = builder.bodies.size();
    std::optional<std::uint64_t> context;
    try {
        for (const Item& representation : bodyRepresentations(product)) {
            const bool hasBody = builder.bodies.size() > before;
            if (hasBody && representation.referenceIf(0) != context) {
                continue;
            }
            builder.appendRepresentation(representation);
            context = hasBody ? context : representation.referenceIf(0);
        }
    } catch (const ItemError& error) {
        builder.addDoubt(error.what());
    }
}

/** Puts bodies together that are apart from each other, so that they can be cut in one go. */
std::vector<Body> grouped(std::vector<Body>&& bodies, Work& work) {
    constexpr double apart = 1e-3;
    constexpr std::size_t boxesPerPoint = 32; // that are looked at in the time that a point takes
    std::vector<Body> groups;
    std::vector<std::vector<Box>> boxes;
    for (Body& body : bodies) {
        Box box;
        box.add(body);
        std::size_t g = 0;
        std::size_t looked = 0;
        const auto meets = [&](const Box& other) {
            ++looked;
            return box.meets(other, apart);
        };
        while (g < groups.size() && std::any_of(boxes[g].begin(), boxes[g].end(), meets)) {
            ++g;
        }
        work.add(looked / boxesPerPoint);
        if (g == groups.size()) {
            groups.emplace_back();
            boxes.emplace_back();
        }
        std::move(body.faces.begin(), body.faces.end(), std::back_inserter(groups[g].faces));
        boxes[g].push_back(box);
    }
    return groups;
}

/** The openings of one product as bodies in its coordinates. */
class Cutters {
public:
    Cutters(const Items& items, MappedShapes& mapped, const ProductPlacements& placements)
        : builder_(items, mapped), items_(items), placements_(placements) {}

    void add(std::uint64_t opening, std::uint64_t placement) {
        const std::size_t before = builder_.bodies.size();
        try {
            const Item item = items_.at(opening);
            appendBodies(item, builder_);
            const Affine map = placements_.between(placement, item.referenceIf(5).value_or(0), items_.work());
            for (std::size_t i = before; i < builder_.bodies.size(); ++i) {
                transform(builder_.bodies[i], map);
                if (!isWithinReach(builder_.bodies[i])) {
                    item.fail(beyondReach);
                }
            }
        } catch (const ItemError& error) {
            builder_.bodies.resize(before);
            builder_.addDoubt(error.what());
        }
    }

    /** Cuts the openings out of bodies. */
    void cut(std::vector<Body>& bodies, std::vector<std::string>& doubts) {
        for (const std::string& doubt : builder_.doubts) {
            doubts.push_back("opening: " + doubt);
        }
        auto& cutters = builder_.bodies;
        const auto firstOpen =
            std::stable_partition(cutters.begin(), cutters.end(), [](const Body& b) { return b.solid; });
        if (firstOpen != cutters.end()) {
            doubts.push_back("opening: it isn't closed");
            cutters.erase(firstOpen, cutters.end());
        }
        const std::vector<Body> groups = grouped(std::move(cutters), items_.work());
        for (Body& body : bodies) {
            for (const Body& group : groups) {
                CutResult result = combine(Operation::difference, body, group, items_.work());
                if (body.solid && !result.closed) {
                    doubts.push_back("opening: what is left isn't closed");
                    result.body.solid = false;
                }
                body = std::move(result.body);
            }
        }
    }

private:
    ItemBuilder builder_;
    const Items& items_;
    const ProductPlacements& placements_;
};

/** Whether a representation that could show a body holds nothing, or a box in its place. */
bool isWithoutBody(const Item& representation) {
    const Items& items = representation.items();
    const Work::Level level(items.work());
    const std::vector<std::uint64_t> members = representation.references(3);
    return members.empty() || std::any_of(members.begin(), members.end(), [&](std::uint64_t id) {
               const Item member = items.at(id);
               return member.is("IFCBOUNDINGBOX") ||
                      (member.is("IFCMAPPEDITEM") && isWithoutBody(member.child(0).child(1)));
           });
}

/** Products that are shown by curves and points alone have no body; all others are meant to have one. */
bool lacksBody(const Item& product) {
    const auto shape = product.referenceIf(6);
    if (!shape) {
        return false;
    }
    const std::vector<std::uint64_t> all = product.items().at(*shape).references(2);
    return std::any_of(all.begin(), all.end(), [&](std::uint64_t id) {
        const Item representation = product.items().at(id);
        const std::string name = identifierOf(representation);
        const bool isDrawing = name == "Axis" || name == "FootPrint" || name == "Annotation" || name == "Plan";
        return !isDrawing && isWithoutBody(representation);
    });
}

/** The bounding box that a product's representation gives. */
std::vector<Body> boundingBoxes(const Item& product) {
    std::vector<Body> boxes;
    const auto shape = product.referenceIf(6);
    if (!shape) {
        return boxes;
    }
    for (const std::uint64_t id : product.items().at(*shape).references(2)) {
        for (const std::uint64_t part : product.items().at(id).references(3)) {
            const Item item = product.items().at(part);
            if (item.is("IFCBOUNDINGBOX")) {
                boxes.push_back(boundingBoxOf(item));
                boxes.back().solid = false; // it stands for the body, but its volume doesn't
                boxes.back().items.push_back(part);
            }
        }
    }
    return boxes;
}

/** Leaves out the parts that the world has no room for. */
void dropPartsBeyondReach(const Item& product, Shape& shape) {
    const Vector origin{shape.origin.x, shape.origin.y, shape.origin.z};
    const auto isBeyond = [&](const ShapePart& part) {
        return !std::all_of(part.vertices.begin(), part.vertices.end(), [&](const Point& p) {
            return isWithinReach(origin + Vector{p.x, p.y, p.z});
        });
    };
    const auto first = std::remove_if(shape.parts.begin(), shape.parts.end(), isBeyond);
    if (first != shape.parts.end()) {
        shape.parts.erase(first, shape.parts.end());
        const std::string doubt = std::string(product.keyword()) + ": it reaches " + beyondReach;
        if (std::find(shape.doubts.begin(), shape.doubts.end(), doubt) == shape.doubts.end()) {
            shape.doubts.push_back(doubt);
        }
    }
}

} // namespace

ShapeBuilder::ShapeBuilder(const StepFile& file, const Units& units)
    : file_(file), units_(units), placements_(file, units), openings_(file), mapped_(roomForMapped(file)) {
}

void ShapeBuilder::build(std::uint64_t product, Work& work, Shape& shape) const {
    const Items items(file_, units_, work);
    const Item item = items.at(product);
    const std::uint64_t placement = item.referenceIf(5).value_or(0);
    Affine world;
    try {
        world = placement != 0 ? placements_.world(placement) : Affine{};
        if (!isWithinReach(world.origin)) {
            world.origin = {};
            if (item.referenceIf(6)) {
                shape.doubts.push_back(std::string(item.keyword()) + ": it stands " + beyondReach);
            }
        }
    } catch (const ItemError& error) {
        shape.doubts.push_back(error.what());
    }
    shape.origin = {world.origin.x, world.origin.y, world.origin.z};
    ItemBuilder builder(items, mapped_);
    try {
        appendBodies(item, builder);
        const bool hasBody = !builder.bodies.empty();
        if (!hasBody && builder.doubts.empty() && lacksBody(item)) {
            builder.addDoubt(std::string(item.keyword()) + ": its representation holds no body");
        }
        const std::vector<std::uint64_t> openings = openings_.openingsOf(product);
        if (!builder.bodies.empty() && !openings.empty()) {
            Cutters cutters(items, mapped_, placements_);
            for (const std::uint64_t opening : openings) {
                cutters.add(opening, placement);
            }
            cutters.cut(builder.bodies, builder.doubts);
        }
        appendParts(builder.bodies, world, shape);
        if (hasBody && shape.parts.empty() && builder.doubts.empty()) {
            builder.doubts.push_back(std::string(item.keyword()) + ": nothing of its body is left");
        }
        dropPartsBeyondReach(item, shape);
    } catch (const LimitError& error) {
        shape.parts.clear();
        builder.doubts.assign(1, error.what());
    }
    shape.doubts.insert(shape.doubts.end(), builder.doubts.begin(), builder.doubts.end());
    if (shape.parts.empty() && !shape.doubts.empty()) {
        Work little;
        const Items again(file_, units_, little);
        appendParts(boundingBoxes(again.at(product)), world, shape);
        dropPartsBeyondReach(item, shape);
    }
}

Shape ShapeBuilder::build(std::uint64_t product) const {
    Shape shape;
    Work work;
    try {
        build(product, work, shape);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        shape.doubts.push_back(error.what());
    }
    work_ += work.used();
    return shape;
}

} // namespace IfcReader
