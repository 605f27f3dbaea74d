/**
 * @file PictureTest.cpp
 * The plans of storeys, read as what they are: XML with shapes on a sheet.
 */
#include "output/Picture.h"

#include "Failure.h"
#include "Support/SampleComparison.h"
#include "output/plan/Outline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <pugixml.hpp>
#include <set>

namespace {

class PictureTest : public testing::Test {
protected:
    PictureTest() {
        const auto record = [&](int id, const char* storey, double x, double z, const char* className = "IFCWALL") {
            return &sample_.record(sampleId(id), className, "Object " + std::to_string(id), storey, x, 0.0, z);
        };
        sample_.add(record(1, "Upper", 0.0, 3.0), record(1, "Upper", 0.0, 3.0), {});
        Change& moved = sample_.add(record(2, "Upper", 2.0, 3.0), record(2, "Upper", 6.0, 3.0), {Status::Moved});
        moved.distance = 4.0;
        moved.move = Motion{{4.0, 0.0, 0.0}, 90.0};
        sample_.add(record(3, "Ground", 0.0, 0.0), record(3, "Ground", 0.0, 0.0), {Status::Reshaped});
        sample_.add(nullptr, record(4, "Ground", 8.0, 0.0), {Status::Added});
        sample_.add(record(5, "Ground", 4.0, 0.0), nullptr, {Status::Removed});
        Change& climbed = sample_.add(record(6, "Ground", 2.0, 0.0), record(6, "Upper", 4.0, 3.0), {Status::Moved});
        climbed.move = Motion{{2.0, 0.0, 3.0}};
        sample_.add(record(7, "Ground", 5.0, 0.0, "IFCSPACE"), nullptr, {Status::Removed});
        sample_.add(nullptr, record(8, "", 9.0, -1.0), {Status::Added});
    }

    pugi::xml_document parsed(const std::string& svg) const {
        pugi::xml_document document;
        EXPECT_TRUE(document.load_string(svg.c_str(), pugi::parse_full)) << svg;
        return document;
    }

    /** How many paths have each class. */
    static std::map<std::string, int> paths(const pugi::xml_document& document) {
        std::map<std::string, int> counts;
        for (const pugi::xml_node path : document.child("svg").children("path")) {
            ++counts[path.attribute("class").value()];
        }
        return counts;
    }

    static std::vector<std::string> headings(const pugi::xml_document& document) {
        std::vector<std::string> texts;
        for (const pugi::xml_node text : document.child("svg").children("text")) {
            if (text.attribute("class").value() == std::string("heading")) {
                texts.push_back(text.child_value());
            }
        }
        return texts;
    }

    static bool hasText(const pugi::xml_document& document, const std::string& wanted) {
        for (const pugi::xml_node text : document.child("svg").children("text")) {
            if (text.child_value() == wanted) {
                return true;
            }
        }
        return false;
    }

