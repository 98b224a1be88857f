// quell check through the built command.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace {

using nlohmann::json;

std::string File(const std::string& version, const std::string& name, const std::string& rest = "")
{
    return "[IBIS Ver] " + version + "\n[File Name] " + name + "\n[File Rev] 1\n" + rest +
           "[End]\n";
}

std::string Package(const std::string& name)
{
    return File("3.2", name,
                R"([Define Package Model] qs
[Manufacturer] q
[OEM] q
[Description] d
[Number Of Pins] 1
[Pin Numbers]
1
[Model Data]
[Resistance Matrix] Full_matrix
[Row] 1
1
[Inductance Matrix] Full_matrix
[Row] 1
1n
[Capacitance Matrix] Full_matrix
[Row] 1
1p
[End Model Data]
[End Package Model]
)");
}

// What is printed; input is a file.
std::string Check(const std::string& arguments, int exitCode,
                  const std::string& input = "/dev/null")
{
    const CommandResult result = RunQuell("check " + arguments, input);
    EXPECT_EQ(result.exitCode, exitCode) << arguments << "\n" << result.out << result.err;
    return result.out + result.err;
}

GTEST_TEST(Check, FindingWithItsLineAndCaret)
{
    const TempDir scratch;
    const std::string path = scratch.Write("a.pkg", File("3.2", "A.pkg"));
    EXPECT_EQ(Check(path, 1), path +
                                  ":2: error[1010]: File_name 'A.pkg' contains an upper case "
                                  "character 'A'.\n"
                                  "    [File Name] A.pkg\n"
                                  "                ^~~~~\n" +
                                  path + ": 1 error\n1 file: 1 with errors; 1 error\n");
}

GTEST_TEST(Check, InputsAndExitCodes)
{
    const TempDir scratch;
    const std::string good = scratch.Write("good.pkg", Package("good.pkg"));
    const std::string other = scratch.Write("other.txt", Package("other.pkg"));
    const std::string later = scratch.Write("later.pkg", File("7.1", "later.pkg"));
    std::filesystem::create_directory(scratch.Path("empty"));
    ASSERT_EQ(mkfifo(scratch.Path("pipe.ibs").c_str(), 0600), 0);
    const struct {
        std::string arguments;
        int exitCode;
        const char* text;
    } rows[] = {
        {good, 0, "good.pkg: no findings\n"},
        {scratch.Write("UPPER.PKG", Package("upper.pkg")), 0, "warning[0901]"},
        {scratch.Write("no_text.ibs", ""), 1, "error[0900]"},
        {scratch.Write("zeros.ibs", std::string(1000, '\0')), 1, "error[0900]"},
        {scratch.Path("missing.ibs"), 2, "missing.ibs: no such file\n"},
        {scratch.Path("pipe.ibs"), 2, "not a regular file\n"},
        {scratch.Path("empty"), 2, "a folder without .ibs"},
        {other, 2, "--type tells what it is"},
        {other + " --type pkg", 0, "other.txt: no findings\n"},
        {other + " --type pkg --format classic", 1, "E1903 - "},
        {later, 2, "declares version 7.1, beyond 5.0"},
        {later + " --as 5.0", 0, "later.pkg: no findings, checked as 5.0\n"},
        {later + " --as 5.1", 2, "--as: '5.1' is none of"},
        {later + " --format classic", 1, "E0900 - "},
        {"- --stdin-name x/y.pkg", 1, "x/y.pkg:2: error[1014]"},
        {"-", 2, "needs --stdin-name or --type"},
        {"- --type pkg --stdin-name good.txt", 0, "good.txt: no findings\n"},
        {good + " --jobs 0", 2, "--jobs"},
        {"", 2, "files is required"},
    };
    for (const auto& row : rows) {
        const std::string out = Check(row.arguments, row.exitCode, good);
        EXPECT_NE(out.find(row.text), std::string::npos) << row.arguments << "\n" << out;
    }
}

GTEST_TEST(Check, FoldersAreWalkedInOrder)
{
    const TempDir scratch;
    std::filesystem::create_directories(scratch.Path("all/b"));
    for (const char* name : {"all/c.pkg", "all/b/z.PKG", "all/b/a.pkg", "all/a.pkg", "all/x.txt"})
        scratch.Write(name, "");
    std::filesystem::create_directory_symlink(scratch.Path("all"), scratch.Path("all/b/round"));
    const json result =
        json::parse(RunQuell("check -j 4 --format json " + scratch.Path("all")).out);
    std::vector<std::string> names;
    for (const json& file : result["files"])
        names.push_back(file["file"]);
    EXPECT_EQ(names,
              (std::vector<std::string>{scratch.Path("all/a.pkg"), scratch.Path("all/b/a.pkg"),
                                        scratch.Path("all/b/z.PKG"), scratch.Path("all/c.pkg")}));
    EXPECT_EQ(result["total"]["files"], 4);
    EXPECT_EQ(result["total"]["errors"], 4);
}

