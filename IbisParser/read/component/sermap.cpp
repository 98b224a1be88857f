// [Series Pin Mapping] and [Series Switch Groups].
#include "IbisParser/sermap.h"

#include <algorithm>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/sermap";
static const PartFailure s_failure = {s_Module, 1700};

static const char s_mapping[] = "Series Pin Mapping";
static const char* const s_columns[] = {"pin_2", "model_name", "function_table_group"};

enum {
    MAP_COLUMNS = 4,
    GROUP_COLUMN = 3,
    KEY_ROOM = 1100  // two pins and a model of one line
};

int SERMAP_KeywordLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, s_mapping, line, MAP_COLUMNS, &args)) return 0;
    component->reading->hasGroupColumn = 0;
    if (args.argc == 0) ERRLOG_LineWarnNew(5900, s_mapping);
    for (int i = 0; i < args.nStored; ++i)
        if (i >= GROUP_COLUMN || !CMN_StrSameIC(args.argv[i], s_columns[i]))
            ERRLOG_LineErrorNew(1703, args.argv[i]);
        else if (i == GROUP_COLUMN - 1)
            component->reading->hasGroupColumn = 1;
    return 1;
}

static void s_checkPins(Cmpnt* component, const SerMap* row, const char* const names[2])
{
    const char* pins[] = {names[0], names[1]};
    for (const char* name : pins)
        if (!CMPNT_HasPin(component, name)) ERRLOG_LineErrorNew(1704, name);
    if (std::strcmp(pins[0], pins[1]) == 0) ERRLOG_LineErrorNew(1705, pins[0]);
    // A pair is the same in either order; blanks cannot stand in names.
    if (std::strcmp(pins[0], pins[1]) > 0) std::swap(pins[0], pins[1]);
    char key[KEY_ROOM];
    std::snprintf(key, sizeof key, "%s %s %s", pins[0], pins[1], row->model);
    if (!SEC_SetAdd(&component->reading->seriesPairs, key))
        ERRLOG_LineWarnNew(1706, names[0], names[1], row->model);
}

int SERMAP_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, s_mapping, line, MAP_COLUMNS, &args)) return 0;
    if (args.argc != 3 && args.argc != MAP_COLUMNS) ERRLOG_LineErrorNew(1702, args.argc);
    SerMap* row = args.argc < 3
                      ? nullptr
                      : static_cast<SerMap*>(SEC_NewPart(1701, s_Module, __LINE__, sizeof(SerMap)));
    if (row != nullptr) {
        const PlaceScope at(SUBJECT_PIN, row->name, {0, 0});
        const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
        row->line = PARSE_GetLineNum();
        SEC_CopyName(row->name, args.argv[0], SIZE_PIN);
        SEC_CopyName(row->pin2, args.argv[1], SIZE_PIN);
        if (!SEC_CopyName(row->model, args.argv[2], limit))
            ERRLOG_LineErrorNew(1707, args.argv[2], row->name, limit);
        if (args.nStored > GROUP_COLUMN) {
            const char* group = args.argv[GROUP_COLUMN];
            if (!SEC_CopyName(row->group, group, SIZE_GROUP))
                ERRLOG_LineErrorNew(1708, group, SIZE_GROUP);
            if (!component->reading->hasGroupColumn) ERRLOG_LineErrorNew(1709, row->name);
        }
        s_checkPins(component, row, args.argv);
        SEC_Append(&component->seriesPins, &component->reading->seriesTail, row);
    }
    return row != nullptr;
}

static void s_freeState(SerState* state)
{
    SEC_FreeList(state->groups, SEC_FreeRecord<SerGroup>);
    SEC_FreeRecord(state);
}

static void s_dropState(CmpntReading* reading)
{
    if (reading->openState == nullptr) return;
    s_freeState(reading->openState);
    reading->openState = nullptr;
    SEC_SetClear(&reading->names);
    gbContinue = 0;
}

static void s_openState(CmpntReading* reading, int on)
{
    SerState* state =
        static_cast<SerState*>(SEC_NewPart(1701, s_Module, __LINE__, sizeof(SerState)));
    if (state == nullptr) return;
    state->on = on;
    state->line = PARSE_GetLineNum();
    reading->openState = state;
    reading->groupTail = nullptr;
    gbContinue = 1;
}

static void s_addGroup(CmpntReading* reading, const char* text)
{
    char name[SIZE_GROUP + 1];
    if (!SEC_CopyName(name, text, SIZE_GROUP)) ERRLOG_LineErrorNew(1708, text, SIZE_GROUP);
    if (!SEC_SetAdd(&reading->names, name)) {
        ERRLOG_LineWarnNew(1714, name);
        return;
    }
    SerGroup* group =
        static_cast<SerGroup*>(SEC_NewPart(1701, s_Module, __LINE__, sizeof(SerGroup)));
    if (group == nullptr) return;
    CMN_strncpy(group->name, name, SIZE_GROUP);
    SEC_Append(&reading->openState->groups, &reading->groupTail, group);
}

