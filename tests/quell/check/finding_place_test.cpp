// The place of a finding on its way from the process that reads to the report.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "IbisParser/rng.h"
#include "quell/check/read_file.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

// Checks a text as an IBIS file; what the check sends is received as the report's.
FileReport Report(const std::string& text)
{
    const TempDir scratch;
    Opening opening;
    opening.path = opening.name = scratch.Write("t.ibs", text);
    std::FILE* pipe = std::tmpfile();
    FrameWriter writer(fileno(pipe));
    SendFindings(opening, writer);
    writer.Flush();
    std::rewind(pipe);
    std::string bytes(1U << 16, '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), pipe));
    std::fclose(pipe);

    FileReport report;
    report.name = "t.ibs";
    report.type = "ibs";
    ReportReceiver receiver(report, 20);
    FrameReader().Receive(bytes, [&](FrameFields frame) { receiver.Receive(frame); });
    ChildEnd end;
    end.done = true;
    receiver.End(end);
    return report;
}

GTEST_TEST(FindingPlace, ReachesTheReport)
{
    const FileReport report = Report(
        "[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1\n[Component] c\n[Manufacturer] q\n"
        "[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
        "[Pin] signal_name model_name R_pin L_pin C_pin\n  7 sig gone\n8 vss GND\n9 vdd POWER\n"
        "[Model] m\nModel_type Input\n   Vinl = none\nVinh = 2\nC_comp 1p NA NA\n"
        "[Voltage Range] 3 2 NA\n[GND Clamp]\n-3 -1 -1 NA\n0 0 0 NA\n[End]\n");
    struct Expected {
        unsigned number;
        ErrSubject subject;
        const char* name;
        int corner;
        unsigned long line;
        unsigned column;
        unsigned long recordLine;
    };
    const Expected rows[] = {
        {1909, SUBJECT_MODEL, "m", -1, 16, 4, 14},
        {530, SUBJECT_PIN, "7", -1, 11, 3, 4},
        {713, SUBJECT_MODEL, "m", -1, 14, 1, 14},
    };
    for (const Expected& row : rows) {
        const auto found =
            std::find_if(report.findings.begin(), report.findings.end(),
                         [&row](const Finding& finding) { return finding.number == row.number; });
        ASSERT_NE(found, report.findings.end()) << row.number;
        EXPECT_EQ(found->place.subject, row.subject) << row.number;
        EXPECT_EQ(found->place.name, row.name) << row.number;
        EXPECT_EQ(found->place.corner, row.corner) << row.number;
        EXPECT_EQ(found->place.line, row.line) << row.number;
        EXPECT_EQ(found->place.column, row.column) << row.number;
        EXPECT_EQ(found->place.recordLine, row.recordLine) << row.number;
    }
}

}  // namespace
}  // namespace quell
