// The four keyword tables, expanded from the one list, and the names in them.
#include "IbisParser/base/keyword.h"

#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/parse";

#define ROW(code, enumerator, name) {name, enumerator, 0},
#define NO_ROW(code, enumerator, name)

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

static_assert(sizeof keywords / sizeof keywords[0] == 50);
static_assert(sizeof keywords_Ver3 / sizeof keywords_Ver3[0] == 88);
static_assert(sizeof keywords_Ver4 / sizeof keywords_Ver4[0] == 109);
static_assert(sizeof keywords_Ver5 / sizeof keywords_Ver5[0] == 120);

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
