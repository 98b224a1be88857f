// [Test Load]: the elements of the network and the receivers at its end.
#include "IbisParser/testload.h"

#include <cstddef>
#include <iterator>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/mdl.h"
#include "IbisParser/store/life.h"

static const char s_Module[] = "IbisParser/testload";
static const SecFrame s_frame = {s_Module, 4000, 4001, 4002, 4003, 4004, 4005};

// Places in TestKind from 1.
static const char* const s_kindNames[] = {"Single_ended", "Differential", nullptr};

enum ValueSign { NOT_NEGATIVE, POSITIVE };

// clang-format off
// The single values, in the order of TestLoadValue. `term`: the termination voltage that the
// resistor needs.
static const struct LoadValue {
    const char* name;
    ValueSign sign;
    int term;
    int differential;
} s_values[] = {
    { "C1_near",     NOT_NEGATIVE, 0, 0 },
    { "Rs_near",     NOT_NEGATIVE, 0, 0 },
    { "Ls_near",     NOT_NEGATIVE, 0, 0 },
    { "C2_near",     NOT_NEGATIVE, 0, 0 },
    { "Rp1_near",    POSITIVE,     1, 0 },
    { "Rp2_near",    POSITIVE,     2, 0 },
    { "Td",          NOT_NEGATIVE, 0, 0 },
    { "Zo",          POSITIVE,     0, 0 },
    { "Rp1_far",     POSITIVE,     1, 0 },
    { "Rp2_far",     POSITIVE,     2, 0 },
    { "C2_far",      NOT_NEGATIVE, 0, 0 },
    { "Ls_far",      NOT_NEGATIVE, 0, 0 },
    { "Rs_far",      NOT_NEGATIVE, 0, 0 },
    { "C1_far",      NOT_NEGATIVE, 0, 0 },
    { "R_diff_near", POSITIVE,     0, 1 },
    { "R_diff_far",  POSITIVE,     0, 1 },
};
static_assert(std::size(s_values) == LOAD_VALUE_COUNT);

static const struct TermVoltage { const char* name; RngRange* TestLoad::* value; } s_terms[] = {
    { "V_term1", &TestLoad::V_term1 },
    { "V_term2", &TestLoad::V_term2 },
};

static const struct LoadWord {
    const char* name;
    char (TestLoad::*value)[SIZE_NAME + 1];  // null: the type
} s_words[] = {
    { "Test_load_type",     nullptr },
    { "Receiver_model",     &TestLoad::receiver },
    { "Receiver_model_inv", &TestLoad::receiverInv },
};
// clang-format on
static const char* const s_inverseName = s_words[2].name;

static void s_setLoadWord(TestLoad* load, const LoadWord& row, const CmnArgs* args)
{
    if (!SEC_MarkFound(&load->found, static_cast<int>(&row - s_words))) {
        ERRLOG_LineErrorNew(4007, row.name);
        return;
    }
    const int values = args->argc - 1;
    if (values != 1) ERRLOG_LineErrorNew(4010, row.name, 1, values);
    if (args->nStored < 2) return;
    if (row.value != nullptr) {
        CMN_SetStr(load->*row.value, args->argv[1], SIZE_NAME, row.name);
        return;
    }
    load->type = KRNG_Word(args->argv[1], s_kindNames);
    if (load->type == TEST_KIND_UNSET) ERRLOG_LineErrorNew(4008, args->argv[1]);
}

static void s_setValue(TestLoad* load, const LoadValue& row, const CmnArgs* args)
{
    const int values = args->argc - 1;
    if (values != 1) ERRLOG_LineErrorNew(4010, row.name, 1, values);
    RngSingle* cell = &load->values[&row - s_values];
    if (args->nStored < 2 || !KRNG_SetSingle(cell, args, row.name)) return;
    if (row.sign == NOT_NEGATIVE && cell->value < 0)
        ERRLOG_LineErrorNew(4011, load->name, row.name);
    if (row.sign == POSITIVE && cell->value <= 0) ERRLOG_LineErrorNew(4012, load->name, row.name);
}

static void s_setTerm(TestLoad* load, const TermVoltage& row, const CmnArgs* args, const char* line)
{
    RngRange** slot = &(load->*row.value);
    if (args->argc < 2) {
        ERRLOG_LineErrorNew(4010, row.name, 3, 0);
        return;
    }
    KRNG_SetRange(slot, KRNG_Values(line), row.name);
}

