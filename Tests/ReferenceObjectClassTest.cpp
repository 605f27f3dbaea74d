#include <ImportCommon/ReferenceObjectClass.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace ImportCommon;

namespace {

/** Asks for a label in a buffer of the given size; the two bytes behind it show a write too far. */
template <typename Class>
std::string label(int value, unsigned int size) {
    std::string buffer(size + 2, '#');
    EXPECT_TRUE(ReferenceObjectClass::asString(static_cast<Class>(value), buffer.data(), size));
    EXPECT_EQ(buffer.substr(size), "##");
    return buffer.substr(0, size);
}

TEST(ReferenceObjectClassTest, labels) {
    const struct {
        std::string (*labelOf)(int value, unsigned int size);
        int value;
        const char* expected;
    } cases[] = {
        {&label<AttributeClassPX_e>, 0, ""},
        {&label<AttributeClassPX_e>, 4, "PXCURVEDBEAM"},
        {&label<AttributeClassPX_e>, 5, ""},
        {&label<AttributeClassDGN_e>, 11, "DGNMESH"},
        {&label<AttributeClassDGN_e>, 12, ""},
        {&label<AttributeClassDWG_e>, 18, "AECDB2DSECTION"},
        {&label<AttributeClassDWG_e>, 48, "ACCIRCLE"},
        {&label<AttributeClassDWG_e>, 49, ""},
        {&label<AttributeClassIFC_e>, -2147483647 - 1, ""},
        {&label<AttributeClassIFC_e>, 47, "IFCELEMENTCOMPONENT"},
        {&label<AttributeClassIFC_e>, 95, "IFCELECTRICALCIRCUIT"},
        {&label<AttributeClassIFC_e>, 96, ""},
        {&label<int>, -1, "halvorne"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.labelOf(c.value, 64), c.expected + std::string(64 - std::strlen(c.expected), '\0')) << c.value;
    }
    // A short buffer gets no terminator, a long one is filled with zeros.
    for (const unsigned int size : {0u, 3u, 7u, 8u, 5000u}) {
        std::string expected = "IFCBEAM";
        expected.resize(size);
        EXPECT_EQ(label<AttributeClassIFC_e>(AttributeClassIFC_IFCBEAM, size), expected);
    }
}

} // namespace
