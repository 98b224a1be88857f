/* [Test Load]: the network between a driver under test and a receiver. From the near (driver) side:
 * C1 to ground, Rs and Ls in series, C2 to ground, Rp1 to V_term1, Rp2 to V_term2, the transmission
 * line Td, Zo, and the same mirrored on the far side. */
#ifndef IBISPARSER_TESTLOAD_H
#define IBISPARSER_TESTLOAD_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"
#include "IbisParser/sizes.h"
#include "IbisParser/testdata.h"

IBIS_BEGIN_DECLS

/* Places of TestLoad's single values. */
typedef enum TestLoadValue {
    LOAD_C1_NEAR, /* farad */
    LOAD_RS_NEAR, /* ohm */
    LOAD_LS_NEAR, /* henry */
    LOAD_C2_NEAR,
    LOAD_RP1_NEAR,
    LOAD_RP2_NEAR,
    LOAD_TD, /* second */
    LOAD_ZO, /* ohm */
    LOAD_RP1_FAR,
    LOAD_RP2_FAR,
    LOAD_C2_FAR,
    LOAD_LS_FAR,
    LOAD_RS_FAR,
    LOAD_C1_FAR,
    LOAD_R_DIFF_NEAR,
    LOAD_R_DIFF_FAR,
    LOAD_VALUE_COUNT
} TestLoadValue;

struct TestLoad {
    TestLoad* next;
    char name[SIZE_NAME + 1];
    unsigned long line;
    int type; /* TestKind */
    RngSingle values[LOAD_VALUE_COUNT];
    RngRange* V_term1; /* volt */
    RngRange* V_term2;
    char receiver[SIZE_NAME + 1];
    char receiverInv[SIZE_NAME + 1]; /* empty: the receiver serves both sides */
    unsigned found;                  /* bit of each word and name given */
};

int TESTLOAD_Init(void);
int TESTLOAD_ReceiveLine(int kind, int code, char* line);
int TESTLOAD_Fini(int nextCode);
void TESTLOAD_FreeList(TestLoad* head);
int TESTLOAD_AddLink(TestLoad** head, TestLoad* item);
TestLoad* TESTLOAD_FindByName(TestLoad* head, const char* name);
/* "Rs_near" and so on. */
const char* TESTLOAD_ValueName(int value);
/* Closes the record that the file left open, its end-of-record checks included. */
void TESTLOAD_Close(void);
int TESTLOAD_TestList(TestLoad* list);

IBIS_END_DECLS

#endif
