#include "ProductName.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ReferenceObjectClass.h>

#include <algorithm>
#include <map>

using namespace ImportCommon;

namespace {

constexpr std::size_t globalIdLength = ImportCommon::ExternalGUID::GlobalIdSize;

bool isGlobalId(const std::string& text) {
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$';
    };
    return text.size() == globalIdLength && text[0] >= '0' && text[0] <= '3' &&
           std::all_of(text.begin(), text.end(), isDigit);
}

std::string labelOf(AttributeClassIFC_e ifcClass) {
    char label[64] = {};
    ReferenceObjectClass::asString(ifcClass, label, sizeof label - 1);
    return label;
}

AttributeClassIFC_e classOf(const std::string& label) {
    static const auto classes = [] {
        std::map<std::string, AttributeClassIFC_e> result;
        for (int code = AttributeClassIFC_IFCPRODUCT; !labelOf(static_cast<AttributeClassIFC_e>(code)).empty();
             ++code) {
            result.emplace(labelOf(static_cast<AttributeClassIFC_e>(code)), static_cast<AttributeClassIFC_e>(code));
        }
        return result;
    }();
    const auto found = classes.find(label);
    return found == classes.end() ? AttributeClassIFC_IFCINVALID : found->second;
}

/** "IFCDOOR" for "IfcDoor". A class that is not listed keeps its name, so that a change of class is still seen. */
std::string classLabel(std::string word) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    const AttributeClassIFC_e ifcClass = classOf(word);
    return ifcClass == AttributeClassIFC_IFCINVALID ? word : labelOf(ifcClass);
}

} // namespace

std::optional<ProductName> parseProductName(const std::string& nodeName) {
    if (nodeName.empty()) {
        return ProductName{labelOf(AttributeClassIFC_IFCPRODUCT), "", ""};
    }
    const std::size_t first = nodeName.find('_');
    if (nodeName.compare(0, 3, "Ifc") != 0 || first == std::string::npos) {
        return std::nullopt;
    }

    ProductName result;
    result.className = classLabel(nodeName.substr(0, first));

    // A GlobalId may contain underscores, so it is told by its length and not by the last underscore.
    const std::size_t idBegin = nodeName.size() - std::min(nodeName.size(), globalIdLength);
    std::size_t nameEnd = nodeName.rfind('_');
    if (idBegin > first && nodeName[idBegin - 1] == '_' && isGlobalId(nodeName.substr(idBegin))) {
        result.globalId = nodeName.substr(idBegin);
        nameEnd = idBegin - 1;
    }
    if (nameEnd > first) {
        result.name = nodeName.substr(first + 1, nameEnd - first - 1);
    }
    return result;
}
