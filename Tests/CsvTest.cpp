/**
 * @file CsvTest.cpp
 * The table for spreadsheets, read as they read it.
 */
#include "output/Csv.h"

#include "Support/SampleComparison.h"
#include "output/TextWidth.h"

#include <gtest/gtest.h>

namespace {

using Cells = std::vector<std::string>;

/** The lines of a table whose cells are all quoted. */
std::vector<Cells> linesOf(const std::string& csv) {
    EXPECT_EQ(csv.substr(0, 3), "\xEF\xBB\xBF");
    std::vector<Cells> lines(1);
    for (std::size_t at = 3; at < csv.size();) {
        EXPECT_EQ(csv[at], '"') << csv.substr(at);
        std::string cell;
        for (++at; at < csv.size() && (csv[at] != '"' || csv.compare(at, 2, "\"\"") == 0); ++at) {
            at += csv[at] == '"' ? 1 : 0;
            cell += csv[at];
        }
        lines.back().push_back(cell);
        if (csv.compare(++at, 2, "\r\n") == 0) {
            lines.emplace_back();
            at += 2;
        } else {
            EXPECT_EQ(csv[at++], ',');
        }
    }
    EXPECT_TRUE(lines.back().empty()) << "the last line has no end";
    lines.pop_back();
    return lines;
}

TEST(CsvTest, everyChangeIsALine) {
    SampleComparison sample;
    const auto record = [&](int id, double x) -> ObjectRecord& {
        return sample.record(sampleId(id), "IFCWALL", "Wall", "Ground", x, 0.0, 0.0);
    };
    sample.add(&record(1, 0.0), &record(1, 0.0), {});
    ObjectRecord& wide = record(3, 4.0);
    wide.box.high[0] = 6.5;
    wide.className = "IFCDOOR";
    Change& all =
        sample.add(&record(2, 0.0), &wide,
                   {Status::Reidentified, Status::Reclassed, Status::Reshaped, Status::Moved, Status::Properties});
    all.move = Motion{{4.75, 0.0, 0.0}, 22.5, {0.0, 0.0, 1.0}};
    all.properties = {{"Pset_WallCommon", "FireRating", "'F90", std::nullopt}, {"Attributes", "Tag", "12", "true"}};
    all.notes = {"split from \"it\""};
    const ObjectRecord& gone = record(5, 0.0);
    sample.add(nullptr, &record(4, 0.0), {Status::Added}).perhaps = Hint{&gone, 0.75};
    sample.add(&gone, nullptr, {Status::Removed});

    const auto line = [](int id, const char* status, Cells cells, const char* className = "IFCWALL") {
        Cells result = {sampleId(id), "Ground", status};
        result.insert(result.end(), cells.begin(), cells.end());
        result.insert(result.end(), {className, "Wall"});
        return result;
    };
    const auto changed = [&](const Cells& cells) { return line(3, "reidentified", cells, "IFCDOOR"); };
    const std::vector<Cells> expected = {{"object", "storey", "status", "attribute", "old", "new", "class", "name"},
                                         changed({"identity", sampleId(2), sampleId(3)}),
                                         changed({"class", "IFCWALL", "IFCDOOR"}),
                                         changed({"size", "1.000 x 1.000 x 1.000", "2.500 x 1.000 x 1.000"}),
                                         changed({"position", "0.500 0.500 0.500", "5.250 0.500 0.500"}),
                                         changed({"turn", "", "22.50 degrees"}),
                                         changed({"Pset_WallCommon.FireRating", "F90", ""}),
                                         changed({"Attributes.Tag", "12", "true"}),
                                         changed({"note", "", "split from \"it\""}),
                                         line(4, "added", {"", "", ""}),
                                         line(4, "added", {"perhaps, with confidence 0.75", sampleId(5), ""}),
                                         line(5, "removed", {"", "", ""})};
    EXPECT_EQ(linesOf(csvText(sample.comparison)), expected);
}

TEST(CsvTest, noTextBecomesAFormula) {
    const std::pair<const char*, const char*> texts[] = {{"=1+1", "'=1+1"},
                                                         {"@SUM(A1)", "'@SUM(A1)"},
                                                         {"+cmd|x", "'+cmd|x"},
                                                         {"-", "'-"},
                                                         {"\tx", "'\tx"},
                                                         {"-12.5", "-12.5"},
                                                         {"+3", "'+3"},
                                                         {"a=b", "a=b"},
                                                         {"a\nb", "a\nb"},
                                                         {"caf\xC3\xA9", "caf\xC3\xA9"},
                                                         {"\xE9", "\xEF\xBF\xBD"},
                                                         {"", ""}};
    for (const auto& [text, expected] : texts) {
        SampleComparison sample;
        ObjectRecord& record = sample.record(sampleId(1), "IFCWALL", text, text, 0.0, 0.0, 0.0);
        sample.add(nullptr, &record, {Status::Added}).notes = {text};
        const std::vector<Cells> lines = linesOf(csvText(sample.comparison));
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines[1][1], expected);
        EXPECT_EQ(lines[2][5], expected);
        EXPECT_EQ(lines[2][7], expected);
    }
}

TEST(TextWidthTest, columnsAreThoseOfATerminal) {
    const std::pair<const char*, std::size_t> texts[] = {{"", 0},
                                                         {"wall", 4},
                                                         {"Caf\xC3\xA9", 4},
                                                         {"Cafe\xCC\x81", 4},
                                                         {"\xE4\xB8\xAD\xE6\x96\x87", 4},
                                                         {"\xF0\x9F\x98\x80!", 3},
                                                         {"\xED\x95\x9C", 2},
                                                         {"\xE2\x80\x93", 1},
                                                         {"\xE4", 1}};
    for (const auto& [text, columns] : texts) {
        EXPECT_EQ(columnsOf(text), columns) << text;
    }
}

} // namespace
