/**
 * @file Stderr.h
 * What code under test writes to the standard error.
 */
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

template <typename Action>
std::string stderrOf(const Action& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

/** Some reports come once per process, so the action runs in a fresh one; the pattern stands for all it writes. */
template <typename Action>
void expectStderrOfFreshProcess(const Action& action, const std::string& pattern) {
    const auto run = [&action] {
        std::fputs("<<", stderr);
        action();
        std::fputs(">>", stderr);
        std::exit(0);
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "<<" + pattern + ">>");
}
