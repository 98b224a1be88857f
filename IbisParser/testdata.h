/* [Test Data]: waveforms that a driver gives in a test load. */
#ifndef IBISPARSER_TESTDATA_H
#define IBISPARSER_TESTDATA_H

#include "IbisParser/ibis.h"
#include "IbisParser/sizes.h"

IBIS_BEGIN_DECLS

struct Wvfrm;

/* Of test data and of test loads. */
typedef enum TestKind {
    TEST_KIND_UNSET = 0,
    TEST_SINGLE_ENDED = 1,
    TEST_DIFFERENTIAL = 2
} TestKind;

enum { TEST_WAVEFORMS = 8 };

struct TestData {
    TestData* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    int type; /* TestKind */
    char driver[SIZE_NAME + 1];
    char driverInv[SIZE_NAME + 1]; /* empty: the driver serves both sides */
    char load[SIZE_NAME + 1];
    struct Wvfrm* waveforms[TEST_WAVEFORMS]; /* by keyword code from 109, each once */
    unsigned found;                          /* bit of each sub-parameter given */
};

int TESTDATA_Init(void);
int TESTDATA_ReceiveLine(int kind, int code, char* line);
int TESTDATA_Fini(int nextCode);
void TESTDATA_FreeList(TestData* head);
int TESTDATA_AddLink(TestData** head, TestData* item);
TestData* TESTDATA_FindByName(TestData* head, const char* name);
/* "Single_ended" or "Differential", null for a type that is not set. */
const char* TESTDATA_KindName(int kind);
/* Closes the record that the file left open, its end-of-record checks included. */
void TESTDATA_Close(void);
int TESTDATA_TestList(TestData* list);

IBIS_END_DECLS

#endif
