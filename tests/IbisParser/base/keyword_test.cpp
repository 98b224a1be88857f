// The tables of keywords and versions: what the columns promise each other.
#include "IbisParser/base/keyword.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "IbisParser/base/version.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"

GTEST_TEST(Keywords, RowsAgreeWithThemselves)
{
    std::set<int> codes;
    std::map<std::string, int> elsewhere;  // rows of a name without a place rule
    for (const KeywordRow& row : KEYWORD_Rows()) {
        EXPECT_TRUE(codes.insert(row.code).second) << row.name << ": code of another keyword";
        EXPECT_EQ(KEYWORD_Row(row.code), &row) << row.name;
        std::string display = row.display;
        EXPECT_TRUE(CMN_MatchKeyword(row.name, display.data())) << row.name << ": " << row.display;
        elsewhere[row.name] += (row.rules & RULE_PLACES) == 0;
    }
    for (const auto& [name, rows] : elsewhere)
        EXPECT_EQ(rows, 1) << name << " has no single meaning where no place rule holds";
    for (const int code : {-1, 25000}) {
        EXPECT_EQ(KEYWORD_Row(code), nullptr);
        EXPECT_EQ(KEYWORD_Section(code), SECTION_NONE);
        EXPECT_FALSE(KEYWORD_HasRule(code, RULE_HEAD));
    }
}

GTEST_TEST(Keywords, CountFromTheVersionOfTheirTable)
{
    static const struct {
        const KeywordEntry* table;
        int versionClass;
    } tables[] = {{keywords, 2}, {keywords_Ver3, 3}, {keywords_Ver4, 4}, {keywords_Ver5, 5}};
    for (const auto& [table, versionClass] : tables) {
        const KeywordEntry* entry = table;
        for (const KeywordRow& row : KEYWORD_Rows()) {
            if (row.since > versionClass) continue;
            EXPECT_EQ(entry->code, row.code) << "table of class " << versionClass;
            EXPECT_STREQ(entry->name, row.name);
            ++entry;
        }
        EXPECT_EQ(entry[-1].code, NOT_KEY);
    }
}

GTEST_TEST(Versions, GrowFromRowToRow)
{
    const VersionRow* before = nullptr;
    for (const VersionRow& row : VERSION_Rows()) {
        EXPECT_EQ(VERSION_Find(row.text), &row);
        EXPECT_EQ(VERSION_Probe((std::string(row.text) + "|").c_str()), row.versionClass);
        if (before != nullptr) {
            EXPECT_LT(std::string(before->text), row.text);
            EXPECT_LE(before->versionClass, row.versionClass);
            EXPECT_LE(before->lineMax, row.lineMax);
            for (int limit = 0; limit < LIMIT_COUNT; ++limit)
                EXPECT_LE(before->limits[limit], row.limits[limit]) << row.text << ": " << limit;
        }
        before = &row;
    }
    EXPECT_EQ(before, VERSION_Latest());
}

GTEST_TEST(Versions, ClassesNameTheirFirstAndLastVersion)
{
    static const struct {
        int versionClass;
        const char* since;
        const char* newest;
        bool isRead;
    } rows[] = {{0, "2.0", "2.1", false}, {1, "2.0", "2.1", false}, {2, "2.0", "2.1", true},
                {3, "3.0", "3.2", true},  {4, "4.0", "4.2", true},  {5, "5.0", "5.0", true}};
    for (const auto& row : rows) {
        EXPECT_STREQ(VERSION_Since(row.versionClass), row.since);
        EXPECT_STREQ(VERSION_OfClass(row.versionClass)->text, row.newest);
        EXPECT_EQ(VERSION_IsRead(row.versionClass), row.isRead) << row.versionClass;
    }
    EXPECT_EQ(VERSION_OfClass(1000), VERSION_Latest());
    EXPECT_FALSE(VERSION_IsRead(VERSION_Latest()->versionClass + 1));
}

GTEST_TEST(Versions, AreProbedByTheirFirstDigitWhereTheyHaveNoRow)
{
    static const struct {
        const char* text;
        int versionClass;
    } rows[] = {{"3.7", 3}, {"4", 4}, {"2.2.1", 2}, {"1.1", 1}, {"0.9", 0}, {"x", 0}, {"", 0}};
    for (const auto& row : rows)
        EXPECT_EQ(VERSION_Probe(row.text), row.versionClass) << row.text;
}
