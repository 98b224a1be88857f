// Releases a document with everything in it.
#include "IbisParser/base/place.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/ext.h"
#include "IbisParser/hdr.h"
#include "IbisParser/ibis.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/store/roots.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

// The document belongs to the store.
static const char s_Module[] = "IbisParser/ibis";

template <auto List, auto Free>
static void s_free(IbisRoot* root)
{
    if (root->*List != nullptr) Free(root->*List);
}

// External circuits have no place of their own in the order; nothing that is released before them
// points at them.
static void (*const s_steps[])(IbisRoot* root) = {
    s_free<&IbisRoot::hdrs, HDR_FreeList>,           s_free<&IbisRoot::cmpnts, CMPNT_FreeList>,
    s_free<&IbisRoot::mdls, MDL_FreeList>,           s_free<&IbisRoot::pkgMdls, PKGMDL_FreeList>,
    s_free<&IbisRoot::msels, MSEL_FreeList>,         s_free<&IbisRoot::ebdMdls, EBDMDL_FreeList>,
    s_free<&IbisRoot::subMdls, SUBMDL_FreeList>,     s_free<&IbisRoot::testData, TESTDATA_FreeList>,
    s_free<&IbisRoot::testLoads, TESTLOAD_FreeList>, s_free<&IbisRoot::exts, EXT_FreeList>,
};

void IBIS_Free(IbisRoot* root)
{
    CMN_ASSERT(root != nullptr);
    ROOTS_Unlink(root);
    for (const auto step : s_steps)
        step(root);
    void* block = root;
    CMN_freeSetNull(&block);
    PLACE_Close();
    IbisRoot* rest = nullptr;
    if (!IBIS_GetIBIS(&rest)) PLACE_ForgetAll();
}
