// Where findings stand: scopes, the open record, remembered places, columns of quoted words.
#include "IbisParser/base/place.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"

namespace {

// The place of each message, as "line:column record subject 'name' corner".
class Places {
public:
    Places() { ERRLOG_SetSink(Receive, this); }
    ~Places() { ERRLOG_SetSink(nullptr, nullptr); }
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    // Of the messages since the last call.
    std::string Take()
    {
        std::string all;
        all.swap(m_All);
        return all;
    }

private:
    static void Receive(const ErrRecord* record, void* user)
    {
        std::string& all = static_cast<Places*>(user)->m_All;
        if (!all.empty()) all += "; ";
        all += std::to_string(record->itemLine) + ":" + std::to_string(record->column) + " " +
               std::to_string(record->recordLine) + " " + std::to_string(record->subject) + " '" +
               record->name + "' " + std::to_string(record->corner);
    }

    std::string m_All;
    LogCapture m_Log;
};

struct Row {
    const char* name;
    unsigned long line;
};

GTEST_TEST(Place, TheInnermostScopeAnswersAndTheRecordHolds)
{
    Places places;
    const Row model = {"m", 7};
    const Row table = {"", 9};
    const Row pin = {"A1", 3};
    ERRLOG_Warnx("nothing is open");
    {
        const PlaceScope at(SUBJECT_MODEL, &model);
        ERRLOG_Warnx("model");
        {
            const PlaceScope in(&table);
            const PlaceScope min(CORNER_MIN);
            ERRLOG_Warnx("table");
        }
        const PlaceScope null(static_cast<const Row*>(nullptr));
        ERRLOG_Warnx("model again");
        const PlaceElsewhere elsewhere;
        ERRLOG_Warnx("another file");
        const PlaceScope component(SUBJECT_COMPONENT, "c", {2, 1});
        const PlaceScope inner(SUBJECT_PIN, &pin);
        ERRLOG_Warnx("its pin");
    }
    ERRLOG_Warnx("nothing again");
    EXPECT_EQ(places.Take(),
              "0:0 0 1 '' -1; 7:0 7 9 'm' -1; 9:0 7 9 'm' 1; 7:0 7 9 'm' -1; 0:0 0 1 '' -1; "
              "3:0 2 3 'A1' -1; 0:0 0 1 '' -1");
}

GTEST_TEST(Place, TheOpenRecordHoldsTheLineUntilItCloses)
{
    Places places;
    gulLineNum = 4;
    std::string name = "";
    {
        const PlaceLine here("[Model] late");
        PLACE_Open(SUBJECT_MODEL, name.c_str());
    }
    name = "late";
    gulLineNum = 6;
    {
        const PlaceLine here("  Vinl  2");
        ERRLOG_LineWarnx("a line");
        const PlaceScope keyword(PlaceSpot{5, 2});
        ERRLOG_LineWarnx("the keyword before");
        const PlaceClosing closing(SUBJECT_MODEL, name.c_str(), {4, 1});
        ERRLOG_LineWarnx("the whole record");
    }
    {
        const PlaceLine here("orphan");
        ERRLOG_LineWarnx("no record");
    }
    gulLineNum = 0;
    EXPECT_EQ(places.Take(),
              "6:3 4 9 'late' -1; 5:2 4 9 'late' -1; 4:1 4 9 'late' -1; 6:1 0 1 '' -1");
}

// The line with a word cut off in place, as the sections leave it.
template <typename Raise>
std::string ColumnOf(Raise raise)
{
    char line[] = "  Pin Ab/Abc  3.5 Abc [Pin] last one";
    Places places;
    gulLineNum = 1;
    const PlaceLine here(line);
    line[17] = '\0';
    raise(line);
    gulLineNum = 0;
    const std::string place = places.Take();
    return place.substr(0, place.find(' '));
}

GTEST_TEST(Place, AQuotedWordOfTheLineTellsTheColumn)
{
    const auto quoting = [](const char* text) {
        return ColumnOf([text](char*) { ERRLOG_LineWarnx("%d %g '%s'", 1, 2.0, text); });
    };
    EXPECT_EQ(quoting("Abc"), "1:10");
    EXPECT_EQ(quoting("Ab"), "1:7");
    EXPECT_EQ(quoting("last one"), "1:29");
    EXPECT_EQ(quoting("3.5 Abc"), "1:15");
    // No whole word of the line: its first one.
    EXPECT_EQ(quoting("3."), "1:3");
    EXPECT_EQ(quoting(""), "1:3");
    // A part of the line is its own place, whatever it holds.
    EXPECT_EQ(ColumnOf([](char* line) { ERRLOG_LineWarnx("%s", line + 18); }), "1:19");
    // A name in brackets is the keyword's; the next text counts.
    EXPECT_EQ(ColumnOf([](char*) { ERRLOG_LineWarnx("[%s] of %s", "Abc", "last"); }), "1:29");
    EXPECT_EQ(ColumnOf([](char*) { ERRLOG_LineWarnx("%lu%% %.*s %s", 1ul, 2, "xy", "last"); }),
              "1:29");
}

GTEST_TEST(Place, RecordsKeepTheirLinesUntilTheDocumentGoes)
{
    std::vector<char> records(20000);
    for (std::size_t k = 0; k < records.size(); ++k)
        PLACE_RememberAt(&records[k], {k + 1, 2});
    PLACE_RememberAt(&records[5], {77, 3});
    for (std::size_t k = 0; k < records.size(); ++k)
        ASSERT_EQ(PLACE_Remembered(&records[k]).line, k == 5 ? 77 : k + 1);
    // The line that a record keeps goes before a remembered one of an address used again.
    const Row row = {"", 8};
    PLACE_RememberAt(&row, {8, 5});
    EXPECT_EQ(PLACE_Of(&row).column, 5u);
    PLACE_RememberAt(&row, {9, 5});
    EXPECT_EQ(PLACE_Of(&row).line, 8u);
    EXPECT_EQ(PLACE_Of(&row).column, 0u);
    PLACE_ForgetAll();
    EXPECT_EQ(PLACE_Remembered(&records[7]).line, 0u);
}

}  // namespace
