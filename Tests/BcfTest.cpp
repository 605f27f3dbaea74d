/**
 * @file BcfTest.cpp
 * The exchange file for authoring tools, taken apart: archive, structure, and what the topics say.
 */
#include "output/Bcf.h"

#include "Support/SampleComparison.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <cmath>
#include <map>
#include <pugixml.hpp>
#include <regex>
#include <set>

namespace {

/** The files of an archive, by name. */
std::map<std::string, std::string> unpacked(const std::string& bytes) {
    std::map<std::string, std::string> files;
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    zip_t* const archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
    EXPECT_NE(archive, nullptr) << zip_error_strerror(&error);
    for (zip_int64_t i = 0; archive != nullptr && i < zip_get_num_entries(archive, 0); ++i) {
        zip_stat_t status;
        zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &status);
        std::string content(status.size, '\0');
        zip_file_t* const file = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
        EXPECT_EQ(zip_fread(file, content.data(), status.size), static_cast<zip_int64_t>(status.size));
        zip_fclose(file);
        EXPECT_TRUE(files.emplace(status.name, content).second) << status.name;
    }
    zip_discard(archive);
    return files;
}

std::vector<std::string> childNames(const pugi::xml_node& node) {
    std::vector<std::string> names;
    for (const pugi::xml_node child : node.children()) {
        names.push_back(child.name());
    }
    return names;
}

/** Expects the elements of a node in an order that the format knows; a name with an asterisk may come more than once. */
void expectOrder(const pugi::xml_node& node, const std::vector<std::string>& order) {
    std::size_t at = 0;
    for (const std::string& name : childNames(node)) {
        while (at < order.size() && order[at] != name && order[at] != name + '*') {
            ++at;
        }
        ASSERT_LT(at, order.size()) << name << " in " << node.name();
        at += order[at].back() == '*' ? 0 : 1;
    }
}

Vector3 vectorOf(const pugi::xml_node& node) {
    return {node.child("X").text().as_double(), node.child("Y").text().as_double(), node.child("Z").text().as_double()};
}

