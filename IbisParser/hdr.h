/* The file header: [IBIS Ver], [File Name], [File Rev], [Date], [Source], [Notes], [Disclaimer] and
 * [Copyright]. */
#ifndef IBISPARSER_HDR_H
#define IBISPARSER_HDR_H

#include "IbisParser/cmn.h"
#include "IbisParser/ibis.h"

IBIS_BEGIN_DECLS

enum { HDR_VERSION_MAX = 70, HDR_FILE_REV_MAX = 70, HDR_DATE_MAX = 40 };

struct Hdr {
    Hdr* next;
    char ibisVer[HDR_VERSION_MAX + 1];
    char fileName[CMN_PATH_MAX + 1];
    char fileRev[HDR_FILE_REV_MAX + 1];
    char date[HDR_DATE_MAX + 1];
    char* source; /* these four: owned, lines joined by a line feed, null when not given */
    char* notes;
    char* disclaimer;
    char* copyright;
};

int HDR_Init(void);
int HDR_ReceiveLine(int kind, int code, char* line);
int HDR_Fini(int nextCode);
int HDR_AddLink(Hdr** head, Hdr* item);
void HDR_FreeList(Hdr* head); /* null is a programming error */

/* Store a pointer into the record and return 1; store null and return 0 when the field is empty. */
int HDR_GetIBIS_Ver(Hdr* hdr, char** out);
int HDR_GetFile_name(Hdr* hdr, char** out);
int HDR_GetFile_Rev(Hdr* hdr, char** out);
int HDR_GetDate(Hdr* hdr, char** out);
int HDR_GetSource(Hdr* hdr, char** out);
int HDR_GetNotes(Hdr* hdr, char** out);
int HDR_GetDisclaimer(Hdr* hdr, char** out);
int HDR_GetCopyright(Hdr* hdr, char** out);

/* Options, off by default. */
void HDR_AllowAnyFile_name(int on); /* no rules for the letters of [File Name] */
void HDR_Allow1xVersions(int on);   /* "1.x" is a legal [IBIS Ver] */
void HDR_AllowAnyVersion(int on);   /* so is any text, and the file is read as version 5 */

IBIS_END_DECLS

#endif
