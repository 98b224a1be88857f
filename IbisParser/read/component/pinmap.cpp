// [Pin Mapping]: the buses that supply each pin.
#include "IbisParser/pinmap.h"

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/pinmap";
static const PartFailure s_failure = {s_Module, 1300};

const char* const pinmapColumns[PINMAP_COLUMNS] = {"pulldown_ref", "pullup_ref", "gnd_clamp_ref",
                                                   "power_clamp_ref", "ext_ref"};

int PINMAP_KeywordLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin Mapping", line, PINMAP_COLUMNS + 1, &args))
        return 0;
    int drives = 0;
    int known = 0;
    for (int i = 0; i < args.nStored; ++i) {
        if (i >= PINMAP_COLUMNS || !CMN_StrSameIC(args.argv[i], pinmapColumns[i])) {
            ERRLOG_LineErrorNew(1303, args.argv[i]);
            continue;
        }
        ++known;
        if (i == PINMAP_EXT && SEC_Version() < 4)
            ERRLOG_LineErrorNew(1308);
        else
            drives += i <= PINMAP_PULLUP;
    }
    if (drives < 2)
        ERRLOG_LineErrorNew(1304);
    else if (known == args.argc && known == PINMAP_POWER_CLAMP)
        ERRLOG_LineWarnNew(5901, "Pin Mapping", known, "two, four or five");
    return 1;
}

static void s_link(Cmpnt* component, PinMap* row, const char* name)
{
    Pin* pin = CMPNT_FindPin(component, name);
    if (pin == nullptr) {
        if (component->pins != nullptr) ERRLOG_LineErrorNew(1306, name);
        return;
    }
    if (pin->mapping != nullptr)
        ERRLOG_LineErrorNew(1307, name);
    else
        pin->mapping = row;
}

int PINMAP_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, "Pin Mapping", line, PINMAP_COLUMNS + 1, &args))
        return 0;
    const int takesExt = SEC_Version() >= 4;
    if (args.argc != 3 && args.argc != 5 && !(args.argc == 6 && takesExt))
        ERRLOG_LineErrorNew(1302, args.argc, takesExt ? "three, five or six" : "three or five");
    PinMap* row = args.argc < 3
                      ? nullptr
                      : static_cast<PinMap*>(SEC_NewPart(1301, s_Module, __LINE__, sizeof(PinMap)));
    if (row != nullptr) {
        const PlaceScope at(SUBJECT_PIN, row->name, {0, 0});
        row->line = PARSE_GetLineNum();
        SEC_CopyName(row->name, args.argv[0], SIZE_PIN);
        for (int i = 1; i < args.nStored; ++i)
            if (!SEC_CopyName(row->bus[i - 1], args.argv[i], SIZE_BUS))
                ERRLOG_LineErrorNew(1305, args.argv[i], row->name);
        s_link(component, row, args.argv[0]);
        SEC_Append(&component->pinMap, &component->reading->mapTail, row);
    }
    return row != nullptr;
}

PinMap* PINMAP_Find(PinMap* head, const char* pin)
{
    CMN_ASSERT(pin != nullptr);
    return SEC_FindByName(head, pin);
}

void PINMAP_FreeList(PinMap* head)
{
    SEC_FreeList(head, SEC_FreeRecord<PinMap>);
}
