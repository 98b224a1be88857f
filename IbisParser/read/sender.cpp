// Keyword lines become codes, and every line goes to the section that owns it.
#include "IbisParser/read/sender.h"

#include <algorithm>
#include <cstring>

#include "IbisParser/base/keyword.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/version.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/sections.h"

// The sender is a part of the reader.
static const char s_Module[] = "IbisParser/parse";

// Whether a keyword with a place rule is meant here.
static bool s_isMeant(const KeywordRow& row)
{
    if ((row.rules & RULE_IN_BOARD_FILE) != 0) return geCurrFileType == FILE_EBD;
    if ((row.rules & RULE_IN_SUBMODEL) != 0) return gbInSubModel != 0;
    return KEYWORD_Section(geCurrentKeyword) == row.section &&
           KEYWORD_HasRule(geCurrentKeyword, RULE_HEAD);
}

// The row of a keyword that the version of the file knows, or of the one that its name means here;
// else null. Blanks of the name become "_".
static const KeywordRow* s_findKeyword(char* name)
{
    std::replace(name, name + std::strlen(name), ' ', '_');
    const char first =
        name[0] >= 'a' && name[0] <= 'z' ? static_cast<char>(name[0] - 'a' + 'A') : name[0];
    const int versionClass = VERSION_Current()->versionClass;
    const KeywordRow* known = nullptr;
    const KeywordRow* meant = nullptr;
    for (const KeywordRow& row : KEYWORD_Rows()) {
        // Most names differ in their first letter.
        if (row.name[0] != first || !CMN_StrSameIC(row.name, name)) continue;
        if ((row.rules & RULE_PLACES) == 0) {
            if (row.since <= versionClass) known = &row;
        } else if (s_isMeant(row)) {
            meant = &row;
        }
    }
    return known != nullptr && meant != nullptr ? meant : known;
}

// False where the context gave a keyword a meaning of later versions: version 2 has no boards.
static bool s_isOfVersion(KeywordCode code)
{
    const KeywordRow* row = KEYWORD_Row(code);
    return row != nullptr && row->since <= VERSION_Current()->versionClass;
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
    const KeywordRow* row = s_findKeyword(name);
    if (row != nullptr && row->code != NOT_KEY) return row->code;
    ERRLOG_LineErrorNew(916, name);
    return NOT_KEY;
}

// The current keyword as its section knows it, or the one before unknown ones.
static KeywordCode s_known = NOT_KEY;

static PlaceSpot s_keywordSpot = {0, 0};  // the keyword whose lines are being read

// [Manufacturer] reads as a component's late in a package model or board and behind unknown
// keywords; it is that record's own all the same.
static KeywordCode s_ownCode(KeywordCode code)
{
    if (code != KEY_MANUFACTURER) return code;
    const KeywordSection section = KEYWORD_Section(s_known);
    if (section == SECTION_PACKAGE && s_known != KEY_END_PACKAGE_MODEL)
        return KEY_PKGMDL_MANUFACTURER;
    if (section == SECTION_BOARD && s_known != KEY_END_BOARD_DESCRIPTION &&
        s_isOfVersion(KEY_EBDMDL_MANUFACTURER))
        return KEY_EBDMDL_MANUFACTURER;
    return code;
}

// The number of the message that refuses the section in this file, or 0.
static ErrNumber<> s_refusal(const Section* section)
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
    ErrNumber<> refusal = s_refusal(section);
    // Version 2 has no board files, so it knows two kinds of file only. A package model, which
    // both may hold, keeps its own message.
    if (refusal != 0 && geFileVersion <= 2 && (code == KEY_COMPONENT || code == KEY_MODEL))
        refusal = 911;
    if (refusal != 0) {
        ERRLOG_LineErrorNew(refusal);
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
    const KeywordCode own = s_ownCode(code);
    // Behind an unknown keyword no section is told what begins.
    const Section* previous = geCurrentKeyword != NOT_KEY ? SECTIONS_Find(s_known) : nullptr;
    const Section* section = SECTIONS_Find(own);
    geCurrentKeyword = code;
    if (own != NOT_KEY) s_known = own;
    if (previous != nullptr && previous->fini != nullptr) {
        const PlaceScope ended(s_keywordSpot);
        previous->fini(own);
    }
    s_keywordSpot = PLACE_Here();
    // An unknown keyword may be one of a later version, in the middle of the submodel.
    if (code != NOT_KEY && KEYWORD_Section(code) != SECTION_SUBMODEL) gbInSubModel = 0;
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
    const Section* section = SECTIONS_Find(s_known);
    if (section == nullptr || (kind == LINE_KEYWORD && !s_isOfVersion(geCurrentKeyword)))
        ERRLOG_BugNew(908, s_Module, __LINE__);
    if (section != nullptr && s_refusal(section) == 0) section->receiveLine(kind, s_known, line);
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
