/**
 * @file PluginKitTest.cpp
 * What plug-ins write and hosts read: every stream there and back, and lines that are refused with their place.
 */
#include <ImportCommon/IFC2X3_PSet_WallCommon.h>

#include <PluginKit/Hex.h>
#include <PluginKit/PluginKit.h>
#include <PluginKit/StreamNames.h>
#include <PluginKit/StreamReader.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <set>

using namespace PluginKit;
using ImportCommon::ExternalGUID;

namespace {

const std::string difficultText("\t\n%41 \x7F\xC3\xA4\0.", 11);

/** An environment whose streams are files of the test. */
class PluginKitTest : public testing::Test {
protected:
    PluginKitTest() {
        for (const StreamName& stream : streamNames) {
            env_.*stream.handle = std::tmpfile();
        }
    }

    ~PluginKitTest() override {
        for (const StreamName& stream : streamNames) {
            std::fclose(env_.*stream.handle);
        }
    }

    std::string content(FILE* ForeignObjectEnv_t::*handle) const {
        FILE* const stream = env_.*handle;
        std::fflush(stream);
        std::rewind(stream);
        std::string text;
        for (int c = std::fgetc(stream); c != EOF; c = std::fgetc(stream)) {
            text += static_cast<char>(c);
        }
        return text;
    }

    static ObjectLine box() {
        const double vertices[] = {0, 0, 0, 1, 2, 3, 0, 0, 0};
        ObjectLine object;
        object.identity = ExternalGUID::fromIFCGlobalID("0123456789012345678901");
        object.spatialHash = ExternalGUID::spatialHashFromVertexes(3, vertices);
        object.version = ImportCommon::ExternalVersion(new ImportCommon::CExternalVersion(1.0, 2.0, 3.0));
        object.className = "IFCWALL";
        object.position = {0.1, 1e-7, -1e300};
        object.name = difficultText;
        return object;
    }

    static SolidSurface triangle() {
        SolidSurface surface;
        surface.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 0.123456789, 0}};
        surface.addPolygon({0, 1, 2});
        surface.addPolygon({2, 1, 0});
        return surface;
    }

    ForeignObjectEnv_t env_;
    StreamWriter writer_{env_};
};

std::string bytesOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    return std::string(bytes, size);
}

/** The message of a function that must throw. */
std::string messageOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const StreamError& e) {
        return e.what();
    }
    return "nothing was thrown";
}

TEST_F(PluginKitTest, objectsComeBack) {
    ObjectLine second = box();
    second.sourceId = "an id of its own \t" + std::string(300, 'x');
    second.identity = identityFromSourceId(second.sourceId);
    EXPECT_EQ(writer_.object(box(), {4, -1, ""}), 1u);
    EXPECT_EQ(writer_.object(second, {5, 6, "0123456789012345678901"}), 2u);
    writer_.end();

    const std::string objects = content(&ForeignObjectEnv_t::objects);
    const std::vector<ObjectLine> read = readObjectLines(objects);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(bytesOf(read[1].identity), bytesOf(second.identity));
    EXPECT_EQ(bytesOf(read[0].spatialHash), bytesOf(box().spatialHash));
    EXPECT_TRUE(read[0].version == box().version);
    EXPECT_EQ(read[0].className, "IFCWALL");
    EXPECT_EQ(read[0].position, box().position);
    EXPECT_EQ(read[0].name, difficultText);
    EXPECT_EQ(read[0].sourceId, "");
    EXPECT_EQ(read[1].sourceId, second.sourceId);

    const std::string ids = content(&ForeignObjectEnv_t::foreignObjects);
    StreamReader reader("foreignobjects", ids);
    ForeignObjectLine line;
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(line.identityId, 4);
    EXPECT_EQ(line.spatialHashId, -1);
    EXPECT_EQ(line.globalId, "");
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(line.globalId, "0123456789012345678901");
    EXPECT_FALSE(reader.read(line));
}

