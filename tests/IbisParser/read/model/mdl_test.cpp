// [Model]: blocks in it, the record, and calls out of order.
#include "IbisParser/mdl.h"

#include <gtest/gtest.h>

#include <string>

#include "IbisParser/submdl.h"
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(Mdl, BlocksLeftOpen)
{
    CheckCases(ModelLog(), IoModel, ModelInUse,
               R"(
--- 5.0 algorithmic model: E0151@11
[Algorithmic Model]
[Voltage Range] 3.3 3 3.6
--- 5.0 its end alone: E0152@11
[Voltage Range] 3.3 3 3.6
[End Algorithmic Model]
--- 5.0 EMI: E4805@12
[Begin EMI Model]
Model_Domain Digital
[Voltage Range] 3.3 3 3.6
--- 5.0 EMI to the end: E4805@13
[Voltage Range] 3.3 3 3.6
[Begin EMI Model]
Model_Domain Digital
--- 5.0 composite current without waveform: E0153@11
[Voltage Range] 3.3 3 3.6
[Composite Current]
0 0 0 0
)");
}

// What the records hold, and that they are released with the document.
GTEST_TEST(Mdl, RecordAndReferences)
{
    const std::string path = std::string(QUELL_SOURCE_DIR) + "/tests/data/model/record.ibs";
    LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_TRUE(INIT());
    ASSERT_TRUE(PARSE(path.c_str(), FILE_IBS));
    IbisRoot* root = nullptr;
    ASSERT_TRUE(IBIS_GetIBIS(&root));
    const Mdl* model = MDL_FindByName(root->mdls, "buffer");
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->type, MDL_IO);
    EXPECT_EQ(model->enable, MDL_ACTIVE_LOW);
    EXPECT_EQ(model->C_comp->max, 4e-12);
    ASSERT_NE(model->ramp, nullptr);
    EXPECT_EQ(model->ramp->rise[CORNER_MIN].dV, 0.9);
    EXPECT_EQ(model->ramp->fall[CORNER_MAX].state, CELL_NA);
    EXPECT_EQ(model->ramp->R_load.value, 50.0);
    EXPECT_EQ(MDLSPEC_InputHigh(model, CORNER_MIN).value, 1.8);
    EXPECT_EQ(MDLSPEC_InputLow(model, CORNER_MIN).value, 0.8);
    static const struct {
        int which, corner;
        double volts;
    } references[] = {
        {MDL_REF_PULLUP, CORNER_TYP, 3.3},      {MDL_REF_PULLUP, CORNER_MIN, 3.0},
        {MDL_REF_PULLDOWN, CORNER_MAX, 0.0},    {MDL_REF_POWER_CLAMP, CORNER_TYP, 5.0},
        {MDL_REF_POWER_CLAMP, CORNER_MAX, 5.0}, {MDL_REF_GND_CLAMP, CORNER_MIN, -0.1},
    };
    for (const auto& row : references) {
        double volts = 99.0;
        EXPECT_TRUE(MDL_RefVoltage(model, row.which, row.corner, &volts));
        EXPECT_EQ(volts, row.volts);
    }
    const Mdl* bare = MDL_FindByName(root->mdls, "bare");
    ASSERT_NE(bare, nullptr);
    double volts = 99.0;
    EXPECT_FALSE(MDL_RefVoltage(bare, MDL_REF_PULLUP, CORNER_TYP, &volts));
    EXPECT_EQ(volts, 99.0);
    EXPECT_TRUE(MDL_RefVoltage(bare, MDL_REF_GND_CLAMP, CORNER_TYP, &volts));
    EXPECT_EQ(volts, 0.0);
    FINI();
}

// Lines that the reader would not send.
GTEST_TEST(Mdl, CallsOutOfOrder)
{
    static const struct {
        int (*init)();
        int (*receive)(int kind, int code, char* line);
        int opener;
        int keyword;
        const char* heads[6];  // as SecFrame: no document first, no memory left out
    } sections[] = {
        {MDL_Init,
         MDL_ReceiveLine,
         KEY_MODEL,
         KEY_RAMP,
         {"B0100", "E0102", "E0103", "B0104", "B0105", "B0104"}},
        {SUBMDL_Init,
         SUBMDL_ReceiveLine,
         KEY_SUBMODEL,
         KEY_SUBMDL_RAMP,
         {"B2200", "E2202", "E2203", "B2204", "B2205", "B2204"}},
    };
    for (const auto& section : sections) {
        LogCapture log;
        const auto head = [&log] { return log.Take().substr(0, 5); };
        char line[] = "[X] x";
        EXPECT_EQ(section.init(), 0);
        EXPECT_EQ(head(), section.heads[0]);
        section.receive(LINE_KEYWORD, section.opener, line);
        EXPECT_EQ(head(), section.heads[1]);
        section.receive(LINE_DATA, section.opener, line);
        EXPECT_EQ(head(), section.heads[2]);
        ASSERT_EQ(INIT(), 1);
        EXPECT_EQ(section.init(), 1);
        section.receive(LINE_KEYWORD, section.opener, line);
        section.receive(LINE_KEYWORD, KEY_PIN, line);
        EXPECT_EQ(head(), section.heads[3]);
        section.receive(2, section.opener, line);
        EXPECT_EQ(head(), section.heads[4]);
        section.receive(LINE_DATA, section.keyword, line);
        EXPECT_EQ(head(), section.heads[5]);
        FINI();
    }
}

// A file whose header and keyword table disagree.
GTEST_TEST(Mdl, KeywordOfALaterVersion)
{
    LogCapture log;
    geFileVersion = 2;
    ASSERT_EQ(INIT(), 1);
    MDL_Init();
    char model[] = "[Model] m";
    char spec[] = "[Model Spec]";
    MDL_ReceiveLine(LINE_KEYWORD, KEY_MODEL, model);
    MDL_ReceiveLine(LINE_KEYWORD, KEY_MODEL_SPEC, spec);
    EXPECT_EQ(log.Take(), "E0121 (line    0) - [Model Spec] needs IBIS version 3.0 or later.\n");
    FINI();
}
