// The error log: formatting, wrapping, counting and the search of the message table.
#include "IbisParser/errlog.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "IbisParser/base/clocale.h"
#include "IbisParser/base/messages.h"
#include "IbisParser/base/place.h"
#include "IbisParser/parse.h"

FILE* gpLogFile = nullptr;
unsigned long gulBug_cnt = 0;
unsigned long gulError_cnt = 0;
unsigned long gulWarn_cnt = 0;
unsigned long gulCaution_cnt = 0;
int gbSuppressBugs = 0;
int gbSuppressErrors = 0;
int gbSuppressWarns = 0;
int gbSuppressCautions = 0;
int gbOldStyleErrors = 0;
int gbSuppressBanners = 0;

static ErrSink gpSink = nullptr;
static void* gpSinkUser = nullptr;

enum {
    FIXED_TEXT = 4096,   // longer messages are formatted into a block of their own
    LAST_WRAPPED = 75,   // the longest message that fits 80 columns behind four blanks
    NEVER_WRAPPED = 76,  // a first length past the last one
    LINE_WIDTH = 4       // field of the input line number
};

// What a severity prints and counts. Messages of firstWrapped to LAST_WRAPPED characters, which do
// not fit 80 columns behind the word, go on a line of their own, in the numbered style too.
struct SeverityRow {
    const char* word;
    char letter;
    bool withLine;
    int firstWrapped;
    unsigned long* counter;
    const int* suppressed;
};

// clang-format off
static const SeverityRow s_severities[] = {
    { "PROGRAM BUG", 'B', false, NEVER_WRAPPED, &gulBug_cnt,     &gbSuppressBugs     },
    { "PROGRAM BUG", 'B', true,  NEVER_WRAPPED, &gulBug_cnt,     &gbSuppressBugs     },
    { "ERROR",       'E', false, 72,            &gulError_cnt,   &gbSuppressErrors   },
    { "ERROR",       'E', true,  60,            &gulError_cnt,   &gbSuppressErrors   },
    { "WARNING",     'W', false, 70,            &gulWarn_cnt,    &gbSuppressWarns    },
    { "WARNING",     'W', true,  58,            &gulWarn_cnt,    &gbSuppressWarns    },
    { "CAUTION",     'C', false, 70,            &gulCaution_cnt, &gbSuppressCautions },
    { "CAUTION",     'C', true,  58,            &gulCaution_cnt, &gbSuppressCautions },
    { "NOTE",        'N', false, 73,            nullptr,         nullptr             },
    { "NOTE",        'N', true,  61,            nullptr,         nullptr             },
    { nullptr,       'I', false, NEVER_WRAPPED, nullptr,         nullptr             },
};
// clang-format on

static bool s_isSuppressed(ErrSeverity severity)
{
    const int* flag = s_severities[severity].suppressed;
    return flag != nullptr && *flag != 0;
}

static FILE* s_stream()
{
    if (gpLogFile == nullptr) gpLogFile = stdout;
    return gpLogFile;
}

// format and args made the text.
static void s_tellSink(ErrSeverity severity, unsigned asked, const ErrorRow* row, const char* text,
                       const char* format, va_list args)
{
    if (gpSink == nullptr) return;
    char file[CMN_PATH_MAX + 1];
    PARSE_GetFileName(file);
    ErrRecord record = {};
    record.asked = asked;
    record.shown = row == nullptr ? 0 : static_cast<unsigned>(row->number);
    record.severity = severity;
    record.file = file;
    record.line = s_severities[severity].withLine ? PLACE_LoggedLine() : 0;
    record.text = text;
    PLACE_Fill(&record, format, args);
    gpSink(&record, gpSinkUser);
}

// A severity without a word shows in the numbered style only.
static bool s_isShown(ErrSeverity severity, const ErrorRow* row)
{
    return (row != nullptr && !gbOldStyleErrors) || s_severities[severity].word != nullptr;
}

// One line of a formatted message. row is null in the free-format family.
static int s_writeLine(ErrSeverity severity, const ErrorRow* row, int length, const char* text)
{
    const SeverityRow* look = &s_severities[severity];
    const bool numbered = row != nullptr && !gbOldStyleErrors;
    if (look->counter != nullptr) ++*look->counter;
    FILE* stream = s_stream();
    int written = numbered ? std::fprintf(stream, "%c%04d", look->letter, row->number)
                           : std::fprintf(stream, "%s", look->word);
    if (look->withLine)
        written += std::fprintf(stream, " (line %*lu)", LINE_WIDTH, PLACE_LoggedLine());
    const bool wrapped = length >= look->firstWrapped && length <= LAST_WRAPPED;
    written += std::fprintf(stream, wrapped ? " -\n    %s\n" : " - %s\n", text);
    return written;
}

// Formats in the C locale and writes. A message that is too long for the fixed buffer is cut only
// when there is no memory for it; one that cannot be formatted shows its format. row is null in the
// free-format family; asked is the number that the caller gave.
IBIS_PRINTF_LIKE(4, 0)
static int s_format(ErrSeverity severity, unsigned asked, const ErrorRow* row, const char* format,
                    va_list args)
{
    if (!s_isShown(severity, row)) return 0;
    char fixed[FIXED_TEXT];
    char* block = nullptr;
    const char* text = fixed;
    va_list again;
    va_list quoted;
    va_copy(again, args);
    va_copy(quoted, args);
    const locale_t hosts = uselocale(CLocale());
    int length = std::vsnprintf(fixed, sizeof fixed, format, args);
    if (length < 0) {
        text = format;
        length = NEVER_WRAPPED;
    } else if (length >= FIXED_TEXT) {
        // Not through CMN_malloc, whose failure would come back here.
        const size_t size = static_cast<size_t>(length) + 1;
        block = static_cast<char*>(std::malloc(size));
        if (block != nullptr && std::vsnprintf(block, size, format, again) >= 0) text = block;
    }
    va_end(again);
    const int written = s_writeLine(severity, row, length, text);
    s_tellSink(severity, asked, row, text, format, quoted);
    va_end(quoted);
    uselocale(hosts);
    std::free(block);
    return written;
}

