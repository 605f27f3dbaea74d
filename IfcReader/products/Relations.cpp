#include "products/Relations.h"

#include <optional>
#include <unordered_map>

namespace IfcReader {

namespace {

/** Where a relation names the one that things belong to, and where these. */
struct Form {
    Links Relations::*links;
    std::size_t one;
    std::size_t many;
    bool fromOne;  ///< links lead from the one to the many, else the other way
    bool toItself; ///< links lead to the relation itself instead of to what it names
};

const std::unordered_multimap<std::string_view, Form>& forms() {
    static const std::unordered_multimap<std::string_view, Form> known = {
        {"IFCRELCONTAINEDINSPATIALSTRUCTURE", {&Relations::contained, 5, 4, true, false}},
        {"IFCRELVOIDSELEMENT", {&Relations::openings, 4, 5, true, false}},
        {"IFCRELPROJECTSELEMENT", {&Relations::openings, 4, 5, true, false}},
        {"IFCRELAGGREGATES", {&Relations::parts, 4, 5, true, false}},
        {"IFCRELNESTS", {&Relations::parts, 4, 5, true, false}},
        {"IFCRELDEFINESBYPROPERTIES", {&Relations::sets, 5, 4, false, false}},
        {"IFCRELOVERRIDESPROPERTIES", {&Relations::sets, 5, 4, false, false}},
        {"IFCRELOVERRIDESPROPERTIES", {&Relations::overrides, 5, 4, false, true}},
        {"IFCRELDEFINESBYTYPE", {&Relations::types, 5, 4, false, false}},
        {"IFCRELASSOCIATESMATERIAL", {&Relations::materials, 5, 4, false, false}},
        {"IFCSTYLEDITEM", {&Relations::looks, 0, 0, false, true}},
        {"IFCPRESENTATIONLAYERASSIGNMENT", {&Relations::layers, 0, 2, false, true}},
        {"IFCPRESENTATIONLAYERWITHSTYLE", {&Relations::layers, 0, 2, false, true}},
        {"IFCMATERIALDEFINITIONREPRESENTATION", {&Relations::samples, 2, 3, false, true}}};
    return known;
}

void addTo(Links& links, const Form& form, const StepInstance& relation) {
    const std::string_view oneArgument = StepArguments(relation.arguments).nextAfter(form.one);
    const std::string_view manyArgument = StepArguments(relation.arguments).nextAfter(form.many);
    const auto one = form.toItself ? std::optional<std::uint64_t>(relation.id) : stepReference(oneArgument);
    const auto add = [&](std::string_view argument) {
        if (const auto other = stepReference(argument)) {
            form.fromOne ? links.add(*one, *other) : links.add(*other, *one);
        }
    };
    if (!one) {
        return;
    }
    add(manyArgument);
    StepArguments members = listMembers(manyArgument);
    for (auto member = members.next(); member; member = members.next()) {
        add(*member);
    }
}

} // namespace

Relations::Relations(const StepFile& file) {
    std::vector<std::vector<Form>> formsOf;
    for (const std::string_view keyword : file.keywords()) {
        const auto [first, last] = forms().equal_range(keyword);
        formsOf.emplace_back();
        std::for_each(first, last, [&](const auto& entry) { formsOf.back().push_back(entry.second); });
    }
    for (std::size_t i = 0; i < file.size(); ++i) {
        for (const Form& form : formsOf[file.keywordAt(i)]) {
            addTo(this->*form.links, form, file[i]);
        }
    }
    for (Links* links : {&contained, &openings, &parts, &overrides, &materials, &looks, &layers, &samples}) {
        links->sort();
    }
    sets.sortUnique();
    types.sortUnique();
}

} // namespace IfcReader