TEST_F(PluginKitTest, smallStreamsComeBack) {
    EXPECT_EQ(writer_.material({{0.25, 0, 1, 0.5}, difficultText}), 0u);
    EXPECT_EQ(writer_.material({}), 1u);
    writer_.layer({"", -2.5, difficultText});
    writer_.hierarchy({"a\tb", "", "IFCSITE", difficultText});
    writer_.warning(difficultText);
    writer_.error("");
    writer_.info("length-unit", "0.001");
    for (const double part : {0.0, 0.5, 0.505, 0.4, std::nan(""), 2.0, 1.0}) {
        writer_.progress(part, "reading");
    }

    const std::string materials = content(&ForeignObjectEnv_t::materials);
    StreamReader materialReader("materials", materials);
    MaterialLine material;
    ASSERT_TRUE(materialReader.read(material));
    EXPECT_EQ(material.colour, (std::array<double, 4>{0.25, 0, 1, 0.5}));
    EXPECT_EQ(material.name, difficultText);

    const std::string layers = content(&ForeignObjectEnv_t::layers);
    LayerLine layer;
    ASSERT_TRUE(StreamReader("layers", layers).read(layer));
    EXPECT_EQ(layer.globalId, "");
    EXPECT_EQ(layer.elevation, -2.5);
    EXPECT_EQ(layer.name, difficultText);

    const std::string hierarchy = content(&ForeignObjectEnv_t::hierarchy);
    HierarchyLine place;
    ASSERT_TRUE(StreamReader("hierarchy", hierarchy).read(place));
    EXPECT_EQ(place.globalId, "a\tb");
    EXPECT_EQ(place.parentGlobalId, "");
    EXPECT_EQ(place.className, "IFCSITE");
    EXPECT_EQ(place.name, difficultText);

    const std::string log = content(&ForeignObjectEnv_t::log);
    StreamReader logReader("log", log);
    LogLine entry;
    ASSERT_TRUE(logReader.read(entry));
    EXPECT_EQ(entry.kind + ':' + entry.text, "warning:" + difficultText);
    ASSERT_TRUE(logReader.read(entry));
    EXPECT_EQ(entry.kind + ':' + entry.text, "error:");

    const std::string info = content(&ForeignObjectEnv_t::info);
    InfoLine fact;
    ASSERT_TRUE(StreamReader("info", info).read(fact));
    EXPECT_EQ(fact.key + '=' + fact.value, "length-unit=0.001");
    EXPECT_EQ(content(&ForeignObjectEnv_t::progress), "0\treading\n0.5\treading\n1\treading\n");
}

TEST_F(PluginKitTest, shapesComeBack) {
    writer_.object(box(), {1, 2, ""});
    writer_.shape({triangle(), SolidSurface()});
    writer_.texture({"wood.png", std::string("\n\0\n5\t2\n", 7)});
    writer_.texture({"none.png", ""});

    const std::string polygons = content(&ForeignObjectEnv_t::polygons);
    StreamReader polygonReader("polygons", polygons);
    PolygonsLine line;
    ASSERT_TRUE(polygonReader.read(line));
    EXPECT_EQ(line.object, 1u);
    EXPECT_EQ(line.surface.vertices[2][1], 0.12346); // rounded
    EXPECT_EQ(line.surface.sizes, triangle().sizes);
    EXPECT_EQ(line.surface.corners, triangle().corners);
    EXPECT_FALSE(polygonReader.read(line)) << "a surface of nothing is not written";

    const std::string solids = content(&ForeignObjectEnv_t::solids);
    SolidLine solid;
    ASSERT_TRUE(StreamReader("solids", solids).read(solid));
    EXPECT_EQ(solid.object, 1u);
    const std::vector<SolidSurface> surfaces = surfacesOf(solid.bytes);
    ASSERT_EQ(surfaces.size(), 2u);
    EXPECT_EQ(surfaces[0].vertices, triangle().vertices);
    EXPECT_EQ(surfaces[0].corners, triangle().corners);

    const std::string textures = content(&ForeignObjectEnv_t::textures);
    StreamReader textureReader("textures", textures);
    TextureLine texture;
    ASSERT_TRUE(textureReader.read(texture));
    EXPECT_EQ(texture.bytes, std::string("\n\0\n5\t2\n", 7));
    ASSERT_TRUE(textureReader.read(texture));
    EXPECT_EQ(texture.name + texture.bytes, "none.png");
    EXPECT_EQ(textureReader.line(), 6u) << "the line breaks among the bytes count";
    EXPECT_FALSE(textureReader.read(texture));
}

