// Helpers of the keyword sections.
#include "IbisParser/store/section.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "IbisParser/base/keyword.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"

static const char s_Module[] = "IbisParser/section_internal";

IbisRoot* SEC_Root(const SecFrame* frame, int line)
{
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) ERRLOG_BugNew(frame->noRoot, frame->module, line);
    return root;
}

void* SEC_NewRecord(const SecFrame* frame, std::size_t size)
{
    void* record = nullptr;
    if (CMN_malloc(&record, size))
        PLACE_Remember(record);
    else
        ERRLOG_BugNew(frame->noRecord);
    return record;
}

bool SEC_Receives(const SecFrame* frame, int line, int kind, const void* open)
{
    if (kind != LINE_KEYWORD && kind != LINE_DATA) {
        ERRLOG_LineBugNew(frame->unknownKind, frame->module, line);
        return false;
    }
    if (open == nullptr) {
        ERRLOG_LineErrorNew(kind == LINE_KEYWORD ? frame->orphanKeyword : frame->orphanData);
        return false;
    }
    return true;
}

void SEC_UnknownKeyword(const SecFrame* frame, int line)
{
    ERRLOG_LineBugNew(frame->unknownKeyword, frame->module, line);
}

void* SEC_NewPart(ErrNumber<const char*, int> number, const char* module, int line,
                  std::size_t size)
{
    void* record = nullptr;
    if (CMN_malloc(&record, size))
        PLACE_Remember(record);
    else
        ERRLOG_BugNew(number, module, line);
    return record;
}

std::FILE* SEC_OpenFile(const char* path)
{
    struct stat status;
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    return CMN_fopen(path, "r");
}

const char* SEC_KeywordName(int code)
{
    const KeywordRow* row = KEYWORD_Row(code);
    CMN_ASSERT(row != nullptr);
    return row->display;
}

char* SEC_Argument(char* line)
{
    char* end = std::strchr(line, ']');
    if (end == nullptr) return line + std::strlen(line);
    for (++end; *end != '\0' && CMN_IsWhitespace(static_cast<unsigned char>(*end)); ++end) {
    }
    return end;
}

void SEC_IgnoreText(ErrNumber<const char*, const char*> number, const char* text,
                    const char* keyword)
{
    if (*text != '\0') ERRLOG_LineWarnNew(number, text, keyword);
}

bool SEC_ReadCount(const char* text, int* count)
{
    unsigned value = 0;
    double whole = 0.0;
    // What does not fit wraps to a small number, which the second reading shows.
    if (CMN_StrToUI(text, &value) != 1 || value > INT_MAX) return false;
    if (CMN_StrToDbl(text, &whole) != 1 || whole != value) return false;
    *count = static_cast<int>(value);
    return true;
}

bool SEC_Exceeds(double value, double bound)
{
    return value > bound + 1e-12 * std::fabs(bound);
}

int SEC_CopyName(char* dest, const char* text, unsigned limit)
{
    const std::size_t length = std::strlen(text);
    const std::size_t kept = std::min<std::size_t>(length, limit);
    std::memcpy(dest, text, kept);
    dest[kept] = '\0';
    return length <= limit;
}

int SEC_Version()
{
    return VERSION_Current()->versionClass;
}

unsigned SEC_Limit(VersionLimit limit)
{
    return VERSION_Current()->limits[limit];
}

SecSet::~SecSet()
{
    SEC_SetClear(this);
}

bool SEC_SetAdd(SecSet* set, const char* text)
{
    if (SEC_SetHas(set, text)) return false;
    char* key = CMN_StrMake(text);
    if (key == nullptr) return false;
    void** value = nullptr;
    if (!IDX_SlotName(&set->table, key, &value)) {
        SEC_FreeRecord(key);
        return false;
    }
    *value = key;
    return true;
}

bool SEC_SetHas(const SecSet* set, const char* text)
{
    return IDX_FindName(&set->table, text) != nullptr;
}

void SEC_SetClear(SecSet* set)
{
    for (std::size_t i = 0; i < set->table.capacity; ++i)
        if (set->table.entries[i].value != nullptr) CMN_freeSetNull(&set->table.entries[i].value);
    IDX_Clear(&set->table);
}
