/* The AMI parameter tree: a parenthesised text becomes branches and typed leaves. */
#ifndef IBISPARSER_AMITREE_H
#define IBISPARSER_AMITREE_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

enum { NODE_BRANCH = 0, NODE_LEAF = 1 };

enum { /* nameKind */
       LEAF_OTHER = 0,
       LEAF_USAGE = 1,
       LEAF_TYPE = 2,
       LEAF_FORMAT = 3,
       LEAF_DEFAULT = 4,
       LEAF_DESCRIPTION = 5,
       LEAF_LABELS = 6
};

enum { /* valueType */
       VALUE_EMPTY = -1,
       VALUE_STRING = 0,
       VALUE_INTEGER = 1,
       VALUE_BOOLEAN = 2,
       VALUE_FLOAT = 3
};

enum { /* wordType */
       WORD_NONE = -1,
       WORD_IN = 0,
       WORD_OUT = 1,
       WORD_INFO = 2,
       WORD_INOUT = 3,
       WORD_FLOAT = 4,
       WORD_INTEGER = 5,
       WORD_STRING = 6,
       WORD_BOOLEAN = 7,
       WORD_TAP = 8,
       WORD_UI = 9,
       WORD_VALUE = 10,
       WORD_RANGE = 11,
       WORD_LIST = 12,
       WORD_CORNER = 13,
       WORD_INCREMENT = 14,
       WORD_STEPS = 15,
       WORD_TABLE = 16,
       WORD_GAUSSIAN = 17,
       WORD_DUAL_DIRAC = 18,
       WORD_DJRJ = 19
};

enum { /* result codes of GetParsedTree */
       TREE_OK = 0,
       TREE_UNBALANCED = 1,
       TREE_NO_LIST = 2,
       TREE_NO_RECORD = 3,
       TREE_NO_MEMORY = 4,
       TREE_NO_PARENT = 5,
       TREE_CLOSED_TOO_EARLY = 6,
       TREE_TOO_MANY_NODES = 7,
       TREE_BAD_TOKEN = 8
};

typedef struct _tagValueStruct {
    char* text;
    int valueType;
    int wordType;
} _tagValueStruct;

typedef struct _tagNodeStruct {
    int kind;     /* NODE_BRANCH or NODE_LEAF */
    int level;    /* 1 for the root */
    void* detail; /* _tagBranchStruct or _tagLeafStruct, by kind */
} _tagNodeStruct;

typedef struct _tagBranchStruct {
    char* name;
    _tagNodeStruct* children; /* copies of node entries in document order; the details are shared */
    int childCount;
} _tagBranchStruct;

typedef struct _tagLeafStruct {
    char* name;
    _tagValueStruct* values;
    int valueCount;
    int nameKind;
} _tagLeafStruct;

typedef struct _tagTreeStruct {
    _tagNodeStruct* nodes; /* flat, in document order; entry 0 is the root */
    int count;
} _tagTreeStruct;

/* Parses text, which stays unchanged. 0: a tree that the caller releases with FreeParsedTree is
 * stored; else one of the codes above and *out is not set. */
int GetParsedTree(char* text, _tagTreeStruct** out);
void FreeParsedTree(_tagTreeStruct** tree);
/* 1 when the parentheses outside quotes balance; *opens (may be null) is their number. */
int ISValidBuffer(const char* text, int* opens);
int ScanForNodes(char* text, _tagNodeStruct** nodes, int* count);
int GetValueType(const char* text);

IBIS_END_DECLS

#endif
