#include "geometry/Cutting.h"

#include "geometry/BspTree.h"
#include "geometry/Fineness.h"
#include "geometry/FlatPolygon.h"
#include "geometry/PlaneThickness.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** The parts of polygons inside a box that is a little wider than @p box. */
std::vector<FlatPolygon> within(const Box& box, const std::vector<FlatPolygon>& polygons, double thickness) {
    const double margin = 1e-3 + 100.0 * thickness;
    const Plane sides[] = {{{1, 0, 0}, box.high.x + margin}, {{-1, 0, 0}, margin - box.low.x},
                           {{0, 1, 0}, box.high.y + margin}, {{0, -1, 0}, margin - box.low.y},
                           {{0, 0, 1}, box.high.z + margin}, {{0, 0, -1}, margin - box.low.z}};
    std::vector<FlatPolygon> result;
    for (FlatPolygon polygon : polygons) {
        bool out = false;
        for (const Plane& plane : sides) {
            const Side side = sideOf(polygon, plane, 0.0);
            out = side == inFront;
            if (out) {
                break;
            }
            if (side == across) {
                FlatPolygon front;
                FlatPolygon back;
                split(polygon, plane, 0.0, front, back);
                polygon = std::move(back);
            }
        }
        if (!out && polygon.points.size() > 2) {
            result.push_back(std::move(polygon));
        }
    }
    return result;
}

/** Part of the full solid angle that faces take up as seen from @p p: 1 inside of a body, 0 outside. */
double windingNumber(const std::vector<FlatPolygon>& polygons, const Vector& p) {
    double sum = 0.0;
    for (const FlatPolygon& polygon : polygons) {
        for (std::size_t i = 1; i + 1 < polygon.points.size(); ++i) {
            const Vector a = polygon.points[0] - p;
            const Vector b = polygon.points[i] - p;
            const Vector c = polygon.points[i + 1] - p;
            const double la = length(a);
            const double lb = length(b);
            const double lc = length(c);
            sum += std::atan2(dot(a, cross(b, c)), la * lb * lc + dot(a, b) * lc + dot(b, c) * la + dot(c, a) * lb);
        }
    }
    return sum / (2.0 * pi);
}

/** A body's polygons, and for each the face that it came from: a face that isn't flat becomes several. */
struct Operand {
    Operand(const Body& body, double thickness) {
        for (const Face& face : body.faces) {
            std::vector<FlatPolygon> parts = flatPolygonsOf(face, thickness / 4.0);
            const bool isFlat = parts.size() == 1 || isFlatFace(face, thickness);
            for (FlatPolygon& part : parts) {
                if (!isFlat || &part == &parts.front()) {
                    whole.push_back(isFlat ? face : Face{part.points, {}, part.plane});
                }
                polygons.push_back(std::move(part));
                faces.push_back(whole.size() - 1);
            }
        }
        box = boxOf(polygons);
    }

    std::vector<Face> whole;
    std::vector<FlatPolygon> polygons;
    std::vector<std::size_t> faces; ///< of each polygon, the place in whole
    Box box;

private:
    static bool isFlatFace(const Face& face, double thickness) {
        const Plane plane = planeOf(face.outer);
        bool flat = true;
        forEachLoop(face, [&](const Loop& loop) {
            flat = flat && std::all_of(loop.begin(), loop.end(),
                                       [&](const Vector& p) { return std::abs(plane(p)) <= thickness; });
        });
        return flat;
    }
};

/** A body as far as another one reaches. */
class Region {
public:
    Region(const Operand& operand, const Box& reach, double thickness, Work& work)
        : box_(operand.box),
          thickness_(thickness),
          near_(within(reach, operand.polygons, thickness)),
          allInside_(near_.empty() && windingNumber(operand.polygons, reach.centre()) > 0.5),
          isEmpty_(near_.empty()),
          tree_(std::move(near_), thickness, work) {}

    /** Appends what is kept of a polygon within reach; whether that is all of it. */
    bool clip(const FlatPolygon& polygon, const Keep& keep, std::vector<FlatPolygon>& kept) const {
        if (isEmpty_ || !boxOf(polygon).meets(box_, 2.0 * thickness_)) {
            const bool whole = keep.inside == (isEmpty_ && allInside_);
            if (whole) {
                kept.push_back(polygon);
            }
            return whole;
        }
        return tree_.clip(polygon, keep, kept);
    }

private:
    Box box_;
    double thickness_;
    std::vector<FlatPolygon> near_;
    bool allInside_;
    bool isEmpty_;
    BspTree tree_;
};