TEST_F(PluginKitTest, propertiesComeBack) {
    PropertyLine inside = realProperty("U", 0.3);
    inside.depth = 1;
    inside.factor = 1000.0;
    PropertyLine renamed = booleanProperty("IsLoadBearing", true);
    renamed.nameInFile = "LoadBearing";
    writer_.set({0, "p", "custom", "s", "Pset", "", "other"});
    writer_.property(textProperty("Text", difficultText));
    writer_.property(complexProperty("Layers", "use"));
    writer_.property(inside);
    writer_.property(renamed);
    writer_.property(integerProperty("Count", std::numeric_limits<long long>::min()));

    const std::string attributes = content(&ForeignObjectEnv_t::attributes);
    StreamReader reader("attributes", attributes);
    std::variant<SetLine, PropertyLine> line;
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(std::get<SetLine>(line).nameInFile, "other");
    EXPECT_EQ(std::get<SetLine>(line).setGlobalId, "s");
    std::vector<std::string> seen;
    while (reader.read(line)) {
        const auto& p = std::get<PropertyLine>(line);
        seen.push_back(std::to_string(p.depth) + p.name + '=' + p.type + ':' + p.value + ',' + p.nameInFile + ',' +
                       numberText(p.factor));
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"0Text=text:" + difficultText + ",,1", "0Layers=complex:use,,1",
                                              "1U=real:0.3,,1000", "0IsLoadBearing=boolean:true,LoadBearing,1",
                                              "0Count=integer:-9223372036854775808,,1"}));
}

TEST_F(PluginKitTest, aRecordIsWrittenWithoutWhatTheSourceDoesNotGive) {
    ImportCommon::IFC2X3_PSet_WallCommon_s wall{};
    setText(wall.FireRating, "F\xC3\xA4" + std::string(400, '9'));
    wall.hasThermalTransmittance = true;
    wall.ThermalTransmittance = 0.25;
    SetLine owner;
    owner.form = "IFC2X3_PSet_WallCommon";
    const std::set<std::string, std::less<>> given = {"FireRating", "ThermalTransmittance"};
    writer_.propertySet(owner, wall, [&given](std::string_view name) { return given.count(name) > 0; });
    writer_.propertySet(owner, wall);

    const std::string attributes = content(&ForeignObjectEnv_t::attributes);
    StreamReader reader("attributes", attributes);
    std::variant<SetLine, PropertyLine> line;
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(std::get<SetLine>(line).name, "Pset_WallCommon");
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(std::get<PropertyLine>(line).value, "F\xC3\xA4" + std::string(253, '9'));
    ASSERT_TRUE(reader.read(line));
    EXPECT_EQ(std::get<PropertyLine>(line).value, "0.25");
    ASSERT_TRUE(reader.read(line));
    EXPECT_TRUE(std::holds_alternative<SetLine>(line));
    int all = 0;
    while (reader.read(line)) {
        ++all;
    }
    EXPECT_GT(all, 2);
}

TEST_F(PluginKitTest, whatNoHostCouldReadIsNotWritten) {
    const double infinity = std::numeric_limits<double>::infinity();
    const auto object = [this](const std::function<void(ObjectLine&)>& spoil) {
        ObjectLine line = box();
        spoil(line);
        return messageOf([&] { writer_.object(line, {}); });
    };
    writer_.object(box(), {});
    EXPECT_EQ(object([](ObjectLine& o) { o.className = ""; }), "objects stream, line 2: field class: missing");
    EXPECT_EQ(object([](ObjectLine& o) { o.identity = ExternalGUID(); }),
              "objects stream, line 2: field identity: not an identity");
    EXPECT_EQ(object([&](ObjectLine& o) { o.position[2] = infinity; }),
              "objects stream, line 2: field position: a number is not finite");
    EXPECT_EQ(messageOf([&] { writer_.polygons(2, triangle()); }),
              "polygons stream, line 1: field object: there is no such object yet");
    SolidSurface open = triangle();
    open.corners.back() = 3;
    EXPECT_EQ(messageOf([&] { writer_.shape({open}); }),
              "polygons stream, line 1: field surface: a polygon of a solid has a vertex that is not there");
    open = triangle();
    open.sizes.back() = 400;
    EXPECT_NE(messageOf([&] { writer_.solid(1, {open}); }), "nothing was thrown");
    EXPECT_EQ(messageOf([&] { writer_.property(textProperty("a", "b")); }),
              "attributes stream, line 1: field depth: no set before it");
    writer_.set({1, "", "custom", "", "Set", "", ""});
    PropertyLine property = textProperty("a", "b");
    property.depth = 2;
    EXPECT_EQ(messageOf([&] { writer_.property(property); }), "attributes stream, line 2: field depth: too deep by 2");
    EXPECT_EQ(messageOf([&] { writer_.property(realProperty("a", infinity)); }),
              "attributes stream, line 2: field value: 'inf' is not a value of type 'real'");
    EXPECT_EQ(messageOf([&] { writer_.info("", "x"); }), "info stream, line 1: field key: missing");
    EXPECT_EQ(messageOf([&] {
                  writer_.material({{0, 0, 0, 1.5}, ""});
              }),
              "materials stream, line 1: field colour: a part is not between 0 and 1");

    writer_.end();
    EXPECT_EQ(readObjectLines(content(&ForeignObjectEnv_t::objects)).size(), 1u);
    EXPECT_EQ(content(&ForeignObjectEnv_t::polygons) + content(&ForeignObjectEnv_t::materials), "");
}

