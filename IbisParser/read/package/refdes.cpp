// [Reference Designator Map].
#include "IbisParser/refdes.h"

#include <cstring>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/package/board.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/refdes";

int REFDES_FileType(const char* name)
{
    const std::size_t length = std::strlen(name);
    if (length < 4) return 0;
    const char* extension = name + length - 4;
    if (CMN_StrSameIC(extension, ".ibs")) return FILE_IBS;
    return CMN_StrSameIC(extension, ".ebd") ? FILE_EBD : 0;
}

static RefDes* s_newRow(EbdMdl* board, const char* name)
{
    RefDes* row = static_cast<RefDes*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(RefDes)));
    if (row == nullptr) return nullptr;
    SEC_CopyName(row->name, name, SIZE_REFDES);
    row->line = PARSE_GetLineNum();
    row->index = board->refDesCount++;
    if (board->lastRefDes != nullptr)
        board->lastRefDes->next = row;
    else
        board->map = row;
    board->lastRefDes = row;
    return row;
}

int REFDES_ReceiveLine(EbdMdl* board, char* line)
{
    CMN_ASSERT(board != nullptr && line != nullptr);
    const int items = TOKEN_Count(line);
    if (items < 3) {
        ERRLOG_LineErrorNew(4501, items);
        return 0;
    }
    char* name = TOKEN_Next(&line);
    const char* file = TOKEN_Next(&line);
    if (std::strlen(name) > SIZE_REFDES) {
        ERRLOG_LineErrorNew(4502, name, static_cast<int>(SIZE_REFDES));
        name[SIZE_REFDES] = '\0';
    }
    if (REFDES_Find(board, name) != nullptr) {
        ERRLOG_LineErrorNew(4503, name);
        return 0;
    }
    if (REFDES_FileType(file) == 0) ERRLOG_LineErrorNew(4504, file, name);
    RefDes* row = s_newRow(board, name);
    if (row == nullptr) return 0;
    row->file = CMN_StrMake(file);
    CMN_SetStr(row->component, TOKEN_SkipBlanks(line), SIZE_NAME, "Component");
    void** value = nullptr;
    if (board->refDesIndex != nullptr && IDX_SlotName(board->refDesIndex, row->name, &value))
        *value = row;
    return 1;
}

RefDes* REFDES_Find(const EbdMdl* board, const char* name)
{
    CMN_ASSERT(board != nullptr && name != nullptr);
    if (board->refDesIndex == nullptr) return nullptr;
    return static_cast<RefDes*>(IDX_FindName(board->refDesIndex, name));
}

void REFDES_FreeList(RefDes* head)
{
    SEC_FreeList(head, [](RefDes* row) {
        void* file = row->file;
        if (file != nullptr) CMN_freeSetNull(&file);
        SEC_FreeRecord(row);
    });
}
