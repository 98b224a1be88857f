/* The error log: numbered and free-format messages, their counters, and the totals. All state is
 * global and unlocked. The numbered family looks its text up in errorLogTable and, from 5000
 * on, in a second table of the library's own; the severity is the caller's choice. */
#ifndef IBISPARSER_ERRLOG_H
#define IBISPARSER_ERRLOG_H

#include <stdio.h>

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

/* Severities; a "line" variant prints the number of the line being read. */
typedef enum ErrSeverity {
    ERR_BUG = 0,
    ERR_LINE_BUG = 1,
    ERR_ERROR = 2,
    ERR_LINE_ERROR = 3,
    ERR_WARN = 4,
    ERR_LINE_WARN = 5,
    ERR_CAUTION = 6,
    ERR_LINE_CAUTION = 7,
    ERR_NOTE = 8,
    ERR_LINE_NOTE = 9,
    ERR_INFO = 10
} ErrSeverity;

typedef struct ErrorRow {
    int number;
    const char* text; /* a printf format */
} ErrorRow;

enum { ERRLOG_ROWS = 1151 };
extern const ErrorRow errorLogTable[ERRLOG_ROWS];

extern FILE* gpLogFile; /* null: standard output */
extern unsigned long gulBug_cnt;
extern unsigned long gulError_cnt;
extern unsigned long gulWarn_cnt;
extern unsigned long gulCaution_cnt;
extern int gbSuppressBugs;
extern int gbSuppressErrors;
extern int gbSuppressWarns;
extern int gbSuppressCautions;
extern int gbOldStyleErrors;
extern int gbSuppressBanners;

/* Free-format family: a printf format and its arguments; the result carries no meaning. */
int ERRLOG_Bugx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_LineBugx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_Errorx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_LineErrorx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_Warnx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_LineWarnx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_Cautionx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_LineCautionx(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_Notex(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);
int ERRLOG_LineNotex(const char* format, ...) IBIS_PRINTF_LIKE(1, 2);

/* Numbered family: a message number and the arguments of its text. */
void ERRLOG_BugNew(unsigned number, ...);
void ERRLOG_LineBugNew(unsigned number, ...);
void ERRLOG_ErrorNew(unsigned number, ...);
void ERRLOG_LineErrorNew(unsigned number, ...);
void ERRLOG_WarnNew(unsigned number, ...);
void ERRLOG_LineWarnNew(unsigned number, ...);
void ERRLOG_CautionNew(unsigned number, ...);
void ERRLOG_NoteNew(unsigned number, ...);
void ERRLOG_LineNoteNew(unsigned number, ...);

void ERRLOG_SetOutputFile(FILE* stream);
void ERRLOG_SuppressBugs(int on);
void ERRLOG_SuppressErrors(int on);
void ERRLOG_SuppressWarns(int on);
/* Stores each counter whose pointer is not null. */
void ERRLOG_GetCounts(unsigned long* bugs, unsigned long* errors, unsigned long* warnings);
void ERRLOG_Totals(void);

/* The row of a number by bisection, or -1. The table is not wholly sorted: of a number that occurs
 * twice the first row answers, and a few numbers are not found. */
int BSearchErrorLogTable(int number);

/* What a message is about: a record of the file, a part of one, or the file itself. */
typedef enum ErrSubject {
    SUBJECT_NONE = 0,
    SUBJECT_FILE = 1, /* and what is not known more closely */
    SUBJECT_COMPONENT = 2,
    SUBJECT_PIN = 3,   /* of a component, package model or board; series pins, pairs by the first */
    SUBJECT_NODE = 4,  /* of a die or a board */
    SUBJECT_BUS = 5,   /* label under [Pin Mapping] */
    SUBJECT_GROUP = 6, /* under [Series Switch Groups] */
    SUBJECT_DOMAIN = 7, /* under [Pin Domain EMI] */
    SUBJECT_SELECTOR = 8,
    SUBJECT_MODEL = 9,
    SUBJECT_SUBMODEL = 10,
    SUBJECT_PACKAGE_MODEL = 11,
    SUBJECT_BOARD = 12,
    SUBJECT_PATH = 13,       /* of a board */
    SUBJECT_DESIGNATOR = 14, /* of a board */
    SUBJECT_CIRCUIT = 15,    /* [External Circuit] */
    SUBJECT_TEST_DATA = 16,
    SUBJECT_TEST_LOAD = 17,
    SUBJECT_PARAMETER = 18 /* of a parameter file */
} ErrSubject;

/* One message as it is counted and written, for tools that must not scrape text. The pointers live
 * for the call only. line is 0 for a severity without line; numbers are 0 in the free-format
 * family. The fields from subject on tell the place, with every severity. A message that comes at
 * the end of a record, where line is that of the next keyword, has the line of the record, or of
 * the part that it is about, as itemLine. */
typedef struct ErrRecord {
    unsigned asked; /* number given by the caller */
    unsigned shown; /* number of the row that answered */
    ErrSeverity severity;
    const char* file; /* file being read, empty before the first */
    unsigned long line;
    const char* text;
    ErrSubject subject;
    const char* name;         /* of the subject; empty where it has none */
    int corner;               /* RngCorner, or -1: none, or all of them */
    unsigned long itemLine;   /* line of what the message is about; 0 the whole file */
    unsigned column;          /* in that line, from 1; 0 not known */
    unsigned long recordLine; /* line of the record that holds it; 0 none */
} ErrRecord;

typedef void (*ErrSink)(const ErrRecord* record, void* user);

/* Sends every message that is written to sink as well; null ends that. The log does not change. */
void ERRLOG_SetSink(ErrSink sink, void* user);

IBIS_END_DECLS

#endif
