#include "output/html/ComparisonPage.h"

#include "Failure.h"
#include "comparison/Displaced.h"
#include "output/Report.h"
#include "output/html/HtmlPage.h"
#include "output/html/ShapeBlock.h"

namespace {

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
        mapping = [&](const Vector3& p) { return displaced(p, *comparison.displacement); };
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

std::string comparisonPageText(const Outcome& content, const PageSources& sources) {
    if (!htmlPageAvailable()) {
        throw Failure("--html", "this program was built without libjs-three");
    }
    return htmlPageText(
        {reportText(content), content.model.time, shapesOf(sources, content.comparison), storeyPlans(content)});
}