template <typename Line>
std::string fault(const char* stream, const std::string& content) {
    return messageOf([&] {
        StreamReader reader(stream, content);
        for (Line line; reader.read(line);) {
        }
    });
}

TEST_F(PluginKitTest, faultsAreNamedWithTheirPlace) {
    using Object = std::variant<ObjectLine, EndLine>;
    using Attribute = std::variant<SetLine, PropertyLine>;
    writer_.object(box(), {});
    const std::string object = content(&ForeignObjectEnv_t::objects);
    const std::string cut = object.substr(0, object.rfind('\t')) + '\n';
    std::string other = object;
    other[1] = 'x';
    const std::string set = "set\t1\t-\tcustom\t-\tA\t\n";

    EXPECT_EQ(fault<Object>("objects", object + "\n" + cut), "objects stream, line 3: 5 of 6 fields, name missing");
    EXPECT_EQ(fault<Object>("objects", other), "objects stream, line 1: field identity: not an identity");
    EXPECT_EQ(fault<Object>("objects", object.substr(0, object.size() - 1)),
              "objects stream, line 1: not ended by a line break");
    EXPECT_EQ(fault<Object>("objects", object + "end\t2\n"),
              "objects stream, line 2: field number of objects: there are 1");
    EXPECT_EQ(fault<Object>("objects", object + "end\t1\n" + object),
              "objects stream, line 3: text behind the closing line");
    EXPECT_EQ(messageOf([&] { readObjectLines(object); }),
              "objects stream, no closing line with the number of objects");
    EXPECT_EQ(fault<MaterialLine>("materials", "1 1 1\tx\n"),
              "materials stream, line 1: field colour: 3 numbers instead of 4");
    EXPECT_EQ(fault<MaterialLine>("materials", "1 1 1 1,5\tx\n"),
              "materials stream, line 1: field colour: '1,5' is not a number");
    EXPECT_EQ(fault<LayerLine>("layers", "-\tnan\tx\n"),
              "layers stream, line 1: field elevation: a number is not finite");
    EXPECT_EQ(fault<LogLine>("log", "warning\tx\nhint\tx\n"),
              "log stream, line 2: field kind: neither warning nor error");
    EXPECT_EQ(fault<PolygonsLine>("polygons", "1\t0\t0 0 0\t0\t1\n"),
              "polygons stream, line 1: a polygon of a solid has a vertex that is not there");
    EXPECT_EQ(fault<PolygonsLine>("polygons", "1\t-1\t0 0 0\t0\n"),
              "polygons stream, line 1: field material: '-1' is out of range");
    for (const char* const solid : {"1\t2\t5\nabcd\n", "1\t2\t4\nabcd", "1\t2\t18446744073709551615\nabcd\n",
                                    "1\t2\t9223372036854775807\nabcd\n"}) {
        EXPECT_EQ(fault<SolidLine>("solids", solid).find("solids stream, line 1: "), 0u) << solid;
    }
    EXPECT_EQ(fault<Attribute>("attributes", "property\t0\ta\t\ttext\tb\n"),
              "attributes stream, line 1: a property of nothing");
    EXPECT_EQ(fault<Attribute>("attributes", set + "property\t1\ta\t\ttext\tb\n"),
              "attributes stream, line 2: a property of nothing");
    EXPECT_EQ(fault<Attribute>("attributes", set + "property\t0\ta\t\tboolean\tTRUE\n"),
              "attributes stream, line 2: field value: 'TRUE' is not a value of type 'boolean'");
    EXPECT_EQ(fault<Attribute>("attributes", set + "sets\n"),
              "attributes stream, line 2: neither a set nor a property");
}

