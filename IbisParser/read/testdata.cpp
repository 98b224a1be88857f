// [Test Data] with its waveforms.
#include "IbisParser/testdata.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/mdl.h"
#include "IbisParser/store/life.h"
#include "IbisParser/testload.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/testdata";
static const SecFrame s_frame = {s_Module, 3800, 3801, 3802, 3803, 3804, 3805};

static struct TestDataReading : SecReading<TestData> {
    Wvfrm* waveform = nullptr;  // the last one
} s_reading;

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

static void s_setSubParameter(TestData* data, const SubParameter& row, const char* value)
{
    if (row.value != nullptr) {
        CMN_SetStr(data->*row.value, value, SIZE_NAME, row.name);
        return;
    }
    data->type = KRNG_Word(value, s_kindNames);
    if (data->type == TEST_KIND_UNSET) ERRLOG_LineErrorNew(3808, value);
}

static int s_subParameterLine(TestData* data, const char* line)
{
    SecArgs args;
    if (!KRNG_Split(line, 2, &args)) return 0;
    const char* name = args.nStored > 0 ? args.argv[0] : "";
    const SubParameter* row = SEC_FindRow(s_subParameters, name);
    const int values = args.argc - 1;
    if (row == nullptr) {
        ERRLOG_LineErrorNew(3806, name);
    } else if (!SEC_MarkFound(&data->found, static_cast<int>(row - s_subParameters))) {
        ERRLOG_LineErrorNew(3807, row->name);
    } else {
        if (values != 1) ERRLOG_LineErrorNew(3812, row->name, values);
        if (args.nStored > 1) s_setSubParameter(data, *row, args.argv[1]);
    }
    return row != nullptr;
}

static bool s_hasWaveform(const TestData* data)
{
    for (const Wvfrm* waveform : data->waveforms)
        if (waveform != nullptr) return true;
    return false;
}

static int s_keywordLine(TestData* data, char* text)
{
    const char* keyword = SEC_KeywordName(KEY_TEST_DATA);
    const char* name = TOKEN_Next(&text);
    CMN_SetStr(data->name, name != nullptr ? name : "", SIZE_NAME, keyword);
    CMN_ReservedWordErr(data->name);
    SEC_IgnoreText(3813, TOKEN_SkipBlanks(text), keyword);
    return 1;
}

static int s_subParametersFini(TestData* data)
{
    const bool hasInverse = data->driverInv[0] != '\0';
    if (data->type == TEST_SINGLE_ENDED && hasInverse)
        ERRLOG_LineErrorNew(3810, data->name, s_inverseName());
    return 1;
}

static int s_waveformLine(TestData* data, const char* text)
{
    const int code = s_reading.keyword->code;
    const char* name = SEC_KeywordName(code);
    if (code >= KEY_DIFF_RISING_WAVEFORM_NEAR && data->type == TEST_SINGLE_ENDED) {
        char keyword[SIZE_NAME + 1];
        std::snprintf(keyword, sizeof keyword, "[%s]", name);
        ERRLOG_LineErrorNew(3810, data->name, keyword);
    }
    Wvfrm** list = &data->waveforms[code - KEY_RISING_WAVEFORM_NEAR];
    s_reading.waveform = nullptr;
    WVFRM_New(list, code, data->name, &s_reading.waveform);
    SEC_IgnoreText(3813, text, name);
    return 1;
}

static int s_waveformData(TestData*, const char* line)
{
    return s_reading.waveform != nullptr && WVFRM_ReceiveLine(s_reading.waveform, line);
}

static int s_waveformFini(TestData*)
{
    return s_reading.waveform != nullptr && WVFRM_Fini(s_reading.waveform);
}

static void s_end(TestData* data)
{
    for (const SubParameter& row : s_subParameters) {
        const bool given = (data->found >> (&row - s_subParameters) & 1u) != 0;
        if (row.required && !given) ERRLOG_LineErrorNew(3809, data->name, row.name);
    }
    if (!s_hasWaveform(data)) ERRLOG_LineErrorNew(3811, data->name);
}

static void s_release(TestData* data)
{
    for (Wvfrm* waveform : data->waveforms)
        WVFRM_FreeList(waveform);
    SEC_FreeRecord(data);
}

// clang-format off
static const SecKeyword<TestData> s_keywords[] = {
    { KEY_TEST_DATA,                  SEC_TEXT, s_keywordLine,  s_subParameterLine, s_subParametersFini },
    { KEY_RISING_WAVEFORM_NEAR,       0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_RISING_WAVEFORM_FAR,        0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_FALLING_WAVEFORM_NEAR,      0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_FALLING_WAVEFORM_FAR,       0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_DIFF_RISING_WAVEFORM_NEAR,  0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_DIFF_RISING_WAVEFORM_FAR,   0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_DIFF_FALLING_WAVEFORM_NEAR, 0,        s_waveformLine, s_waveformData,     s_waveformFini      },
    { KEY_DIFF_FALLING_WAVEFORM_FAR,  0,        s_waveformLine, s_waveformData,     s_waveformFini      },
};
// clang-format on

static const SecLife<TestDataReading> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_TEST_DATA,
    .subject = SUBJECT_TEST_DATA,
    .rows = s_keywords,
    .add = IBIS_AddTestData,
    .release = s_release,
    .end = s_end,
};

int TESTDATA_Init()
{
    return s_life.Init();
}

int TESTDATA_ReceiveLine(int kind, int code, char* line)
{
    return s_life.ReceiveLine(kind, code, line);
}

int TESTDATA_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void TESTDATA_Close()
{
    s_life.Close();
}

void TESTDATA_FreeList(TestData* head)
{
    s_life.FreeList(head);
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
