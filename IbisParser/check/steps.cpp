// The order in which a document is checked, and how a finding travels.
//
// A check looks and tells; it changes nothing that the file said and keeps nothing of what it
// found. What it tells goes this way:
//
//   the check     calls ERRLOG_...New(number, values). The number stands for the text and is what
//                 users and tests know; the function says how bad it is, and whether the finding
//                 has the line that is being read. A finding about a whole document has none.
//   the message   base/messages holds the rows, number and text. The search for a number is part
//                 of the behaviour: some numbers find another row than their own (base/errlog.cpp).
//   the log       formats, counts by severity and writes the line to the log's stream, unless its
//                 kind is suppressed. FINI prints the totals and gives back the failures.
//   the sink      takes every message that is written as a record, so that nobody need read texts:
//                 number, severity, file, line, text. The library's part ends here.
//   the child     quell reads each file in a process of its own. Its sink packs the record into a
//                 frame and writes it to a pipe, so what was found before a crash is not lost.
//   the report    The parent takes the frames apart and collects findings by file; many files are
//                 read at once, and each waits for its turn, so the output never depends on speed.
//   the format    text or JSON prints the report, classic the log itself; view shows the same
//                 findings beside the curves that they are about. The exit code follows the counts.
//
// The order below is that of the log, which users compare between runs: it is not to be changed for
// tidiness. Reading tells first, line by line, then each step walks its whole list in file order.
// Checks may count on what earlier steps made (the ports that a circuit wires, the pins of a
// component by name), never on what those told.
#include "IbisParser/acdc.h"
#include "IbisParser/algmod.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/chk.h"
#include "IbisParser/chkcmpnt.h"
#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/ebdmdl.h"
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
    PKGMDL_TestList(root->pkgMdls);
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
