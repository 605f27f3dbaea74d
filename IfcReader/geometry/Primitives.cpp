#include "geometry/Primitives.h"

#include "geometry/Curves.h"
#include "geometry/Fineness.h"
#include "geometry/Placements.h"
#include "geometry/Sweeps.h"

namespace IfcReader {

namespace {

Loop baseOf(const Item& item) {
    const double x = item.positiveLength(1);
    const double y = item.positiveLength(2);
    return {{0, 0, 0}, {x, 0, 0}, {x, y, 0}, {0, y, 0}};
}

Body block(const Item& item) {
    return prism({{baseOf(item), {}}}, {0, 0, item.positiveLength(3)});
}

Body rectangularPyramid(const Item& item) {
    const double x = item.positiveLength(1);
    const double y = item.positiveLength(2);
    return pyramid(baseOf(item), {x / 2.0, y / 2.0, item.positiveLength(3)});
}

Body cylinder(const Item& item) {
    const double radius = item.positiveLength(2);
    return prism({{Curves::ellipse(radius, radius), {}}}, {0, 0, item.positiveLength(1)});
}

Body cone(const Item& item) {
    const double radius = item.positiveLength(2);
    return pyramid(Curves::ellipse(radius, radius), {0, 0, item.positiveLength(1)});
}

/** Half a circle, turned around the axis that joins its ends. */
Body sphere(const Item& item) {
    const double radius = item.positiveLength(1);
    Loop half;
    for (const Vector& p : Curves::arc(-pi / 2.0, pi / 2.0, radius, radius)) {
        half.push_back({p.x, 0.0, p.y});
    }
    half.front() = {0, 0, -radius};
    half.back() = {0, 0, radius};
    return revolution({{half, {}}}, {}, {0, 0, 1}, 2 * pi, item.items().work());
}

using Maker = Body (*)(const Item&);

Maker makerOf(const Item& item) {
    return item.is("IFCBLOCK")                   ? block
           : item.is("IFCRECTANGULARPYRAMID")    ? rectangularPyramid
           : item.is("IFCRIGHTCIRCULARCYLINDER") ? cylinder
           : item.is("IFCRIGHTCIRCULARCONE")     ? cone
           : item.is("IFCSPHERE")                ? sphere
                                                 : nullptr;
}

} // namespace

bool isPrimitive(const Item& item) {
    return makerOf(item) != nullptr;
}

Body primitiveOf(const Item& item) {
    const Maker make = makerOf(item);
    if (make == nullptr) {
        item.fail("no primitive that is known");
    }
    Body body = make(item);
    item.items().work().add(countPoints(body.faces));
    transform(body, placementIf(item, 0));
    return body;
}

} // namespace IfcReader
