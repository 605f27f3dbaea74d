#include "output/Bcf.h"

#include "output/StatusStyle.h"
#include "output/bcf/Topics.h"
#include "output/bcf/ZipArchive.h"
#include "output/plan/SvgText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <pugixml.hpp>
#include <sstream>

namespace {

constexpr double fieldOfView = 60.0;   ///< degrees
constexpr double smallestRadius = 0.5; ///< of what a camera looks at, in metres
constexpr const char* viewpointFile = "viewpoint.bcfv";

pugi::xml_node addText(pugi::xml_node parent, const char* name, const std::string& text) {
    pugi::xml_node node = parent.append_child(name);
    node.text().set(text.c_str());
    return node;
}

/** Lines of text without characters that XML forbids. */
std::string linesForXml(const std::string& text) {
    std::string result;
    for (const std::string_view line : split(text, '\n')) {
        result += (result.empty() ? "" : "\n") + xmlCharacters(line);
    }
    return result;
}

std::string documentText(const pugi::xml_document& document) {
    std::ostringstream text;
    document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
    return text.str();
}

pugi::xml_node addRoot(pugi::xml_document& document, const char* name) {
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    return document.append_child(name);
}

std::string versionFile() {
    pugi::xml_document document;
    pugi::xml_node version = addRoot(document, "Version");
    version.append_attribute("VersionId") = "2.1";
    addText(version, "DetailedVersion", "2.1");
    return documentText(document);
}

/** A date that the format accepts, also for a model whose time is not known. */
std::string dateOf(const ImportedModel& model) {
    return model.time.empty() ? "1970-01-01T00:00:00Z" : model.time;
}

std::string markupFile(const BcfTopic& topic, const std::string& viewpointGuid, const Outcome& outcome) {
    pugi::xml_document document;
    pugi::xml_node markup = addRoot(document, "Markup");

    // An object that is gone is one of the old model.
    const bool isGone = topic.changes.front()->now == nullptr && outcome.previous;
    const ImportedModel& model = isGone ? *outcome.previous : outcome.model;
    pugi::xml_node file = markup.append_child("Header").append_child("File");
    file.append_attribute("isExternal") = "true";
    addText(file, "Filename", xmlCharacters(std::filesystem::path(model.name).filename().string()));
    if (!model.time.empty()) {
        addText(file, "Date", model.time);
    }

    pugi::xml_node node = markup.append_child("Topic");
    node.append_attribute("Guid") = topic.guid.c_str();
    node.append_attribute("TopicType") = "Information";
    node.append_attribute("TopicStatus") = "Open";
    addText(node, "Title", xmlCharacters(topic.title));
    std::vector<Status> labels;
    for (const Change* const change : topic.changes) {
        for (const Status status : change->changes) {
            if (std::find(labels.begin(), labels.end(), status) == labels.end()) {
                labels.push_back(status);
                addText(node, "Labels", statusName(status));
            }
        }
    }
    addText(node, "CreationDate", dateOf(outcome.model));
    addText(node, "CreationAuthor", "import-host");
    addText(node, "Description", linesForXml(topic.description));

    pugi::xml_node viewpoint = markup.append_child("Viewpoints");
    viewpoint.append_attribute("Guid") = viewpointGuid.c_str();
    addText(viewpoint, "Viewpoint", viewpointFile);
    return documentText(document);
}

bool isGlobalId(const std::string& text) {
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$';
    };
    return text.size() == 22 && text[0] >= '0' && text[0] <= '3' && std::all_of(text.begin(), text.end(), isDigit);
}

/** The objects of a topic, by GlobalId, and by their number in the authoring tool. */
void addComponents(pugi::xml_node parent, const BcfTopic& topic) {
    for (const Change* const change : topic.changes) {
        const ObjectRecord& record = change->record();
        const std::string identity = identityText(record);
        const std::string tag = attributeOf(record, "Tag").value_or("");
        pugi::xml_node component = parent.append_child("Component");
        if (isGlobalId(identity)) {
            component.append_attribute("IfcGuid") = identity.c_str();
        }
        if (!tag.empty() || !isGlobalId(identity)) {
            addText(component, "AuthoringToolId", xmlCharacters(tag.empty() ? identity : tag));
        }
    }
}

void addVector(pugi::xml_node parent, const char* name, const Vector3& vector) {
    pugi::xml_node node = parent.append_child(name);
    addText(node, "X", numberText(vector[0]));
    addText(node, "Y", numberText(vector[1]));
    addText(node, "Z", numberText(vector[2]));
}

/** Looks at a box from above and aside, so that all of it is seen. */
void addCamera(pugi::xml_node parent, const Box& box) {
    const double radius = std::max(std::hypot(box.size(0), box.size(1), box.size(2)) / 2.0, smallestRadius);
    const double distance = 1.2 * radius / std::sin(fieldOfView / 2.0 * 3.14159265358979323846 / 180.0);
    const double side = std::sqrt(1.0 / 3.0);
    const double rise = std::sqrt(1.0 / 6.0);
    const Vector3 direction = {-side, side, -side};
    Vector3 eye{};
    for (std::size_t i = 0; i < eye.size(); ++i) {
        eye[i] = box.low[i] + box.size(i) / 2.0 - direction[i] * distance;
    }
    pugi::xml_node camera = parent.append_child("PerspectiveCamera");
    addVector(camera, "CameraViewPoint", eye);
    addVector(camera, "CameraDirection", direction);
    addVector(camera, "CameraUpVector", {-rise, rise, 2.0 * rise});
    addText(camera, "FieldOfView", numberText(fieldOfView));
}

std::string viewpointFileText(const BcfTopic& topic, const std::string& guid) {
    pugi::xml_document document;
    pugi::xml_node view = addRoot(document, "VisualizationInfo");
    view.append_attribute("Guid") = guid.c_str();
    pugi::xml_node components = view.append_child("Components");
    addComponents(components.append_child("Selection"), topic);
    components.append_child("Visibility").append_attribute("DefaultVisibility") = "true";
    pugi::xml_node colour = components.append_child("Coloring").append_child("Color");
    const std::string stroke = statusStyle(topic.changes.front()->status()).stroke; // fills are too pale in a model
    colour.append_attribute("Color") = ("FF" + stroke.substr(1)).c_str();
    addComponents(colour, topic);
    addCamera(view, topic.box);
    return documentText(document);
}

} // namespace

std::string bcfText(const Outcome& outcome) {
    ZipArchive archive;
    archive.add("bcf.version", versionFile());
    for (const BcfTopic& topic : topicsOf(outcome, maxBcfTopics)) {
        const std::string viewpointGuid = uuidOf(topic.guid);
        archive.add(topic.guid + "/markup.bcf", markupFile(topic, viewpointGuid, outcome));
        archive.add(topic.guid + '/' + viewpointFile, viewpointFileText(topic, viewpointGuid));
    }
    return archive.bytes();
}
