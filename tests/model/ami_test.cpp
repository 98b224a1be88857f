// The entry points as a simulator uses them.
#include "model/AMI.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <cstring>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "ami/ParamParser.h"
#include "tests/support/stderr_of.h"

using Samples = std::vector<double>;

namespace {

// One use of the model: 16 samples per bit unless told otherwise.
struct Use {
    Samples matrix;
    long result = -1;
    void* handle = nullptr;
    char* message = nullptr;

    Use(Samples input, long aggressors, std::string parameters, double sampleInterval = 12.5e-12)
        : matrix(std::move(input))
    {
        const long rowSize =
            static_cast<long>(matrix.size()) / (aggressors < 0 ? 1 : aggressors + 1);
        result = AMI_Init(matrix.data(), rowSize, aggressors, sampleInterval, 200e-12,
                          parameters.data(), nullptr, &handle, &message);
    }
    ~Use() { AMI_Close(handle); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
};

}  // namespace

static const std::string Missing =
    "The IBIS-AMI model, Quell_PCIe_Gen2_Tx, is unable to initialize the parameter de_emphasis "
    "from the AMI_Init arguments.  The model will use the default setting. ";
static const std::string InitializeFailed = "Error occurred in Quell_PCIe_Gen2_Tx::Initialize(). ";

static std::string Parameters(const std::string& deEmphasis)
{
    return "(Quell_PCIe_Gen2_Tx (de_emphasis " + deEmphasis + "))";
}

static Samples Pulse(std::size_t size)
{
    Samples samples(size);
    for (std::size_t i = 0; i < 20 && i < size; ++i)
        samples[i] = 1.0 / double(i + 1);
    return samples;
}

GTEST_TEST(AMI, TwoHandlesDoNotDisturbEachOther)
{
    const Use alone(Pulse(200), 1, Parameters("6"));
    const Use first(Pulse(200), 1, "(Other (de_emphasis 6))");
    const Use second(Pulse(200), 1, Parameters("6"));
    EXPECT_EQ(second.matrix, alone.matrix);
    EXPECT_EQ(first.message, Missing);
    EXPECT_EQ(second.message, nullptr);
    const Use third(Pulse(200), -1, "");
    EXPECT_EQ(first.message, Missing);
    EXPECT_EQ(AMI_Close(nullptr), 1);
}

GTEST_TEST(AMI, AggressorsStartWithTheEndOfTheColumnBefore)
{
    Samples matrix(200);
    matrix[99] = 4.0;
    const Use trace(matrix, 1, Parameters("6.020599913279624"));
    matrix[99] = 0.0;
    const Use none(matrix, 1, Parameters("6.020599913279624"));
    // The last victim sample leaves the line 16 samples into the aggressor column.
    for (std::size_t i = 100; i < 115; ++i)
        EXPECT_EQ(trace.matrix[i], none.matrix[i]) << i;
    EXPECT_LT(trace.matrix[115], none.matrix[115]);
}

GTEST_TEST(AMI, AFailureLeavesTheMatrixAndSaysWhy)
{
    static const struct {
        double sampleInterval;
        const char* parameters;
        std::string message;
    } failures[] = {
        {500e-12, "(Quell_PCIe_Gen2_Tx (de_emphasis 3.5))", InitializeFailed},
        {500e-12, "nonsense", Missing + InitializeFailed},
        {0.0, "(Quell_PCIe_Gen2_Tx (de_emphasis 3.5))", InitializeFailed},
        {-1e-12, "(Quell_PCIe_Gen2_Tx (de_emphasis 3.5))", InitializeFailed},
    };
    for (const auto& row : failures) {
        StderrOf([&] {
            const Use use(Pulse(8), 1, row.parameters, row.sampleInterval);
            EXPECT_EQ(use.result, 0) << row.sampleInterval;
            EXPECT_EQ(use.message, row.message) << row.sampleInterval;
            EXPECT_EQ(use.matrix, Pulse(8)) << row.sampleInterval;
        });
    }
}

// A de-emphasis of any size is a ratio of some size: nothing but the result suffers.
GTEST_TEST(AMI, TakesAnyDeEmphasis)
{
    for (const char* value : {"inf", "-inf", "nan", "1e308", "-1e308", "7000"}) {
        const Use use(Pulse(100), 0, Parameters(value));
        EXPECT_EQ(use.result, 1) << value;
        EXPECT_EQ(use.message, nullptr) << value;
    }
}

GTEST_TEST(AMI, EightThreadsAtOnce)
{
    const Use expected(Pulse(3000), 2, Parameters("3.5"));
    std::vector<int> equal(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < equal.size(); ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 200; ++i) {
                const Use use(Pulse(3000), 2, Parameters("3.5"));
                equal[t] += use.matrix == expected.matrix && use.message == nullptr;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(equal, std::vector<int>(8, 200));
}

// Bytes in use that a number of repetitions leaves behind.
template <typename Action>
static std::size_t Growth(std::size_t repetitions, Action action)
{
    for (int i = 0; i < 10; ++i)
        action();
    const std::size_t before = mallinfo2().uordblks;
    for (std::size_t i = 0; i < repetitions; ++i)
        action();
    return mallinfo2().uordblks - before;
}

GTEST_TEST(AMI, TenThousandUsesKeepTheParsedTreesAlone)
{
    const std::size_t uses = 10000;
    const std::string parameters = Parameters("3.5");
    EXPECT_EQ(Growth(uses, [] { const Use use(Pulse(40), 1, "no list"); }), 0U);
    const std::size_t trees =
        Growth(uses, [&] { const TalvernQuell::AMI::ParamParser parser(parameters.c_str()); });
    // The smallest block has more than one byte, so one that is lost per use shows.
    EXPECT_LT(Growth(uses, [&] { const Use use(Pulse(40), 1, parameters); }), trees + uses);
}

#ifndef __SANITIZE_ADDRESS__
// 2^31 - 2 samples per bit want a delay line of 16 GiB.
GTEST_TEST(AMI, LetsTheHostCatchBadAlloc)
{
    const auto exhaust = [] {
        const rlimit limit = {1UL << 32, 1UL << 32};
        setrlimit(RLIMIT_AS, &limit);
        double sample = 0.0;
        std::string parameters = Parameters("3.5");
        void* handle = nullptr;
        char* message = nullptr;
        try {
            AMI_Init(&sample, 1, 0, 1.0, 2147483646.0, parameters.data(), nullptr, &handle,
                     &message);
        } catch (const std::bad_alloc&) {
            std::exit(handle == nullptr ? 7 : 8);
        }
        std::exit(9);
    };
    EXPECT_EXIT(exhaust(), testing::ExitedWithCode(7), "");
}
#endif
