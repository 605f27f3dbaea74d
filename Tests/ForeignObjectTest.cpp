#include "Support/FailingAllocator.h"
#include "Support/Stderr.h"

#include <ImportCommon/ForeignObjectSolid.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

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

TEST(ForeignObjectSolidTest, copiesOwnTheirBytes) {
    for (const std::string& bytes : {std::string("a\0c", 3), std::string(70000, 'x'), std::string()}) {
        auto source = std::make_unique<ForeignObjectSolid>(solidOf(bytes));
        const ForeignObjectSolid copy(*source);
        ForeignObjectSolid assigned(ForeignObjectSolid::Type_TriangleMesh, 5, "bytes");
        assigned = *source;
        source.reset();
        for (const ForeignObjectSolid& solid : {copy, assigned}) {
            EXPECT_EQ(solid.getType(), hostType);
            EXPECT_EQ(bytesOf(solid), bytes);
        }
        ForeignObjectSolid& same = assigned;
        assigned = same;
        EXPECT_EQ(bytesOf(assigned), "") << "assigned to itself it loses its bytes";
    }
}

TEST_F(AllocationFailureTest, solidIsEmptyAndSaysSoOncePerOperation) {
    ForeignObjectSolid source = solidOf("abc");
    ForeignObjectSolid assigned(ForeignObjectSolid::Type_TriangleMesh, 0, nullptr);
    const struct {
        std::function<ForeignObjectSolid()> make;
        std::string message;
    } cases[] = {
        // Nothing of the block is read; its size is reported as a signed number.
        {[] { return ForeignObjectSolid(hostType, 3000000000u, nullptr); }, "Invalid alloc size -1294967296"},
        {[&] { return source; }, "Invalid alloc size 3"},
        {[&] { return assigned = source; }, "Invalid alloc size 3"},
        {[] { return ForeignObjectSolid(hostType, 0, nullptr); }, ""},
    };
    for (const auto& c : cases) {
        for (const std::string& message : {c.message, std::string()}) {
            const auto check = [&c] {
                noMemory.during([&c] {
                    const ForeignObjectSolid solid = c.make();
                    EXPECT_EQ(solid.getType(), hostType);
                    EXPECT_EQ(bytesOf(solid), "");
                });
            };
            EXPECT_EQ(stderrOf(check), message);
        }
    }
}

} // namespace
