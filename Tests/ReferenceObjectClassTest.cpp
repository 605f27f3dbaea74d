#include <ImportCommon/ReferenceObjectClass.h>

#include <gtest/gtest.h>

#include <string>

using namespace ImportCommon;

namespace {

/** Asks for a label in a buffer of the given size; the two bytes behind it show a write too far. */
template <typename Class>
std::string label(Class value, unsigned int size) {
    std::string buffer(size + 2, '#');
    EXPECT_TRUE(ReferenceObjectClass::asString(value, buffer.data(), size));
    EXPECT_EQ(buffer.substr(size), "##");
    return buffer.substr(0, size);
}

template <typename Class>
void expectLabel(int value, const std::string& expected) {
    std::string padded = expected;
    padded.resize(64, '\0');
    EXPECT_EQ(label(static_cast<Class>(value), 64), padded) << value;
}

TEST(ReferenceObjectClass, labels) {
    expectLabel<AttributeClassPX_e>(1, "PXBEAM");
    expectLabel<AttributeClassPX_e>(4, "PXCURVEDBEAM");
    expectLabel<AttributeClassDGN_e>(0, "DGNINVALID");
    expectLabel<AttributeClassDGN_e>(7, "DGN3DSURFACE");
    expectLabel<AttributeClassDGN_e>(11, "DGNMESH");
    expectLabel<AttributeClassDWG_e>(0, "ACINVALID");
    expectLabel<AttributeClassDWG_e>(9, "ACAECDBMASKBLOCKREF");
    expectLabel<AttributeClassDWG_e>(18, "AECDB2DSECTION");
    expectLabel<AttributeClassDWG_e>(41, "AECSDBMEMBER");
    expectLabel<AttributeClassDWG_e>(48, "ACCIRCLE");
    expectLabel<AttributeClassIFC_e>(0, "IFCINVALID");
    expectLabel<AttributeClassIFC_e>(5, "IFCBEAM");
    expectLabel<AttributeClassIFC_e>(47, "IFCELEMENTCOMPONENT");
    expectLabel<AttributeClassIFC_e>(90, "IFCSTRUCTURALSURFACEMEMBERVARYING");
    expectLabel<AttributeClassIFC_e>(95, "IFCELECTRICALCIRCUIT");
    expectLabel<int>(12345, "halvorne");
    expectLabel<int>(-1, "halvorne");
}

TEST(ReferenceObjectClass, valuesOutsideTheListsHaveNoLabel) {
    for (const int value : {-2147483647 - 1, -1, 96, 2147483647}) {
        expectLabel<AttributeClassPX_e>(value, "");
        expectLabel<AttributeClassDGN_e>(value, "");
        expectLabel<AttributeClassDWG_e>(value, "");
        expectLabel<AttributeClassIFC_e>(value, "");
    }
    expectLabel<AttributeClassPX_e>(0, "");
    expectLabel<AttributeClassPX_e>(5, "");
    expectLabel<AttributeClassDGN_e>(12, "");
    expectLabel<AttributeClassDWG_e>(49, "");
}

TEST(ReferenceObjectClass, shortBuffersGetNoTerminator) {
    using namespace std::string_literals;
    EXPECT_EQ(label(AttributeClassIFC_IFCBEAM, 0), "");
    EXPECT_EQ(label(AttributeClassIFC_IFCBEAM, 3), "IFC");
    EXPECT_EQ(label(AttributeClassIFC_IFCBEAM, 7), "IFCBEAM");
    EXPECT_EQ(label(AttributeClassIFC_IFCBEAM, 8), "IFCBEAM\0"s);
    EXPECT_EQ(label(12345, 4), "halv");
    EXPECT_EQ(label(AttributeClassPX_PXBEAM, 5000), "PXBEAM" + std::string(4994, '\0'));
}

} // namespace
