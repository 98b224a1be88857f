// The AMI parameter tree: a flat array of nodes in document order, made by one scan of the text and
// then linked. Nothing recurses, so that nesting is bounded by memory alone.
#include "IbisParser/read/amitree.h"

#include <climits>
#include <cstring>

#include "IbisParser/base/clocale.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"

static const char s_Module[] = "IbisParser/amitree";

enum { FIRST_ENTRIES = 4 };  // of a growing array, a power of two

struct Word {
    const char* text;
    int code;
};

// clang-format off
static const Word s_leafNames[] = {
    { "Usage",   LEAF_USAGE   }, { "Type",        LEAF_TYPE        }, { "Format", LEAF_FORMAT },
    { "Default", LEAF_DEFAULT }, { "Description", LEAF_DESCRIPTION }, { "Labels", LEAF_LABELS },
};

static const Word s_directionWords[] = {
    { "In", WORD_IN }, { "Out", WORD_OUT },
};

static const Word s_words[] = {
    { "Info",     WORD_INFO     }, { "InOut",      WORD_INOUT      }, { "Float",     WORD_FLOAT     },
    { "Integer",  WORD_INTEGER  }, { "String",     WORD_STRING     }, { "Boolean",   WORD_BOOLEAN   },
    { "Tap",      WORD_TAP      }, { "UI",         WORD_UI         }, { "Value",     WORD_VALUE     },
    { "Range",    WORD_RANGE    }, { "List",       WORD_LIST       }, { "Corner",    WORD_CORNER    },
    { "Increment", WORD_INCREMENT }, { "Steps",    WORD_STEPS      }, { "Table",     WORD_TABLE     },
    { "Gaussian", WORD_GAUSSIAN }, { "Dual-Dirac", WORD_DUAL_DIRAC }, { "DjRj",      WORD_DJRJ      },
};
// clang-format on

// Leaves *code alone when the text is none of the words.
template <size_t N>
static void s_lookUp(const Word (&words)[N], const char* text, int* code)
{
    for (const Word& word : words) {
        if (word.text[0] == text[0] && std::strcmp(word.text, text) == 0) {
            *code = word.code;
            return;
        }
    }
}

static void s_setStringType(int* wordType, const char* text)
{
    s_lookUp(s_words, text, wordType);
}

// What strtol takes to the end, out-of-range numbers included.
static bool s_isInteger(const char* text)
{
    text = TOKEN_SkipBlanks(text);
    if (*text == '+' || *text == '-') ++text;
    const char* digits = text;
    while (*text >= '0' && *text <= '9')
        ++text;
    return text != digits && *text == '\0';
}

static bool s_isNumber(const char* text)
{
    const char* end = nullptr;
    StrtodC(text, &end);
    return end != text && *end == '\0';
}

// Makes room for one entry more in an array that keeps no capacity: it begins with four and doubles
// whenever it is full.
static int s_growByOne(void** array, int count, size_t entrySize)
{
    const bool full = count == 0 || (count >= FIRST_ENTRIES && (count & (count - 1)) == 0);
    if (!full) return 1;
    const size_t capacity = count == 0 ? size_t{FIRST_ENTRIES} : 2 * static_cast<size_t>(count);
    return CMN_realloc(array, capacity * entrySize);
}

// The scan.

struct Scan {
    char* at;  // in the working copy
    _tagNodeStruct* nodes;
    int capacity;
    int count;
    int level;    // lists open
    int visited;  // lists opened so far
    // Of a file whose places are kept: the working copy, and its offset in the file's text.
    const char* copy;
    size_t offset;
};

static void s_skipTo(char** p, const char* stops)
{
    *p += std::strcspn(*p, stops);
}

static char* s_afterQuoted(char* quote)
{
    char* end = quote + 1;
    s_skipTo(&end, "\"");
    return *end == '\0' ? end : end + 1;
}

// Steps over text that belongs to no leaf, up to a parenthesis outside quotes or the end.
static void s_skipIgnored(char** p)
{
    for (;;) {
        s_skipTo(p, "()\"");
        if (**p != '"') return;
        *p = s_afterQuoted(*p);
    }
}

