/**
 * @file ComparisonTest.cpp
 * What became of objects: which is which, and what is said of it.
 */
#include "comparison/Comparison.h"

#include "Support/SampleObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;

using Records = std::vector<ObjectRecord>;

const Change& changeOf(const Comparison& comparison, const std::string& name) {
    static const Change none;
    for (const Change& change : comparison.changes) {
        if (change.record().name == name) {
            return change;
        }
    }
    ADD_FAILURE() << "no object " << name;
    return none;
}

std::string statusOf(const Comparison& comparison, const std::string& name) {
    return statusName(changeOf(comparison, name).status());
}

std::string previousName(const Change& change) {
    return change.before == nullptr ? "" : change.before->name;
}

/** An office: walls of different lengths, columns that are all alike, and a few tables. */
class Office {
public:
    /** Makes all objects, whose ids begin with @p prefix, moved by @p motion. */
    Records objects(const std::string& prefix, const RigidMotion& motion = {}) const {
        Records records;
        for (int i = 0; i < walls; ++i) {
            add(records, prefix, "Wall " + std::to_string(i),
                shifted(block(2.0 + 0.37 * i, 0.2, 2.5), {2.0 * (i % 3), 3.0 * i, 0.0}), "IFCWALL", motion);
        }
        for (int i = 0; i < columns; ++i) {
            add(records, prefix, "Column", shifted(block(0.3, 0.3, 2.5), {20.0 + 1.0 * i, 0.0, 0.0}), "IFCCOLUMN",
                motion);
        }
        return records;
    }

    static constexpr int walls = 12;
    static constexpr int columns = 8;

private:
    static void add(Records& records, const std::string& prefix, const std::string& name,
                    const PluginKit::SolidSurface& body, const std::string& className, const RigidMotion& motion) {
        const std::string id = prefix + std::to_string(records.size());
        records.push_back(object(id, name, placed(body, motion), className));
    }
};

TEST(ComparisonTest, newIdentitiesAreFoundByPlaceAndShape) {
    const Records before = Office().objects("a");
    Records now = Office().objects("b");
    std::shuffle(now.begin(), now.end(), std::mt19937(3));
    now[0].className = "IFCMEMBER";
    const Comparison comparison = compare(before, now);
    EXPECT_FALSE(comparison.displacement);
    EXPECT_EQ(comparison.count(Status::Reidentified), before.size());
    for (const Change& change : comparison.changes) {
        EXPECT_EQ(previousName(change), change.now->name);
        EXPECT_GE(change.confidence, 0.9);
        EXPECT_EQ(change.has(Status::Reclassed), change.now == &now[0]);
    }
}

TEST(ComparisonTest, theDisplacementOfTheWholeIsSaidOnceWhateverWasEdited) {
    const struct {
        const char* name;
        RigidMotion motion;
    } motions[] = {{"far away", {noRotation, {80000.0, 60000.0, 0.0}}},
                   {"4 mm", {noRotation, {0.004, 0.0, 0.0}}},
                   {"north", {rotationAbout({0.0, 0.0, 1.0}, -pi / 6.0), {5.0, 1.0, 0.0}}},
                   {"tilted", {rotationAbout({0.6, 0.0, 0.8}, 0.7), {1.0, 2.0, 3.0}}}};
    for (const auto& [name, motion] : motions) {
        for (const char* const prefix : {"a", "b"}) {
            SCOPED_TRACE(std::string(name) + prefix);
            const Records before = Office().objects("a");
            Records now = Office().objects(prefix, motion);
            now.erase(now.begin() + 3);
            const std::string id = std::string(prefix) + "5";
            now[4] = object(id, "Wall 5", placed(shifted(block(3.85, 0.2, 2.5), {5.0, 15.0, 0.0}), motion));
            const Comparison comparison = compare(before, now);
            ASSERT_TRUE(comparison.displacement);
            const Displacement& found = *comparison.displacement;
            EXPECT_NEAR(length(found.shift - motion.shift), 0.0, 1e-3);
            const Rotation turn = rotationAbout(found.axis, found.turn * pi / 180.0);
            EXPECT_NEAR(angleOf(product(turn, transposed(motion.rotation))), 0.0, 1e-5);
            EXPECT_EQ(comparison.count(Status::Removed), 1u);
            EXPECT_TRUE(changeOf(comparison, "Wall 5").has(Status::Moved));
            EXPECT_NEAR(changeOf(comparison, "Wall 5").distance, 1.0, 2e-3);
            const Status others = *prefix == 'a' ? Status::Unchanged : Status::Reidentified;
            EXPECT_EQ(comparison.count(others), now.size() - (*prefix == 'a' ? 1u : 0u));
        }
    }
}

