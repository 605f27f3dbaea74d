#include "output/html/ComparisonPage.h"

#include "Failure.h"
#include "output/Report.h"
#include "output/html/HtmlPage.h"
#include "output/html/ShapeBlock.h"

#include <cmath>

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

/** Where the displacement takes a point. */
Vector3 displaced(const Displacement& displacement, const Vector3& p) {
    const Vector3& a = displacement.axis;
    const double c = std::cos(displacement.turn * degree);
    const double s = std::sin(displacement.turn * degree);
    const double along = (a[0] * p[0] + a[1] * p[1] + a[2] * p[2]) * (1.0 - c);
    Vector3 result{};
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t u = (k + 1) % 3;
        const std::size_t v = (k + 2) % 3;
        result[k] = p[k] * c + (a[u] * p[v] - a[v] * p[u]) * s + a[k] * along + displacement.shift[k];
    }
    return result;
}

/** Of whom the page shows where or what it was. */
bool showsBefore(const Change& change) {
    return change.before != nullptr &&
           (change.now == nullptr || change.has(Status::Moved) || change.has(Status::Reshaped));
}

/** For each record, its change's place in the report; none for those that are not drawn. */
std::vector<std::size_t> placesOf(const std::vector<ObjectRecord>& records, const Comparison& comparison,
                                  const ObjectRecord* Change::*side) {
    std::vector<std::size_t> places(records.size(), ShapeBlock::none);
    for (std::size_t i = 0; i < comparison.changes.size(); ++i) {
        const Change& change = comparison.changes[i];
        if (change.*side != nullptr && (side == &Change::now || showsBefore(change))) {
            places[static_cast<std::size_t>(change.*side - records.data())] = i;
        }
    }
    return places;
}

void addShapesOfNow(ShapeBlock& shapes, const PageSources& sources, const Comparison& comparison) {
    const std::string file = sources.streams + "/solids";
    try {
        shapes.add(readFile(file), placesOf(sources.objects, comparison, &Change::now), ShapeBlock::Role::Now);
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw Failure(file, e.what());
    }
}

void addShapesOfBefore(ShapeBlock& shapes, const PageSources& sources, const Comparison& comparison,
                       const ShapeBlock::Mapping& mapping) {
    try {
        shapes.add(readFile(sources.previousStreams + "/solids"),
                   placesOf(sources.previousObjects, comparison, &Change::before), ShapeBlock::Role::Before, mapping);
    } catch (const std::runtime_error&) {
        // The state is what counts: streams that are gone or damaged leave boxes.
    }
}

std::string shapesOf(const PageSources& sources, const Comparison& comparison) {
    ShapeBlock::Mapping mapping;
    if (comparison.displacement) {
        mapping = [&](const Vector3& p) { return displaced(*comparison.displacement, p); };
    }
    ShapeBlock shapes;
    addShapesOfNow(shapes, sources, comparison);
    addShapesOfBefore(shapes, sources, comparison, mapping);
    for (std::size_t i = 0; i < comparison.changes.size(); ++i) {
        const Change& change = comparison.changes[i];
        if (change.now != nullptr && !shapes.has(i, ShapeBlock::Role::Now)) {
            shapes.addBox(change.now->box, i, ShapeBlock::Role::Now);
        }
        if (showsBefore(change) && !shapes.has(i, ShapeBlock::Role::Before)) {
            shapes.addBox(change.before->box, i, ShapeBlock::Role::Before, mapping);
        }
    }
    return shapes.bytes();
}

} // namespace

std::string comparisonPageText(const PageSources& sources, const Comparison& comparison) {
    if (!htmlPageAvailable()) {
        throw Failure("--html", "this program was built without libjs-three");
    }
    PageContent content;
    content.report = reportText(sources.model, sources.previous, comparison);
    content.time = sources.model.time;
    content.shapes = shapesOf(sources, comparison);
    return htmlPageText(content);
}
