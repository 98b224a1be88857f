// Components as a program meets them that uses the library: the records, and calls out of order.
// What the rules say of files is tested in tests/data/component.
#include "IbisParser/cmpnt.h"

#include <gtest/gtest.h>

#include <string>

#include "IbisParser/dly.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/ext.h"
#include "IbisParser/keyword.h"
#include "IbisParser/krng.h"
#include "IbisParser/msel.h"
#include "IbisParser/nml.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

GTEST_TEST(Krng, SplitsTheThreeForms)
{
    static const struct {
        const char* line;
        int max;
        const char* items;  // joined by "|"
        int argc;
        const char* values;
        const char* log;
    } cases[] = {
        {"Vinl 0.8V", 3, "Vinl|0.8V", 2, "0.8V", ""},
        {"Vinl = 0.8V", 2, "Vinl|0.8V", 2, "0.8V", ""},
        {"Vinl=0.8V", 2, "Vinl|0.8V", 2, "0.8V", ""},
        {"\tC_comp =1p 2p  3p ", 2, "C_comp|1p", 4, "1p 2p  3p ", ""},
        {"Vinl", 2, "Vinl", 1, "", ""},
        {"Vinl =", 2, "Vinl", 1, "", ""},
        {"Vinl = = 1", 1, "Vinl", 2, "1", "E1918 (line    0) - Unexpected '=' found\n"},
        {"Vinl 1 = 2", 3, "Vinl|1|2", 3, "1 = 2", "E1918 (line    0) - Unexpected '=' found\n"},
        {"= 1", 3, "1", 1, "1", "E1918 (line    0) - Unexpected '=' found\n"},
        // However many stand there, the items are found.
        {"====a=1", 2, "a|1", 2, "a=1",
         "E1918 (line    0) - Unexpected '=' found\nE1918 (line    0) - Unexpected '=' found\n"
         "E1918 (line    0) - Unexpected '=' found\nE1918 (line    0) - Unexpected '=' found\n"
         "E1918 (line    0) - Unexpected '=' found\n"},
        {"", 3, "", 0, "", ""},
    };
    for (const auto& c : cases) {
        LogCapture log;
        CmnArgs args;
        ASSERT_EQ(KRNG_Split(c.line, c.max, &args), 1) << c.line;
        std::string items;
        for (int i = 0; i < args.nStored; ++i)
            items += (i > 0 ? "|" : "") + std::string(args.argv[i]);
        EXPECT_EQ(items, c.items) << c.line;
        EXPECT_EQ(args.argc, c.argc) << c.line;
        EXPECT_STREQ(KRNG_Values(c.line), c.values) << c.line;
        EXPECT_EQ(log.Take(), c.log) << c.line;
        CMN_ArgFree(&args);
    }
}

GTEST_TEST(Krng, NumbersThatAreNotFiniteCountAsNA)
{
    LogCapture log;
    RngRange* range = nullptr;
    EXPECT_EQ(KRNG_SetRange(&range, "1 -inf nan", "C_comp"), 0);
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->typState, CELL_NUMBER);
    EXPECT_EQ(range->minState, CELL_NA);
    EXPECT_EQ(range->maxState, CELL_NA);
    EXPECT_EQ(log.Take(), "E1909 (line    0) - Invalid C_comp Value (\"1 -inf nan\")\n");

    EXPECT_EQ(KRNG_SetRange(&range, "2 2 2", "C_comp"), 0);
    EXPECT_EQ(range->typ, 1.0);
    EXPECT_EQ(log.Take(), "E1911 (line    0) - Duplicate 'C_comp' keyword.\n");
    RNG_Free(range);
    range = nullptr;

    EXPECT_EQ(KRNG_SetRange(&range, "NA 1 1", "C_comp"), 0);
    EXPECT_EQ(log.Take(), "E3300 (line    0) - The typical value of C_comp must be a number.\n");
    RNG_Free(range);

    RngSingle single = {0.0, CELL_ABSENT};
    EXPECT_EQ(KRNG_ReadCell("NA", "Vinl", 0, &single), 0);
    EXPECT_EQ(single.state, CELL_ABSENT);
    EXPECT_EQ(KRNG_ReadCell("na", "vdiff", 1, &single), 1);
    EXPECT_EQ(single.state, CELL_NA);
}

