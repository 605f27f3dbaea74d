#include "geometry/ItemBuilder.h"

#include "geometry/Cutting.h"
#include "geometry/HalfSpaces.h"
#include "geometry/Placements.h"
#include "geometry/Primitives.h"
#include "geometry/Shells.h"
#include "geometry/Surfaces.h"
#include "geometry/SweptSolids.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** Items that stand in a representation without being a body. */
bool hasNoBody(const Item& item) {
    const std::string_view keyword = item.keyword();
    if (item.is("IFCSURFACECURVESWEPTAREASOLID") || isBoundedPlane(item)) {
        return false;
    }
    return keyword.find("CURVE") != std::string_view::npos || item.is("IFCPOLYLINE") || item.is("IFCLINE") ||
           item.is("IFCCIRCLE") || item.is("IFCELLIPSE") || item.is("IFCBOUNDINGBOX") || item.is("IFCCARTESIANPOINT") ||
           item.is("IFCPOINTONCURVE") || item.is("IFCPOINTONSURFACE") || item.is("IFCTEXTLITERAL") ||
           item.is("IFCTEXTLITERALWITHEXTENT") || item.is("IFCANNOTATIONFILLAREA") || item.is("IFCSTYLEDITEM");
}

Operation operationOf(const Item& item) {
    const std::string_view word = item.word(0);
    if (word != "DIFFERENCE" && word != "UNION" && word != "INTERSECTION") {
        item.fail("no operation that is known");
    }
    return word == "UNION" ? Operation::unite : word == "INTERSECTION" ? Operation::intersect : Operation::difference;
}

} // namespace

void ItemBuilder::addDoubt(const std::string& doubt) {
    constexpr std::size_t most = 20; // a small file may give millions of them
    if (doubts.size() < most && std::find(doubts.begin(), doubts.end(), doubt) == doubts.end()) {
        doubts.push_back(doubt);
    }
}

void ItemBuilder::append(std::uint64_t id) {
    const std::size_t before = bodies.size();
    try {
        const Item item = items_.at(id);
        appendItem(item);
        const auto isReached = [](const Body& part) { return isWithinReach(part); };
        if (!std::all_of(bodies.begin() + static_cast<std::ptrdiff_t>(before), bodies.end(), isReached)) {
            item.fail(beyondReach);
        }
    } catch (const ItemError& error) {
        bodies.resize(before);
        addDoubt(error.what());
    }
    items_.work().add((bodies.size() - before) * Work::kept); // sets may nest around many bodies
    for (std::size_t i = before; i < bodies.size(); ++i) {
        bodies[i].items.insert(bodies[i].items.begin(), id);
    }
}

void ItemBuilder::appendRepresentation(const Item& representation) {
    for (const std::uint64_t id : representation.references(3)) {
        append(id);
    }
}

void ItemBuilder::appendItem(const Item& item) {
    const Work::Level level(items_.work());
    if (item.is("IFCMAPPEDITEM")) {
        appendMapped(item);
    } else if (item.is("IFCFACEBASEDSURFACEMODEL") || item.is("IFCSHELLBASEDSURFACEMODEL")) {
        std::vector<Body> parts = surfaceModelOf(item);
        if (parts.empty()) {
            item.fail("it has no faces");
        }
        std::move(parts.begin(), parts.end(), std::back_inserter(bodies));
    } else if (item.is("IFCGEOMETRICSET")) {
        item.forEachReference(0, [&](std::uint64_t member) { append(member); });
    } else if (!hasNoBody(item)) {
        Body part = body(item);
        part.items.erase(part.items.begin());
        if (part.faces.empty()) {
            item.fail("nothing of it is left");
        }
        bodies.push_back(std::move(part));
    }
}

/** A shape costs the same work whether it is made or was kept: see Work. */
void ItemBuilder::appendMapped(const Item& item) {
    const Item map = item.child(0);
    const Affine target = operatorOf(item.child(1));
    Work& work = items_.work();
    MappedShapes::Pointer shape = mapped_.find(map.id());
    if (shape) {
        work.add(shape->work);
        work.reach(shape->levels);
    } else {
        const Work::Span span(work);
        ItemBuilder inner(items_, mapped_);
        inner.appendRepresentation(map.child(1));
        const Affine origin = placementOf(map.child(0));
        if (!origin.isIdentity()) {
            for (Body& part : inner.bodies) {
                transform(part, origin);
            }
        }
        MappedShape made;
        made.bodies = std::move(inner.bodies);
        made.doubts = std::move(inner.doubts);
        made.work = span.amount();
        made.levels = span.levels();
        shape = std::make_shared<const MappedShape>(std::move(made));
        mapped_.keep(map.id(), shape);
    }
    for (const Body& part : shape->bodies) {
        work.add((countPoints(part.faces) + 1) * Work::kept);
        bodies.push_back(part);
        transform(bodies.back(), target);
    }
    work.add(shape->doubts.size());
    std::for_each(shape->doubts.begin(), shape->doubts.end(), [&](const std::string& doubt) { addDoubt(doubt); });
}

/** The body of an item; its own number is the first of the body's items. */
Body ItemBuilder::body(const Item& item, const Box* reach) {
    const Work::Level level(items_.work());
    Body result = solidBody(item, reach);
    result.items.insert(result.items.begin(), item.id());
    return result;
}

Body ItemBuilder::solidBody(const Item& item, const Box* reach) {
    if (isSweptSolid(item)) {
        SweptSolid swept = sweptSolidOf(item);
        if (!swept.doubt.empty()) {
            addDoubt(std::string(item.keyword()) + ": " + swept.doubt);
        }
        return std::move(swept.body);
    }
    if (item.is("IFCFACETEDBREP") || item.is("IFCFACETEDBREPWITHVOIDS")) {
        Body brep = brepOf(item);
        if (!brep.solid) {
            addDoubt(std::string(item.keyword()) + ": it isn't closed");
        }
        return brep;
    }
    if (item.is("IFCBOOLEANRESULT") || item.is("IFCBOOLEANCLIPPINGRESULT")) {
        return combined(item, reach);
    }
    if (item.is("IFCCSGSOLID")) {
        return body(item.child(0), reach);
    }
    if (isHalfSpace(item)) {
        if (reach == nullptr) {
            item.fail("nothing bounds it");
        }
        return halfSpaceOf(item, *reach);
    }
    if (isBoundedPlane(item)) {
        return boundedPlaneOf(item);
    }
    if (!isPrimitive(item)) {
        item.fail("no shape that is known");
    }
    return primitiveOf(item);
}

/** What an operation makes of two items, as far as @p reach, which is null where all of it is wanted. */
Body ItemBuilder::combined(const Item& item, const Box* reach) {
    const Operation operation = operationOf(item);
    Item firstItem = item.child(1);
    Item secondItem = item.child(2);
    if (isHalfSpace(firstItem) && operation == Operation::intersect) {
        std::swap(firstItem, secondItem);
    }
    Body first = body(firstItem, reach);
    if (first.faces.empty() && operation != Operation::unite) {
        return first;
    }
    Box box;
    box.add(first);
    if (reach == nullptr && operation != Operation::unite) {
        reach = &box; // no more of the second one matters
    }
    try {
        const Body second = body(secondItem, reach);
        CutResult result = combine(operation, first, second, items_.work());
        if (first.solid && !result.closed) {
            addDoubt(std::string(item.keyword()) + ": what is left isn't closed");
            result.body.solid = false;
        }
        return std::move(result.body);
    } catch (const ItemError& error) { // better uncut than not there
        addDoubt(error.what());
        return first;
    }
}

} // namespace IfcReader
