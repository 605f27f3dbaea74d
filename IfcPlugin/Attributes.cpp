#include "Attributes.h"

#include <PluginKit/Number.h>

#include <cmath>
#include <set>

using namespace IfcReader;
using namespace PluginKit;

namespace {

/** Files written in other units and with fewer digits give the same text. */
std::string roundedText(double value, double step) {
    return numberText(std::round(value / step) / std::round(1.0 / step) + 0.0);
}

std::string joined(const std::string& list, const std::string& next) {
    return list.empty() ? next : list + "; " + next;
}

/** Names, with the thicknesses of layers in metres. */
std::string materialText(const std::vector<Material>& materials) {
    std::string text;
    for (const Material& material : materials) {
        const std::string thickness = material.thickness ? ' ' + roundedText(*material.thickness, 1e-5) : "";
        text = joined(text, material.name + thickness);
    }
    return text;
}

/** The colours of all parts, each once, in an order that doesn't depend on that of the parts. */
std::string colourText(const std::vector<std::optional<Look>>& looks) {
    std::set<std::string> colours;
    for (const std::optional<Look>& look : looks) {
        if (look) {
            colours.insert(roundedText(look->red, 1e-3) + ' ' + roundedText(look->green, 1e-3) + ' ' +
                           roundedText(look->blue, 1e-3) + ' ' + roundedText(look->opacity, 1e-3));
        }
    }
    std::string text;
    for (const std::string& colour : colours) {
        text = joined(text, colour);
    }
    return text;
}

std::optional<std::string> ifAny(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

} // namespace

void writeAttributes(const Product& product, const SetLine& owner, StreamWriter& writer) {
    std::string layers;
    for (const std::string& layer : product.layers) {
        layers = joined(layers, layer);
    }
    const std::pair<const char*, std::optional<std::string>> attributes[] = {
        {"Name", product.name},
        {"Description", product.description},
        {"ObjectType", product.objectType},
        {"Tag", product.tag},
        {"Storey", product.storey},
        {"Type", product.typeName},
        {"Material", ifAny(materialText(product.materials))},
        {"Colour", ifAny(colourText(product.looks))},
        {"Layer", ifAny(layers)}};
    SetLine set = owner;
    set.form = "attributes";
    set.name = "Attributes";
    writer.set(set);
    for (const auto& [name, value] : attributes) {
        if (value) {
            writer.property(textProperty(name, *value));
        }
    }
}