TEST(ComparisonTest, aModelOfNothingButEqualObjectsIsLaidOverTheOtherOne) {
    // Rows of equal desks without names, of which some went and some were moved.
    const RigidMotion motion = {rotationAbout({0.0, 0.0, 1.0}, 2.5), {100.0, 40.0, 3.0}};
    Records before;
    Records now;
    std::mt19937 random(5);
    for (int i = 0; i < 400; ++i) {
        const Vector3 place = {2.0 * (i % 20), 3.0 * (i / 20), 0.0};
        const PluginKit::SolidSurface desk = shifted(block(1.6, 0.8 + 0.1 * (i % 2), 0.75), place);
        before.push_back(object("a" + std::to_string(i), "", desk, "IFCDESK"));
        const double edit = random() % 20 == 0 ? 0.2 : 0.0;
        if (random() % 20 != 0) {
            now.push_back(
                object("b" + std::to_string(i), "", placed(shifted(desk, {edit, 0.0, 0.0}), motion), "IFCDESK"));
        }
    }
    const Comparison comparison = compare(before, now);
    ASSERT_TRUE(comparison.displacement);
    EXPECT_NEAR(comparison.displacement->turn, 2.5 * 180.0 / pi, 1e-3);
    EXPECT_NEAR(length(comparison.displacement->shift - motion.shift), 0.0, 1e-3);
    EXPECT_EQ(comparison.count(Status::Reidentified), now.size());
    for (const Change& change : comparison.changes) {
        if (change.now != nullptr && change.before != nullptr) {
            EXPECT_EQ(identityText(*change.before).substr(1), identityText(*change.now).substr(1));
        }
    }
}

TEST(ComparisonTest, aPartOfTheModelThatMovedIsNoDisplacement) {
    const Records before = Office().objects("a");
    Records now = before;
    const Records raised = Office().objects("a", {noRotation, {0.0, 0.0, 0.3}});
    std::copy(raised.begin(), raised.begin() + 14, now.begin());
    const Comparison comparison = compare(before, now);
    EXPECT_FALSE(comparison.displacement);
    EXPECT_EQ(comparison.count(Status::Moved), 14u);
    EXPECT_EQ(comparison.count(Status::Unchanged), now.size() - 14u);
}

TEST(ComparisonTest, movesAreToldInFull) {
    const Outline outline = {{0.0, 0.0}, {3.0, 0.0}, {3.0, 0.4}, {0.6, 0.4}, {0.6, 2.0}, {0.0, 2.0}};
    Records before = Office().objects("a");
    Records now = before;
    const Rotation turn = rotationAbout({0.0, 0.0, 1.0}, 17.0 * pi / 180.0);
    before.push_back(object("x", "Ramp", prism(outline, 1.0)));
    now.push_back(object("x", "Ramp", placed(prism(outline, 1.0, 2), {turn, {4.0, 0.0, 0.5}})));
    const Comparison comparison = compare(before, now);
    const Change& change = changeOf(comparison, "Ramp");
    EXPECT_EQ(change.changes, std::vector<Status>{Status::Moved});
    ASSERT_TRUE(change.move);
    EXPECT_NEAR(change.move->angle, 17.0, 1e-3);
    EXPECT_NEAR(change.move->axis[2], 1.0, 1e-6);
    EXPECT_NEAR(change.move->shift[2], 0.5, 1e-9);
    EXPECT_NEAR(change.distance, length(change.move->shift), 1e-12);
    EXPECT_EQ(change.similarity, 1.0);
}

