// The assembly that a board describes: boards of components and boards, and the files they are in.
#include <cstring>

#include "IbisParser/base/place.h"
#include "IbisParser/base/position.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/read/package/board.h"
#include "IbisParser/refdes.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/refdes";

enum { DEEPEST_BOARD = 8 };

// A file that designators name, looked for and read once for the whole test.
struct AssemblyFile {
    AssemblyFile* next;
    char* name;  // as the map has it
    int type;
    bool exists;
    IbisRoot* root;  // null unless it was read
    int depth;       // boards around it
    IdxTable parts;  // components or boards by name
};

// A board whose references wait to be looked up.
struct WaitingBoard {
    WaitingBoard* next;
    const EbdMdl* board;
    int depth;
};

// The whole assembly. Files are kept until the end of the test, so that a board used in many places
// is looked into again without being read again.
struct Assembly {
    explicit Assembly(int isDeep) : deep(isDeep != 0) {}
    ~Assembly();
    Assembly(const Assembly&) = delete;
    Assembly& operator=(const Assembly&) = delete;

    bool deep;
    AssemblyFile* files = nullptr;  // newest first
    SecScopedIndex byName;
    WaitingBoard* first = nullptr;
    WaitingBoard* last = nullptr;
};

Assembly::~Assembly()
{
    SEC_FreeList(files, [](AssemblyFile* file) {
        if (file->root != nullptr && file->depth > 0) IBIS_Free(file->root);
        IDX_Clear(&file->parts);
        SEC_FreeText(&file->name);
        SEC_FreeRecord(file);
    });
    SEC_FreeList(first, SEC_FreeRecord<WaitingBoard>);
}

// The nodes of a board by designator: heads has a link for each row of the map. A link is the place
// of a node from 1, 0 ends a chain.
struct NodeLink {
    const SectItem* node;
    std::size_t next;
};
struct BoardNodes {
    SecArray<NodeLink> links;
    SecArray<std::size_t> heads;
    SecArray<std::size_t> tails;
    std::size_t count;
};

static void s_wait(Assembly* assembly, const EbdMdl* board, int depth)
{
    WaitingBoard* item =
        static_cast<WaitingBoard*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(WaitingBoard)));
    if (item == nullptr) return;
    item->board = board;
    item->depth = depth;
    if (assembly->last != nullptr)
        assembly->last->next = item;
    else
        assembly->first = item;
    assembly->last = item;
}

template <typename Record>
static void s_indexParts(AssemblyFile* file, Record* head)
{
    for (Record* part : SecFileOrder<Record>(head)) {
        void** value = nullptr;
        if (IDX_SlotName(&file->parts, part->name, &value) && *value == nullptr) *value = part;
    }
}

// As the reader opens files: the name as it is, in lower case, in upper case.
static bool s_exists(char* path)
{
    static void (*const changes[])(char*) = {nullptr, CMN_ConvertToLower, CMN_ConvertToUpper};
    for (void (*change)(char*) : changes) {
        if (change != nullptr) change(path);
        std::FILE* stream = SEC_OpenFile(path);
        if (stream == nullptr) continue;
        std::fclose(stream);
        return true;
    }
    return false;
}

// "name" in the folder of the board file; owned.
static char* s_pathOf(const char* name)
{
    const std::size_t length = std::strlen(gsFilePath_ibs) + std::strlen(name);
    void* block = nullptr;
    if (!CMN_malloc(&block, length + 1)) return nullptr;
    char* path = static_cast<char*>(block);
    std::snprintf(path, length + 1, "%s%s", gsFilePath_ibs, name);
    return path;
}

// Reads a file in the middle of the check of another one.
static bool s_parse(const char* path, int type)
{
    const PositionKeeper position;
    const bool isRead = PARSE(path, type) != 0;
    EBDMDL_Close();
    return isRead;
}

// Reads the file into a store of its own.
static void s_read(Assembly* assembly, AssemblyFile* file, const char* path)
{
    if (!IBIS_New()) return;
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    if (!s_parse(path, file->type)) {
        IBIS_Free(root);
        return;
    }
    file->root = root;
    if (file->type == FILE_IBS) {
        s_indexParts(file, root->cmpnts);
        return;
    }
    s_indexParts(file, root->ebdMdls);
    if (file->depth >= DEEPEST_BOARD) return;
    for (const EbdMdl* board : SecFileOrder<EbdMdl>(root->ebdMdls))
        s_wait(assembly, board, file->depth);
}

static AssemblyFile* s_newFile(Assembly* assembly, const char* name)
{
    AssemblyFile* file =
        static_cast<AssemblyFile*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(AssemblyFile)));
    if (file == nullptr) return nullptr;
    file->name = CMN_StrMake(name);
    file->type = REFDES_FileType(name);
    file->next = assembly->files;
    assembly->files = file;
    void** value = nullptr;
    if (file->name != nullptr && IDX_SlotName(&assembly->byName, file->name, &value)) *value = file;
    return file;
}

