// Keyword lines become codes, and every line goes to the section that owns it.
#include "IbisParser/read/sender.h"

#include <algorithm>
#include <cstring>

#include "IbisParser/base/keyword.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/sections.h"

// The sender is a part of the reader.
static const char s_Module[] = "IbisParser/parse";

static const VersionRow s_versions[] = {
    {keywords, 80, "2.1"},  // classes below 2 are read as class 2
    {keywords_Ver3, 80, "3.2"},
    {keywords_Ver4, 120, "4.2"},
    {keywords_Ver5, 120, "5.0"},
};

// Keywords that mean another one in their context.
struct ContextRow {
    KeywordCode read;
    KeywordCode meant;
    bool (*holds)(void);
};

// clang-format off
static bool s_inPackageModel(void) { return KEY_DEFINE_PACKAGE_MODEL <= geCurrentKeyword && geCurrentKeyword <= KEY_DESCRIPTION; }
static bool s_inBoard(void)        { return geCurrentKeyword == KEY_BEGIN_BOARD_DESCRIPTION || geCurrentKeyword == KEY_EBDMDL_MANUFACTURER; }
static bool s_inBoardFile(void)    { return geCurrFileType == FILE_EBD; }
static bool s_inSubModel(void)     { return gbInSubModel != 0; }

static const ContextRow s_contexts[] = {
    { KEY_MANUFACTURER,     KEY_PKGMDL_MANUFACTURER,     s_inPackageModel },
    { KEY_MANUFACTURER,     KEY_EBDMDL_MANUFACTURER,     s_inBoard },
    { KEY_NUMBER_OF_PINS,   KEY_EBDMDL_NUMBER_OF_PINS,   s_inBoardFile },
    { KEY_PULLDOWN,         KEY_SUBMDL_PULLDOWN,         s_inSubModel },
    { KEY_PULLUP,           KEY_SUBMDL_PULLUP,           s_inSubModel },
    { KEY_GND_CLAMP,        KEY_SUBMDL_GND_CLAMP,        s_inSubModel },
    { KEY_POWER_CLAMP,      KEY_SUBMDL_POWER_CLAMP,      s_inSubModel },
    { KEY_RAMP,             KEY_SUBMDL_RAMP,             s_inSubModel },
    { KEY_RISING_WAVEFORM,  KEY_SUBMDL_RISING_WAVEFORM,  s_inSubModel },
    { KEY_FALLING_WAVEFORM, KEY_SUBMDL_FALLING_WAVEFORM, s_inSubModel },
};
// clang-format on

static KeywordCode s_inContext(KeywordCode code)
{
    for (const ContextRow& row : s_contexts)
        if (row.read == code && row.holds()) return row.meant;
    return code;
}

// The entry of the version's table that has the name, else its last one. Blanks of the name become
// "_".
static const KeywordEntry* s_findKeyword(char* name)
{
    std::replace(name, name + std::strlen(name), ' ', '_');
    const char first =
        name[0] >= 'a' && name[0] <= 'z' ? static_cast<char>(name[0] - 'a' + 'A') : name[0];
    const KeywordEntry* entry = SENDER_Version(geFileVersion)->keywords;
    // Most entries differ in their first letter.
    while (entry->code != NOT_KEY &&
           (entry->name[0] != first || !CMN_MatchKeyword(entry->name, name)))
        ++entry;
    return entry;
}

static KeywordCode s_getKeyword(const char* line)
{
    CMN_ASSERT(line != nullptr);
    const char* end = std::strchr(line, ']');
    if (end == nullptr) {
        ERRLOG_LineErrorNew(914);
        return NOT_KEY;
    }
    const std::size_t length = static_cast<std::size_t>(end - line) - 1;
    if (length == 0 || length > KEYWORD_MAX) {
        ERRLOG_LineErrorNew(915);
        return NOT_KEY;
    }
    char name[KEYWORD_MAX + 1];
    CMN_strncpy(name, line + 1, length);
    const KeywordEntry* entry = s_findKeyword(name);
    if (entry->code == NOT_KEY) ERRLOG_LineErrorNew(916, name);
    return s_inContext(entry->code);
}

