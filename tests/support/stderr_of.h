// Catches what an action writes to standard error.
#ifndef TESTS_SUPPORT_STDERR_OF_H
#define TESTS_SUPPORT_STDERR_OF_H

#include <gtest/gtest.h>

#include <string>

// What the action writes to standard error.
template <typename Action>
std::string StderrOf(Action action)
{
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

#endif