static int s_addNode(Scan* scan, int kind, const char* name, int length, void** detail)
{
    static_assert(sizeof(_tagBranchStruct) == sizeof(_tagLeafStruct));
    if (scan->count == scan->capacity) return TREE_TOO_MANY_NODES;
    _tagNodeStruct* node = &scan->nodes[scan->count];
    if (!CMN_malloc(&node->detail, sizeof(_tagLeafStruct))) return TREE_NO_MEMORY;
    node->kind = kind;
    node->level = scan->level;
    ++scan->count;
    // Both records begin with the name.
    _tagBranchStruct* record = static_cast<_tagBranchStruct*>(node->detail);
    record->name = CMN_StrMakeN(name, length);
    if (record->name == nullptr) return TREE_NO_MEMORY;
    if (scan->copy != nullptr)
        PLACE_RememberAt(record,
                         PLACE_InText(scan->offset + static_cast<size_t>(name - scan->copy)));
    *detail = record;
    return TREE_OK;
}

static int s_addValue(_tagLeafStruct* leaf, const char* text, int length)
{
    if (length < 0) return TREE_BAD_TOKEN;
    void* values = leaf->values;
    if (!s_growByOne(&values, leaf->valueCount, sizeof(_tagValueStruct))) return TREE_NO_MEMORY;
    leaf->values = static_cast<_tagValueStruct*>(values);
    _tagValueStruct* value = &leaf->values[leaf->valueCount];
    value->text = CMN_StrMakeN(text, length);
    if (value->text == nullptr) return TREE_NO_MEMORY;
    ++leaf->valueCount;
    value->valueType = GetValueType(value->text);
    value->wordType = WORD_NONE;
    if (value->valueType == VALUE_STRING) {
        s_lookUp(s_directionWords, value->text, &value->wordType);
        if (value->wordType == WORD_NONE) s_setStringType(&value->wordType, value->text);
    }
    return TREE_OK;
}

// Reads the value token at the scan's position and steps over it and the white space behind.
static int s_readValue(Scan* scan, _tagLeafStruct* leaf)
{
    char* start = scan->at;
    char* end = start;
    if (*start == '"') {
        end = s_afterQuoted(start);
        scan->at = end;
        *start++ = ' ';
        if (end[-1] == '"' && end > start) *--end = ' ';
    } else {
        s_skipTo(&end, " \t\n\v\f\r()");
        scan->at = end;
    }
    while (end > start && TOKEN_IsBlank(end[-1]))
        --end;
    const int result = s_addValue(leaf, start, static_cast<int>(end - start));
    CMN_EatWhitespace(&scan->at);
    return result;
}

static void s_freeDetail(_tagNodeStruct* node)
{
    if (node->detail == nullptr) return;
    void* array = nullptr;
    if (node->kind == NODE_LEAF) {
        _tagLeafStruct* leaf = static_cast<_tagLeafStruct*>(node->detail);
        for (int i = 0; i < leaf->valueCount; ++i)
            CMN_free(leaf->values[i].text);
        array = leaf->values;
        if (leaf->name != nullptr) CMN_free(leaf->name);
    } else {
        _tagBranchStruct* branch = static_cast<_tagBranchStruct*>(node->detail);
        array = branch->children;
        if (branch->name != nullptr) CMN_free(branch->name);
    }
    if (array != nullptr) CMN_free(array);
    CMN_freeSetNull(&node->detail);
}

// A list among the values of a leaf: the leaf was none. Its node goes, and everything up to its own
// closing parenthesis is passed over.
static void s_abandonLeaf(Scan* scan)
{
    --scan->count;
    s_freeDetail(&scan->nodes[scan->count]);
    int depth = 0;
    for (s_skipIgnored(&scan->at); *scan->at != '\0'; s_skipIgnored(&scan->at)) {
        if (*scan->at == '(') {
            ++depth;
            ++scan->visited;
        } else if (depth-- == 0) {
            return;
        }
        ++scan->at;
    }
}