IBIS_PRINTF_LIKE(2, 0)
static int s_errLog(ErrSeverity severity, const char* format, va_list args)
{
    if (s_isSuppressed(severity)) return 1;
    return s_format(severity, 0, nullptr, format, args);
}

static void s_errLogNew(unsigned number, ErrSeverity severity, va_list args)
{
    const ErrorRow* row = ERRLOG_RowOf(static_cast<int>(number));
    if (row == nullptr) {
        // A wrong number is the program's mistake: no flag hides it.
        s_format(ERR_INFO, number, &errorLogTable[0], errorLogTable[0].text, args);
        return;
    }
    if (s_isSuppressed(severity)) return;
    s_format(severity, number, row, row->text, args);
}

#define FREE_FORMAT_ENTRY(name, severity)                    \
    int name(const char* format, ...)                        \
    {                                                        \
        va_list args;                                        \
        va_start(args, format);                              \
        const int result = s_errLog(severity, format, args); \
        va_end(args);                                        \
        return result;                                       \
    }

#define NUMBERED_ENTRY(name, severity)       \
    void name(unsigned number, ...)          \
    {                                        \
        va_list args;                        \
        va_start(args, number);              \
        s_errLogNew(number, severity, args); \
        va_end(args);                        \
    }

FREE_FORMAT_ENTRY(ERRLOG_Bugx, ERR_BUG)
FREE_FORMAT_ENTRY(ERRLOG_LineBugx, ERR_LINE_BUG)
FREE_FORMAT_ENTRY(ERRLOG_Errorx, ERR_ERROR)
FREE_FORMAT_ENTRY(ERRLOG_LineErrorx, ERR_LINE_ERROR)
FREE_FORMAT_ENTRY(ERRLOG_Warnx, ERR_WARN)
FREE_FORMAT_ENTRY(ERRLOG_LineWarnx, ERR_LINE_WARN)
FREE_FORMAT_ENTRY(ERRLOG_Cautionx, ERR_CAUTION)
FREE_FORMAT_ENTRY(ERRLOG_LineCautionx, ERR_LINE_CAUTION)
FREE_FORMAT_ENTRY(ERRLOG_Notex, ERR_NOTE)
FREE_FORMAT_ENTRY(ERRLOG_LineNotex, ERR_LINE_NOTE)

NUMBERED_ENTRY(ERRLOG_BugNew, ERR_BUG)
NUMBERED_ENTRY(ERRLOG_LineBugNew, ERR_LINE_BUG)
NUMBERED_ENTRY(ERRLOG_ErrorNew, ERR_ERROR)
NUMBERED_ENTRY(ERRLOG_LineErrorNew, ERR_LINE_ERROR)
NUMBERED_ENTRY(ERRLOG_WarnNew, ERR_WARN)
NUMBERED_ENTRY(ERRLOG_LineWarnNew, ERR_LINE_WARN)
NUMBERED_ENTRY(ERRLOG_CautionNew, ERR_CAUTION)
NUMBERED_ENTRY(ERRLOG_NoteNew, ERR_NOTE)
NUMBERED_ENTRY(ERRLOG_LineNoteNew, ERR_LINE_NOTE)

void ERRLOG_SetOutputFile(FILE* stream)
{
    gpLogFile = stream;
}

void ERRLOG_SuppressBugs(int on)
{
    gbSuppressBugs = on;
}

void ERRLOG_SuppressErrors(int on)
{
    gbSuppressErrors = on;
}

void ERRLOG_SuppressWarns(int on)
{
    gbSuppressWarns = on;
}

void ERRLOG_GetCounts(unsigned long* bugs, unsigned long* errors, unsigned long* warnings)
{
    if (bugs != nullptr) *bugs = gulBug_cnt;
    if (errors != nullptr) *errors = gulError_cnt;
    if (warnings != nullptr) *warnings = gulWarn_cnt;
}

void ERRLOG_Totals()
{
    FILE* stream = s_stream();
    if (gulBug_cnt != 0 || gulError_cnt != 0 || gulWarn_cnt != 0) std::fprintf(stream, "\n");
    if (gulBug_cnt != 0) std::fprintf(stream, "Bugs    : %lu\n", gulBug_cnt);
    std::fprintf(stream, "Errors  : %lu\n", gulError_cnt);
    if (gulWarn_cnt != 0) std::fprintf(stream, "Warnings: %lu\n", gulWarn_cnt);
    if (gulCaution_cnt != 0) std::fprintf(stream, "Cautions: %lu\n", gulCaution_cnt);
    const bool failed = gulBug_cnt != 0 || gulError_cnt != 0;
    std::fprintf(stream, "\nFile %s\n", failed ? "Failed" : "Passed");
}

int BSearchErrorLogTable(int number)
{
    return ERRLOG_FindRow(errorLogTable, number);
}

void ERRLOG_SetSink(ErrSink sink, void* user)
{
    gpSink = sink;
    gpSinkUser = user;
}