TEST(ComparisonTest, exchangedIdentitiesAreToldFromObjectsThatChangedPlaces) {
    const Records before = Office().objects("a");
    const auto shiftIds = [&](std::size_t first, std::size_t last) {
        Records now = before;
        for (std::size_t i = first; i < last; ++i) {
            now[i].identity = before[i + 1 < last ? i + 1 : first].identity;
        }
        return now;
    };
    const std::size_t columns = Office::walls;
    for (const auto& [first, last] : {std::pair(columns, columns + 2), std::pair(columns, columns + 8),
                                      std::pair(std::size_t{0}, std::size_t{2})}) {
        const Comparison comparison = compare(before, shiftIds(first, last));
        EXPECT_EQ(comparison.count(Status::Reidentified), last - first);
        for (const Change& change : comparison.changes) {
            EXPECT_EQ(change.before - before.data(), change.now - comparison.changes[0].now);
        }
    }

    // Two tables that took their names along have changed places themselves.
    Records tables = before;
    tables.push_back(object("t1", "Table 1", shifted(block(1.0, 0.8, 0.7), {40.0, 0.0, 0.0})));
    tables.push_back(object("t2", "Table 2", shifted(block(1.0, 0.8, 0.7), {44.0, 0.0, 0.0})));
    Records swapped = before;
    swapped.push_back(object("t2", "Table 2", shifted(block(1.0, 0.8, 0.7), {40.0, 0.0, 0.0})));
    swapped.push_back(object("t1", "Table 1", shifted(block(1.0, 0.8, 0.7), {44.0, 0.0, 0.0})));
    EXPECT_EQ(compare(tables, swapped).count(Status::Moved), 2u);

    // One that was moved to where another one was, which is gone, keeps its identity.
    Records moved = before;
    moved[columns] = object("a12", "Column", shifted(block(0.3, 0.3, 2.5), {21.0, 0.0, 0.0}), "IFCCOLUMN");
    moved.erase(moved.begin() + static_cast<long>(columns) + 1);
    const Comparison comparison = compare(before, moved);
    EXPECT_EQ(comparison.count(Status::Moved), 1u);
    EXPECT_EQ(comparison.count(Status::Removed), 1u);
}

TEST(ComparisonTest, whatIsLeftIsPairedByEvidence) {
    const struct {
        const char* name;
        std::function<void(Records&)> edit;
        const char* status;
        const char* previous; ///< name of the object that it was
    } edits[] = {{"Wall 4",
                  [](Records& now) {
                      now[4] = object("n", "Wall 4", shifted(block(3.48, 0.2, 2.5), {4.0, 14.0, 0.0}));
                  },
                  "reidentified", "Wall 4"},
                 {"Wall 4",
                  [](Records& now) {
                      now[4] = object("n", "Wall 4", shifted(block(3.48, 0.2, 3.1), {2.0, 12.0, 0.0}));
                  },
                  "reidentified", "Wall 4"},
                 {"New name",
                  [](Records& now) {
                      now[4] = object("n", "New name", shifted(block(3.48, 0.2, 2.5), {2.0, 12.1, 0.0}));
                  },
                  "reidentified", "Wall 4"},
                 // A copy of one that is still there is nobody who went.
                 {"Wall 7",
                  [](Records& now) {
                      now[4] = object("n", "Wall 7", shifted(block(3.48, 0.2, 2.5), {3.0, 13.0, 0.0}));
                  },
                  "added", ""},
                 {"Pump",
                  [](Records& now) {
                      now[4] = object("n", "Pump", shifted(block(0.3, 0.4, 0.5), {9.0, 9.0, 0.0}), "IFCPUMP");
                  },
                  "added", ""}};
    for (const auto& [name, edit, status, previous] : edits) {
        SCOPED_TRACE(std::string(name) + ' ' + status);
        const Records before = Office().objects("a");
        Records now = before;
        edit(now);
        const Comparison comparison = compare(before, now);
        EXPECT_EQ(statusOf(comparison, name), status);
        EXPECT_EQ(previousName(changeOf(comparison, name)), previous);
    }
}

TEST(ComparisonTest, whatIsNotSureIsAHint) {
    // Two equal posts went, and one of a little other kind came: it may be either of them, or none.
    Records before = Office().objects("a");
    Records now = before;
    before.push_back(object("p1", "Post A", shifted(block(0.2, 0.2, 2.0), {50.0, 0.0, 0.0}), "IFCPOST"));
    before.push_back(object("p2", "Post B", shifted(block(0.2, 0.2, 2.0), {50.0, 2.0, 0.0}), "IFCPOST"));
    now.push_back(object("p3", "Post C", shifted(block(0.2, 0.2, 2.0), {50.0, 1.0, 0.0}), "IFCPOST"));
    const Comparison comparison = compare(before, now);
    const Change& change = changeOf(comparison, "Post C");
    EXPECT_EQ(change.status(), Status::Added);
    ASSERT_TRUE(change.perhaps);
    EXPECT_LT(change.perhaps->confidence, 0.7);
    const Change& other = changeOf(comparison, change.perhaps->object->name);
    EXPECT_EQ(other.status(), Status::Removed);
    ASSERT_TRUE(other.perhaps);
    EXPECT_EQ(other.perhaps->object, change.now);
}