static int s_readLeaf(Scan* scan, const char* name, int length)
{
    void* detail = nullptr;
    int result = s_addNode(scan, NODE_LEAF, name, length, &detail);
    if (result != TREE_OK) return result;
    _tagLeafStruct* leaf = static_cast<_tagLeafStruct*>(detail);
    s_lookUp(s_leafNames, leaf->name, &leaf->nameKind);
    while (result == TREE_OK && *scan->at != '\0' && *scan->at != ')') {
        if (*scan->at == '(') {
            s_abandonLeaf(scan);
            return TREE_OK;
        }
        result = s_readValue(scan, leaf);
    }
    return result;
}

// Reads from an opening parenthesis to the next one or to the list's end. A list of a name alone
// makes no node.
static int s_openList(Scan* scan)
{
    ++scan->visited;
    ++scan->level;
    ++scan->at;
    CMN_EatWhitespace(&scan->at);
    const char* name = scan->at;
    s_skipTo(&scan->at, " \t\n\v\f\r()");
    const int length = static_cast<int>(scan->at - name);
    CMN_EatWhitespace(&scan->at);
    if (*scan->at == '(') {
        void* detail = nullptr;
        return s_addNode(scan, NODE_BRANCH, name, length, &detail);
    }
    if (*scan->at == ')') return scan->level > 1 ? TREE_OK : TREE_CLOSED_TOO_EARLY;
    return s_readLeaf(scan, name, length);
}

static int s_closeList(Scan* scan)
{
    if (scan->level == 0) return TREE_CLOSED_TOO_EARLY;
    --scan->level;
    ++scan->at;
    CMN_EatWhitespace(&scan->at);
    return TREE_OK;
}

static int s_scan(Scan* scan)
{
    int result = TREE_OK;
    while (result == TREE_OK) {
        s_skipIgnored(&scan->at);
        if (*scan->at == '\0') break;
        if (*scan->at == ')')
            result = s_closeList(scan);
        else if (scan->visited < scan->capacity)
            result = s_openList(scan);
        else
            break;
    }
    return result;
}

int ScanForNodes(char* text, _tagNodeStruct** nodes, int* count)
{
    CMN_ASSERT(text != nullptr && nodes != nullptr && *nodes != nullptr && count != nullptr);
    Scan scan = {text, *nodes, *count, 0, 0, 0, nullptr, 0};
    const int result = s_scan(&scan);
    *count = scan.count;
    return result;
}

// Linking.

static int s_appendChild(_tagBranchStruct* parent, const _tagNodeStruct* child)
{
    void* children = parent->children;
    if (!s_growByOne(&children, parent->childCount, sizeof(_tagNodeStruct))) return TREE_NO_MEMORY;
    parent->children = static_cast<_tagNodeStruct*>(children);
    parent->children[parent->childCount++] = *child;
    return TREE_OK;
}

// path holds the branches from the root to the last one, with room for the deepest level.
static int s_linkNodes(const _tagTreeStruct* tree, const _tagNodeStruct** path)
{
    for (int i = 1; i < tree->count; ++i)
        if (tree->nodes[i].level <= tree->nodes[0].level) return TREE_NO_PARENT;
    if (tree->nodes[0].kind != NODE_BRANCH) return TREE_NO_RECORD;

    int depth = 0;
    path[depth++] = &tree->nodes[0];
    for (int i = 1; i < tree->count; ++i) {
        const _tagNodeStruct* node = &tree->nodes[i];
        while (path[depth - 1]->level >= node->level)
            --depth;
        const _tagNodeStruct* parent = path[depth - 1];
        if (parent->detail == nullptr) return TREE_NO_RECORD;
        if (node->level != parent->level + 1) continue;
        const int result = s_appendChild(static_cast<_tagBranchStruct*>(parent->detail), node);
        if (result != TREE_OK) return result;
        if (node->kind == NODE_BRANCH) path[depth++] = node;
    }
    return TREE_OK;
}