TEST_F(PluginKitTest, damagedStreamsAreReadOrRefused) {
    writer_.material({{0.5, 0.5, 0.5, 1}, "grey"});
    for (int i = 0; i < 3; ++i) {
        writer_.object(box(), {1, 2, "0123456789012345678901"});
        writer_.shape({triangle(), triangle()});
        writer_.set({1, "p", "custom", "s", "Set", "", ""});
        writer_.property(complexProperty("Complex"));
        writer_.property(realProperty("Real", 0.5));
    }
    writer_.texture({"wood.png", "bytes"});
    writer_.end();
    const auto readAll = [](const char* stream, const std::string& content, auto line) {
        try {
            StreamReader reader(stream, content);
            while (reader.read(line)) {
                if constexpr (std::is_same_v<decltype(line), SolidLine>) {
                    solidBytes(surfacesOf(line.bytes));
                }
            }
            return true;
        } catch (const std::runtime_error& e) {
            EXPECT_NE(std::string(e.what()), "");
            return false;
        }
    };
    const auto readAs = [&](const std::string& name, const std::string& content) {
        return name == "objects"      ? readAll("objects", content, std::variant<ObjectLine, EndLine>())
               : name == "attributes" ? readAll("attributes", content, std::variant<SetLine, PropertyLine>())
               : name == "polygons"   ? readAll("polygons", content, PolygonsLine())
               : name == "solids"     ? readAll("solids", content, SolidLine())
               : name == "textures"   ? readAll("textures", content, TextureLine())
               : name == "materials"  ? readAll("materials", content, MaterialLine())
                                      : readAll("foreignobjects", content, ForeignObjectLine());
    };
    std::mt19937 random(4711);
    for (const StreamName& stream : streamNames) {
        const std::string whole = content(stream.handle);
        if (whole.empty()) {
            continue;
        }
        EXPECT_TRUE(readAs(stream.name, whole)) << stream.name;
        int refused = 0;
        for (int run = 0; run < 2000; ++run) {
            std::string damaged = whole;
            for (auto changes = 1 + random() % 3; changes > 0; --changes) {
                damaged[random() % damaged.size()] =
                    random() % 2 == 0 ? whole[random() % whole.size()] : static_cast<char>(random());
            }
            damaged.resize(damaged.size() - (run % 4 == 0 ? random() % damaged.size() : 0));
            refused += readAs(stream.name, damaged) ? 0 : 1;
        }
        EXPECT_GT(refused, 100) << stream.name;
    }
}

TEST_F(PluginKitTest, aStreamThatTheHostDidNotOpenIsLeftOut) {
    const ForeignObjectEnv_t nothing;
    StreamWriter writer(nothing);
    EXPECT_EQ(writer.object(box(), {}), 1u);
    writer.shape({triangle()});
    writer.progress(1.0, "all");
    writer.end();
}

TEST(PluginKitTextTest, escapesReadBackInEitherSpelling) {
    EXPECT_EQ(escaped(difficultText), "%09%0a%2541 %7f\xC3\xA4%00.");
    EXPECT_EQ(unescaped(escaped(difficultText)), difficultText);
    EXPECT_EQ(unescaped("%0A%0a%1F%1f%%41%4g%"), "\n\n\x1F\x1F%A%4g%");
    EXPECT_EQ(fromHex("0aFf"), "\x0A\xFF");
    EXPECT_EQ(fromHex("0a0") + fromHex("0g"), "");
}

