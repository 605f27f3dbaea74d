#include "products/ProductTree.h"

#include "IfcReader/IfcError.h"
#include "products/ProductClasses.h"

#include <array>
#include <string>

namespace IfcReader {

namespace {

constexpr std::size_t placementArgument = 5;
constexpr std::size_t shapeArgument = 6;

/** What an argument names: nothing, what was looked for, or something else. */
enum class Named { Nothing, Wanted, Other };

Named namedBy(const StepFile& file, std::string_view argument, std::initializer_list<std::string_view> wanted) {
    if (argument == "$") {
        return Named::Nothing;
    }
    const auto instance = file.find(argument);
    const bool isWanted = instance && std::find(wanted.begin(), wanted.end(), instance->keyword) != wanted.end();
    return isWanted ? Named::Wanted : Named::Other;
}

/** Finds the products among the instances, and puts them in the order of the tree. */
class TreeBuilder {
public:
    TreeBuilder(const StepFile& file, const Relations& relations) : file_(file), relations_(relations) {}

    std::vector<TreeNode> build() {
        findProducts();
        if (!project_) {
            throw IfcError("the model has no IfcProject");
        }
        addBelow(*project_, TreeNode::none);
        for (std::size_t i = 0; i < file_.size(); ++i) {
            if (states_[i] != State::None && !isHeld_[i]) {
                add(i, TreeNode::none);
            }
        }
        // What is left holds itself.
        for (std::size_t i = 0; i < file_.size(); ++i) {
            add(i, TreeNode::none);
        }
        return std::move(nodes_);
    }

private:
    enum class State : char { None, Shown, Unshown, Done };

    void findProducts() {
        std::vector<ProductClass> classes;
        for (const std::string_view keyword : file_.keywords()) {
            classes.push_back(productClassOf(keyword));
        }
        states_.resize(file_.size(), State::None);
        isHeld_.resize(file_.size(), false);
        for (std::size_t i = 0; i < file_.size(); ++i) {
            states_[i] = stateOf(file_[i], classes[file_.keywordAt(i)]);
            if (!project_ && file_.keywords()[file_.keywordAt(i)] == "IFCPROJECT") {
                project_ = file_[i].id;
            }
        }
        for (std::size_t i = 0; i < file_.size(); ++i) {
            if (states_[i] != State::None) {
                const std::uint64_t id = file_[i].id;
                for (const Links* links : {&relations_.contained, &relations_.openings, &relations_.parts}) {
                    for (const Links::Link& link : links->of(id)) {
                        isHeld_[*file_.indexOf(link.to)] = true;
                    }
                }
            }
        }
    }

    State stateOf(const StepInstance& instance, ProductClass found) const {
        const std::size_t first = instance.arguments.find_first_not_of(" \t\r\n");
        if (found == ProductClass::Unlisted && (first == std::string_view::npos || instance.arguments[first] != '\'')) {
            return State::None; // most instances, passed over fast
        }
        StepArguments arguments(instance.arguments);
        const std::string_view placement = arguments.nextAfter(placementArgument);
        const std::string_view shape = arguments.nextAfter(shapeArgument - placementArgument - 1);
        const Named placed = namedBy(file_, placement, {"IFCLOCALPLACEMENT", "IFCGRIDPLACEMENT"});
        const Named shaped = namedBy(file_, shape, {"IFCPRODUCTDEFINITIONSHAPE", "IFCPRODUCTREPRESENTATION"});
        if (found == ProductClass::Unlisted) {
            return placed == Named::Wanted || shaped == Named::Wanted ? State::Shown : State::None;
        }
        if (placed == Named::Other || shaped == Named::Other) {
            throw IfcError("the file is damaged: #" + std::to_string(instance.id) + "=" +
                           std::string(instance.keyword) + " has something else as its " +
                           (placed == Named::Other ? "placement" : "shape"));
        }
        return found == ProductClass::Unshown ? State::Unshown : State::Shown;
    }

    /** With everything below it, by a list of what is to do instead of recursion: a file may nest as deep as it likes. */
    void add(std::size_t instance, std::uint32_t parent) {
        if (states_[instance] == State::None || states_[instance] == State::Done) {
            return;
        }
        pending_.push_back({instance, parent});
        while (!pending_.empty()) {
            const auto [next, holder] = pending_.back();
            pending_.pop_back();
            if (states_[next] != State::Done) {
                const auto number = static_cast<std::uint32_t>(nodes_.size());
                nodes_.push_back(
                    {static_cast<std::uint32_t>(next), holder, storeyBelow(holder), states_[next] == State::Shown});
                states_[next] = State::Done;
                pushBelow(file_[next].id, number);
            }
        }
    }

    /** The storey of what hangs at a node: nodes come after what holds them, so it is known already. */
    std::uint32_t storeyBelow(std::uint32_t holder) const {
        if (holder == TreeNode::none) {
            return TreeNode::none;
        }
        const std::uint32_t above = nodes_[holder].storey;
        const bool isOnStorey = above != TreeNode::none && keywordOf(above) == "IFCBUILDINGSTOREY";
        return isSpatial(keywordOf(holder)) && !isOnStorey ? holder : above;
    }

    std::string_view keywordOf(std::uint32_t node) const {
        return file_.keywords()[file_.keywordAt(nodes_[node].instance)];
    }

    void addBelow(std::uint64_t holder, std::uint32_t parent) {
        std::vector<Pending> below;
        pushBelow(holder, parent);
        below.swap(pending_);
        for (auto next = below.rbegin(); next != below.rend(); ++next) {
            add(next->instance, next->parent);
        }
    }

    /** The last is taken first. */
    void pushBelow(std::uint64_t holder, std::uint32_t parent) {
        const std::size_t first = pending_.size();
        for (const Links* links : {&relations_.contained, &relations_.openings, &relations_.parts}) {
            for (const Links::Link& link : links->of(holder)) {
                const std::size_t instance = *file_.indexOf(link.to);
                if (states_[instance] != State::None && states_[instance] != State::Done) {
                    pending_.push_back({instance, parent});
                }
            }
        }
        std::reverse(pending_.begin() + static_cast<std::ptrdiff_t>(first), pending_.end());
    }

    struct Pending {
        std::size_t instance;
        std::uint32_t parent;
    };

    const StepFile& file_;
    const Relations& relations_;
    std::optional<std::uint64_t> project_;
    std::vector<State> states_;
    std::vector<bool> isHeld_;
    std::vector<Pending> pending_;
    std::vector<TreeNode> nodes_;
};

} // namespace

std::vector<TreeNode> productTree(const StepFile& file, const Relations& relations) {
    if (file.size() >= TreeNode::none) {
        throw IfcError("the file has too many instances");
    }
    return TreeBuilder(file, relations).build();
}

} // namespace IfcReader
