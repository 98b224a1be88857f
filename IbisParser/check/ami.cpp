// Checks of an AMI parameter file's tree: the nine reserved parameters by the rows of a table,
// every other parameter by what its leaves' kinds allow.
#include "IbisParser/check/ami.h"

#include <cstring>

#include "IbisParser/algmod.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/amitree.h"

static const char s_Module[] = "IbisParser/amicheck";

// Sets of vocabulary words, a bit for each.
typedef unsigned WordSet;

static constexpr WordSet s_word(int word)
{
    return 1u << word;
}

static const WordSet WORDS_NONE = 0;
static const WordSet WORDS_USAGE =
    s_word(WORD_IN) | s_word(WORD_OUT) | s_word(WORD_INFO) | s_word(WORD_INOUT);
static const WordSet WORDS_TYPE = s_word(WORD_FLOAT) | s_word(WORD_INTEGER) | s_word(WORD_STRING) |
                                  s_word(WORD_BOOLEAN) | s_word(WORD_TAP) | s_word(WORD_UI);
static const WordSet USE_INFO = s_word(WORD_INFO);
static const WordSet USE_OUT_INFO = s_word(WORD_OUT) | s_word(WORD_INFO);
static const WordSet TYPE_BOOLEAN = s_word(WORD_BOOLEAN);
static const WordSet TYPE_INTEGER = s_word(WORD_INTEGER);
static const WordSet TYPE_FLOAT = s_word(WORD_FLOAT);
static const WordSet TYPE_FLOAT_UI = s_word(WORD_FLOAT) | s_word(WORD_UI);
static const WordSet FORMAT_JITTER =
    s_word(WORD_TABLE) | s_word(WORD_GAUSSIAN) | s_word(WORD_DUAL_DIRAC) | s_word(WORD_DJRJ);
static const WordSet FORMAT_VALUE = s_word(WORD_VALUE) | s_word(WORD_RANGE) | s_word(WORD_CORNER);

enum DefaultRule { DEFAULT_ANY, DEFAULT_INTEGER, DEFAULT_BOOLEAN, DEFAULT_NUMBER };

// Presence of a parameter's leaves, by their kind.
static const WordSet HAS_USAGE = 1u << LEAF_USAGE;
static const WordSet HAS_TYPE = 1u << LEAF_TYPE;
static const WordSet HAS_FORMAT = 1u << LEAF_FORMAT;
static const WordSet HAS_DEFAULT = 1u << LEAF_DEFAULT;
static const WordSet HAS_DESCRIPTION = 1u << LEAF_DESCRIPTION;
static const WordSet HAS_SAME = HAS_USAGE | HAS_TYPE | HAS_DESCRIPTION;

struct ReservedRow {
    const char* name;
    bool mandatory;
    WordSet usage;
    WordSet type;
    WordSet format;  // WORDS_NONE: forbidden
    DefaultRule defaultRule;
    unsigned required;
};

// clang-format off
static const ReservedRow s_reserved[] = {
    { "Init_Returns_Impulse",    true,  USE_INFO,     TYPE_BOOLEAN,  WORDS_NONE,    DEFAULT_ANY,     HAS_SAME | HAS_DEFAULT },
    { "GetWave_Exists",          true,  USE_INFO,     TYPE_BOOLEAN,  WORDS_NONE,    DEFAULT_ANY,     HAS_SAME | HAS_DEFAULT },
    { "Max_Init_Aggressors",     false, USE_INFO,     TYPE_INTEGER,  WORDS_NONE,    DEFAULT_INTEGER, HAS_SAME | HAS_DEFAULT },
    { "Ignore_Bits",             false, USE_OUT_INFO, TYPE_INTEGER,  WORDS_NONE,    DEFAULT_INTEGER, HAS_SAME | HAS_DEFAULT },
    { "Tx_Jitter",               false, USE_OUT_INFO, TYPE_FLOAT_UI, FORMAT_JITTER, DEFAULT_NUMBER,  HAS_SAME | HAS_FORMAT },
    { "Tx_DCD",                  false, USE_OUT_INFO, TYPE_FLOAT_UI, FORMAT_VALUE,  DEFAULT_NUMBER,  HAS_SAME | HAS_FORMAT },
    { "Rx_Clock_PDF",            false, USE_OUT_INFO, TYPE_FLOAT_UI, FORMAT_JITTER, DEFAULT_NUMBER,  HAS_SAME | HAS_FORMAT },
    { "Rx_Receiver_Sensitivity", false, USE_OUT_INFO, TYPE_FLOAT,    FORMAT_VALUE,  DEFAULT_NUMBER,  HAS_SAME | HAS_FORMAT },
    { "Use_Init_Output",         false, USE_INFO,     TYPE_BOOLEAN,  WORDS_NONE,    DEFAULT_BOOLEAN, HAS_SAME | HAS_DEFAULT },
};
enum { RESERVED = sizeof s_reserved / sizeof s_reserved[0] };