GTEST_TEST(Krng, ExactWordGoesBeforeAnyCase)
{
    static const char* const words[] = {"TYP", "typ", "Min", nullptr};
    EXPECT_EQ(KRNG_Word("typ", words), 2);
    EXPECT_EQ(KRNG_Word("Typ", words), 1);
    EXPECT_EQ(KRNG_Word("MIN", words), 3);
    EXPECT_EQ(KRNG_Word("max", words), 0);
}

GTEST_TEST(Dly, OnlySchedulesRefuseNegativeDelays)
{
    LogCapture log;
    double value = 7.0;
    int state = CELL_ABSENT;
    EXPECT_EQ(DLY_Parse("-1n", "tdelay_typ", "3", &value, &state), 1);
    EXPECT_EQ(value, -1e-9);
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(DLY_ParseNotNegative("-1n", "Rise_on_dly", "stage", &value, &state), 1);
    EXPECT_EQ(log.Take(), "E2101 (line    0) - Rise_on_dly delay -1e-09 of 'stage' is negative.\n");
    EXPECT_EQ(DLY_ParseNotNegative("NA", "Rise_on_dly", "stage", &value, &state), 1);
    EXPECT_EQ(state, CELL_NA);
    EXPECT_EQ(log.Take(), "");
}

// The list is newest first; each surplus record is told once, in file order.
GTEST_TEST(Nml, TellsEverySurplusRecord)
{
    struct Record {
        Record* next;
        char name[8];
    };
    Record a = {nullptr, "x"};
    Record b = {&a, "X"};
    Record c = {&b, "y"};
    Record d = {&c, "x"};
    Record e = {&d, "y"};
    Record f = {&e, "x"};
    Record unnamed = {&f, ""};
    Record unnamed2 = {&unnamed, ""};
    LogCapture log;
    EXPECT_EQ(NML_CheckUnique(&unnamed2, offsetof(Record, name), offsetof(Record, next), "Model"),
              0);
    EXPECT_EQ(log.Take(),
              "E3600 - Duplicate Model name 'x'.\n"
              "E3600 - Duplicate Model name 'y'.\n"
              "E3600 - Duplicate Model name 'x'.\n");
    EXPECT_EQ(NML_CheckUnique(&c, offsetof(Record, name), offsetof(Record, next), "Model"), 1);
    EXPECT_EQ(NML_CheckUnique(nullptr, 0, 0, "Model"), 1);
}

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

static const char s_file[] =
    "[IBIS Ver] 4.2\n"
    "[File Name] records.ibs\n"
    "[File Rev] 1\n"
    "[Component] First\n"
    "Si_location Die\n"
    "[Manufacturer] Quarzel Labs\n"
    "[Package]\n"
    "R_pkg 1 NA 2\n"
    "L_pkg=3n NA NA\n"
    "C_pkg = 1p NA NA\n"
    "[Pin] signal_name model_name C_pin R_pin L_pin\n"
    "A1 D0 sel 1p 20m NA\n"
    "B2 D1 out\n"
    "C3 VDD power\n"
    "[Pin Mapping] pulldown_ref pullup_ref\n"
    "B2 G P\n"
    "A1 G P\n"
    "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n"
    "A1 B2 200m -1n NA 2n\n"
    "[Series Pin Mapping] pin_2 model_name function_table_group\n"
    "B2 A1 sw g1\n"
    "[Series Switch Groups]\n"
    "Off\n"
    "g2 g1 / \n"
    "On g1 /\n"
    "[Component] Second\n"
    "[Model Selector] sel\n"
    "out  The   default\n"
    "other Another\n"
    "[End]\n";