TEST(ComparisonTest, theNearestOfManyEqualObjectsIsNotTakenForAnother) {
    // Boxes that say the same of themselves; some were nudged, the others are scattered anew.
    constexpr int nudged = 20;
    constexpr int scattered = 1200;
    Records before = Office().objects("a");
    Records now = before;
    std::mt19937 random(11);
    std::uniform_real_distribution<double> distance(0.0, 30.0);
    const auto place = [&] { return Vector3{distance(random), 50.0 + distance(random), 0.0}; };
    const PluginKit::SolidSurface box = block(0.4, 0.3, 0.2);
    for (int i = 0; i < nudged + scattered; ++i) {
        const Vector3 old = i < nudged ? Vector3{100.0 + 2.0 * i, 0.0, 0.0} : place();
        const Vector3 fresh = i < nudged ? old + Vector3{0.01 + 0.003 * i, 0.0, 0.0} : place();
        before.push_back(object("b" + std::to_string(i), "Box", shifted(box, old), "IFCBOX"));
        now.push_back(object("c" + std::to_string(i), "Box", shifted(box, fresh), "IFCBOX"));
    }
    const Comparison comparison = compare(before, now);
    for (const Change& change : comparison.changes) {
        const bool isPair = change.before != nullptr && change.now != nullptr;
        if (isPair && change.record().className == "IFCBOX") {
            EXPECT_LE(change.distance, 0.1);
        }
        EXPECT_TRUE(!change.perhaps || change.perhaps->confidence < 0.7);
    }
    EXPECT_GE(comparison.count(Status::Reidentified), static_cast<std::size_t>(nudged));
    EXPECT_GE(comparison.count(Status::Added), static_cast<std::size_t>(scattered * 9 / 10));
}

TEST(ComparisonTest, rowsOfEqualObjectsAreMovedAsRows) {
    // Farther than half the way to the next one: each is nearer to where its neighbour was.
    const Records before = Office().objects("a");
    Records now = before;
    for (int i = 0; i < Office::columns; ++i) {
        now[static_cast<std::size_t>(Office::walls + i)] = object(
            "n" + std::to_string(i), "Column", shifted(block(0.3, 0.3, 2.5), {20.7 + 1.0 * i, 0.0, 0.0}), "IFCCOLUMN");
    }
    const Comparison comparison = compare(before, now);
    EXPECT_EQ(comparison.count(Status::Reidentified), static_cast<std::size_t>(Office::columns));
    for (const Change& change : comparison.changes) {
        EXPECT_NEAR(change.distance, change.has(Status::Moved) ? 0.7 : 0.0, 1e-9);
    }
}

TEST(ComparisonTest, piecesOfWhatWasSplitOrMergedSaySo) {
    Records whole = Office().objects("a");
    Records pieces = whole;
    whole.push_back(object("w", "Long wall", shifted(block(6.0, 0.2, 2.5), {30.0, 30.0, 0.0})));
    pieces.push_back(object("w", "Long wall", shifted(block(4.0, 0.2, 2.5), {30.0, 30.0, 0.0})));
    pieces.push_back(object("v", "Piece", shifted(block(2.0, 0.2, 2.5), {34.0, 30.0, 0.0})));
    for (const bool isSplit : {true, false}) {
        const Comparison comparison = isSplit ? compare(whole, pieces) : compare(pieces, whole);
        EXPECT_EQ(statusOf(comparison, "Long wall"), "reshaped");
        EXPECT_EQ(statusOf(comparison, "Piece"), isSplit ? "added" : "removed");
        ASSERT_EQ(changeOf(comparison, "Piece").notes.size(), 1u);
        EXPECT_NE(changeOf(comparison, "Piece").notes[0].find("Long wall"), std::string::npos);
        EXPECT_EQ(changeOf(comparison, "Long wall").notes.size(), 1u);
    }
}

TEST(ComparisonTest, sourceIdsAreIdentities) {
    Records before = Office().objects("a");
    Records now = before;
    for (std::size_t i = 0; i < now.size(); ++i) {
        before[i].sourceId = "urn:plant/area-7/element#" + std::string(300, 'x') + std::to_string(i);
        now[i].sourceId = before[i].sourceId;
        now[i].identity = before[0].identity; // what is left of the id by a plug-in that cuts it
    }
    EXPECT_EQ(compare(before, now).count(Status::Unchanged), now.size());
    now[3].sourceId = "another";
    const Comparison comparison = compare(before, now);
    EXPECT_EQ(comparison.count(Status::Unchanged), now.size() - 1);
    EXPECT_EQ(comparison.changes[3].status(), Status::Reidentified);
}

