#include "geometry/ProductPlacements.h"

#include "geometry/GridPlacement.h"
#include "geometry/Item.h"
#include "geometry/Placements.h"

#include <algorithm>

namespace IfcReader {

ProductPlacements::ProductPlacements(const StepFile& file, const Units& units) : file_(file), units_(units) {
    readGrids();
    Work work; // of all together: axes of a grid may be long, and placed upon by many
    file.forEachOf({"IFCLOCALPLACEMENT", "IFCGRIDPLACEMENT"},
                   [&](const StepInstance& instance) { place(instance.id, work); });
}

void ProductPlacements::readGrids() {
    file_.forEachOf({"IFCGRID"}, [&](const StepInstance& instance) {
        Work work;
        const Items items(file_, units_, work);
        const Item grid(items, instance);
        for (std::size_t axes = 7; axes < 10; ++axes) {
            if (grid.given(axes)) {
                grid.forEachReference(
                    axes, [&](std::uint64_t axis) { gridOfAxis_.emplace(axis, grid.referenceIf(5).value_or(0)); });
            }
        }
    });
}

ProductPlacements::Step ProductPlacements::stepOf(std::uint64_t id, Work& work) const {
    const Items items(file_, units_, work);
    const Item item = items.at(id);
    Step step;
    if (item.is("IFCGRIDPLACEMENT")) {
        const auto grid = gridOfAxis_.find(gridAxisOf(item));
        step.parent = grid != gridOfAxis_.end() ? grid->second : 0;
        step.own = gridPlacementOf(item);
    } else if (item.is("IFCLOCALPLACEMENT")) {
        step.parent = item.referenceIf(0).value_or(0);
        step.own = placementOf(item.child(1));
    } else {
        item.fail("is no placement of a product");
    }
    return step;
}

/** Works its way up to a placement that is known, and down again: chains may be as long as the file. */
void ProductPlacements::place(std::uint64_t id, Work& work) {
    std::vector<std::pair<std::uint64_t, Affine>> open;
    bool isRight = true;
    while (isRight && id != 0 && worlds_.find(id) == worlds_.end()) {
        // Until its place is known a placement counts as wrong, so that one met again stands in a circle.
        isRight = wrong_.insert(id).second;
        if (isRight) {
            open.emplace_back(id, Affine{});
            try {
                const Step step = stepOf(id, work);
                open.back().second = step.own;
                id = step.parent;
            } catch (const std::runtime_error&) { // told when a product stands there
                isRight = false;
            }
        }
    }
    if (!isRight) {
        return;
    }
    Affine world = id != 0 ? worlds_.at(id) : Affine{};
    for (auto i = open.rbegin(); i != open.rend(); ++i) {
        world = world * i->second;
        worlds_.emplace(i->first, world);
        wrong_.erase(i->first);
    }
}

const Affine& ProductPlacements::world(std::uint64_t id) const {
    const auto found = worlds_.find(id);
    if (found == worlds_.end()) {
        throw ItemError("its placement is wrong, or in a circle");
    }
    return found->second;
}

bool ProductPlacements::isFarAway(std::uint64_t id) const {
    const auto found = worlds_.find(id);
    return found != worlds_.end() && !isWithinReach(found->second.origin);
}

std::vector<std::uint64_t> ProductPlacements::chainOf(std::uint64_t id, Work& work) const {
    std::vector<std::uint64_t> chain;
    if (id != 0) {
        world(id); // so that the chain is known to end
    }
    while (id != 0) {
        chain.push_back(id);
        id = stepOf(id, work).parent;
    }
    return chain;
}

Affine ProductPlacements::between(std::uint64_t to, std::uint64_t from, Work& work) const {
    std::vector<std::uint64_t> up = chainOf(to, work);
    std::vector<std::uint64_t> down = chainOf(from, work);
    while (!up.empty() && !down.empty() && up.back() == down.back()) {
        up.pop_back();
        down.pop_back();
    }
    const auto composed = [&](const std::vector<std::uint64_t>& chain) {
        Affine map;
        for (auto i = chain.rbegin(); i != chain.rend(); ++i) {
            map = map * stepOf(*i, work).own;
        }
        return map;
    };
    const Affine source = composed(down);
    return up.empty() ? source : composed(up).inverse() * source;
}

} // namespace IfcReader
