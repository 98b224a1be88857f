// The document store: documents, and the lists of each.
#include "IbisParser/ibis.h"

#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/ext.h"
#include "IbisParser/hdr.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/store/roots.h"
#include "IbisParser/store/section.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

static const char s_Module[] = "IbisParser/ibis";

// Newest first.
static IbisRoot* s_roots = nullptr;

template <typename T>
static int s_get(IbisRoot* root, T* IbisRoot::*list, T** head)
{
    CMN_ASSERT(root != nullptr && head != nullptr);
    *head = root->*list;
    return *head != nullptr;
}

template <typename T>
static int s_add(IbisRoot* root, T* IbisRoot::*list, T* item)
{
    CMN_ASSERT(root != nullptr && item != nullptr);
    return SEC_AddLink(&(root->*list), item);
}

int IBIS_New()
{
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(IbisRoot))) return 0;
    IbisRoot* root = static_cast<IbisRoot*>(block);
    root->next = s_roots;
    s_roots = root;
    return 1;
}

int IBIS_GetIBIS(IbisRoot** root)
{
    CMN_ASSERT(root != nullptr);
    *root = s_roots;
    return s_roots != nullptr;
}

void ROOTS_Unlink(const IbisRoot* root)
{
    IbisRoot** link = &s_roots;
    while (*link != nullptr && *link != root)
        link = &(*link)->next;
    if (*link == root) *link = root->next;
}

// clang-format off
int IBIS_AddHdr(IbisRoot* root, Hdr* item)            { return s_add(root, &IbisRoot::hdrs, item); }
int IBIS_AddCmpnt(IbisRoot* root, Cmpnt* item)        { return s_add(root, &IbisRoot::cmpnts, item); }
int IBIS_AddMdl(IbisRoot* root, Mdl* item)            { return s_add(root, &IbisRoot::mdls, item); }
int IBIS_AddExt(IbisRoot* root, Ext* item)            { return s_add(root, &IbisRoot::exts, item); }
int IBIS_AddSubMdl(IbisRoot* root, SubMdl* item)      { return s_add(root, &IbisRoot::subMdls, item); }
int IBIS_AddPkgMdl(IbisRoot* root, PkgMdl* item)      { return s_add(root, &IbisRoot::pkgMdls, item); }
int IBIS_AddEbdMdl(IbisRoot* root, EbdMdl* item)      { return s_add(root, &IbisRoot::ebdMdls, item); }
int IBIS_AddMsel(IbisRoot* root, Msel* item)          { return s_add(root, &IbisRoot::msels, item); }
int IBIS_AddTestData(IbisRoot* root, TestData* item)  { return s_add(root, &IbisRoot::testData, item); }
int IBIS_AddTestLoad(IbisRoot* root, TestLoad* item)  { return s_add(root, &IbisRoot::testLoads, item); }

int IBIS_GetHdrs(IbisRoot* root, Hdr** head)          { return s_get(root, &IbisRoot::hdrs, head); }
int IBIS_GetCmpnts(IbisRoot* root, Cmpnt** head)      { return s_get(root, &IbisRoot::cmpnts, head); }
int IBIS_GetMdls(IbisRoot* root, Mdl** head)          { return s_get(root, &IbisRoot::mdls, head); }
int IBIS_GetExts(IbisRoot* root, Ext** head)          { return s_get(root, &IbisRoot::exts, head); }
int IBIS_GetSubMdls(IbisRoot* root, SubMdl** head)    { return s_get(root, &IbisRoot::subMdls, head); }
int IBIS_GetPkgMdls(IbisRoot* root, PkgMdl** head)    { return s_get(root, &IbisRoot::pkgMdls, head); }
int IBIS_GetEbdMdls(IbisRoot* root, EbdMdl** head)    { return s_get(root, &IbisRoot::ebdMdls, head); }
int IBIS_GetMsels(IbisRoot* root, Msel** head)        { return s_get(root, &IbisRoot::msels, head); }
int IBIS_GetTestData(IbisRoot* root, TestData** head) { return s_get(root, &IbisRoot::testData, head); }
int IBIS_GetTestLoad(IbisRoot* root, TestLoad** head) { return s_get(root, &IbisRoot::testLoads, head); }
// clang-format on