static int s_dataLine(TestLoad* load, const char* line)
{
    SecArgs args;
    if (!KRNG_Split(line, 4, &args)) return 0;
    const char* name = args.nStored > 0 ? args.argv[0] : "";
    int known = 1;
    if (const LoadValue* value = SEC_FindRow(s_values, name))
        s_setValue(load, *value, &args);
    else if (const TermVoltage* term = SEC_FindRow(s_terms, name))
        s_setTerm(load, *term, &args, line);
    else if (const LoadWord* word = SEC_FindRow(s_words, name))
        s_setLoadWord(load, *word, &args);
    else
        known = 0;
    if (!known) ERRLOG_LineErrorNew(4006, name);
    return known;
}

// The end of the record.

static void s_checkValue(const TestLoad* load, const LoadValue& row, const RngSingle& cell)
{
    if (cell.state != CELL_NUMBER) return;
    if (row.differential && load->type == TEST_SINGLE_ENDED)
        ERRLOG_LineErrorNew(4014, load->name, row.name);
    if (row.term == 0) return;
    const TermVoltage& term = s_terms[row.term - 1];
    if (load->*term.value == nullptr) ERRLOG_LineErrorNew(4015, load->name, row.name, term.name);
}

static void s_checkTerm(const TestLoad* load, const TermVoltage& term)
{
    if (load->*term.value == nullptr) return;
    for (const LoadValue& row : s_values)
        if (row.term == &term - s_terms + 1 && load->values[&row - s_values].state == CELL_NUMBER)
            return;
    ERRLOG_LineWarnNew(4016, load->name, term.name);
}

static void s_checkRecord(TestLoad* load)
{
    if ((load->found & 1u) == 0) ERRLOG_LineErrorNew(4009, load->name);
    bool isEmpty = true;
    for (const LoadValue& row : s_values) {
        const RngSingle& cell = load->values[&row - s_values];
        s_checkValue(load, row, cell);
        isEmpty = isEmpty && cell.state != CELL_NUMBER;
    }
    const bool hasTd = load->values[LOAD_TD].state == CELL_NUMBER;
    const bool hasZo = load->values[LOAD_ZO].state == CELL_NUMBER;
    if (hasTd != hasZo) ERRLOG_LineErrorNew(4013, load->name);
    if (load->type == TEST_SINGLE_ENDED && load->receiverInv[0] != '\0')
        ERRLOG_LineErrorNew(4014, load->name, s_inverseName);
    for (const TermVoltage& term : s_terms)
        s_checkTerm(load, term);
    if (isEmpty) ERRLOG_LineNoteNew(4017, load->name);
}

static int s_keywordLine(TestLoad* load, char* text)
{
    const char* name = TOKEN_Next(&text);
    CMN_SetStr(load->name, name != nullptr ? name : "", SIZE_NAME, "Test Load");
    CMN_ReservedWordErr(load->name);
    return 1;
}

static void s_release(TestLoad* load)
{
    RNG_Free(load->V_term1);
    RNG_Free(load->V_term2);
    SEC_FreeRecord(load);
}

static SecReading<TestLoad> s_reading;

static const SecKeyword<TestLoad> s_keywords[] = {
    {KEY_TEST_LOAD, SEC_TEXT, s_keywordLine, s_dataLine},
};

static const SecLife<SecReading<TestLoad>> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_TEST_LOAD,
    .subject = SUBJECT_TEST_LOAD,
    .rows = s_keywords,
    .add = IBIS_AddTestLoad,
    .release = s_release,
    .end = s_checkRecord,
};

int TESTLOAD_Init()
{
    return s_life.Init();
}

int TESTLOAD_ReceiveLine(int kind, int code, char* line)
{
    return s_life.ReceiveLine(kind, code, line);
}

int TESTLOAD_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void TESTLOAD_Close()
{
    s_life.Close();
}

void TESTLOAD_FreeList(TestLoad* head)
{
    s_life.FreeList(head);
}

int TESTLOAD_AddLink(TestLoad** head, TestLoad* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

TestLoad* TESTLOAD_FindByName(TestLoad* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

const char* TESTLOAD_ValueName(int value)
{
    CMN_ASSERT(value >= 0 && value < LOAD_VALUE_COUNT);
    return s_values[value].name;
}