// Items after the word of a Format leaf.
struct FormatRow {
    int word;
    const char* name;
    int count;
    bool numbers;  // exactly count numbers; else at least count items of any kind
};

static const FormatRow s_formats[] = {
    { WORD_VALUE,      "Value",      1, true },
    { WORD_RANGE,      "Range",      3, true },
    { WORD_CORNER,     "Corner",     3, true },
    { WORD_DUAL_DIRAC, "Dual-Dirac", 3, true },
    { WORD_DJRJ,       "DjRj",       3, true },
    { WORD_GAUSSIAN,   "Gaussian",   2, true },
    { WORD_INCREMENT,  "Increment",  4, true },
    { WORD_STEPS,      "Steps",      4, true },
    { WORD_LIST,       "List",       1, false },
    { WORD_TABLE,      "Table",      0, false },
};

static const char* const s_leafNames[] = { "", "Usage", "Type", "Format", "Default", "Description" };
// clang-format on

static const _tagBranchStruct* s_branch(const _tagNodeStruct& node)
{
    return node.kind == NODE_BRANCH ? static_cast<const _tagBranchStruct*>(node.detail) : nullptr;
}

static const _tagLeafStruct* s_leaf(const _tagNodeStruct& node)
{
    return static_cast<const _tagLeafStruct*>(node.detail);
}

static bool s_isNumber(const _tagValueStruct& value)
{
    return value.valueType == VALUE_INTEGER || value.valueType == VALUE_FLOAT;
}

static bool s_isIn(WordSet words, const _tagValueStruct& value)
{
    return value.wordType != WORD_NONE && (words & s_word(value.wordType)) != 0;
}

static const FormatRow* s_findFormat(const _tagValueStruct& value)
{
    for (const FormatRow& row : s_formats)
        if (row.word == value.wordType) return &row;
    return nullptr;
}

static void s_reportIllegal(const _tagLeafStruct* leaf, const char* owner)
{
    ERRLOG_ErrorNew(4627, s_leafNames[leaf->nameKind], leaf->values[0].text, owner);
}

// The items after the word of a format. A single value of an integer parameter must be an integer.
static void s_checkItems(const _tagLeafStruct* leaf, const FormatRow* format, bool integer,
                         const char* owner)
{
    const bool onlyInteger = integer && format->word == WORD_VALUE;
    const int count = leaf->valueCount - 1;
    bool good = format->numbers ? count == format->count : count >= format->count;
    for (int i = 1; format->numbers && i <= count; ++i) {
        const _tagValueStruct& value = leaf->values[i];
        good = good && (onlyInteger ? value.valueType == VALUE_INTEGER : s_isNumber(value));
    }
    if (!good && onlyInteger) ERRLOG_ErrorNew(4633, format->name, owner, format->count);
    if (!good && !onlyInteger) ERRLOG_ErrorNew(4632, format->name, owner, format->count);
}

static void s_checkFormat(const _tagLeafStruct* leaf, bool integer, const char* owner)
{
    const FormatRow* format = s_findFormat(leaf->values[0]);
    if (format == nullptr)
        s_reportIllegal(leaf, owner);
    else
        s_checkItems(leaf, format, integer, owner);
}

static void s_checkLeaf(const _tagLeafStruct* leaf, const char* parent)
{
    const PlaceScope at(SUBJECT_PARAMETER, parent, PLACE_Of(leaf));
    if (leaf->valueCount == 0) {
        ERRLOG_ErrorNew(4626, leaf->name, parent);
        return;
    }
    if (leaf->nameKind == LEAF_FORMAT)
        s_checkFormat(leaf, false, parent);
    else if ((leaf->nameKind == LEAF_USAGE && !s_isIn(WORDS_USAGE, leaf->values[0])) ||
             (leaf->nameKind == LEAF_TYPE && !s_isIn(WORDS_TYPE, leaf->values[0])))
        s_reportIllegal(leaf, parent);
}

