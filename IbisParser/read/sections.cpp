#include "IbisParser/read/sections.h"

#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/ext.h"
#include "IbisParser/hdr.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

// clang-format off
static const Section s_sections[] = {
//    section            opener                        .ibs .pkg .ebd
    { SECTION_HEADER,    KEY_IBIS_VER,                 {  0,   0,   0}, HDR_Init, HDR_ReceiveLine, HDR_Fini },
    { SECTION_COMPONENT, KEY_COMPONENT,                {  0, 911, 912}, CMPNT_Init, CMPNT_ReceiveLine, CMPNT_Fini },
    // An external circuit stands outside components and is not told what follows it. In board
    // files, too, it gets the message of the package files.
    { SECTION_CIRCUIT,   KEY_EXTERNAL_CIRCUIT,         {  0, 911, 911}, EXT_CIR_Init, EXT_ReceiveLine, nullptr },
    { SECTION_MODEL,     KEY_MODEL,                    {  0, 911, 912}, MDL_Init, MDL_ReceiveLine, MDL_Fini },
    { SECTION_PACKAGE,   KEY_DEFINE_PACKAGE_MODEL,     {  0,   0, 912}, PKGMDL_Init, PKGMDL_ReceiveLine, PKGMDL_Fini },
    { SECTION_BOARD,     KEY_BEGIN_BOARD_DESCRIPTION,  {913, 911,   0}, EBDMDL_Init, EBDMDL_ReceiveLine, EBDMDL_Fini },
    { SECTION_SELECTOR,  KEY_MODEL_SELECTOR,           {  0, 911, 912}, MSEL_Init, MSEL_ReceiveLine, MSEL_Fini },
    { SECTION_SUBMODEL,  KEY_SUBMODEL,                 {  0, 911, 912}, SUBMDL_Init, SUBMDL_ReceiveLine, SUBMDL_Fini },
    { SECTION_TEST_DATA, KEY_TEST_DATA,                {  0, 911, 912}, TESTDATA_Init, TESTDATA_ReceiveLine, TESTDATA_Fini },
    { SECTION_TEST_LOAD, KEY_TEST_LOAD,                {  0, 911, 912}, TESTLOAD_Init, TESTLOAD_ReceiveLine, TESTLOAD_Fini },
};
// clang-format on

const Section* SECTIONS_Find(int code)
{
    const KeywordSection wanted = KEYWORD_Section(code);
    for (const Section& section : s_sections)
        if (section.section == wanted) return &section;
    return nullptr;
}