    SampleComparison sample_;
    const ImportedModel model_ = {"folder/new.ifc", "2026-05-31T12:00:00Z"};
    const std::optional<ImportedModel> previous_ = ImportedModel{"old.ifc", "2026-05-30T12:00:00Z"};
    const Outcome outcome_ = {model_, previous_, sample_.comparison};
};

TEST_F(PictureTest, storeysAreDrawnApartFromTheLowestToTheHighest) {
    const pugi::xml_document sheet = parsed(pictureText(outcome_));
    EXPECT_EQ(headings(sheet),
              (std::vector<std::string>{"Without a storey: 1 changed", "Ground: 4 changed", "Upper: 2 changed"}));
    const std::map<std::string, int> expected = {{"unchanged", 1}, {"moved", 2}, {"old moved", 2},
                                                 {"reshaped", 1},  {"added", 2}, {"removed", 1},
                                                 {"arrow", 1},     {"scale", 3}, {"old reshaped", 1}};
    std::map<std::string, int> found;
    for (const auto& [name, count] : paths(sheet)) {
        found[name.substr(0, name.find(" large"))] += count;
    }
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(hasText(sheet, "new.ifc"));
    EXPECT_TRUE(hasText(sheet, "compared with old.ifc (imported 2026-05-30 12:00 UTC)"));
    EXPECT_TRUE(hasText(sheet, "removed 1")) << "the space is counted";

    const pugi::xml_document ground = parsed(pictureText(outcome_, "Ground"));
    EXPECT_EQ(headings(ground), std::vector<std::string>{"Ground: 4 changed"});
    EXPECT_THROW(pictureText(outcome_, "ground"), Failure);

    const std::vector<StoreyPlan> plans = storeyPlans(outcome_);
    ASSERT_EQ(plans.size(), 3u);
    EXPECT_EQ(plans[0].storey, "");
    EXPECT_EQ(plans[1].storey, "Ground");
    EXPECT_EQ(paths(parsed(plans[1].svg)), paths(ground));
}

TEST_F(PictureTest, shapesTellWhichObjectTheyAreAndWhatHappened) {
    const pugi::xml_document sheet = parsed(pictureText(outcome_));
    std::set<unsigned> drawn;
    for (const pugi::xml_node path : sheet.child("svg").children("path")) {
        if (path.attribute("data-object")) {
            const unsigned index = path.attribute("data-object").as_uint();
            ASSERT_LT(index, sample_.comparison.changes.size());
            drawn.insert(index);
            const ObjectRecord& record = sample_.comparison.changes[index].record();
            const std::string title = path.child("title").child_value();
            EXPECT_EQ(title.find(record.name + "\nIFCWALL " + identityText(record) + '\n'), 0u) << title;
        }
        if (path.attribute("class").value() == std::string("moved") && path.attribute("data-object").as_uint() == 1) {
            const std::string title = path.child("title").child_value();
            EXPECT_NE(title.find("moved by 4.000 m (4.000, 0.000, 0.000), turned by 90.00 degrees"), std::string::npos)
                << title;
        }
    }
    EXPECT_EQ(drawn, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 7}));
}

TEST_F(PictureTest, oldOutlinesFollowTheWhole) {
    const auto outline = [&](const char* className) {
        const pugi::xml_document sheet = parsed(pictureText(outcome_, "Ground"));
        for (const pugi::xml_node path : sheet.child("svg").children("path")) {
            if (path.attribute("class").value() == std::string(className)) {
                return std::string(path.attribute("d").value());
            }
        }
        return std::string();
    };
    const std::string before = outline("removed large");
    EXPECT_NE(before, "");
    // The new objects stay, so the old ones are drawn elsewhere beside them once the whole is known to have moved.
    sample_.comparison.displacement = Displacement{{0.0, 5.0, 0.0}, 0.0, {0.0, 0.0, 1.0}};
    EXPECT_NE(outline("removed large"), before);
    const pugi::xml_document sheet = parsed(pictureText(outcome_));
    EXPECT_TRUE(hasText(sheet, "The whole model was displaced by (0.000, 5.000, 0.000) m; what only followed it is "
                               "unchanged."));
}

TEST_F(PictureTest, everythingStaysOnTheSheet) {
    for (int i = 0; i < 40; ++i) {
        const std::string storey = "Level " + std::to_string(i) + std::string(static_cast<std::size_t>(i), 'x');
        const ObjectRecord& record = sample_.record(sampleId(20 + i), "IFCSLAB", "", storey, 50.0 * i, 7.0, 3.0 * i);
        sample_.add(&record, &record, {});
    }
    const pugi::xml_document sheet = parsed(pictureText(outcome_));
    const pugi::xml_node svg = sheet.child("svg");
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    ASSERT_EQ(std::sscanf(svg.attribute("viewBox").value(), "%lf %lf %lf %lf", &x, &y, &width, &height), 4);
    // Millimetres that both sizes of paper have, in one of both directions.
    EXPECT_LE(std::max(svg.attribute("width").as_double(), svg.attribute("height").as_double()), 279.4 - 20.0);
    EXPECT_LE(std::min(svg.attribute("width").as_double(), svg.attribute("height").as_double()), 210.0 - 20.0);
    for (const pugi::xml_node node : svg.children()) {
        for (const auto& [name, low, high] :
             {std::tuple{"x", x, x + width}, std::tuple{"y", y, y + height}, std::tuple{"cy", y, y + height}}) {
            if (node.attribute(name)) {
                EXPECT_GE(node.attribute(name).as_double(), low);
                EXPECT_LE(node.attribute(name).as_double(), high) << node.child_value();
            }
        }
        const char* d = node.attribute("d").value();
        double px = 0.0;
        double py = 0.0;
        if (std::sscanf(d, "M%lf %lf", &px, &py) == 2) {
            EXPECT_TRUE(px >= x && px <= x + width && py >= y && py <= y + height) << d;
        }
    }
}