/** Appends what is kept of a body's faces: one that loses nothing stays as it is. */
void appendKept(const Operand& operand, const Region& other, const Keep& keep, bool flipped, std::vector<Face>& faces) {
    std::vector<FlatPolygon> kept;
    for (std::size_t i = 0; i < operand.polygons.size();) {
        const std::size_t face = operand.faces[i];
        bool whole = true;
        kept.clear();
        for (; i < operand.polygons.size() && operand.faces[i] == face; ++i) {
            whole &= other.clip(operand.polygons[i], keep, kept);
        }
        const std::size_t first = faces.size();
        if (whole) {
            faces.push_back(operand.whole[face]);
        } else {
            for (FlatPolygon& polygon : kept) {
                faces.push_back({std::move(polygon.points), {}, polygon.plane});
            }
        }
        for (std::size_t k = first; flipped && k < faces.size(); ++k) {
            flip(faces[k]);
        }
    }
}

Body apart(Operation operation, const Body& first, const Body& second) {
    Body result = operation == Operation::intersect ? Body() : first;
    result.solid = first.solid;
    result.items = first.items;
    if (operation == Operation::unite) {
        result.faces.insert(result.faces.end(), second.faces.begin(), second.faces.end());
    }
    return result;
}

/** Whether a volume can be what comes of two others. */
bool isPossible(Operation operation, double result, double first, double second) {
    const double slack = 1e-6 * (first + second) + 1e-9;
    switch (operation) {
    case Operation::difference:
        return result >= std::max(first - second, 0.0) - slack && result <= first + slack;
    case Operation::unite:
        return result >= std::max(first, second) - slack && result <= first + second + slack;
    default:
        return result >= -slack && result <= std::min(first, second) + slack;
    }
}

/** What came of one thickness. */
struct Attempt {
    Body body;
    double gap = 0.0; ///< 1 and more when the volume is impossible
};

Attempt tryToCombine(Operation operation, const Body& first, const Body& second, double thickness, Work& work) {
    constexpr std::size_t perAttempt = 400; // what even two small bodies take
    const Operand a(first, thickness);
    const Operand b(second, thickness);
    work.add(a.polygons.size() + b.polygons.size() + perAttempt);
    if (a.polygons.empty() || b.polygons.empty() || !a.box.meets(b.box, 2.0 * thickness)) {
        return {apart(operation, first, second), 0.0};
    }
    Attempt result;
    std::vector<Face>& faces = result.body.faces;
    result.body.solid = first.solid;
    result.body.items = first.items;
    Keep keep;
    keep.inside = operation == Operation::intersect;
    keep.onSurface = operation == Operation::unite ? Keep::OnSurface::outerSide : Keep::OnSurface::innerSide;
    appendKept(a, Region(b, a.box, thickness, work), keep, false, faces);
    if (first.solid) { // a surface only loses what is cut away
        keep.inside = operation != Operation::unite;
        keep.onSurface = Keep::OnSurface::bothSides;
        appendKept(b, Region(a, b.box, thickness, work), keep, operation == Operation::difference, faces);
        result.gap = gap(faces);
        if (!isPossible(operation, signedVolume(faces), signedVolume(a.whole), signedVolume(b.whole))) {
            result.gap += 1.0;
        }
    }
    return result;
}

} // namespace

CutResult combine(Operation operation, const Body& first, const Body& second, Work& work) {
    constexpr double noGap = 1e-6;
    constexpr double smallGap = 1e-4;
    const double given = std::max(gap(first.faces), gap(second.faces));
    CutResult best;
    double least = 1e300;
    const auto attempt = [&](const Body& cutter, double thickness) {
        Attempt made = tryToCombine(operation, first, cutter, thickness, work);
        if (made.gap < least) {
            least = made.gap;
            best.body = std::move(made.body);
        }
        return least < noGap + 2.0 * given;
    };
    bool done = false;
    for (const double thickness : thicknessesFor(first, second)) {
        done = done || attempt(second, thickness);
    }
    // Where no thickness will do, the second body is pushed off what it nearly touches.
    for (const double push : {1e-6, -1e-6, 1e-5, -1e-5, 1e-4}) {
        for (const double thickness : {1e-9, 1e-11, 1e-7}) {
            if (!done) {
                Body pushed = second;
                transform(pushed, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, Vector{0.83, 0.71, 0.97} * push});
                done = attempt(pushed, thickness);
            }
        }
    }
    best.closed = least < smallGap;
    return best;
}

} // namespace IfcReader