// A branch whose children are being walked.
struct WalkEntry {
    const _tagBranchStruct* branch;
    int next;
};

// Every leaf below a branch, in document order. Trees may be deep: the stack is not the machine's.
static void s_checkBranch(const _tagBranchStruct* top)
{
    std::size_t capacity = 16;
    void* block = nullptr;
    if (!CMN_malloc(&block, capacity * sizeof(WalkEntry))) return;
    static_cast<WalkEntry*>(block)[0] = {top, 0};
    for (std::size_t depth = 1; depth > 0;) {
        WalkEntry* entry = static_cast<WalkEntry*>(block) + (depth - 1);
        if (entry->next == entry->branch->childCount) {
            --depth;
            continue;
        }
        const _tagNodeStruct& child = entry->branch->children[entry->next++];
        const _tagBranchStruct* branch = s_branch(child);
        if (branch == nullptr) {
            s_checkLeaf(s_leaf(child), entry->branch->name);
            continue;
        }
        if (depth == capacity) {
            capacity *= 2;
            if (!CMN_realloc(&block, capacity * sizeof(WalkEntry))) break;
        }
        static_cast<WalkEntry*>(block)[depth++] = {branch, 0};
    }
    CMN_freeSetNull(&block);
}

static bool s_isGoodDefault(DefaultRule rule, const _tagValueStruct& value)
{
    switch (rule) {
        case DEFAULT_ANY:
            return true;
        case DEFAULT_INTEGER:
            return value.valueType == VALUE_INTEGER;
        case DEFAULT_BOOLEAN:
            return value.valueType == VALUE_BOOLEAN;
        case DEFAULT_NUMBER:
            return s_isNumber(value);
    }
    return false;
}

static void s_checkReservedLeaf(const ReservedRow& row, const _tagLeafStruct* leaf)
{
    const PlaceScope at(leaf);
    if (leaf->valueCount == 0) {
        ERRLOG_ErrorNew(4626, leaf->name, row.name);
        return;
    }
    const _tagValueStruct& value = leaf->values[0];
    bool good = true;
    switch (leaf->nameKind) {
        case LEAF_USAGE:
            good = s_isIn(row.usage, value);
            break;
        case LEAF_TYPE:
            good = s_isIn(row.type, value);
            break;
        case LEAF_FORMAT:
            if (row.format == WORDS_NONE) {
                ERRLOG_ErrorNew(4629, leaf->name, row.name);
                return;
            }
            good = s_isIn(row.format, value);
            if (good) s_checkFormat(leaf, row.type == TYPE_INTEGER, row.name);
            break;
        case LEAF_DEFAULT:
            good = s_isGoodDefault(row.defaultRule, value);
            break;
        case LEAF_DESCRIPTION:
            break;
        default:
            ERRLOG_ErrorNew(4624, leaf->name, row.name);
            return;
    }
    if (!good) s_reportIllegal(leaf, row.name);
}

static void s_checkReservedParameter(const ReservedRow& row, const _tagBranchStruct* branch)
{
    const PlaceScope at(SUBJECT_PARAMETER, branch);
    if (branch->childCount == 0) {
        ERRLOG_ErrorNew(4630, s_leafNames[LEAF_USAGE], row.name);
        return;
    }
    unsigned found = 0;
    for (int i = 0; i < branch->childCount; ++i) {
        const _tagNodeStruct& child = branch->children[i];
        if (const _tagBranchStruct* inner = s_branch(child)) {
            const PlaceScope in(inner);
            ERRLOG_ErrorNew(4628, inner->name, row.name);
            continue;
        }
        found |= 1u << s_leaf(child)->nameKind;
        s_checkReservedLeaf(row, s_leaf(child));
    }
    for (int kind = LEAF_USAGE; kind <= LEAF_DESCRIPTION; ++kind)
        if ((row.required & ~found & (1u << kind)) != 0)
            ERRLOG_ErrorNew(4630, s_leafNames[kind], row.name);
}