static KeywordCode s_lastKnown = NOT_KEY;  // the current keyword, or the one before unknown ones

// The section that is told which keyword begins. Behind an unknown keyword that is none; but
// [Manufacturer] then comes as a component's, and the package or board that waits for one must
// learn of it.
static const Section* s_findPrevious(KeywordCode code)
{
    const bool awaited =
        KEY_DEFINE_PACKAGE_MODEL <= s_lastKnown && s_lastKnown <= KEY_END_BOARD_DESCRIPTION;
    if (geCurrentKeyword == NOT_KEY && code == KEY_MANUFACTURER && awaited)
        return SECTIONS_Find(s_lastKnown);
    return SECTIONS_Find(geCurrentKeyword);
}

// The number of the message that refuses the section in this file, or 0.
static int s_refusal(const Section* section)
{
    return section->refusal[geCurrFileType - FILE_IBS];
}

// Begins a record of the section whose opening keyword was read.
static void s_openSection(const Section* section, KeywordCode code)
{
    if (code == KEY_IBIS_VER && gbIBIS_VerFound) {
        ERRLOG_LineErrorNew(910);
        return;
    }
    int refusal = s_refusal(section);
    // Version 2 has no board files, so it knows two kinds of file only. A package model, which
    // both may hold, keeps its own message.
    if (refusal != 0 && geFileVersion <= 2 && (code == KEY_COMPONENT || code == KEY_MODEL))
        refusal = 911;
    if (refusal != 0) {
        ERRLOG_LineErrorNew(static_cast<unsigned>(refusal));
        return;
    }
    if (code == KEY_IBIS_VER) gbIBIS_VerFound = 1;
    if (code == KEY_SUBMODEL) gbInSubModel = 1;
    section->init();
}

static void s_beginKeyword(const char* line)
{
    if (gbContinue) {
        ERRLOG_LineErrorNew(909);
        gbContinue = 0;
    }
    const KeywordCode code = s_getKeyword(line);
    const Section* previous = s_findPrevious(code);
    const Section* section = SECTIONS_Find(code);
    geCurrentKeyword = code;
    if (code != NOT_KEY) s_lastKnown = code;
    if (previous != nullptr && previous->fini != nullptr) previous->fini(code);
    // An unknown keyword may be one of a later version, in the middle of the submodel.
    if (code != NOT_KEY && (code < KEY_SUBMODEL || code > KEY_SUBMDL_FALLING_WAVEFORM))
        gbInSubModel = 0;
    if (section != nullptr && section->opener == code) s_openSection(section, code);
}

static void s_endKeyword(char* line)
{
    CMN_EatKeyword(&line);
    if (*line != '\0') ERRLOG_LineErrorNew(920);
    gbEndFound = 1;
}

static void s_deliver(int kind, char* line)
{
    if (geCurrentKeyword == NOT_KEY) {
        if (kind == LINE_DATA) ERRLOG_LineErrorNew(907, line);
        return;
    }
    if (geCurrentKeyword == KEY_END) {
        s_endKeyword(line);
        return;
    }
    const Section* section = SECTIONS_Find(geCurrentKeyword);
    if (section == nullptr) {
        ERRLOG_BugNew(908, s_Module, __LINE__);
        return;
    }
    if (s_refusal(section) == 0) section->receiveLine(kind, geCurrentKeyword, line);
}

const VersionRow* SENDER_Version(int versionClass)
{
    return &s_versions[std::clamp<int>(versionClass, VERSION_FIRST, VERSION_LAST) - VERSION_FIRST];
}

// The length of the line was judged before. What is left of a line that is too long must not stop
// the scanners of the sections.
void SENDER_Send(int kind, char* line)
{
    const int saved = gbAllowAnyLineLength;
    gbAllowAnyLineLength = 1;
    if (kind == LINE_KEYWORD) s_beginKeyword(line);
    s_deliver(kind, line);
    gbAllowAnyLineLength = saved;
}
