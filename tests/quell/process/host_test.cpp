#include "quell/process/host.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <numeric>
#include <thread>
#include <vector>

namespace quell {
namespace {

const std::string Models = QUELL_BINARY_DIR "/tests/models/";

AmiCall Call(const std::string& behaviour)
{
    AmiCall call;
    call.model = Models + "test_model.so";
    call.parameters = "(test_model (do " + behaviour + "))";
    call.sampleInterval = 1e-12;
    call.bitTime = 16e-12;
    call.timeout = 30;
    return call;
}

// Over two columns, 1 2 3 and 4 5 6; what the model left of them is in `left`.
AmiResult RunModel(const AmiCall& call, std::vector<double>* left = nullptr)
{
    SharedMatrix matrix(3, 2);
    std::iota(matrix.Data(), matrix.Data() + 6, 1.0);
    AmiResult result = RunAmiModel(call, matrix);
    if (left != nullptr) left->assign(matrix.Data(), matrix.Data() + 6);
    return result;
}

GTEST_TEST(Host, ResultsComeBack)
{
    std::vector<double> matrix;
    const AmiResult result = RunModel(Call("halve speak print"), &matrix);
    EXPECT_EQ(result.outcome, AmiOutcome::Returned) << result.failure;
    EXPECT_EQ(result.returnCode, 1);
    EXPECT_EQ(matrix, (std::vector<double>{0.5, 1, 1.5, 2, 2.5, 3}));
    EXPECT_EQ(result.message, "3 rows, \xff, 1 aggressors");
    EXPECT_EQ(result.parametersOut, "(test_model (answer 42))");
    EXPECT_NE(result.printed.find("{ \"unit\": \"mm\" }\n"), std::string::npos);
    EXPECT_NE(result.printed.find("to stderr\n"), std::string::npos);
    EXPECT_TRUE(result.warnings.empty());
}

GTEST_TEST(Host, UnsetTextsStayUnset)
{
    const AmiResult result = RunModel(Call("fail"));
    EXPECT_EQ(result.outcome, AmiOutcome::Returned);
    EXPECT_EQ(result.returnCode, 0);
    EXPECT_EQ(result.message, std::nullopt);
    EXPECT_EQ(result.parametersOut, std::nullopt);
    EXPECT_EQ(result.printed, "");
}

GTEST_TEST(Host, WhateverAModelDoesToItsProcessIsOneLine)
{
    static const struct {
        const char* behaviour;
        double timeout;
        AmiOutcome outcome;
        const char* failure;
    } rows[] = {
        {"crash_init", 30, AmiOutcome::Crashed, "model crashed in AMI_Init: SIGSEGV"},
        {"crash_close", 30, AmiOutcome::Crashed, "model crashed in AMI_Close: SIGSEGV"},
        {"abort", 30, AmiOutcome::Crashed, "model crashed in AMI_Init: SIGABRT"},
        {"overrun", 30, AmiOutcome::Crashed, "model crashed in AMI_Init: SIGSEGV"},
        {"wild_message", 30, AmiOutcome::Crashed,
         "model crashed after AMI_Init, where its message was read: SIGSEGV"},
        {"exit", 30, AmiOutcome::Crashed, "model ended its process in AMI_Init: exit(7)"},
        {"hang", 0.2, AmiOutcome::TimedOut,
         "model did not come to an end within 0.2 s: stopped in AMI_Init"},
        {"stop", 0.2, AmiOutcome::TimedOut,
         "model did not come to an end within 0.2 s: stopped in AMI_Init"},
        {"flood", 0.5, AmiOutcome::TimedOut,
         "model did not come to an end within 0.5 s: stopped in AMI_Init"},
    };
    for (const auto& row : rows) {
        AmiCall call = Call(row.behaviour);
        call.timeout = row.timeout;
        const auto start = std::chrono::steady_clock::now();
        const AmiResult result = RunModel(call);
        EXPECT_EQ(result.outcome, row.outcome) << row.behaviour;
        EXPECT_EQ(result.failure, row.failure);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
        EXPECT_LE(result.printed.size(), 1U << 20);
    }
}

GTEST_TEST(Host, AProcessLeftBehindDoesNotHoldTheCall)
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunModel(Call("leave_child")).outcome, AmiOutcome::Returned);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

GTEST_TEST(Host, LibrariesThatAreNoModels)
{
    AmiCall call = Call("halve");
    call.model = Models + "model_without_init.so";
    AmiResult result = RunModel(call);
    EXPECT_EQ(result.outcome, AmiOutcome::NotLoadable);
    EXPECT_EQ(result.failure, call.model + ": exports no AMI_Init");

    call.model = Models + "model_crashing_when_loaded.so";
    result = RunModel(call);
    EXPECT_EQ(result.outcome, AmiOutcome::Crashed);
    EXPECT_EQ(result.failure, "model crashed while it was loaded: SIGSEGV");

    call.model = Models + "model_without_close.so";
    result = RunModel(call);
    EXPECT_EQ(result.outcome, AmiOutcome::Returned);
    EXPECT_EQ(result.warnings, std::vector<std::string>{"the model exports no AMI_Close"});

    call.model = "/dev/null";
    EXPECT_EQ(RunModel(call).outcome, AmiOutcome::NotLoadable);
}

GTEST_TEST(Host, ManyAtOnceFromThreads)
{
    std::vector<std::thread> threads;
    std::atomic<int> good = 0;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&good] {
            for (int k = 0; k < 5; ++k) {
                std::vector<double> matrix;
                RunModel(Call("halve"), &matrix);
                if (matrix[1] == 1) ++good;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 20);
}

}  // namespace
}  // namespace quell
