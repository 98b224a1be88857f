/* The document store: one root record that holds everything read, a list for each section. */
#ifndef IBISPARSER_IBIS_H
#define IBISPARSER_IBIS_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

typedef struct Hdr Hdr;
typedef struct Cmpnt Cmpnt;
typedef struct Mdl Mdl;
typedef struct Ext Ext;
typedef struct SubMdl SubMdl;
typedef struct PkgMdl PkgMdl;
typedef struct EbdMdl EbdMdl;
typedef struct Msel Msel;
typedef struct TestData TestData;
typedef struct TestLoad TestLoad;

/* Every list is newest first. */
typedef struct IbisRoot IbisRoot;
struct IbisRoot {
    IbisRoot* next;
    Hdr* hdrs;
    Cmpnt* cmpnts;
    Mdl* mdls;
    Ext* exts;
    SubMdl* subMdls;
    PkgMdl* pkgMdls;
    EbdMdl* ebdMdls;
    Msel* msels;
    TestData* testData;
    TestLoad* testLoads;
};

/* Allocates a zeroed root and makes it the front one. 1 done, 0 not. */
int IBIS_New(void);
/* Stores the front root and returns 1; stores null and returns 0 when there is none. The other get
 * operations store the head of their list in the same way. */
int IBIS_GetIBIS(IbisRoot** root);
/* Unlinks the root and frees it with everything in it. */
void IBIS_Free(IbisRoot* root);

int IBIS_AddHdr(IbisRoot* root, Hdr* item);
int IBIS_AddCmpnt(IbisRoot* root, Cmpnt* item);
int IBIS_AddMdl(IbisRoot* root, Mdl* item);
int IBIS_AddExt(IbisRoot* root, Ext* item);
int IBIS_AddSubMdl(IbisRoot* root, SubMdl* item);
int IBIS_AddPkgMdl(IbisRoot* root, PkgMdl* item);
int IBIS_AddEbdMdl(IbisRoot* root, EbdMdl* item);
int IBIS_AddMsel(IbisRoot* root, Msel* item);
int IBIS_AddTestData(IbisRoot* root, TestData* item);
int IBIS_AddTestLoad(IbisRoot* root, TestLoad* item);

int IBIS_GetHdrs(IbisRoot* root, Hdr** head);
int IBIS_GetCmpnts(IbisRoot* root, Cmpnt** head);
int IBIS_GetMdls(IbisRoot* root, Mdl** head);
int IBIS_GetExts(IbisRoot* root, Ext** head);
int IBIS_GetSubMdls(IbisRoot* root, SubMdl** head);
int IBIS_GetPkgMdls(IbisRoot* root, PkgMdl** head);
int IBIS_GetEbdMdls(IbisRoot* root, EbdMdl** head);
int IBIS_GetMsels(IbisRoot* root, Msel** head);
int IBIS_GetTestData(IbisRoot* root, TestData** head);
int IBIS_GetTestLoad(IbisRoot* root, TestLoad** head);

/* The checks of a whole document, for component files and for package and board files. A non-zero
 * deep makes the check of a board read the files that it refers to. */
void IBIS_Test(IbisRoot* root);
void EBD_Test(IbisRoot* root, int deep);

IBIS_END_DECLS

#endif
