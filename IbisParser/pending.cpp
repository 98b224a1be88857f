#include "IbisParser/pending_internal.h"

#include <cstring>

#include "IbisParser/parse.h"

// Zeroed room behind a record: checks of other sections find its further fields empty.
static const std::size_t s_FieldRoom = 1024;

// The record being read, one for each kind.
template <typename T>
static T* s_Open = nullptr;

template <typename T>
static int s_init(int (*add)(IbisRoot*, T*))
{
    IbisRoot* root = nullptr;
    void* block = nullptr;
    s_Open<T> = nullptr;
    if (!IBIS_GetIBIS(&root) || !CMN_malloc(&block, sizeof(T) + s_FieldRoom)) return 0;
    s_Open<T> = static_cast<T*>(block);
    s_Open<T>->line = PARSE_GetLineNum();
    return add(root, s_Open<T>);
}

template <typename T>
static int s_receiveLine(int opener, int kind, int code, char* line)
{
    T* record = s_Open<T>;
    if (record == nullptr) return 0;
    if (kind == LINE_KEYWORD && code == opener) {
        CMN_EatKeyword(&line);
        CMN_strncpy(record->name, line, PENDING_NAME_MAX);
    }
    return 1;
}

template <typename T>
static void s_freeList(T* head)
{
    s_Open<T> = nullptr;
    while (head != nullptr) {
        void* record = head;
        head = head->next;
        CMN_freeSetNull(&record);
    }
}

#define PENDING(record, prefix, init, add, opener)              \
    int init(void)                                              \
    {                                                           \
        return s_init<record>(add);                             \
    }                                                           \
    int prefix##_ReceiveLine(int kind, int code, char* line)    \
    {                                                           \
        return s_receiveLine<record>(opener, kind, code, line); \
    }                                                           \
    int prefix##_Fini(int)                                      \
    {                                                           \
        return 1;                                               \
    }                                                           \
    int prefix##_AddLink(record** head, record* item)           \
    {                                                           \
        item->next = *head;                                     \
        *head = item;                                           \
        return 1;                                               \
    }                                                           \
    void prefix##_FreeList(record* head)                        \
    {                                                           \
        s_freeList(head);                                       \
    }
#include "IbisParser/pending.inc"
