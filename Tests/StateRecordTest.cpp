/**
 * @file StateRecordTest.cpp
 * Objects as lines of the state, and what of a state is refused.
 */
#include "Support/SampleObjects.h"
#include "state/ObjectRecord.h"

#include <PluginKit/Text.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

ObjectRecord fullRecord() {
    ObjectRecord record = object("id", "100% caf\xC3\xA9\ttab", block(1.0, 2.0, 3.0));
    const double radii[8] = {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
    const double centroid[3] = {0.5, 1.0, 1.5};
    record.version = ImportCommon::createFromSolid(1.0, 2.0, 3.0, radii, 6.0, centroid);
    record.sourceId = std::string(500, 'x') + "\t#1";
    record.footprint = {{{0.0, 0.0}, {1.0, 0.0}, {1.0, 2.0}}};
    (*record.attributes)["Tag"] = "a\tb";
    (*record.attributes)["Storey"] = "";
    record.properties = propertyListFromFields("0123456789abcdef\tSet\tName\t'value\tSet\tWidth\t2500 0.001");
    return record;
}

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    for (const std::string_view field : split(line, '\t')) {
        fields.emplace_back(field);
    }
    return fields;
}

std::string lineOf(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) {
        line += (&field == &fields.front() ? "" : "\t") + field;
    }
    return line;
}

TEST(StateRecordTest, aRecordReadsBackAsItWas) {
    for (const bool hasShape : {true, false}) {
        for (const bool hasAttributes : {true, false}) {
            ObjectRecord record = fullRecord();
            record.shape = hasShape ? record.shape : Shape();
            record.attributes = hasAttributes ? record.attributes : std::nullopt;
            const ObjectRecord back = recordFromLine(recordToLine(record));
            EXPECT_EQ(recordToLine(back), recordToLine(record));
            EXPECT_EQ(back.name, record.name);
            EXPECT_EQ(back.sourceId, record.sourceId);
            EXPECT_EQ(identityText(back), record.sourceId);
            EXPECT_EQ(back.attributes, record.attributes);
            EXPECT_EQ(back.box, record.box);
            EXPECT_EQ(back.shape.fourth, record.shape.fourth);
            EXPECT_EQ(back.shape.centroid, record.shape.centroid);
            EXPECT_EQ(back.properties.text, record.properties.text);
            EXPECT_EQ(volumeOf(back), 6.0);
        }
    }
}

TEST(StateRecordTest, linesOfEarlierFormatsLackWhatCameLater) {
    const std::vector<std::string> fields = fieldsOf(recordToLine(fullRecord()));
    std::vector<std::string> old(fields.begin(), fields.begin() + 6);
    old.push_back(fields[7]);
    const ObjectRecord first = recordFromLine(lineOf(old), 1);
    EXPECT_FALSE(first.properties.isKnown);
    EXPECT_FALSE(first.attributes);
    EXPECT_EQ(first.shape.area, 0.0);
    EXPECT_EQ(first.box.size(2), 3.0) << "as the version says";
    EXPECT_EQ(first.footprint.size(), 1u);

    const auto properties = std::find(fields.begin(), fields.end(), "0123456789abcdef");
    old.insert(old.end(), properties, fields.end());
    const ObjectRecord second = recordFromLine(lineOf(old), 2);
    EXPECT_TRUE(second.properties.isKnown);
    EXPECT_FALSE(second.properties.areUnitsKnown);
}

TEST(StateRecordTest, valuesOutOfRangeAreRefused) {
    const std::vector<std::string> fields = fieldsOf(recordToLine(fullRecord()));
    const std::string shape = fields[9];
    const std::string moments = shape.substr(shape.find(' '));
    ObjectRecord odd = fullRecord();
    const double radii[8] = {};
    const double nowhere[3] = {0.0, 1e300, 0.0};
    odd.version = ImportCommon::createFromSolid(1.0, 2.0, 3.0, radii, 6.0, nowhere);
    const std::string oddVersion = fieldsOf(recordToLine(odd))[2];
    odd.version = ImportCommon::createFromBoundingBox(-1.0, 2.0, 3.0);
    const std::string negativeVersion = fieldsOf(recordToLine(odd))[2];
    const struct {
        std::size_t field;
        std::string value;
    } cases[] = {{2, oddVersion},      {2, negativeVersion},  {4, "1e10 0 0"},      {4, "nan 0 0"},
                 {4, "0 0"},           {7, "0 0 inf 0 1 1"},  {7, "0 0 2e9 0 1 1"}, {8, "0 0 0 1 2"},
                 {8, "0 0 0 1 2 -3"},  {8, "0 0 0 1 2 1e12"}, {9, "-22" + moments}, {9, "0" + moments},
                 {9, "inf" + moments}, {9, "1e40" + moments}, {9, "22 1 2 3"},      {10, "x"},
                 {10, "-1"},           {10, "999999999999"}};
    EXPECT_NO_THROW(recordFromLine(lineOf(fields)));
    for (const auto& [field, value] : cases) {
        SCOPED_TRACE(value);
        std::vector<std::string> damaged = fields;
        damaged[field] = value;
        EXPECT_THROW(recordFromLine(lineOf(damaged)), std::runtime_error);
    }
    // The values of properties stand last, and go into a report as they are.
    std::vector<std::string> damaged = fields;
    for (const char* const value :
         {"nan", "inf", "1e999", "1,5", "", "}", "1 0", "1 -1", "1 nan", "1 1 1", "1e308 10"}) {
        damaged.back() = value;
        EXPECT_THROW(recordFromLine(lineOf(damaged)), std::runtime_error) << value;
    }
    for (std::size_t size = 0; size < 11; ++size) {
        EXPECT_THROW(recordFromLine(lineOf({fields.begin(), fields.begin() + static_cast<long>(size)})),
                     std::runtime_error)
            << size;
    }
}

} // namespace
