// The check of many files drives any format, which knows nothing of the order in which they end.
#include "quell/check/check_files.h"

#include <gtest/gtest.h>

#include <sstream>

#include "quell/check/formats.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

// Tells all that it is asked.
class Recorder : public CheckFormat {
public:
    size_t KeptPerNumber() const override { return 1; }
    void Begin(Output& output) override { output.Print("begin\n"); }
    void Add(const Finding& finding, Spool& waiting) override
    {
        waiting.Append(finding.file + " " + std::to_string(finding.number) + "\n");
    }
    void File(const CheckFile& file, const FileReport& report, Spool& waiting,
              Output& output) override
    {
        output.Print(waiting);
        output.Print(file.name + ", " + StatusWord(report.status) + ", " +
                     std::to_string(report.findings.size()) + " kept\n");
    }
    void End(const Totals& totals, Output& output) override
    {
        output.Print("end " + std::to_string(totals.files) + "\n");
    }
};

GTEST_TEST(CheckFiles, FormatsGetEveryFindingAndFilesInOrder)
{
    const TempDir scratch;
    CheckRequest request;
    // Much, nothing, little; a version that is not checked; no file.
    const std::string head = "[File Rev] 1\n";
    std::string many;
    for (int k = 0; k < 3000; ++k)
        many += "[Nothing]\n";
    const std::pair<const char*, std::string> files[] = {
        {"a.pkg", "[IBIS Ver] 3.2\n[File Name] a.pkg\n" + head + many + "[End]\n"},
        {"b.ami", ReadFile(QUELL_BINARY_DIR "/kit/quell_pcie_gen2_tx.ami")},
        {"c.pkg", "[IBIS Ver] 3.2\n[File Name] C.pkg\n" + head + "[End]\n"},
        {"d.pkg", "[IBIS Ver] 9.9\n[File Name] D.pkg\n" + head + "[End]\n"},
    };
    FileSearch search;
    for (const auto& [name, text] : files)
        search.arguments.push_back(scratch.Write(name, text));
    search.arguments.push_back(scratch.Path("e.pkg"));
    request.files = FindFiles(search);

    std::string expected = "begin\n";
    for (int k = 0; k < 3000; ++k)
        expected += scratch.Path("a.pkg") + " 916\n";
    expected += scratch.Path("a.pkg") + ", checked, 1 kept\n" + scratch.Path("b.ami") +
                ", checked, 0 kept\n" + scratch.Path("c.pkg") + " 1010\n" + scratch.Path("c.pkg") +
                ", checked, 1 kept\n" + scratch.Path("d.pkg") + ", beyond, 0 kept\n" +
                scratch.Path("e.pkg") + ", not read, 0 kept\nend 5\n";
    for (const size_t jobs : {size_t{1}, size_t{3}}) {
        request.jobs = jobs;
        Recorder recorder;
        std::ostringstream out;
        const Totals totals = CheckFiles(request, recorder, out);
        EXPECT_EQ(out.str(), expected) << jobs;
        EXPECT_EQ(totals.ExitCode(), 1) << jobs;
        EXPECT_EQ(totals.counts[static_cast<size_t>(Severity::Error)], 3001u) << jobs;
    }
}

// What is printed does not depend on how many files are read at once.
GTEST_TEST(CheckFiles, EveryFormatIsTheSameForAnyNumberOfJobs)
{
    FileSearch search;
    search.arguments = {QUELL_SOURCE_DIR "/tests/data"};
    CheckRequest request;
    request.files = FindFiles(search);
    ASSERT_GT(request.files.size(), 10u);
    for (const auto& [name, make] : Formats) {
        std::string first;
        for (const size_t jobs : {size_t{1}, size_t{3}}) {
            request.jobs = jobs;
            std::ostringstream out;
            CheckFiles(request, *make({}), out);
            if (jobs == 1) first = out.str();
            EXPECT_FALSE(first.empty()) << name;
            EXPECT_TRUE(out.str() == first) << name << ", " << jobs << " jobs";
        }
    }
}

}  // namespace
}  // namespace quell
