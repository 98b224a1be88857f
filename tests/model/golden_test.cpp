// Cases of AMI_Init that an independent program has worked out, compared bit for bit.
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "model/AMI.h"
#include "tests/support/stderr_of.h"

using nlohmann::json;

static double ToDouble(const json& text)
{
    return std::strtod(text.get_ref<const std::string&>().c_str(), nullptr);
}

static std::vector<double> ToDoubles(const json& texts)
{
    std::vector<double> values;
    for (const json& text : texts)
        values.push_back(ToDouble(text));
    return values;
}

static json LoadCases()
{
    std::ifstream file(QUELL_SOURCE_DIR "/tests/data/golden_ami.json");
    return json::parse(file).at("cases");
}

GTEST_TEST(Golden, EveryCaseBitForBit)
{
    const json cases = LoadCases();
    ASSERT_EQ(cases.size(), 12U);
    for (const json& golden : cases) {
        const std::string name = golden.at("name");
        std::vector<double> matrix = ToDoubles(golden.at("matrix"));
        std::string parameters = golden.at("parameters");
        char untouched[] = "untouched";
        char* out = untouched;
        char* message = untouched;
        void* handle = nullptr;
        long result = -1;
        EXPECT_EQ(StderrOf([&] {
                      result = AMI_Init(
                          matrix.data(), golden.at("row_size"), golden.at("aggressors"),
                          ToDouble(golden.at("sample_interval")), ToDouble(golden.at("bit_time")),
                          parameters.data(), &out, &handle, &message);
                  }),
                  golden.at("stderr"))
            << name;
        EXPECT_EQ(result, golden.at("result")) << name;
        EXPECT_EQ(out, untouched) << name;
        if (golden.at("msg").is_null())
            EXPECT_EQ(message, untouched) << name;
        else
            EXPECT_EQ(message, golden.at("msg")) << name;

        ASSERT_NE(handle, nullptr) << name;
        const Quell_PCIe_Gen2_Tx& model = static_cast<const AMIModelHandle*>(handle)->model;
        EXPECT_EQ(model.m_SamplesPerBit, ToDouble(golden.at("samples_per_bit"))) << name;
        EXPECT_EQ(model.m_DeEmphasis, ToDouble(golden.at("de_emphasis_ratio"))) << name;
        EXPECT_EQ(model.m_Input.m_Data, nullptr) << name;

        const std::vector<double> output = ToDoubles(golden.at("output"));
        ASSERT_EQ(matrix.size(), output.size()) << name;
        for (std::size_t i = 0; i < output.size(); ++i)
            EXPECT_EQ(std::bit_cast<std::uint64_t>(matrix[i]),
                      std::bit_cast<std::uint64_t>(output[i]))
                << name << " at " << i;
        EXPECT_EQ(AMI_Close(handle), 1) << name;
    }
}
