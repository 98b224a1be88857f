// [Test Data] with its waveforms.
#include "IbisParser/testdata.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"
#include "IbisParser/krng.h"
#include "IbisParser/mdl.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"
#include "IbisParser/testload.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/testdata";
static const SecFrame s_frame = {s_Module, 3800, 3801, 3802, 3803, 3804, 3805};

static TestData* s_open = nullptr;
static int s_keyword = NOT_KEY;      // the open record's current one
static Wvfrm* s_waveform = nullptr;  // being read

// Places in TestKind from 1.
static const char* const s_kindNames[] = {"Single_ended", "Differential", nullptr};

// clang-format off
static const struct SubParameter {
    const char* name;
    char (TestData::*value)[SIZE_NAME + 1];  // null: the type
    int required;
} s_subParameters[] = {
    { "Test_data_type",   nullptr,              1 },
    { "Driver_model",     &TestData::driver,    1 },
    { "Driver_model_inv", &TestData::driverInv, 0 },
    { "Test_load",        &TestData::load,      1 },
};
// clang-format on

static const char* s_inverseName()
{
    return s_subParameters[2].name;
}

static void s_setSubParameter(const SubParameter& row, const char* value)
{
    if (row.value != nullptr) {
        CMN_SetStr(s_open->*row.value, value, SIZE_NAME, row.name);
        return;
    }
    s_open->type = KRNG_Word(value, s_kindNames);
    if (s_open->type == TEST_KIND_UNSET) ERRLOG_LineErrorNew(3808, value);
}

static int s_subParameterLine(const char* line)
{
    CmnArgs args;
    if (!KRNG_Split(line, 2, &args)) return 0;
    const char* name = args.nStored > 0 ? args.argv[0] : "";
    const SubParameter* row = SEC_FindRow(s_subParameters, name);
    const int values = args.argc - 1;
    if (row == nullptr) {
        ERRLOG_LineErrorNew(3806, name);
    } else if (!SEC_MarkFound(&s_open->found, static_cast<int>(row - s_subParameters))) {
        ERRLOG_LineErrorNew(3807, row->name);
    } else {
        if (values != 1) ERRLOG_LineErrorNew(3812, row->name, values);
        if (args.nStored > 1) s_setSubParameter(*row, args.argv[1]);
    }
    CMN_ArgFree(&args);
    return row != nullptr;
}

static bool s_hasWaveform(const TestData* data)
{
    for (const Wvfrm* waveform : data->waveforms)
        if (waveform != nullptr) return true;
    return false;
}

static void s_beginWaveform(int code)
{
    if (code >= KEY_DIFF_RISING_WAVEFORM_NEAR && s_open->type == TEST_SINGLE_ENDED) {
        char keyword[SIZE_NAME + 1];
        std::snprintf(keyword, sizeof keyword, "[%s]", SEC_KeywordName(code));
        ERRLOG_LineErrorNew(3810, s_open->name, keyword);
    }
    Wvfrm** list = &s_open->waveforms[code - KEY_RISING_WAVEFORM_NEAR];
    WVFRM_New(list, code, s_open->name, &s_waveform);
}

static void s_finishKeyword()
{
    if (s_keyword == KEY_TEST_DATA && s_open->type == TEST_SINGLE_ENDED &&
        s_open->driverInv[0] != '\0')
        ERRLOG_LineErrorNew(3810, s_open->name, s_inverseName());
    if (s_waveform != nullptr) WVFRM_Fini(s_waveform);
    s_waveform = nullptr;
    s_keyword = NOT_KEY;
}

void TESTDATA_Close(void)
{
    if (s_open == nullptr) return;
    s_finishKeyword();
    for (const SubParameter& row : s_subParameters) {
        const bool given = (s_open->found >> (&row - s_subParameters) & 1u) != 0;
        if (row.required && !given) ERRLOG_LineErrorNew(3809, s_open->name, row.name);
    }
    if (!s_hasWaveform(s_open)) ERRLOG_LineErrorNew(3811, s_open->name);
    s_open = nullptr;
}

static int s_keywordLine(int code, char* line)
{
    if (code < KEY_TEST_DATA || code > KEY_DIFF_FALLING_WAVEFORM_FAR) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    s_finishKeyword();
    s_keyword = code;
    const char* keyword = SEC_KeywordName(code);
    char* text = SEC_Argument(line);
    if (code == KEY_TEST_DATA) {
        const char* name = TOKEN_Next(&text);
        CMN_SetStr(s_open->name, name != nullptr ? name : "", SIZE_NAME, keyword);
        CMN_ReservedWordErr(s_open->name);
    } else {
        s_beginWaveform(code);
    }
    SEC_IgnoreText(3813, TOKEN_SkipBlanks(text), keyword);
    return 1;
}

static int s_dataLine(char* line)
{
    if (s_keyword == KEY_TEST_DATA) return s_subParameterLine(line);
    return s_waveform != nullptr && WVFRM_ReceiveLine(s_waveform, line);
}

int TESTDATA_Init(void)
{
    TESTDATA_Close();
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    TestData* record = static_cast<TestData*>(SEC_NewRecord(&s_frame, sizeof(TestData)));
    if (record == nullptr) return 0;
    record->line = PARSE_GetLineNum();
    IBIS_AddTestData(root, record);
    s_open = record;
    s_keyword = NOT_KEY;
    return 1;
}

int TESTDATA_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_open)) return 0;
    return kind == LINE_KEYWORD ? s_keywordLine(code, line) : s_dataLine(line);
}

int TESTDATA_Fini(int nextCode)
{
    if (s_open == nullptr) return 0;
    const bool staysOpen = nextCode == NOT_KEY ||
                           (nextCode > KEY_TEST_DATA && nextCode <= KEY_DIFF_FALLING_WAVEFORM_FAR);
    if (staysOpen)
        s_finishKeyword();
    else
        TESTDATA_Close();
    return 1;
}

static void s_freeRecord(TestData* record)
{
    if (record == s_open) {
        s_open = nullptr;
        s_waveform = nullptr;
    }
    for (Wvfrm* waveform : record->waveforms)
        WVFRM_FreeList(waveform);
    SEC_FreeRecord(record);
}

void TESTDATA_FreeList(TestData* head)
{
    SEC_FreeList(head, s_freeRecord);
}

int TESTDATA_AddLink(TestData** head, TestData* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

TestData* TESTDATA_FindByName(TestData* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

const char* TESTDATA_KindName(int kind)
{
    return kind == TEST_SINGLE_ENDED || kind == TEST_DIFFERENTIAL ? s_kindNames[kind - 1] : nullptr;
}
