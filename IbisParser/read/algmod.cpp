// [Algorithmic Model] blocks.
#include "IbisParser/algmod.h"

#include <climits>
#include <cstring>

#include "IbisParser/base/index.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/algmod";

enum { ITEMS = 4 };

// Line of the current [Algorithmic Model].
static int s_keywordLine = 0;

static void s_setName(char* field, const char* text, ErrNumber<const char*> tooLong)
{
    if (std::strlen(text) > ALGMOD_NAME_MAX) ERRLOG_LineErrorNew(tooLong, text);
    CMN_strncpy(field, text, ALGMOD_NAME_MAX);
}

static void s_setBits(int* bits, const char* text, const char* item)
{
    unsigned value = 0;
    if (CMN_StrToUI(text, &value) != 1)
        ERRLOG_LineErrorNew(4613, item);
    else if (!SEC_ReadCount(text, bits))
        *bits = INT_MAX;
}

// Cuts "platform_compiler_bits" in place. Each part holds something, and none a "_".
static bool s_splitPlatform(char* item, char** compiler, char** bits)
{
    char* first = std::strchr(item, '_');
    char* second = first != nullptr ? std::strchr(first + 1, '_') : nullptr;
    if (second == nullptr || std::strchr(second + 1, '_') != nullptr) return false;
    if (first == item || second == first + 1 || second[1] == '\0') return false;
    *first = *second = '\0';
    *compiler = first + 1;
    *bits = second + 1;
    return true;
}

static int s_addExec(char** argv, AlgModExec** head)
{
    if (std::strcmp(argv[0], "Executable") != 0) {
        ERRLOG_LineErrorNew(4609);
        return 0;
    }
    char* platform = CMN_StrMake(argv[1]);
    if (platform == nullptr) return 0;
    char* compiler = nullptr;
    char* bits = nullptr;
    void* block = nullptr;
    int added = 0;
    if (!s_splitPlatform(platform, &compiler, &bits)) {
        ERRLOG_LineErrorNew(4610);
    } else if (!CMN_malloc(&block, sizeof(AlgModExec))) {
        ERRLOG_BugNew(4602, s_Module, __LINE__);
    } else {
        AlgModExec* exec = static_cast<AlgModExec*>(block);
        PLACE_Remember(exec);
        exec->bits = -1;
        s_setName(exec->platform, platform, 4611);
        s_setName(exec->compiler, compiler, 4612);
        s_setBits(&exec->bits, bits, argv[1]);
        s_setName(exec->codeFile, argv[2], 4614);
        s_setName(exec->parameterFile, argv[3], 4614);
        exec->next = *head;
        *head = exec;
        added = 1;
    }
    block = platform;
    CMN_freeSetNull(&block);
    return added;
}

// An entry of a block with what makes it the same as another: the names in lower case and the bits.
struct ExecKey {
    const AlgModExec* exec;
    ExecKey* nextSame;  // the next one down the list
    struct Bytes {
        char platform[ALGMOD_NAME_MAX + 1];
        char compiler[ALGMOD_NAME_MAX + 1];
        int bits;
    } bytes;
};

static std::size_t s_count(const AlgModExec* head)
{
    std::size_t count = 0;
    for (; head != nullptr; head = head->next)
        ++count;
    return count;
}

// The keys must be zero, so that their padding is.
static void s_fillKeys(ExecKey* keys, const AlgModExec* head)
{
    for (; head != nullptr; head = head->next, ++keys) {
        keys->exec = head;
        CMN_strncpy(keys->bytes.platform, head->platform, ALGMOD_NAME_MAX);
        CMN_strncpy(keys->bytes.compiler, head->compiler, ALGMOD_NAME_MAX);
        CMN_ConvertToLower(keys->bytes.platform);
        CMN_ConvertToLower(keys->bytes.compiler);
        keys->bytes.bits = head->bits;
    }
}

// From the end of the list, so that each key finds the nearest one after it.
static void s_linkSame(ExecKey* keys, std::size_t count)
{
    IdxTable index = {};
    for (std::size_t i = count; i-- > 0;) {
        void** slot = nullptr;
        if (!IDX_Slot(&index, &keys[i].bytes, sizeof keys[i].bytes, &slot)) break;
        keys[i].nextSame = static_cast<ExecKey*>(*slot);
        *slot = &keys[i];
    }
    IDX_Clear(&index);
}

static void s_checkExec(const ExecKey* key)
{
    const AlgModExec* exec = key->exec;
    if (exec->bits != 32 && exec->bits != 64)
        ERRLOG_ErrorNew(4606, exec->platform, exec->compiler, s_keywordLine);
    for (const ExecKey* same = key->nextSame; same != nullptr; same = same->nextSame)
        ERRLOG_ErrorNew(4607, same->exec->platform, same->exec->compiler, same->exec->bits,
                        s_keywordLine);
}

int ALGMOD_New(char* line, AlgMod** slot)
{
    CMN_ASSERT(line != nullptr && slot != nullptr);
    if (*slot != nullptr) {
        ERRLOG_LineErrorNew(4601);
        ALGMOD_Free(*slot);
        *slot = nullptr;
    }
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(AlgMod))) {
        ERRLOG_BugNew(4602, s_Module, __LINE__);
        return 0;
    }
    *slot = static_cast<AlgMod*>(block);
    PLACE_Remember(block);
    s_keywordLine = static_cast<int>(PARSE_GetLineNum());
    if (!CMN_EatKeyword(&line)) {
        ERRLOG_BugNew(4603, s_Module, __LINE__);
        return 0;
    }
    CmnArgs args = {};  // counted only
    if (CMN_ArgParse(line, 0, &args) && args.argc > 0)
        ERRLOG_LineErrorNew(4605, args.argc + 1, "Algorithmic Model", 1);
    return 1;
}

int ALGMOD_ReceiveLine(char* line, AlgModExec** head)
{
    CMN_ASSERT(line != nullptr && head != nullptr);
    SecArgs args;
    int added = 0;
    if (!CMN_ArgParse(line, ITEMS, &args))
        ERRLOG_BugNew(4608, "Algorithmic Model Sub-Parameter", s_Module, __LINE__);
    else if (args.argc != ITEMS)
        ERRLOG_LineErrorNew(4605, args.argc, "Algorithmic Model", ITEMS);
    else
        added = s_addExec(args.argv, head);
    return added;
}

int ALGMOD_Fini(AlgModExec* head)
{
    const std::size_t count = s_count(head);
    if (count == 0) return 1;
    void* block = nullptr;
    if (!CMN_malloc(&block, count * sizeof(ExecKey))) {
        ERRLOG_BugNew(4602, s_Module, __LINE__);
        return 0;
    }
    ExecKey* keys = static_cast<ExecKey*>(block);
    s_fillKeys(keys, head);
    s_linkSame(keys, count);
    for (std::size_t i = 0; i < count; ++i)
        s_checkExec(&keys[i]);
    CMN_freeSetNull(&block);
    return 1;
}

void ALGMOD_Free(AlgMod* record)
{
    if (record == nullptr) return;
    while (record->execs != nullptr) {
        AlgModExec* exec = record->execs;
        record->execs = exec->next;
        FreeParsedTree(&exec->tree);
        void* block = exec;
        CMN_freeSetNull(&block);
    }
    void* block = record;
    CMN_freeSetNull(&block);
}