static const AssemblyFile* s_getFile(Assembly* assembly, const char* name, int depth)
{
    void* known = IDX_FindName(&assembly->byName, name);
    if (known != nullptr) return static_cast<AssemblyFile*>(known);
    AssemblyFile* file = s_newFile(assembly, name);
    char* path = file != nullptr ? s_pathOf(name) : nullptr;
    char* probe = CMN_StrMake(path);
    if (probe != nullptr) {
        file->depth = depth + 1;
        file->exists = s_exists(probe);
        if (file->exists && assembly->deep) s_read(assembly, file, path);
    }
    SEC_FreeText(&probe);
    SEC_FreeText(&path);
    return file;
}

static bool s_hasPin(const AssemblyFile* file, const void* part, const char* pin)
{
    if (file->type == FILE_IBS)
        return CMPNT_FindPin(static_cast<const Cmpnt*>(part), pin) != nullptr;
    return EBDMDL_FindPin(static_cast<const EbdMdl*>(part), pin) != nullptr;
}

static void s_lookUp(Assembly* assembly, const WaitingBoard* waiting, const RefDes* row,
                     const BoardNodes* nodes, std::size_t head)
{
    if (row->file == nullptr || REFDES_FileType(row->file) == 0) return;
    const char* boardName = waiting->board->name;
    const AssemblyFile* file = s_getFile(assembly, row->file, waiting->depth);
    if (file == nullptr) return;
    if (!file->exists) {
        ERRLOG_WarnNew(4506, boardName, "file", row->file, row->name);
        return;
    }
    if (file->root == nullptr) return;
    const void* part = IDX_FindName(&file->parts, row->component);
    if (part == nullptr) {
        const char* kind = file->type == FILE_IBS ? "component" : "board";
        ERRLOG_WarnNew(4506, boardName, kind, row->component, row->name);
        return;
    }
    for (std::size_t link = head; link != 0; link = nodes->links[link - 1].next) {
        const SectItem* node = nodes->links[link - 1].node;
        const char* pin = std::strchr(node->text, '.') + 1;
        const PlaceScope at(SUBJECT_NODE, node->text,
                            waiting->depth == 0 ? PLACE_Of(node) : PlaceSpot{0, 0});
        if (!s_hasPin(file, part, pin)) ERRLOG_WarnNew(4506, boardName, "pin", pin, row->name);
    }
}

static std::size_t s_countNodes(const EbdMdl* board)
{
    std::size_t count = 0;
    for (const EbdPath* path = board->paths; path != nullptr; path = path->next)
        for (const SectItem* item = path->path.head; item != nullptr; item = item->next)
            count += item->kind == SECT_NODE;
    return count;
}

static void s_chainNode(const EbdMdl* board, BoardNodes* nodes, const SectItem* node)
{
    const char* period = std::strchr(node->text, '.');
    if (period == nullptr) return;
    char name[SIZE_NAME + 1];
    CMN_strncpy(name, node->text, static_cast<std::size_t>(period - node->text));
    const RefDes* row = REFDES_Find(board, name);
    if (row == nullptr) return;
    nodes->links[nodes->count++] = {node, 0};
    std::size_t* tail = &nodes->tails[row->index];
    (*tail == 0 ? nodes->heads[row->index] : nodes->links[*tail - 1].next) = nodes->count;
    *tail = nodes->count;
}

static void s_testBoard(Assembly* assembly, const WaitingBoard* waiting)
{
    const EbdMdl* board = waiting->board;
    // Lines of deeper boards are those of other files.
    const bool isOwn = waiting->depth == 0;
    const PlaceScope at(SUBJECT_BOARD, board->name, isOwn ? PLACE_Of(board) : PlaceSpot{0, 0});
    const auto designators = static_cast<std::size_t>(board->refDesCount);
    BoardNodes nodes = {SecArray<NodeLink>(s_countNodes(board)), SecArray<std::size_t>(designators),
                        SecArray<std::size_t>(designators), 0};
    if (!nodes.links || !nodes.heads || !nodes.tails) {
        ERRLOG_BugNew(1908, s_Module, __LINE__);
        return;
    }
    for (const EbdPath* path = board->paths; path != nullptr; path = path->next)
        for (const SectItem* item = path->path.head; item != nullptr; item = item->next)
            if (item->kind == SECT_NODE) s_chainNode(board, &nodes, item);
    for (const RefDes* row = board->map; row != nullptr; row = row->next) {
        const PlaceScope in(SUBJECT_DESIGNATOR, row->name, isOwn ? PLACE_Of(row) : PlaceSpot{0, 0});
        const std::size_t head = nodes.heads[row->index];
        if (isOwn && head == 0) ERRLOG_WarnNew(4505, board->name, row->name);
        s_lookUp(assembly, waiting, row, &nodes, head);
    }
}

int REFDES_Test(const EbdMdl* boards, int deep)
{
    Assembly assembly(deep);
    // A board that uses its own file must not read it again.
    AssemblyFile* self = s_newFile(&assembly, gsFileName);
    IbisRoot* root = nullptr;
    if (self != nullptr && IBIS_GetIBIS(&root)) {
        self->exists = true;
        self->root = deep ? root : nullptr;
        s_indexParts(self, root->ebdMdls);
    }
    for (const EbdMdl* board : SecFileOrder<const EbdMdl>(boards))
        s_wait(&assembly, board, 0);
    for (const WaitingBoard* item = assembly.first; item != nullptr; item = item->next)
        s_testBoard(&assembly, item);
    return 1;
}
