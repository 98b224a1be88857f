#include "IbisParser/pending_internal.h"

#include <cstring>
#include <type_traits>

#include "IbisParser/parse.h"

// The record being read, one for each kind.
template <typename T>
static T* s_Open = nullptr;

template <typename T>
static int s_init(int (*add)(IbisRoot*, T*))
{
    IbisRoot* root = nullptr;
    void* block = nullptr;
    s_Open<T> = nullptr;
    if (!IBIS_GetIBIS(&root) || !CMN_malloc(&block, sizeof(T))) return 0;
    s_Open<T> = static_cast<T*>(block);
    s_Open<T>->line = PARSE_GetLineNum();
    return add(root, s_Open<T>);
}

template <typename T>
static void s_algorithmicModel(T* model, int kind, int code, char* line)
{
    if constexpr (std::is_same_v<T, Mdl>) {
        if (code == KEY_ALGORITHMIC_MODEL && kind == LINE_KEYWORD)
            ALGMOD_New(line, &model->algMod);
        else if (code == KEY_ALGORITHMIC_MODEL && model->algMod != nullptr)
            ALGMOD_ReceiveLine(line, &model->algMod->execs);
        else if (code == KEY_END_ALGORITHMIC_MODEL && model->algMod != nullptr)
            ALGMOD_Fini(model->algMod->execs);
    }
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
    s_algorithmicModel(record, kind, code, line);
    return 1;
}

template <typename T>
static void s_freeList(T* head)
{
    s_Open<T> = nullptr;
    while (head != nullptr) {
        if constexpr (std::is_same_v<T, Mdl>) ALGMOD_Free(head->algMod);
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