double dot(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/** Expects a camera that has each corner of a box in view. */
void expectInView(const pugi::xml_node& camera, const Box& box) {
    expectOrder(camera, {"CameraViewPoint", "CameraDirection", "CameraUpVector", "FieldOfView"});
    const Vector3 eye = vectorOf(camera.child("CameraViewPoint"));
    const Vector3 direction = vectorOf(camera.child("CameraDirection"));
    const Vector3 up = vectorOf(camera.child("CameraUpVector"));
    EXPECT_NEAR(dot(direction, direction), 1.0, 1e-9);
    EXPECT_NEAR(dot(up, up), 1.0, 1e-9);
    EXPECT_NEAR(dot(up, direction), 0.0, 1e-9);
    EXPECT_LT(direction[2], 0.0);
    EXPECT_GT(up[2], 0.0);
    const double field = camera.child("FieldOfView").text().as_double();
    EXPECT_TRUE(field >= 45.0 && field <= 60.0);
    for (unsigned corner = 0; corner < 8; ++corner) {
        Vector3 ray{};
        for (std::size_t i = 0; i < 3; ++i) {
            ray[i] = ((corner >> i & 1u) != 0 ? box.high[i] : box.low[i]) - eye[i];
        }
        const double cosine = dot(ray, direction) / std::sqrt(dot(ray, ray));
        EXPECT_GT(cosine, std::cos(field / 2.0 * 3.14159265358979 / 180.0));
    }
}

class BcfTest : public testing::Test {
protected:
    /** Writes the comparison, checks the structure of every file, and keeps the topics by title. */
    void write() {
        topics_.clear();
        const std::map<std::string, std::string> files = unpacked(bcfText({model_, previous_, sample_.comparison}));
        ASSERT_EQ(files.count("bcf.version"), 1u);
        const std::regex guid("[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}");
        for (const auto& [name, content] : files) {
            SCOPED_TRACE(name);
            pugi::xml_document document;
            ASSERT_TRUE(document.load_string(content.c_str(), pugi::parse_default | pugi::parse_declaration))
                << content;
            const std::string folder = name.substr(0, name.find('/'));
            if (name == "bcf.version") {
                EXPECT_EQ(document.child("Version").attribute("VersionId").value(), std::string("2.1"));
                EXPECT_EQ(childNames(document.child("Version")), std::vector<std::string>{"DetailedVersion"});
                continue;
            }
            EXPECT_TRUE(std::regex_match(folder, guid));
            if (name == folder + "/markup.bcf") {
                checkMarkup(document.child("Markup"), folder, files);
            } else {
                EXPECT_EQ(files.count(folder + "/markup.bcf"), 1u);
            }
        }
    }

    void checkMarkup(const pugi::xml_node& markup, const std::string& folder,
                     const std::map<std::string, std::string>& files) {
        expectOrder(markup, {"Header", "Topic", "Comment*", "Viewpoints*"});
        expectOrder(markup.child("Header").child("File"), {"Filename", "Date", "Reference"});
        const pugi::xml_node topic = markup.child("Topic");
        expectOrder(topic, {"ReferenceLink*", "Title", "Priority", "Index", "Labels*", "CreationDate", "CreationAuthor",
                            "Description"});
        EXPECT_EQ(topic.attribute("Guid").value(), folder);
        const std::regex date("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z");
        EXPECT_TRUE(std::regex_match(topic.child("CreationDate").child_value(), date));
        EXPECT_STRNE(topic.child("CreationAuthor").child_value(), "");

        const pugi::xml_node reference = markup.child("Viewpoints");
        const auto view = files.find(folder + '/' + reference.child("Viewpoint").child_value());
        ASSERT_NE(view, files.end());
        Topic found;
        ASSERT_TRUE(found.view->load_string(view->second.c_str())) << view->second;
        found.root = found.view->child("VisualizationInfo");
        EXPECT_STREQ(found.root.attribute("Guid").value(), reference.attribute("Guid").value());
        expectOrder(found.root, {"Components", "PerspectiveCamera"});
        expectOrder(found.root.child("Components"), {"ViewSetupHints", "Selection", "Visibility", "Coloring"});
        const std::regex colour("[0-9a-fA-F]{8}");
        const pugi::xml_node colouring = found.root.child("Components").child("Coloring").child("Color");
        EXPECT_TRUE(std::regex_match(colouring.attribute("Color").value(), colour));
        for (const pugi::xml_node component : found.root.child("Components").child("Selection").children()) {
            EXPECT_STREQ(component.name(), "Component");
            found.components.push_back(component.attribute("IfcGuid").value());
        }
        EXPECT_EQ(std::distance(colouring.begin(), colouring.end()),
                  static_cast<std::ptrdiff_t>(found.components.size()));
        found.guid = folder;
        found.file = markup.child("Header").child("File").child("Filename").child_value();
        found.description = topic.child("Description").child_value();
        EXPECT_TRUE(topics_.emplace(topic.child("Title").child_value(), std::move(found)).second);
    }

    struct Topic {
        std::string guid;
        std::string file;
        std::string description;
        std::vector<std::string> components;
        std::unique_ptr<pugi::xml_document> view = std::make_unique<pugi::xml_document>();
        pugi::xml_node root;
    };

    SampleComparison sample_;
    const ImportedModel model_ = {"folder/new.ifc", "2026-05-31T12:00:00Z"};
    const std::optional<ImportedModel> previous_ = ImportedModel{"old.ifc", ""};
    std::map<std::string, Topic> topics_;
};

TEST_F(BcfTest, everyChangedObjectIsATopicThatShowsIt) {
    const auto record = [&](int id, const std::string& name, double x) -> ObjectRecord& {
        return sample_.record(sampleId(id), "IFCWALL", name, "Ground", x, 0.0, 0.0);
    };
    sample_.add(&record(1, "Same", 0.0), &record(1, "Same", 0.0), {});
    ObjectRecord& wide = record(2, "<b>Wide</b> & \x01", 2000.0);
    wide.box.high = {2050.0, 1.0, 12.0};
    (*wide.attributes)["Tag"] = "4711";
    Change& moved = sample_.add(&record(2, "Wide", 3.0), &wide, {Status::Moved, Status::Properties});
    moved.move = Motion{{1997.0, 0.0, 0.0}};
    moved.properties = {{"Pset_WallCommon", "FireRating", "'F90", "'F120"}};
    sample_.add(&record(3, "Gone", 5.0), nullptr, {Status::Removed});
    ObjectRecord& foreign = record(4, "Foreign", 0.0);
    foreign.identity = ImportCommon::ExternalGUID();
    foreign.sourceId = "garden/4";
    foreign.box.high = foreign.box.low; // no extent
    sample_.add(nullptr, &foreign, {Status::Added});

    ASSERT_NO_FATAL_FAILURE(write());
    ASSERT_EQ(topics_.size(), 3u);
    const Topic& wideTopic = topics_.at("moved: <b>Wide</b> & ?");
    EXPECT_EQ(wideTopic.components, std::vector<std::string>{sampleId(2)});
    EXPECT_EQ(wideTopic.file, "new.ifc");
    for (const char* const part : {"moved, properties", "Storey: Ground", "1997.000 m", "FireRating: F90 -> F120"}) {
        EXPECT_NE(wideTopic.description.find(part), std::string::npos) << wideTopic.description;
    }
    const pugi::xml_node component = wideTopic.root.child("Components").child("Selection").child("Component");
    EXPECT_STREQ(component.child("AuthoringToolId").child_value(), "4711");
    expectInView(wideTopic.root.child("PerspectiveCamera"), wide.box);
    EXPECT_EQ(topics_.at("removed: Gone").file, "old.ifc");
    const Topic& foreignTopic = topics_.at("added: Foreign");
    EXPECT_EQ(foreignTopic.components, std::vector<std::string>{""});
    EXPECT_STREQ(foreignTopic.root.child("Components")
                     .child("Selection")
                     .child("Component")
                     .child("AuthoringToolId")
                     .child_value(),
                 "garden/4");
    expectInView(foreignTopic.root.child("PerspectiveCamera"), foreign.box);

    // Written again, each object has the topic that it had.
    const std::string before = wideTopic.guid;
    ASSERT_NO_FATAL_FAILURE(write());
    EXPECT_EQ(topics_.at("moved: <b>Wide</b> & ?").guid, before);

    // What is gone is shown where it would be.
    sample_.comparison.displacement = Displacement{{0.0, 100.0, 0.0}, 90.0, {0.0, 0.0, 1.0}};
    ASSERT_NO_FATAL_FAILURE(write());
    expectInView(topics_.at("removed: Gone").root.child("PerspectiveCamera"), {{-1.0, 105.0, 0.0}, {0.0, 106.0, 1.0}});
}

TEST_F(BcfTest, manyChangesShareTopics) {
    const int count = static_cast<int>(maxBcfTopics) + 100;
    for (int i = 0; i < count; ++i) {
        const char* const storey = i < 100 ? "Ground" : "Upper";
        const ObjectRecord& record = sample_.record(sampleId(i), "IFCWALL", "", storey, 2.0 * i, 0.0, 0.0);
        sample_.add(nullptr, &record, {Status::Added});
    }
    ASSERT_NO_FATAL_FAILURE(write());
    ASSERT_EQ(topics_.size(), 2u);
    const Topic& ground = topics_.at("added: 100 IFCWALL, Ground");
    EXPECT_EQ(ground.components.size(), 100u);
    EXPECT_EQ(std::set<std::string>(ground.components.begin(), ground.components.end()).count(sampleId(99)), 1u);
    expectInView(ground.root.child("PerspectiveCamera"), {{0.0, 0.0, 0.0}, {199.0, 1.0, 1.0}});
}

TEST_F(BcfTest, nothingToTellIsAnArchiveWithoutTopics) {
    ASSERT_NO_FATAL_FAILURE(write());
    EXPECT_TRUE(topics_.empty());
}

TEST_F(BcfTest, anIdentityThatIsUsedTwiceHasTwoTopics) {
    for (const char* const name : {"First", "Second"}) {
        sample_.add(nullptr, &sample_.record(sampleId(1), "IFCWALL", name, "", 0.0, 0.0, 0.0), {Status::Added});
    }
    ASSERT_NO_FATAL_FAILURE(write());
    EXPECT_EQ(topics_.size(), 2u);
}

} // namespace
