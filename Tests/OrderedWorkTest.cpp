/**
 * @file OrderedWorkTest.cpp
 * Work that threads share, and whose results come in order.
 */
#include "../IfcPlugin/OrderedWork.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>

namespace {

TEST(OrderedWorkTest, resultsAreTakenInOrderOneAtATime) {
    for (const std::size_t count : {0u, 1u, 2u, 63u, 64u, 65u, 5000u}) {
        std::vector<std::size_t> taken;
        std::atomic<int> taking{0};
        OrderedWork<std::string>(
            count,
            [](std::size_t i) {
                if (i % 64 == 0) { // the others get ahead of this one as far as they may
                    ImportCommon::ThreadOperations::usleep(200);
                }
                return std::to_string(i);
            },
            [&](std::size_t i, std::string&& text) {
                EXPECT_EQ(++taking, 1);
                EXPECT_EQ(text, std::to_string(i));
                taken.push_back(i);
                --taking;
            })
            .run();
        ASSERT_EQ(taken.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_EQ(taken[i], i);
        }
    }
}

TEST(OrderedWorkTest, theFirstExceptionInOrderEndsTheWork) {
    for (const bool whileTaking : {false, true}) {
        std::size_t taken = 0;
        const auto fail = [](std::size_t i) { throw std::runtime_error(std::to_string(i)); };
        OrderedWork<std::size_t> work(
            1000,
            [&](std::size_t i) {
                if (!whileTaking && i == 300) {
                    ImportCommon::ThreadOperations::usleep(1000); // later ones fail before
                }
                if (!whileTaking && i >= 300) {
                    fail(i);
                }
                return i;
            },
            [&](std::size_t i, std::size_t&&) {
                if (whileTaking && i == 300) {
                    fail(i);
                }
                ++taken;
            });
        try {
            work.run();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "300");
        }
        EXPECT_EQ(taken, 300u);
    }
}

} // namespace
