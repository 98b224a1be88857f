// The order in which a document is checked.
#include "IbisParser/acdc.h"
#include "IbisParser/algmod.h"
#include "IbisParser/chk.h"
#include "IbisParser/chkcmpnt.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ibis.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/rcvth.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

static const char s_Module[] = "IbisParser/ibis";

typedef void RootStep(IbisRoot* root);

// A step for one list, taken when the list is not empty.
template <auto List, auto Function>
static void s_with(IbisRoot* root)
{
    if (root->*List != nullptr) Function(root->*List);
}

static void s_testComponents(IbisRoot* root)
{
    if (root->cmpnts == nullptr) {
        ERRLOG_ErrorNew(3901, "Component", gsFileName);
        return;
    }
    chk_CheckAllComponents(root->cmpnts);
    CMPNT_TestList(root->cmpnts, root->exts, root->mdls);
}

static void s_testSubModels(IbisRoot* root)
{
    if (root->subMdls != nullptr) MDL_TestSubMdlReferences(root->mdls, root->subMdls);
}

static void s_testAddedSubModels(IbisRoot* root)
{
    MDL_TestSubMdls(root->mdls, root->subMdls);
}

static RootStep* const s_testSteps[] = {
    s_with<&IbisRoot::mdls, RCVTH_Check>,
    s_with<&IbisRoot::mdls, acdc_CheckAllModels>,
    s_with<&IbisRoot::mdls, chk_CheckAllModels>,
    s_with<&IbisRoot::mdls, DRVSH_Test>,
    s_with<&IbisRoot::mdls, ALGMOD_Test>,
    s_with<&IbisRoot::msels, MSEL_TestList>,
    s_testComponents,
    s_with<&IbisRoot::pkgMdls, PKGMDL_TestList>,
    s_with<&IbisRoot::testData, TESTDATA_TestList>,
    s_with<&IbisRoot::testLoads, TESTLOAD_TestList>,
    s_testSubModels,
    s_with<&IbisRoot::subMdls, chk_CheckAllSubModels>,
    s_with<&IbisRoot::subMdls, acdc_CheckAllSubModels>,
    s_testAddedSubModels,
    s_with<&IbisRoot::mdls, MDL_TestMdlReference>,
};

void IBIS_Test(IbisRoot* root)
{
    CMN_ASSERT(root != nullptr);
    for (RootStep* step : s_testSteps)
        step(root);
}

void EBD_Test(IbisRoot* root, int deep)
{
    CMN_ASSERT(root != nullptr);
    // No list check runs for package files: a record that the file left open ends here.
    PKGMDL_Close();
    EBDMDL_TestList(root->ebdMdls, deep);
}

void TEST(int fileType, int deep)
{
    IbisRoot* root = nullptr;
    if (fileType == FILE_AMI)
        AMI_Test();
    else if (!IBIS_GetIBIS(&root))
        return;
    else if (fileType == FILE_IBS)
        IBIS_Test(root);
    else
        EBD_Test(root, deep);
}
