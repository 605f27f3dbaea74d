#include "products/Materials.h"

namespace IfcReader {

namespace {

void appendNamed(const StepInstance& material, std::optional<double> thickness, MaterialUse& use) {
    use.materials.push_back({stepText(StepArguments(material.arguments).nextAfter(0)), thickness});
    use.instances.push_back(material.id);
}

void appendLayer(const StepFile& file, const StepInstance& layer, double metre, MaterialUse& use) {
    StepArguments arguments(layer.arguments);
    const auto material = file.find(arguments.nextAfter(0));
    std::string_view number = arguments.nextAfter(0);
    if (const auto typed = stepTyped(number)) {
        number = typed->value;
    }
    const auto thickness = stepReal(number);
    const auto metres = thickness ? std::optional<double>(*thickness * metre) : std::nullopt;
    if (material && material->keyword == "IFCMATERIAL") {
        appendNamed(*material, metres, use);
    } else {
        use.materials.push_back({"", metres}); // a layer of air has no material
    }
}

} // namespace

void appendMaterials(const StepFile& file, std::uint64_t material, double metre, MaterialUse& use) {
    auto found = file.find(material);
    if (found && found->keyword == "IFCMATERIALLAYERSETUSAGE") {
        found = file.find(StepArguments(found->arguments).nextAfter(0));
    }
    if (!found) {
        return;
    }
    if (found->keyword == "IFCMATERIAL") {
        appendNamed(*found, std::nullopt, use);
    } else if (found->keyword == "IFCMATERIALLAYER") {
        appendLayer(file, *found, metre, use);
    } else if (found->keyword == "IFCMATERIALLAYERSET" || found->keyword == "IFCMATERIALLIST") {
        StepArguments members = listMembers(StepArguments(found->arguments).nextAfter(0));
        for (auto member = members.next(); member; member = members.next()) {
            const auto part = file.find(*member);
            if (part && part->keyword == "IFCMATERIALLAYER") {
                appendLayer(file, *part, metre, use);
            } else if (part && part->keyword == "IFCMATERIAL") {
                appendNamed(*part, std::nullopt, use);
            }
        }
    }
}

} // namespace IfcReader
