// Whole files while one allocation after the other fails: what is read is torn down cleanly, and
// the failure is told.
#include <gtest/gtest.h>

#include <string>

#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/failing_memory.h"

static std::string s_read(const char* name, int type, int passing)
{
    LogCapture log;
    gbSuppressBanners = 1;
    FailAllocationAfter(passing);
    if (INIT()) {
        if (PARSE((std::string(QUELL_SOURCE_DIR "/tests/data/") + name).c_str(), type))
            TEST(type, 1);
        FINI();
    }
    return log.Text();
}

GTEST_TEST(PackageMemory, FilesSurviveEveryFailure)
{
    static const struct {
        const char* name;
        int type;
    } files[] = {
        {"package/lgl_mtrx.pkg", FILE_PKG},
        {"package/legal_sections.pkg", FILE_PKG},
        {"package/mtx_rows.pkg", FILE_PKG},
        {"board/references.ebd", FILE_EBD},
        {"board/paths.ebd", FILE_EBD},
        {"testdata/legal_test.ibs", FILE_IBS},
        {"electrical/vitbl_structure.ibs", FILE_IBS},
        {"electrical/vitbl_shape.ibs", FILE_IBS},
        {"electrical/isso.ibs", FILE_IBS},
        {"electrical/holders.ibs", FILE_IBS},
        {"electrical/pulse.ibs", FILE_IBS},
        {"electrical/static_clamps.ibs", FILE_IBS},
    };
    for (const auto& file : files) {
        const std::string normal = s_read(file.name, file.type, -1);
        int passing = 0;
        for (;; ++passing) {
            const std::string text = s_read(file.name, file.type, passing);
            const bool failed = AllocationHasFailed();
            FailAllocationAfter(-1);
            if (!failed) break;
            EXPECT_NE(text, normal) << file.name << ", allocation " << passing;
        }
        EXPECT_GT(passing, 20) << file.name;
    }
}
