#include "FailingAllocator.h"

#include <ImportCommon/ForeignObjectSolid.h>
#include <ImportCommon/PngTexture.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using ImportCommon::PngTexture;

namespace {

constexpr auto hostType = static_cast<ForeignObjectSolid::Type_t>(0x10007);

std::string bytesOf(const ForeignObjectSolid& solid) {
    unsigned int size = 4711;
    const char* const bytes = solid.getBytes(&size);
    EXPECT_EQ(bytes == nullptr, size == 0);
    return std::string(bytes != nullptr ? bytes : "", size);
}

ForeignObjectSolid solidOf(const std::string& bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return ForeignObjectSolid(hostType, static_cast<unsigned int>(bytes.size()), exact.data());
}

TEST(ForeignObjectSolid, copiesOwnTheirBytes) {
    for (const std::string& bytes :
         {std::string("a\0c", 3), std::string(1, '\0'), std::string(70000, 'x'), std::string()}) {
        auto source = std::make_unique<ForeignObjectSolid>(solidOf(bytes));
        const ForeignObjectSolid copy(*source);
        ForeignObjectSolid shrunk(ForeignObjectSolid::Type_TriangleMesh, 5, "bytes");
        ForeignObjectSolid grown(ForeignObjectSolid::Type_TriangleMesh, 0, nullptr);
        EXPECT_EQ(&(shrunk = *source), &shrunk);
        grown = *source;
        source.reset();
        for (const ForeignObjectSolid& solid : {copy, shrunk, grown}) {
            EXPECT_EQ(solid.getType(), hostType);
            EXPECT_EQ(bytesOf(solid), bytes);
        }
    }
}

TEST(ForeignObjectSolid, assignedToItselfLosesItsBytes) {
    ForeignObjectSolid solid = solidOf("abc");
    ForeignObjectSolid& same = solid;
    solid = same;
    EXPECT_EQ(solid.getType(), hostType);
    EXPECT_EQ(bytesOf(solid), "");
}

TEST(ForeignObjectSolid, withoutMemoryItIsEmptyAndSaysSoOncePerOperation) {
    if (!FailingAllocator::isAvailable())
        GTEST_SKIP();
    ForeignObjectSolid source = solidOf("abc");
    ForeignObjectSolid empty = solidOf("");
    const struct {
        std::function<ForeignObjectSolid()> make;
        std::string message;
    } cases[] = {
        // Nothing of the block is read; its size is reported as a signed number.
        {[] { return ForeignObjectSolid(hostType, 3000000000u, nullptr); }, "Invalid alloc size -1294967296"},
        {[&] { return source; }, "Invalid alloc size 3"},
        {[&] {
             ForeignObjectSolid assigned(ForeignObjectSolid::Type_TriangleMesh, 0, nullptr);
             assigned = source;
             return assigned;
         },
         "Invalid alloc size 3"},
        {[&] { return empty; }, ""},
    };
    for (const auto& c : cases) {
        for (const std::string& message : {c.message, std::string()}) {
            testing::internal::CaptureStderr();
            auto noMemory = std::make_unique<FailingAllocator>(1);
            const ForeignObjectSolid solid = c.make();
            noMemory.reset();
            EXPECT_EQ(testing::internal::GetCapturedStderr(), message);
            EXPECT_EQ(solid.getType(), hostType);
            EXPECT_EQ(bytesOf(solid), "");
        }
    }
    EXPECT_EQ(bytesOf(source), "abc");
}

TEST(PngTexture, copiesOwnTheirBytes) {
    const std::vector<char> signature = {'\x89', 'P', 'N', 'G', '\r', '\n', '\x1A', '\n'};
    auto source = std::make_unique<PngTexture>(signature);
    const PngTexture copy(*source);
    PngTexture assigned(std::vector<char>(1000, 'x'));
    assigned = *source;
    *source = PngTexture();
    EXPECT_TRUE(source->getData().empty());
    source.reset();
    const PngTexture& same = assigned;
    assigned = same;
    EXPECT_EQ(copy.getData(), signature);
    EXPECT_EQ(assigned.getData(), signature);
}

} // namespace
