// Boards: their pins, paths and nodes.
#include <cstddef>
#include <cstring>

#include "IbisParser/base/index.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/nml.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/package/board.h"
#include "IbisParser/refdes.h"
#include "IbisParser/store/section.h"

// What the paths of one board share.
struct NodeCheck {
    const EbdMdl* board;
    SecScopedIndex owners;  // first path of each node
    SecSet unmapped;        // designators that were reported
    bool hasNodes;
};

static void s_testNode(NodeCheck* check, EbdPath* path, const SectItem* node)
{
    check->hasNodes = true;
    const char* period = std::strchr(node->text, '.');
    if (period == nullptr) return;
    void** owner = nullptr;
    if (!IDX_SlotName(&check->owners, node->text, &owner)) return;
    if (*owner == nullptr)
        *owner = path;
    else if (*owner != path)
        ERRLOG_ErrorNew(4337, check->board->name, node->text,
                        static_cast<const EbdPath*>(*owner)->name, path->name);
    if (check->board->map == nullptr) return;
    char name[SIZE_NAME + 1];
    CMN_strncpy(name, node->text, static_cast<std::size_t>(period - node->text));
    if (REFDES_Find(check->board, name) == nullptr && SEC_SetAdd(&check->unmapped, name))
        ERRLOG_ErrorNew(4336, check->board->name, path->name, name);
}

static void s_testBoard(const EbdMdl* board)
{
    for (const EbdPin* pin = board->pins; pin != nullptr; pin = pin->next) {
        const PlaceScope at(SUBJECT_PIN, pin);
        if (pin->kind == EBDPIN_SIGNAL && pin->path == nullptr)
            ERRLOG_ErrorNew(4335, board->name, pin->name);
    }
    NodeCheck check = {board, {}, {}, false};
    for (EbdPath* path = board->paths; path != nullptr; path = path->next) {
        const PlaceScope at(SUBJECT_PATH, path);
        bool hasNode = false;
        for (const SectItem* item = path->path.head; item != nullptr; item = item->next) {
            if (item->kind != SECT_NODE) continue;
            hasNode = true;
            const PlaceScope in(SUBJECT_NODE, item->text, PLACE_Of(item));
            s_testNode(&check, path, item);
        }
        if (!hasNode) ERRLOG_WarnNew(4339, board->name, path->name);
    }
    if (check.hasNodes && board->map == nullptr) ERRLOG_ErrorNew(4338, board->name);
    if (board->paths == nullptr && EBDMDL_HasNoSignal(board)) ERRLOG_NoteNew(4341, board->name);
}

int EBDMDL_TestList(EbdMdl* boards, int deep)
{
    EBDMDL_Close();
    if (boards == nullptr) {
        if (geCurrFileType == FILE_EBD) ERRLOG_ErrorNew(4340);
        return 0;
    }
    NML_CheckUnique(boards, offsetof(EbdMdl, name), offsetof(EbdMdl, next), "Board");
    for (const EbdMdl* board : SecFileOrder<EbdMdl>(boards)) {
        const PlaceScope at(SUBJECT_BOARD, board);
        s_testBoard(board);
    }
    REFDES_Test(boards, deep);
    return 1;
}
