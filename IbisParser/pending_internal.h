// Sections of which only name and line are kept, so that any file is read to its end.
#ifndef IBISPARSER_PENDING_INTERNAL_H
#define IBISPARSER_PENDING_INTERNAL_H

#include "IbisParser/ibis.h"

enum { PENDING_NAME_MAX = 40 };

extern "C" {
#define PENDING(record, prefix, init, add, opener)            \
    struct record {                                           \
        record* next;                                         \
        char name[PENDING_NAME_MAX + 1];                      \
        unsigned long line;                                   \
    };                                                        \
    int init(void);                                           \
    int prefix##_ReceiveLine(int kind, int code, char* line); \
    int prefix##_Fini(int nextCode);                          \
    int prefix##_AddLink(record** head, record* item);        \
    void prefix##_FreeList(record* head);
#include "IbisParser/pending.inc"
#undef PENDING
}

#endif
