/**
 * @file ImportExampleTest.cpp
 * Runs the example host as a program: the plug-in and the library's whole import path behind it.
 */
#include "Support/ImportExample.h"

#include <ImportCommon/ForeignObjectEnv.h>

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace {

TEST_F(ImportExampleTest, everyEditGetsItsStatus) {
    const json edits = json::parse(readFile(fs::path(MODELS_DIR) / "house-edits.json"));
    const json first = import(house_);
    EXPECT_EQ(first["counts"]["added"], first["objects"].size());
    const json report = import(revised_);

    std::map<std::string, std::set<json>> found;
    for (const json& object : report["objects"]) {
        const std::string status = object["status"];
        if (status == "reidentified") {
            found[status].insert(json::array({object["previousIdentity"], object["identity"]}));
        } else if (status != "unchanged") {
            found[status].insert(object["identity"]);
        }
        EXPECT_EQ(object.contains("previousIdentity"), status == "reidentified");
        EXPECT_EQ(object.contains("confidence"), status == "reidentified");
        EXPECT_EQ(object.value("before", json::object()).contains("class"), status == "reclassed");
        EXPECT_EQ(object["distance"].is_null(), status == "added" || status == "removed");
        EXPECT_TRUE(status != "moved" || object["distance"] > 0.001) << object;
        EXPECT_TRUE(status != "unchanged" || (object["similarity"] == 1.0 && object["distance"] == 0.0)) << object;
    }
    for (const auto& [status, identities] : edits.items()) {
        if (status == "properties") {
            continue;
        }
        EXPECT_EQ(found[status], std::set<json>(identities.begin(), identities.end())) << status;
        EXPECT_EQ(report["counts"][status], identities.size()) << status;
    }
    EXPECT_EQ(found.size(), 7u);
    PropertyChanges changes;
    for (const json& edit : edits["properties"]) {
        changes.insert(json::array({edit["identity"], edit["set"], edit["name"], edit["old"], edit["new"]}));
    }
    EXPECT_EQ(changedProperties(report), changes);
    EXPECT_EQ(report["counts"]["properties"], edits["properties"].size());
    EXPECT_EQ(report["counts"]["unchanged"], first["objects"].size() - 8);
    EXPECT_NE(readFile(file("stdout")).find("Pset_WallCommon.FireRating: F90 -> F120"), std::string::npos);

    // Objects are paths in the picture; the legend is made of other shapes.
    const std::string picture = readFile(file("plan.svg"));
    for (const auto& [status, count] : report["counts"].items()) {
        std::size_t paths = 0;
        for (std::size_t at = 0; (at = picture.find("<path class=\"" + status, at)) != std::string::npos; ++at) {
            ++paths;
        }
        EXPECT_EQ(paths, count) << status;
    }
}

TEST_F(ImportExampleTest, aModelThatMovedAsAWholeSaysSoOnce) {
    const std::pair<const char*, json> moves[] = {{"0.0005,0.,0.", nullptr},
                                                  {"0.,0.002,0.", {0.0, 0.002, 0.0}},
                                                  {"0.123456,-0.7,0.3", {0.123456, -0.7, 0.3}},
                                                  {"1000.,-731.,12.", {1000.0, -731.0, 12.0}}};
    for (const auto& [offset, shift] : moves) {
        SCOPED_TRACE(offset);
        fs::remove_all(file("state"));
        import(house_);
        const json report = import(movedHouse(house_, offset));
        EXPECT_EQ(report["counts"]["unchanged"], report["objects"].size());
        ASSERT_EQ(report["displacement"].is_null(), shift.is_null());
        for (std::size_t i = 0; i < shift.size(); ++i) {
            EXPECT_NEAR(report["displacement"]["shift"][i], shift[i], 2e-4);
        }
    }
}

TEST_F(ImportExampleTest, namesReachTheReportAsTheyAre) {
    const std::pair<std::string, std::string> names[] = {
        {"It''s \"quoted\" \\\\ <b>&amp;</b> %41", "It's \"quoted\" \\ <b>&amp;</b> %41"},
        {"tab\tand\x01 control", "tab\tand\x01 control"},
        {"caf\xC3\xA9 \xE4\xB8\xAD", "caf\xC3\xA9 \xE4\xB8\xAD"},
        {"\\X\\E9 \\S\\i \\X2\\00E94E2D\\X0\\ \\X2\\D83DDE00\\X0\\ \\X4\\0001F600\\X0\\",
         "\xC3\xA9 \xC3\xA9 \xC3\xA9\xE4\xB8\xAD \xF0\x9F\x98\x80 \xF0\x9F\x98\x80"},
        {"latin \xE9", "latin \xEF\xBF\xBD"},
        {"_a_b_", "_a_b_"},
        {"", ""}};
    for (const auto& [encoded, name] : names) {
        SCOPED_TRACE(encoded);
        const json report = import(replaced(house_, "'Bench'", '\'' + encoded + '\''));
        std::size_t found = 0;
        for (const json& object : report["objects"]) {
            if (object["identity"] != "2Q3D669m15Uwr_ACk1kweT") {
                continue;
            }
            EXPECT_EQ(object["name"], name);
            ++found;
        }
        EXPECT_EQ(found, 1u);
    }
}

TEST_F(ImportExampleTest, objectsWithBadIdentitiesAreNotLost) {
    const std::size_t objects = import(house_)["objects"].size();
    const std::pair<const char*, const char*> identities[] = {
        {"used twice", "1Hd7MYGzT7xfPnKQ1cRawj"}, {"invalid", "9Q3D669m15Uwr_ACk1kweT"}, {"too short", "2Q3D"}};
    for (const auto& [what, identity] : identities) {
        SCOPED_TRACE(what);
        const std::string model = replaced(house_, "2Q3D669m15Uwr_ACk1kweT", identity);
        EXPECT_EQ(import(model)["counts"]["reidentified"], 1);
        EXPECT_EQ(import(model)["counts"]["unchanged"], objects);
        EXPECT_NE(readFile(file("stderr")).find("warning: "), std::string::npos);
        EXPECT_EQ(import(house_)["counts"]["reidentified"], 1);
    }
}

TEST_F(ImportExampleTest, badModelsAreRefused) {
    import(house_);
    const std::pair<std::string, const char*> models[] = {
        {"", "empty"},
        {" \n", "empty"},
        {"solid cube\nendsolid", "not an IFC file"},
        {house_.substr(0, house_.find("END-ISO")), "truncated"},
        {replaced(house_, "#3402,#3412", "#3402,#777777"), "#777777"},
        {replaced(house_, "IFC2X3", "IFC4"), "IFC4"},
        {replaced(house_, "FILE_SCHEMA(('IFC2X3'));", ""), "schema"},
        {replaced(house_, "=IFCPROJECT(", "=IFCPROJECTS("), "IfcProject"}};
    for (const auto& [content, reason] : models) {
        writeFile(file("bad.ifc"), content);
        expectFailure("--state state bad.ifc", 1, "bad.ifc: ", reason);
    }
    expectFailure("--state state missing.ifc", 1, "missing.ifc: ", "No such file");

    writeFile(file("bad.ifc"), "");
    EXPECT_EQ(run("bad.ifc").exitCode, 1);
    EXPECT_FALSE(fs::exists(file("bad.ifc.import"))) << "a first import that fails leaves nothing behind";
}

TEST_F(ImportExampleTest, modelsOfAFolderAreImportedEachForItself) {
    import(house_);
    fs::create_directory(file("models"));
    expectFailure("models", 1, "models: ", "no model");
    writeFile(file("models/b.IFC"), house_);
    writeFile(file("models/a.ifc"), "");
    writeFile(file("models/notes.txt"), "no model");
    for (int time = 0; time < 2; ++time) {
        const Result result = run("models");
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.error.find("a.ifc: the file is empty"), std::string::npos) << result.error;
        EXPECT_NE(readFile(file("stdout")).find(time == 0 ? "added             35" : "unchanged         35"),
                  std::string::npos);
    }
    EXPECT_FALSE(fs::exists(file("models/a.ifc.import")));

    EXPECT_EQ(run("--list models/b.IFC.import").exitCode, 0);
    const std::string list = readFile(file("stdout"));
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 36);
    EXPECT_NE(list.find("2Q3D669m15Uwr_ACk1kweT  IFCFURNISHINGELEMENT  Bench\n"), std::string::npos) << list;
    expectFailure("--list models", 1, "models/objects.state: ", "No such file");
}