TEST(ComparisonTest, objectsWithoutSurfacesAreComparedByTheirBoxes) {
    Records before = Office().objects("a");
    for (ObjectRecord& record : before) {
        record.shape = Shape(); // as states of earlier formats have it
    }
    Records now = Office().objects("a");
    now[2] = object("a2", "Wall 2", shifted(block(2.74, 0.2, 2.5), {4.0, 6.5, 0.0}));
    now[3] = object("a3", "Wall 3", shifted(block(3.11, 0.2, 2.8), {0.0, 9.0, 0.0}));
    const Comparison comparison = compare(before, now);
    EXPECT_EQ(statusOf(comparison, "Wall 2"), "moved");
    EXPECT_EQ(statusOf(comparison, "Wall 3"), "reshaped");
    EXPECT_EQ(comparison.count(Status::Unchanged), now.size() - 2);
}

TEST(ComparisonTest, measuresAreComparedInOneUnit) {
    using Value = std::optional<std::string>;
    const auto propertiesOf = [](const Value& value) {
        PropertyList list;
        list.isKnown = true;
        list.text = value ? "Pset\tP\t" + *value : "";
        list.digest = value.value_or("");
        return list;
    };
    const struct {
        Value before;
        Value now;
        Value shownBefore; ///< both nothing: they are the same
        Value shownNow;
    } cases[] = {{"2.5", "2500 0.001", {}, {}},
                 {"2.5", "8.20209974 0.3048", {}, {}},
                 {"2.5", "2.50004", {}, {}},
                 {"2.5", "2.5001", "2.5", "2.5001"},
                 {"2500 0.001", "2600 0.001", "2500", "2600"},
                 {"2.5", "2600 0.001", "2.5", "2.6"},
                 {"9007199254740993", "9007199254740995", "9007199254740993", "9007199254740995"},
                 {"1000000", "1000001", "1000000", "1000001"},
                 {"1000000.", "1000001.", {}, {}},
                 {"1000000", "1000000.", {}, {}},
                 {"-9223372036854775807", "0", "-9223372036854775807", "0"},
                 {"0", "0.0000009", {}, {}},
                 {"'2.5", "2.5", "'2.5", "2.5"},
                 {"'Mark 1.00001", "'Mark 1.00002", "'Mark 1.00001", "'Mark 1.00002"},
                 {"'1.00001, 2.", "'1.00002, 2.", {}, {}},
                 {"true", "false", "true", "false"},
                 {{}, "3 0.001", {}, "3"}};
    for (const auto& [before, now, shownBefore, shownNow] : cases) {
        SCOPED_TRACE(before.value_or("nothing") + " -> " + now.value_or("nothing"));
        ObjectRecord a = object("a", "Wall", block(1.0, 1.0, 1.0));
        ObjectRecord b = a;
        a.properties = propertiesOf(before);
        b.properties = propertiesOf(now);
        const std::vector<PropertyDifference> differences = differencesOf(a, b);
        ASSERT_EQ(differences.size(), shownBefore || shownNow ? 1u : 0u);
        if (!differences.empty()) {
            EXPECT_EQ(differences[0].before, shownBefore);
            EXPECT_EQ(differences[0].now, shownNow);
        }
    }
}

TEST(ComparisonTest, attributesAreComparedAsPropertiesAre) {
    ObjectRecord before = object("a", "Wall", block(1.0, 1.0, 1.0));
    ObjectRecord now = before;
    (*before.attributes)["Material"] = "Concrete 0.2; Insulation 0.08";
    (*now.attributes)["Material"] = "Concrete 0.200001; Insulation 0.08";
    EXPECT_TRUE(differencesOf(before, now).empty());
    (*now.attributes)["Material"] = "Concrete 0.2; Insulation 0.1";
    (*now.attributes)["Tag"] = "17";
    (*before.attributes)["Description"] = "old";
    std::map<std::string, std::pair<std::string, std::string>> found;
    for (const PropertyDifference& difference : differencesOf(before, now)) {
        EXPECT_EQ(difference.set, "Attributes");
        found[difference.name] = {difference.before.value_or("-"), difference.now.value_or("-")};
    }
    const decltype(found) expected = {{"Description", {"'old", "-"}},
                                      {"Material", {"'Concrete 0.2; Insulation 0.08", "'Concrete 0.2; Insulation 0.1"}},
                                      {"Tag", {"-", "'17"}}};
    EXPECT_EQ(found, expected);
}

} // namespace
