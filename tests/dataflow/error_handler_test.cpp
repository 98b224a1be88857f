#include "dataflow/DFErrorHandler.h"

#include <gtest/gtest.h>

#include <iostream>

#include "dataflow/DFModel.h"
#include "tests/support/stderr_of.h"

using TalvernQuell::DFErrorHandler;
using TalvernQuell::DFModel;

GTEST_TEST(DFErrorHandler, WritesTheTextAndALineEndToStandardErrorOnly)
{
    DFModel block;
    for (const auto post :
         {DFErrorHandler::PostError, DFErrorHandler::PostWarning, DFErrorHandler::PostInfo,
          DFErrorHandler::PostLog, DFErrorHandler::PostProgress}) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(StderrOf([&] {
                      post(nullptr, "50% of %s");
                      post(&block, "");
                  }),
                  "50% of %s\n\n");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    }
}

GTEST_TEST(DFErrorHandler, SurvivesANullMessage)
{
    StderrOf([] { DFErrorHandler::PostError(nullptr, nullptr); });
    std::cerr.clear();
    EXPECT_EQ(StderrOf([] { DFErrorHandler::ClearProgress(nullptr); }), "");
    EXPECT_FALSE(DFErrorHandler::StopRequested());
}