TEST_F(ImportExampleTest, badPluginsAndPlacesAreRefused) {
    import(house_);
    writeFile(file("junk.so"), "junk");
    Dl_info library;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&foreignobject_env_deserialize), &library), 0);
    fs::create_symlink(fs::absolute(library.dli_fname), file("library.so"));

    expectFailure("--state state --plugin missing.so house.ifc", 1, "missing.so: ", "No such file");
    expectFailure("--state state --plugin junk.so house.ifc", 1, "junk.so: ", "not a plug-in");
    expectFailure("--state state --plugin library.so house.ifc", 1, "library.so: ", "ImportModel");
    expectFailure("--state state --environment-version 2 house.ifc", 1, IFC_PLUGIN, "version 2");
    expectFailure("--state state --report nowhere/r.json house.ifc", 1, "nowhere/r.json: ", "No such file");
    expectFailure("--state nowhere/state house.ifc", 1, "nowhere/state: ", "No such file");
    expectFailure("--state house.ifc/state house.ifc", 1, "house.ifc/state: ", "Not a directory");
    if (fs::exists("/dev/full")) {
        expectFailure("--state state --picture /dev/full house.ifc", 1, "/dev/full: ", "No space left");
    }

    fs::create_hard_link(file("house.ifc"), file("new.json.new"));
    EXPECT_EQ(run("--state state --report new.json house.ifc").exitCode, 0);
    EXPECT_EQ(readFile(file("house.ifc")), house_);
}