TEST_F(PictureTest, namesAreTextWhateverTheySay) {
    const std::string name = "<script>alert(1)</script> & \"x\" ]]> \x01 \xEF\xBF\xBF \xFF";
    ObjectRecord& record = sample_.record(sampleId(9), "IFC<b>", name, name, 0.0, 0.0, 9.0);
    sample_.add(nullptr, &record, {Status::Added}).notes = {name};
    const ImportedModel model = {name, "<b>"};
    const std::string text = pictureText({model, model, sample_.comparison});
    parsed(text);
    EXPECT_EQ(text.find("<script"), std::string::npos);
    EXPECT_EQ(text.find("<b>"), std::string::npos);
}

TEST_F(PictureTest, aFirstImportShowsTheModelAndNoStatus) {
    const std::optional<ImportedModel> nothing;
    const pugi::xml_document sheet = parsed(pictureText({model_, nothing, sample_.comparison}));
    for (const auto& [name, count] : paths(sheet)) {
        EXPECT_TRUE(name == "unchanged" || name == "scale") << name;
    }
    const Comparison empty;
    EXPECT_EQ(headings(parsed(pictureText({model_, previous_, empty}))), std::vector<std::string>());
}

double area(const std::vector<Point>& loop) {
    double sum = 0.0;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const Point& a = loop[i];
        const Point& b = loop[(i + 1) % loop.size()];
        sum += (a.x * b.y - b.x * a.y) / 2.0;
    }
    return sum;
}

TEST(OutlineTest, onlyTheBorderIsLeft) {
    const auto box = [](double x, double y, double width, double depth) {
        return std::vector<Point>{{x, y}, {x + width, y}, {x + width, y + depth}, {x, y + depth}};
    };
    const double far = 1e10;
    const struct {
        const char* what;
        Footprint footprint;
        std::multiset<long> areas; ///< of the loops; those of holes are negative
    } cases[] = {
        {"nothing", {}, {}},
        {"one polygon", {box(0, 0, 2, 3)}, {6}},
        {"triangles", {{{0, 0}, {4, 0}, {4, 4}}, {{0, 0}, {4, 4}, {0, 4}}}, {16}},
        {"top and bottom cut in two ways",
         {{{0, 0}, {4, 0}, {4, 4}}, {{0, 0}, {4, 4}, {0, 4}}, {{0, 0}, {4, 0}, {0, 4}}, {{4, 0}, {4, 4}, {0, 4}}},
         {16}},
        {"top and bottom that have a part in common",
         {box(0, 0, 4, 2), box(0, 2, 4, 2), {{0, 2}, {4, 2}, {4, 4}}, {{0, 2}, {4, 4}, {0, 4}}},
         {16}},
        {"a frame", {box(0, 0, 10, 1), box(0, 9, 10, 1), box(0, 1, 1, 8), box(9, 1, 1, 8)}, {100, -64}},
        {"a hole with a seam",
         {{{0, 0}, {6, 0}, {6, 6}, {0, 6}, {0, 0}, {2, 2}, {2, 4}, {4, 4}, {4, 2}, {2, 2}}},
         {36, -4}},
        {"side by side with other corners", {box(0, 0, 6, 2), box(0, 2, 3, 2), box(3, 2, 3, 2)}, {24}},
        {"apart", {box(0, 0, 1, 1), box(5, 5, 2, 2)}, {1, 4}},
        {"far away", {box(far, 0, 4, 4), box(far, 0, 4, 4)}, {16, 16}},
        {"without extent", {{{1, 1}}, {{1, 1}, {1, 1}}}, {0, 0}},
    };
    for (const auto& [what, footprint, areas] : cases) {
        std::multiset<long> found;
        for (const auto& loop : outlineOf(footprint)) {
            found.insert(std::lround(area(loop)));
        }
        EXPECT_EQ(found, areas) << what;
    }
}

} // namespace