GTEST_TEST(Check, ManyOfOneNumberAreCountedInTheTextAndListedInJson)
{
    const TempDir scratch;
    std::string rest;
    for (int k = 0; k < 30; ++k)
        rest += "[Nothing]\n";
    const std::string path = scratch.Write("a.pkg", File("3.2", "a.pkg", rest));
    EXPECT_NE(Check(path, 1).find("a.pkg: ... and 10 more of error[0916]\n"), std::string::npos);
    const json result = json::parse(RunQuell("check --format json " + path).out);
    EXPECT_EQ(result["files"][0]["findings"].size(), 30u);
    EXPECT_EQ(result["files"][0]["declared_version"], "3.2");
    const json finding = result["files"][0]["findings"][29];
    EXPECT_EQ(finding["line"], 33);
    EXPECT_EQ(finding["number"], 916);
    EXPECT_EQ(finding["severity"], "error");
    EXPECT_EQ(finding["text"], "Invalid Keyword: Nothing");
    EXPECT_EQ(finding["file"], path);
}

// A component whose parameter file lies beside it, through each way of another name.
GTEST_TEST(Check, CompanionsAreFoundAndKeepTheirNames)
{
    const TempDir scratch;
    const std::string kit = QUELL_BINARY_DIR "/kit/";
    std::string ibs = ReadFile(kit + "quell_pcie_gen2_tx.ibs");
    // Two lines name the parameter file, which is told of once.
    const size_t executable = ibs.find("Executable ");
    ASSERT_NE(executable, std::string::npos);
    ibs.insert(executable,
               "Executable Linux_other_64 quell_pcie_gen2_tx.so quell_pcie_gen2_tx.ami\n");
    std::filesystem::create_directory(scratch.Path("models"));
    scratch.Write("models/quell_pcie_gen2_tx.ami", "(Tx (Model_Specific (a (Usage Odd))))\n");
    scratch.Write("models/quell_pcie_gen2_tx.so", "");
    const size_t version = ibs.find("5.0", ibs.find("[IBIS Ver]"));
    ASSERT_NE(version, std::string::npos);
    const std::string plain = scratch.Write("models/quell_pcie_gen2_tx.ibs", ibs);
    const std::string text = scratch.Write("models/quell_pcie_gen2_tx.txt", ibs);
    const std::string companion = scratch.Path("models/quell_pcie_gen2_tx.ami");
    ibs.replace(version, 3, "7.1");
    const std::string later = scratch.Write("later.ibs", ibs);
    for (const std::string& arguments :
         {plain, text + " --type ibs", plain + " --as 5.0", "- --as 5.0 --stdin-name " + plain}) {
        const std::string out = Check(arguments, 1, later);
        EXPECT_NE(out.find(companion + ": error[4622]: "), std::string::npos) << out;
        EXPECT_NE(out.find(": 2 errors"), std::string::npos) << out;
        EXPECT_EQ(out.find("4616"), std::string::npos) << out;
    }
    // A bare name means the working folder, which holds no such parameter file.
    const std::string bare = Check("- --stdin-name quell_pcie_gen2_tx.ibs", 1, plain);
    EXPECT_NE(bare.find("error[4618]"), std::string::npos) << bare;
    EXPECT_EQ(
        Check(kit + "quell_pcie_gen2_tx.ibs " + kit + "quell_pcie_gen2_tx.ami --color always", 0)
            .find("\x1b[1m"),
        0u);
}

// A pipe that nobody writes to would be waited for.
GTEST_TEST(Check, CompanionsThatAreNoPlainFilesAreNotOpened)
{
    const TempDir scratch;
    const std::string path = scratch.Write(
        "quell_pcie_gen2_tx.ibs", ReadFile(QUELL_BINARY_DIR "/kit/quell_pcie_gen2_tx.ibs"));
    for (const char* name : {"quell_pcie_gen2_tx.ami", "quell_pcie_gen2_tx.so"})
        ASSERT_EQ(mkfifo(scratch.Path(name).c_str(), 0600), 0);
    const std::string out = Check(path, 1);
    for (const char* number : {"[4616]", "[4618]", "2 errors"})
        EXPECT_NE(out.find(number), std::string::npos) << out;
}

// Every log that the reader is held to, through the command: a folder's files at once, in order.
GTEST_TEST(Check, ClassicIsTheReadersOwnOutput)
{
    const TempDir scratch;
    std::map<std::string, std::pair<std::string, std::string>> folders;  // files, their logs
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(QUELL_SOURCE_DIR "/tests/data")) {
        if (entry.path().extension() != ".expect") continue;
        auto& [files, logs] = folders[entry.path().parent_path().string()];
        files += " " + entry.path().stem().string();
        logs += ReadFile(entry.path());
    }
    ASSERT_FALSE(folders.empty());
    for (const auto& [folder, expected] : folders) {
        const std::string line = "cd " + folder +
                                 " && " QUELL_BINARY_DIR "/bin/quell check -j 3 --format classic" +
                                 expected.first + " >" + scratch.Path("out");
        EXPECT_NE(std::system(line.c_str()), -1);
        EXPECT_EQ(ReadFile(scratch.Path("out")), expected.second) << folder;
    }
}

}  // namespace