TEST_F(ImportExampleTest, foreignAndDamagedStatesAreRefused) {
    import(house_);
    const std::string state = readFile(file("state/objects.state"));
    std::string damaged = state;
    damaged[state.size() / 2] = damaged[state.size() / 2] == '1' ? '2' : '1';
    const auto door = state.begin() + static_cast<long>(state.find("IFCDOOR\t"));
    const std::string doorLine = "line " + std::to_string(std::count(state.begin(), door, '\n') + 1);
    const std::pair<std::string, std::string> states[] = {
        {"", "not a state"},
        {"notes\n", "not a state"},
        {replaced(state, " 3\n", " 4\n"), "another version"},
        {replaced(state, "model\t", ""), "does not name its model"},
        {state.substr(0, state.size() - 1), "incomplete"},
        {state.substr(0, state.size() / 2), "incomplete"},
        {replaced(state, "IFCDOOR\t", "IFCDOOR\tx"), doorLine + ": 'x"},
        {damaged, ""}};
    for (const auto& [content, reason] : states) {
        writeFile(file("state/objects.state"), content);
        expectFailure("--state state house.ifc", 1, "state/objects.state: ", reason);
    }

    for (const char* const name : {"documents/letter.txt", "output/letter.txt", "objects.state.bak"}) {
        fs::remove_all(file("documents"));
        fs::create_directories((file("documents") / name).parent_path());
        writeFile(file("documents") / name, "letter");
        expectFailure("--state documents house.ifc", 1, "documents: ", "not a state folder");
        EXPECT_EQ(readFile(file("documents") / name), "letter");
    }
}

} // namespace