static int s_link(const _tagTreeStruct* tree)
{
    int deepest = 0;
    for (int i = 0; i < tree->count; ++i)
        if (tree->nodes[i].level > deepest) deepest = tree->nodes[i].level;
    // All lists were dropped: there is no root.
    if (deepest == 0) return TREE_NO_RECORD;
    void* path = nullptr;
    // Without memory for the path the tree is handed out flat.
    if (!CMN_malloc(&path, static_cast<size_t>(deepest) * sizeof(_tagNodeStruct*))) return TREE_OK;
    const int result = s_linkNodes(tree, static_cast<const _tagNodeStruct**>(path));
    CMN_freeSetNull(&path);
    return result;
}

static int s_newTree(int capacity, _tagTreeStruct** out)
{
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(_tagTreeStruct))) return 0;
    _tagTreeStruct* tree = static_cast<_tagTreeStruct*>(block);
    *out = tree;
    block = nullptr;
    if (!CMN_malloc(&block, static_cast<size_t>(capacity) * sizeof(_tagNodeStruct))) return 0;
    tree->nodes = static_cast<_tagNodeStruct*>(block);
    tree->count = capacity;
    return 1;
}

// source is the beginning of the text when the places of the nodes are kept, else null.
static int s_parse(char* text, const char* source, _tagTreeStruct** out)
{
    if (out == nullptr || text == nullptr) return TREE_NO_RECORD;
    CMN_EatWhitespace(&text);
    if (*text != '(') return TREE_NO_LIST;
    // Counts and lengths of the tree are ints.
    if (std::strlen(text) > INT_MAX) return TREE_NO_MEMORY;
    int opens = 0;
    if (!ISValidBuffer(text, &opens)) return TREE_UNBALANCED;

    _tagTreeStruct* tree = nullptr;
    int result = s_newTree(opens, &tree) ? TREE_OK : TREE_NO_MEMORY;
    if (result == TREE_OK) {
        void* copy = CMN_StrMake(text);
        if (copy == nullptr) {
            tree->count = 0;
        } else {
            Scan scan = {static_cast<char*>(copy), tree->nodes, tree->count, 0, 0, 0, nullptr, 0};
            if (source != nullptr) {
                scan.copy = scan.at;
                scan.offset = static_cast<size_t>(text - source);
            }
            result = s_scan(&scan);
            tree->count = scan.count;
            if (result == TREE_OK) result = s_link(tree);
            CMN_freeSetNull(&copy);
        }
    }
    if (result == TREE_OK)
        *out = tree;
    else
        FreeParsedTree(&tree);
    return result;
}

int GetParsedTree(char* text, _tagTreeStruct** out)
{
    return s_parse(text, nullptr, out);
}

int AMITREE_ParseFile(_tagTreeStruct** out)
{
    return s_parse(gsBuffer, gsBuffer, out);
}

void FreeParsedTree(_tagTreeStruct** tree)
{
    if (tree == nullptr || *tree == nullptr) return;
    if ((*tree)->nodes != nullptr) {
        // The children arrays hold copies: each detail is released once, through the flat array.
        for (int i = 0; i < (*tree)->count; ++i)
            s_freeDetail(&(*tree)->nodes[i]);
        CMN_free((*tree)->nodes);
    }
    CMN_free(*tree);
    *tree = nullptr;
}

int ISValidBuffer(const char* text, int* opens)
{
    int opened = 0;
    int closed = 0;
    bool quoted = false;
    for (const char* s = text; s != nullptr && *s != '\0'; ++s) {
        if (*s == '"') quoted = !quoted;
        if (quoted) continue;
        opened += *s == '(';
        closed += *s == ')';
    }
    const int balanced = opened == closed;
    if (opens != nullptr) *opens = balanced ? opened : 0;
    return balanced;
}

int GetValueType(const char* text)
{
    if (text == nullptr || *text == '\0') return VALUE_EMPTY;
    if (s_isInteger(text)) return VALUE_INTEGER;
    if (s_isNumber(text)) return VALUE_FLOAT;
    if (std::strcmp(text, "True") == 0 || std::strcmp(text, "False") == 0) return VALUE_BOOLEAN;
    return VALUE_STRING;
}
