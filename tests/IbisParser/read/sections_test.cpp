// Sections as a program meets them that sends lines out of order.
#include <gtest/gtest.h>

#include <string>

#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/ext.h"
#include "IbisParser/keyword.h"
#include "IbisParser/msel.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"
#include "tests/support/LogCapture.h"

// The first six numbers of a section's block: no document, orphan lines, a code of another
// section, an unknown kind of line. (The second is of memory that runs out.)
GTEST_TEST(Sections, CallsOutOfOrderAreReported)
{
    static const struct {
        int block;
        const char* module;
        const char* name;
        int (*init)();
        int (*receive)(int, int, char*);
        int code;
    } sections[] = {
        {500, "cmpnt", "Component", CMPNT_Init, CMPNT_ReceiveLine, KEY_PIN},
        {1100, "msel", "Model Selector", MSEL_Init, MSEL_ReceiveLine, KEY_MODEL_SELECTOR},
        {2300, "pkgmdl", "Define Package Model", PKGMDL_Init, PKGMDL_ReceiveLine, KEY_OEM},
        {3400, "ext", "External Circuit", EXT_CIR_Init, EXT_ReceiveLine, KEY_EXTERNAL_CIRCUIT},
        {3800, "testdata", "Test Data", TESTDATA_Init, TESTDATA_ReceiveLine,
         KEY_RISING_WAVEFORM_NEAR},
        {4000, "testload", "Test Load", TESTLOAD_Init, TESTLOAD_ReceiveLine, KEY_TEST_LOAD},
        {4300, "ebdmdl", "Begin Board Description", EBDMDL_Init, EBDMDL_ReceiveLine, KEY_PIN_LIST},
    };
    const auto head = [](char severity, int number) {
        const std::string digits = std::to_string(number);
        return severity + std::string(4 - digits.size(), '0') + digits;
    };
    for (const auto& s : sections) {
        SCOPED_TRACE(s.name);
        const std::string module = std::string("IbisParser/") + s.module + ":";
        LogCapture log;
        char line[] = "[Keyword] text";
        EXPECT_EQ(s.receive(LINE_KEYWORD, s.code, line), 0);
        EXPECT_EQ(log.Take(),
                  head('E', s.block + 2) + " (line    0) - Orphan " + s.name + " keyword.\n");
        EXPECT_EQ(s.receive(LINE_DATA, s.code, line), 0);
        EXPECT_EQ(log.Take(),
                  head('E', s.block + 3) + " (line    0) - Orphan " + s.name + " data line.\n");
        EXPECT_EQ(s.receive(2, s.code, line), 0);
        std::string text = log.Take();
        EXPECT_EQ(text.rfind(head('B', s.block + 5) + " (line    0) - ", 0), 0u) << text;
        EXPECT_NE(text.find(module), std::string::npos) << text;
        EXPECT_EQ(s.init(), 0);
        EXPECT_EQ(log.Take().rfind(head('B', s.block) + " - " + module, 0), 0u);
        ASSERT_EQ(INIT(), 1);
        EXPECT_EQ(s.init(), 1);
        EXPECT_EQ(s.receive(LINE_KEYWORD, KEY_FILE_NAME, line), 0);
        text = log.Take();
        EXPECT_EQ(text.rfind(head('B', s.block + 4) + " (line    0) - ", 0), 0u) << text;
        EXPECT_NE(text.find(module), std::string::npos) << text;
        FINI();
    }
}
