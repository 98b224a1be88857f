#include "model/drive_internal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dataflow/CircularBuffer.h"

namespace {

// Doubles each sample, fails where it is told to and keeps a record of the calls.
struct FailingModel {
    TalvernQuell::CircularBuffer<double> m_Input;
    TalvernQuell::CircularBuffer<double> m_Output;
    double input = 0.0;
    double output = 0.0;
    int column = -1;
    int failingColumn = 1;
    std::string failing;  // initials of the operations that fail
    int failingSample = 2;
    int sample = 0;
    std::string calls;

    explicit FailingModel(const char* operations) : failing(operations)
    {
        m_Input.Attach(&input, 1);
        m_Output.Attach(&output, 1);
    }

    bool Done(char operation)
    {
        calls += operation;
        return column != failingColumn || failing.find(operation) == std::string::npos;
    }

    bool Setup()
    {
        ++column;
        sample = 0;
        return Done('S');
    }
    bool Initialize() { return Done('I'); }
    bool Run()
    {
        output = 2 * input;
        return sample++ != failingSample || Done('R');
    }
    bool Finalize() { return Done('F'); }
};

}  // namespace

using Samples = std::vector<double>;

static const std::string Sentence = "Error occurred in Quell_PCIe_Gen2_Tx::";

static const struct {
    const char* failing;
    long result;
    std::string message;
    const char* calls;
    Samples matrix;
} drives[] = {
    {"", 1, "", "SIRFSIRFSIRF", {2, 4, 6, 8, 10, 12, 14, 16, 18}},
    {"S", 0, Sentence + "Setup(). ", "SIRFSF", {2, 4, 6, 4, 5, 6, 7, 8, 9}},
    {"I", 0, Sentence + "Initialize(). ", "SIRFSIF", {2, 4, 6, 4, 5, 6, 7, 8, 9}},
    {"R", 0, Sentence + "Run(). ", "SIRFSIRF", {2, 4, 6, 8, 10, 6, 7, 8, 9}},
    {"F", 0, Sentence + "Finalize(). ", "SIRFSIRF", {2, 4, 6, 8, 10, 12, 7, 8, 9}},
    {"RF",
     0,
     Sentence + "Run(). " + Sentence + "Finalize(). ",
     "SIRFSIRF",
     {2, 4, 6, 8, 10, 6, 7, 8, 9}},
};

GTEST_TEST(Drive, SaysWhatFailedFinalizesAndLeavesTheRest)
{
    for (const auto& row : drives) {
        FailingModel model(row.failing);
        Samples matrix = {1, 2, 3, 4, 5, 6, 7, 8, 9};
        std::string message;
        EXPECT_EQ(Drive::Columns(model, matrix.data(), 3, 2, message), row.result) << row.failing;
        EXPECT_EQ(message, row.message);
        EXPECT_EQ(model.calls, row.calls) << row.failing;
        EXPECT_EQ(matrix, row.matrix) << row.failing;
    }
}

GTEST_TEST(Drive, TakesMatricesWithoutSamplesOrColumns)
{
    static const struct {
        long rowSize;
        long aggressors;
        const char* calls;
    } shapes[] = {{0, 1, "SIFSIF"}, {-5, 1, "SIFSIF"}, {3, -1, ""}, {3, -7, ""}};
    for (const auto& row : shapes) {
        FailingModel model("");
        std::string message = "before. ";
        EXPECT_EQ(Drive::Columns(model, nullptr, row.rowSize, row.aggressors, message), 1);
        EXPECT_EQ(model.calls, row.calls);
        EXPECT_EQ(message, "before. ");
    }
}