static int s_findReserved(const char* name)
{
    for (int row = 0; row < RESERVED; ++row)
        if (std::strcmp(s_reserved[row].name, name) == 0) return row;
    return -1;
}

static void s_checkReservedBranch(const _tagBranchStruct* reserved)
{
    bool found[RESERVED] = {};
    for (int i = 0; i < reserved->childCount; ++i) {
        const _tagNodeStruct& child = reserved->children[i];
        const _tagBranchStruct* branch = s_branch(child);
        if (branch == nullptr) {
            const PlaceScope at(SUBJECT_PARAMETER, s_leaf(child));
            ERRLOG_ErrorNew(4600, s_leaf(child)->name, reserved->name);
            s_checkLeaf(s_leaf(child), reserved->name);
            continue;
        }
        const int row = s_findReserved(branch->name);
        if (row < 0) {
            const PlaceScope at(SUBJECT_PARAMETER, branch);
            ERRLOG_ErrorNew(4624, branch->name, reserved->name);
            s_checkBranch(branch);
            continue;
        }
        found[row] = true;
        s_checkReservedParameter(s_reserved[row], branch);
    }
    for (int row = 0; row < RESERVED; ++row) {
        const PlaceScope at(SUBJECT_PARAMETER, s_reserved[row].name, PLACE_Of(reserved));
        if (s_reserved[row].mandatory && !found[row]) ERRLOG_ErrorNew(4625, s_reserved[row].name);
    }
}

void AMICHECK_Tree(const _tagTreeStruct* tree)
{
    CMN_ASSERT(tree != nullptr);
    // Without memory for a copy of the text the tree comes without nodes.
    const _tagBranchStruct* root = tree->count > 0 ? s_branch(tree->nodes[0]) : nullptr;
    const PlaceScope at(root);
    bool reservedFound = false;
    for (int i = 0; root != nullptr && i < root->childCount; ++i) {
        const _tagNodeStruct& child = root->children[i];
        const _tagBranchStruct* branch = s_branch(child);
        if (branch == nullptr) {
            s_checkLeaf(s_leaf(child), root->name);
        } else if (std::strcmp(branch->name, "Reserved_Parameters") == 0) {
            reservedFound = true;
            s_checkReservedBranch(branch);
        } else if (std::strcmp(branch->name, "Model_Specific") == 0) {
            s_checkBranch(branch);
        } else {
            const PlaceScope in(SUBJECT_PARAMETER, branch);
            ERRLOG_ErrorNew(4623, branch->name);
        }
    }
    if (!reservedFound) ERRLOG_ErrorNew(4622);
}

// The text of a parameter file.

// What a parse result of the parameter tree means to the user; all others are internal.
struct TreeRow {
    int result;
    ErrNumber<> number;
};
static const TreeRow s_treeResults[] = {
    {TREE_UNBALANCED, 4619},       {TREE_NO_LIST, 4620},   {TREE_NO_RECORD, 4635},
    {TREE_CLOSED_TOO_EARLY, 4635}, {TREE_BAD_TOKEN, 4634},
};

void AMICHECK_FreeText()
{
    if (gsBuffer == nullptr) return;
    void* block = gsBuffer;
    CMN_freeSetNull(&block);
    gsBuffer = nullptr;
}

static void s_reportTree(int result)
{
    for (const TreeRow& row : s_treeResults) {
        if (row.result == result) {
            ERRLOG_ErrorNew(row.number);
            return;
        }
    }
    ERRLOG_BugNew(4621);
}

_tagTreeStruct* AMICHECK_Parameters()
{
    if (gsBuffer == nullptr) return nullptr;
    // Long runs of blanks are legal here: a line may be indented by any number.
    const int saved = gbAllowAnyLineLength;
    gbAllowAnyLineLength = 1;
    _tagTreeStruct* tree = nullptr;
    const int result = AMITREE_ParseFile(&tree);
    gbAllowAnyLineLength = saved;
    AMICHECK_FreeText();
    if (result == TREE_OK)
        AMICHECK_Tree(tree);
    else
        s_reportTree(result);
    return tree;
}

int AMI_Test()
{
    _tagTreeStruct* tree = AMICHECK_Parameters();
    FreeParsedTree(&tree);
    return 1;
}