TEST(PluginKitTextTest, numbersDoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool hasCommas = false;
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"}) {
        hasCommas = hasCommas || std::setlocale(LC_ALL, name) != nullptr;
    }
    EXPECT_EQ(toDouble("-1.5e-3"), -0.0015);
    EXPECT_EQ(numberText(0.1), "0.1");
    for (const char* const text : {"", "1,5", " 1", "1 ", "0x1p3", "+1", "1e999", "1.5.", "e"}) {
        EXPECT_THROW(toDouble(text), std::runtime_error) << text;
    }
    for (const char* const text : {"", "1.0", " 1", "99999999999999999999", "0x1", "--1"}) {
        EXPECT_THROW(toLong(text), std::runtime_error) << text;
    }
    std::setlocale(LC_ALL, before.c_str());
    RecordProperty("decimal commas", hasCommas ? "yes" : "no");
}

TEST(PluginKitTextTest, textForATerminalHoldsNoControlCharacter) {
    EXPECT_EQ(printable("a\x1B[1m\x7F \xC2\x9B"
                        "1m \xE2\x80\xAE \xC3\xA4 \xF0\x9F\x8F\xA0"),
              "a?[1m? ?1m ? \xC3\xA4 \xF0\x9F\x8F\xA0");
    for (const char* const wrong : {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5"}) {
        EXPECT_EQ(printable(wrong).find("\xEF\xBF\xBD"), 0u) << wrong;
        EXPECT_FALSE(isWidePortable(wrong));
    }
    EXPECT_EQ(printable("\x9B"
                        "31m"),
              "\xEF\xBF\xBD"
              "31m");
    EXPECT_TRUE(isWidePortable("\xC3\xA4\xEF\xBF\xBD"));
    EXPECT_FALSE(isWidePortable("\xF0\x9F\x8F\xA0"));
    EXPECT_EQ(toUtf8(toWide("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x8F\xA0")), "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x8F\xA0");
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
}

TEST(PluginKitTextTest, idsOfAnyLengthAreIdentities) {
    // Published results of the hash for this key, over the bytes 0, 1, 2 ...
    std::string bytes;
    for (char c = 0; c < 16; ++c) {
        bytes += c;
    }
    const auto hashOf = [](const std::string& id) {
        return toHex(reinterpret_cast<const char*>(identityFromSourceId(id).getPXGUID().bytes), 16);
    };
    EXPECT_EQ(hashOf(bytes.substr(0, 1)), "da87c1d86b99af44347659119b22fc45");
    EXPECT_EQ(hashOf(bytes.substr(0, 15)), "5493e99933b0a8117e08ec0f97cfc3d9");
    EXPECT_EQ(identityFromSourceId("").getType(), ExternalGUID::GUIDTypeNone);
    std::set<std::string> hashes;
    for (int length = 1; length < 600; ++length) {
        hashes.insert(hashOf(std::string(static_cast<std::size_t>(length), 'x')));
        hashes.insert(hashOf(std::string(static_cast<std::size_t>(length), 'x') + 'y'));
    }
    EXPECT_EQ(hashes.size(), 2u * 599u);
}

/** What the frame makes of an import function that ends in some way: the result, and the log. */
class PluginKitImportTest : public PluginKitTest {
protected:
    std::string run(const std::function<void()>& function, int version = 1) {
        env_.version = version;
        EXPECT_TRUE(foreignobject_env_serialize(env_));
        const int result = runImport([&](const ForeignObjectEnv_t&, StreamWriter&) { function(); });
        return std::to_string(result) + ' ' + content(&ForeignObjectEnv_t::log);
    }
};

TEST_F(PluginKitImportTest, nothingIsThrownIntoTheHost) {
    EXPECT_EQ(run([] {}, 2), "2 ");
    EXPECT_EQ(content(&ForeignObjectEnv_t::objects), "");
    EXPECT_EQ(run([] { throw 5; }), "1 error\tan exception without a text\n");
    EXPECT_EQ(content(&ForeignObjectEnv_t::objects), "");
    EXPECT_EQ(run([] {}).substr(0, 2), "0 ");
    EXPECT_EQ(content(&ForeignObjectEnv_t::objects), "end\t0\n");
    const std::string log = run([] { throw std::runtime_error("what\tis\nwrong"); });
    EXPECT_NE(log.find("error\twhat%09is%0awrong\n"), std::string::npos) << log;
    EXPECT_NE(run([] { throw std::bad_alloc(); }).find("error\tnot enough memory\n"), std::string::npos);
}

} // namespace
