// The four keyword tables, expanded from the one list, and the names in them.
#include "IbisParser/base/keyword.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/parse";

#define ROW(code, enumerator, name, ...) {name, enumerator, 0},
#define NO_ROW(...)

#define KEYN NO_ROW
#define KEY2 ROW
#define KEY3 NO_ROW
#define KEY4 NO_ROW
#define KEY5 NO_ROW
const KeywordEntry keywords[] = {
#include "IbisParser/keywords.inc"
};
#undef KEY3
#define KEY3 ROW
const KeywordEntry keywords_Ver3[] = {
#include "IbisParser/keywords.inc"
};
#undef KEY4
#define KEY4 ROW
const KeywordEntry keywords_Ver4[] = {
#include "IbisParser/keywords.inc"
};
#undef KEY5
#define KEY5 ROW
const KeywordEntry keywords_Ver5[] = {
#include "IbisParser/keywords.inc"
};
#undef KEY2
#undef KEY3
#undef KEY4
#undef KEY5
#undef KEYN

#define KEYN(since, code, enumerator, name, display, section, ...) \
    {enumerator, name, display, since, SECTION_##section, 0u __VA_OPT__(| (__VA_ARGS__))},
#define KEY2(...) KEYN(2, __VA_ARGS__)
#define KEY3(...) KEYN(3, __VA_ARGS__)
#define KEY4(...) KEYN(4, __VA_ARGS__)
#define KEY5(...) KEYN(5, __VA_ARGS__)
static constexpr KeywordRow s_rows[] = {
#include "IbisParser/keywords.inc"
};

static_assert(sizeof keywords / sizeof keywords[0] == 50);
static_assert(sizeof keywords_Ver3 / sizeof keywords_Ver3[0] == 88);
static_assert(sizeof keywords_Ver4 / sizeof keywords_Ver4[0] == 109);
static_assert(sizeof keywords_Ver5 / sizeof keywords_Ver5[0] == 120);

static constexpr int s_maxCode = std::ranges::max(s_rows, {}, &KeywordRow::code).code;

// The places of the rows by code.
static constexpr auto s_places = [] {
    std::array<short, s_maxCode + 1> places = {};
    places.fill(-1);
    for (short place = 0; place < static_cast<short>(std::size(s_rows)); ++place)
        places[s_rows[place].code] = place;
    return places;
}();

std::span<const KeywordRow> KEYWORD_Rows()
{
    return s_rows;
}

const KeywordRow* KEYWORD_Row(int code)
{
    const int place =
        code >= 0 && code <= s_maxCode ? s_places[static_cast<std::size_t>(code)] : -1;
    return place >= 0 ? &s_rows[place] : nullptr;
}

KeywordSection KEYWORD_Section(int code)
{
    const KeywordRow* row = KEYWORD_Row(code);
    return row != nullptr ? row->section : SECTION_NONE;
}

bool KEYWORD_HasRule(int code, KeywordRule rule)
{
    const KeywordRow* row = KEYWORD_Row(code);
    return row != nullptr && (row->rules & rule) != 0;
}

char* PARSE_GetKeywordStr(int code, char* buf)
{
    CMN_ASSERT(buf != nullptr);
    const KeywordEntry* entry = keywords;
    while (entry->code != code && entry->code != NOT_KEY)
        ++entry;
    if (entry->code == code) {
        CMN_strncpy(buf, entry->name, KEYWORD_MAX);
    } else {
        ERRLOG_BugNew(904);
        CMN_strncpy(buf, "Unknown enumerated keyword code", KEYWORD_MAX);
    }
    return buf;
}
