// Lists of texts and of the messages that they give, written as a file reads:
//
//     --- 3.2 no capacitance: E0125@7
//     [Model] m
//     Model_type Output
//     --- 3.2 a legal one:
//     [Model] m
//     ...
//
// A case begins with the version of the file and a label; behind the colon stands what IbsLog
// lists.
#ifndef TESTS_SUPPORT_IBS_CASES_H
#define TESTS_SUPPORT_IBS_CASES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/IbsLog.h"

// Checks each case, its text between head and tail. Lines count from the header, so that head
// begins at line 4.
inline void CheckCases(IbsLog log, const std::string& head, const std::string& tail,
                       const std::string& cases)
{
    struct Case {
        std::string version, label, messages, text;
    };
    std::vector<Case> list;
    std::istringstream lines(cases.substr(cases.find("--- ")));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("--- ")) {
            list.back().text += line + "\n";
            continue;
        }
        const std::size_t label = line.find(' ', 4) + 1;
        const std::size_t colon = line.find(':', label);
        ASSERT_NE(colon, std::string::npos) << line;
        list.push_back({line.substr(4, label - 5), line.substr(label, colon - label),
                        line.substr(std::min(colon + 2, line.size())), ""});
    }
    for (const Case& each : list)
        EXPECT_EQ(log.Check(each.version, head + each.text + tail), each.messages)
            << each.label << "\n"
            << log.Text();
}

#endif