GTEST_TEST(Component, RecordsHoldWhatTheFileSays)
{
    const TempDir folder;
    const LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_EQ(INIT(), 1);
    ASSERT_EQ(PARSE(folder.Write("records.ibs", s_file).c_str(), FILE_IBS), 1);
    IbisRoot* root = nullptr;
    ASSERT_EQ(IBIS_GetIBIS(&root), 1);
    // Newest first.
    ASSERT_STREQ(root->cmpnts->name, "Second");
    const Cmpnt* component = CMPNT_FindByName(root->cmpnts, "First");
    ASSERT_NE(component, nullptr);
    EXPECT_EQ(component->next, nullptr);
    EXPECT_EQ(component->line, 4u);
    EXPECT_EQ(component->Si_location, LOCATION_DIE);
    EXPECT_EQ(component->Timing_location, LOCATION_UNSET);
    EXPECT_EQ(component->package->L_pkg->typ, 3 * 1e-9);
    EXPECT_EQ(component->package->R_pkg->minState, CELL_NA);
    EXPECT_EQ(component->reading, nullptr);

    // The columns follow the header.
    EXPECT_EQ(PIN_Count(component->pins), 3);
    const Pin* first = component->pins;
    EXPECT_STREQ(first->name, "A1");
    EXPECT_EQ(first->C.value, 1e-12);
    EXPECT_EQ(first->R.value, 0.02);
    EXPECT_EQ(first->L.state, CELL_NA);
    EXPECT_EQ(first->next->R.state, CELL_ABSENT);
    EXPECT_EQ(CMPNT_FindPin(component, "C3")->kind, PIN_POWER);
    EXPECT_EQ(CMPNT_FindPin(component, "c3"), nullptr);
    EXPECT_EQ(PIN_Find(component->pins, "B2"), first->next);

    // Pins know their lines in the other tables.
    EXPECT_EQ(first->mapping, component->pinMap->next);
    EXPECT_STREQ(first->mapping->bus[PINMAP_PULLUP], "P");
    EXPECT_EQ(first->pair, component->diffPins);
    EXPECT_EQ(first->next->pair, DIFFPIN_Find(component->diffPins, "B2"));
    EXPECT_EQ(first->pair->tdelayTyp.value, -1e-9);
    EXPECT_EQ(first->pair->tdelayMin.state, CELL_NA);

    const SerMap* series = SERMAP_Find(component->seriesPins, "A1");
    ASSERT_NE(series, nullptr);
    EXPECT_STREQ(series->group, "g1");
    const SerState* state = component->switchStates;
    EXPECT_EQ(state->on, 0);
    EXPECT_STREQ(state->groups->name, "g2");
    EXPECT_STREQ(state->groups->next->name, "g1");
    EXPECT_EQ(state->next->on, 1);

    const MselRow* row = MSEL_FindByName(root->msels, "sel")->rows;
    EXPECT_STREQ(row->model, "out");
    EXPECT_STREQ(row->description, "The   default");
    EXPECT_STREQ(row->next->model, "other");
    FINI();
}

// Reading a package file in the middle of the checks leaves no trace in the state of the reader.
GTEST_TEST(Component, PackageFileLeavesNoTrace)
{
    const TempDir folder;
    const TempDir elsewhere;
    const std::string name = folder.Write("package.ibs",
                                          "[IBIS Ver] 2.1\n"
                                          "[File Name] package.ibs\n"
                                          "[File Rev] 1\n"
                                          "[Component] One\n"
                                          "[Package Model] My Package\n"
                                          "[Pin] signal_name model_name\n"
                                          "1 A NC\n"
                                          "[End]\n");
    folder.Write("my_package.pkg",
                 "[IBIS Ver] 4.2\n"
                 "[Comment Char] #_char\n"
                 "[File Name] my_package.pkg\n"
                 "[File Rev] 1\n"
                 "[Define Package Model] My Package\n"
                 "[Pin Numbers]\n"
                 "1\n");
    LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_EQ(INIT(), 1);
    ASSERT_EQ(PARSE(name.c_str(), FILE_IBS), 1);
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    log.Take();
    EXPECT_EQ(CMPNT_TestPkgMdl(root->cmpnts), 1);
    // The package file has no end and lacks keywords: it was read.
    EXPECT_NE(log.Take().find("E0903 (line    7)"), std::string::npos);
    EXPECT_EQ(gulLineNum, 8u);
    EXPECT_STREQ(gsFileName, "package.ibs");
    EXPECT_EQ(gsFilePath_ibs, folder.Path());
    EXPECT_EQ(geFileVersion, 2);
    EXPECT_EQ(geCurrFileType, FILE_IBS);
    EXPECT_EQ(gpcComment, '|');
    IbisRoot* after = nullptr;
    EXPECT_EQ(IBIS_GetIBIS(&after), 1);
    EXPECT_EQ(after, root);
    EXPECT_EQ(root->pkgMdls, nullptr);
    FINI();
}