// The state as one text that does not depend on the order of its groups; null without memory.
static char* s_stateKey(const SerState* state)
{
    std::size_t count = 0;
    for (const SerGroup* group = state->groups; group != nullptr; group = group->next)
        ++count;
    void* namesBlock = nullptr;
    void* textBlock = nullptr;
    const std::size_t room = count * (SIZE_GROUP + 1) + 2;
    if (!CMN_malloc(&namesBlock, count * sizeof(char*))) return nullptr;
    if (CMN_malloc(&textBlock, room)) {
        const char** names = static_cast<const char**>(namesBlock);
        std::size_t place = 0;
        for (const SerGroup* group = state->groups; group != nullptr; group = group->next)
            names[place++] = group->name;
        std::sort(names, names + count,
                  [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });
        char* text = static_cast<char*>(textBlock);
        *text++ = state->on ? '1' : '0';
        for (std::size_t i = 0; i < count; ++i) {
            *text++ = ' ';
            const std::size_t length = std::strlen(names[i]);
            std::memcpy(text, names[i], length);
            text += length;
        }
    }
    CMN_freeSetNull(&namesBlock);
    return static_cast<char*>(textBlock);
}

static void s_closeState(Cmpnt* component)
{
    CmpntReading* reading = component->reading;
    SerState* state = reading->openState;
    if (state->groups == nullptr) {
        ERRLOG_LineErrorNew(1711);
        s_dropState(reading);
        return;
    }
    char* key = s_stateKey(state);
    if (key != nullptr) {
        if (!SEC_SetAdd(&reading->switchStates, key)) ERRLOG_LineWarnNew(1715);
        SEC_FreeRecord(key);
    }
    SEC_Append(&component->switchStates, &reading->stateTail, state);
    reading->openState = nullptr;
    SEC_SetClear(&reading->names);
    gbContinue = 0;
}

// One token of a state; 0 when the rest of the line belongs to nothing.
static int s_groupToken(Cmpnt* component, const char* token)
{
    static const char* const words[] = {"On", "Off", nullptr};
    CmpntReading* reading = component->reading;
    const int word = KRNG_Word(token, words);
    if (word != 0) {
        if (reading->openState != nullptr) {
            ERRLOG_LineErrorNew(1712, token);
            s_closeState(component);
        }
        s_openState(reading, word == 1);
        return reading->openState != nullptr;
    }
    if (reading->openState == nullptr) {
        ERRLOG_LineErrorNew(1710, token);
        return 0;
    }
    s_addGroup(reading, token);
    return 1;
}

// The next token of a line: "/" alone, or what stands before a blank or "/".
static int s_nextToken(const char** text, char* token)
{
    const char* start = *text;
    while (*start == ' ' || *start == '\t')
        ++start;
    if (*start == '\0') return 0;
    std::size_t length = *start == '/' ? 1 : std::strcspn(start, " \t/");
    *text = start + length;
    CMN_strncpy(token, start, std::min<std::size_t>(length, CMN_PATH_MAX));
    return 1;
}

int SERMAP_GroupLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    char token[CMN_PATH_MAX + 1];
    while (s_nextToken(&line, token)) {
        if (std::strcmp(token, "/") != 0) {
            if (!s_groupToken(component, token)) {
                // A state that cannot be read ends at its "/", or with the line.
                const char* slash = std::strchr(line, '/');
                line = slash != nullptr ? slash : line + std::strlen(line);
                if (*line == '\0') return 0;
                ++line;
            } else {
                continue;
            }
        } else if (component->reading->openState == nullptr) {
            ERRLOG_LineErrorNew(1710, token);
        } else {
            s_closeState(component);
        }
        while (*line == ' ' || *line == '\t')
            ++line;
        if (*line != '\0') ERRLOG_LineWarnNew(1713, line);
        return 1;
    }
    return 1;
}

int SERMAP_Fini(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    s_dropState(component->reading);
    return 1;
}

SerMap* SERMAP_Find(SerMap* head, const char* pin)
{
    CMN_ASSERT(pin != nullptr);
    for (; head != nullptr; head = head->next)
        if (std::strcmp(head->name, pin) == 0 || std::strcmp(head->pin2, pin) == 0) return head;
    return nullptr;
}

void SERMAP_FreeList(SerMap* head)
{
    SEC_FreeList(head, SEC_FreeRecord<SerMap>);
}

void SERMAP_FreeStates(SerState* head)
{
    SEC_FreeList(head, s_freeState);
}
