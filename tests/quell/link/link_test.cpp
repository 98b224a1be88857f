#include "quell/link/link.h"

#include <gtest/gtest.h>

#include <cmath>

#include "quell/link/json.h"
#include "quell/link/text.h"

namespace quell {
namespace {

std::shared_ptr<const LinkChannel> Channel()
{
    return std::make_shared<const LinkChannel>(
        MakeLinkChannel(BuildImpulseMatrix("loss:8dB@2.5GHz", {"loss:20dB@2.5GHz"}, {})));
}

StageSetup Stage(const std::string& name, const std::string& behaviour)
{
    return {name, {QUELL_BINARY_DIR "/tests/models/test_model.so", behaviour, {}}};
}

GTEST_TEST(Link, EachStageWorksOnWhatTheOneBeforeItLeft)
{
    const auto channel = Channel();
    const LinkResult result =
        RunLink(channel, {Stage("tx", "halve"), Stage("rx", "halve two")}, 30, {});
    ASSERT_EQ(result.Points(), 3u);
    for (size_t p = 0; p < 3; ++p) {
        const LinkPoint& point = *result.Point(p);
        const double gain = std::ldexp(1, -static_cast<int>(p));
        EXPECT_EQ(point.height, gain * channel->point.height) << p;
        for (size_t k = 0; k < 2; ++k) {
            EXPECT_EQ(point.figures[k].dcGain, gain * channel->point.figures[k].dcGain) << p;
            EXPECT_EQ(point.figures[k].mainCursor, gain * channel->point.figures[k].mainCursor);
            EXPECT_EQ(point.impulses.Column(k)[100], gain * channel->point.impulses.Column(k)[100]);
        }
    }
    EXPECT_EQ(result.warnings,
              std::vector<std::string>{"rx: AMI_Init returned 2; taken as success, which is 1"});
    ASSERT_TRUE(result.eye.has_value());
    EXPECT_EQ(result.eye->height, MeasureLinkEye(*result.Point(2), channel->grid, {})->height);

    const nlohmann::ordered_json json = ResultJson(result);
    EXPECT_EQ(json["parameters"], "halve");
    EXPECT_EQ(json["columns"][1]["crosstalk_after"].get<double>(),
              0.25 * json["columns"][1]["crosstalk_before"].get<double>());
    const std::string text = LinkText(result);
    for (const char* part : {"\ntx: ", "\nrx: ", "before    after tx       after ", ", after tx "})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

GTEST_TEST(Link, AStageThatFailsIsTheLast)
{
    const auto channel = Channel();
    LinkResult result = RunLink(channel, {Stage("tx", "halve"), Stage("rx", "fail")}, 30, {});
    EXPECT_TRUE(result.Failed());
    EXPECT_NE(result.Point(1), nullptr);
    EXPECT_EQ(result.After(), nullptr);
    EXPECT_FALSE(result.eye.has_value());
    EXPECT_TRUE(ResultJson(result)["peak_distortion_height_after"].is_null());

    result = RunLink(channel, {Stage("tx", "fail"), Stage("rx", "crash_init")}, 30, {});
    EXPECT_EQ(result.stages.size(), 1u);
    EXPECT_EQ(result.After(), nullptr);
    EXPECT_EQ(result.Before().figures.size(), 2u);
}

}  // namespace
}  // namespace quell
