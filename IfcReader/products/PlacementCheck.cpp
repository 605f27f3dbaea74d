#include "products/PlacementCheck.h"

#include "IfcReader/IfcError.h"

#include <cmath>
#include <string>

namespace IfcReader {

namespace {

/** Beyond, coordinates are less exact than a unit of length. */
constexpr double maxCoordinate = 1e15;

[[noreturn]] void fail(const StepInstance& instance, const char* what) {
    throw IfcError("the file is damaged: #" + std::to_string(instance.id) + "=" + std::string(instance.keyword) + ' ' +
                   what);
}

void checkNumbers(const StepInstance& instance, std::size_t least) {
    StepArguments numbers = listMembers(StepArguments(instance.arguments).nextAfter(0));
    std::size_t count = 0;
    for (auto member = numbers.next(); member; member = numbers.next(), ++count) {
        const auto number = stepReal(stepTyped(*member) ? stepTyped(*member)->value : *member);
        if (!number || !(std::abs(*number) <= maxCoordinate)) {
            fail(instance, "has a coordinate that can't be meant");
        }
    }
    if (count < least || count > 3) {
        fail(instance, "has the wrong number of coordinates");
    }
}

/** Goes up from each placement as far as others did not go before. */
class PlacementChecker {
public:
    explicit PlacementChecker(const StepFile& file) : file_(file), seen_(file.size(), false) {}

    void check(std::string_view argument) {
        auto placement = file_.find(argument);
        while (placement && placement->keyword == "IFCLOCALPLACEMENT" && isNew(*placement)) {
            StepArguments arguments(placement->arguments);
            const std::string_view above = arguments.nextAfter(0);
            const auto axes = file_.find(arguments.nextAfter(0));
            if (!axes || (axes->keyword != "IFCAXIS2PLACEMENT3D" && axes->keyword != "IFCAXIS2PLACEMENT2D")) {
                fail(*placement, "has no axes");
            }
            if (isNew(*axes)) {
                checkAxes(*axes);
            }
            placement = file_.find(above);
        }
    }

private:
    bool isNew(const StepInstance& instance) {
        const std::size_t index = *file_.indexOf(instance.id);
        const bool result = !seen_[index];
        seen_[index] = true;
        return result;
    }

    void checkAxes(const StepInstance& axes) {
        StepArguments arguments(axes.arguments);
        const auto point = file_.find(arguments.nextAfter(0));
        if (!point || point->keyword != "IFCCARTESIANPOINT") {
            fail(axes, "has no point");
        }
        checkNumbers(*point, axes.keyword == "IFCAXIS2PLACEMENT3D" ? 3 : 2);
        for (auto argument = arguments.next(); argument; argument = arguments.next()) {
            const auto direction = file_.find(*argument);
            if (*argument != "$" && (!direction || direction->keyword != "IFCDIRECTION")) {
                fail(axes, "has no direction where one belongs");
            }
            if (direction) {
                checkNumbers(*direction, 2);
            }
        }
    }

    const StepFile& file_;
    std::vector<bool> seen_;
};

} // namespace

void checkPlacements(const StepFile& file, const std::vector<TreeNode>& products) {
    constexpr std::size_t placementArgument = 5;
    PlacementChecker checker(file);
    for (const TreeNode& product : products) {
        checker.check(StepArguments(file[product.instance].arguments).nextAfter(placementArgument));
    }
}

} // namespace IfcReader
