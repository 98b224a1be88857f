/* V-T tables: rising and falling waveforms of models, submodels and test data, and the pulse tables
 * of dynamic clamps. Times in second, voltages in volt. Rows of one kind are a list in file order.
 *
 * Shape rules of WVFRM_Check, per corner with numbers (swing = last minus first voltage):
 *   settled    the last 10 % of the time span carry less than 5 % of the swing
 *   lead-in    the typical edge starts (5 % of the swing) within the first half of the span
 *   resolution a point between 20 and 80 % of the typical swing
 *   overshoot  at most 50 % of the swing beyond the end levels
 *   speed      20-80 % time of the maximum corner at most 1.25 times that of the minimum corner */
#ifndef IBISPARSER_WVFRM_H
#define IBISPARSER_WVFRM_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"
#include "IbisParser/rngp.h"

IBIS_BEGIN_DECLS

enum { WVFRM_MAX_PER_OWNER = 100 /* rising and falling together */ };

typedef struct Wvfrm Wvfrm;
struct Wvfrm {
    Wvfrm* next;        /* file order */
    Wvfrm* first;       /* head of the list */
    Wvfrm* last;        /* in the head: tail of the list */
    int kind;           /* keyword code */
    const char* owner;  /* name of the model, submodel or test data; kept by that record */
    unsigned long line; /* of the keyword */
    /* CELL_NA: given but of no use. */
    RngSingle R_fixture, V_fixture, V_fixture_min, V_fixture_max; /* ohm, volt */
    RngSingle C_fixture, L_fixture;                               /* farad, henry */
    RngSingle R_dut, L_dut, C_dut;                                /* ohm, henry, farad */
    RngpLine* head;                                               /* the lines in file order */
    int count;
    RngpLine* composite; /* lines of [Composite Current]: second, ampere */
    int compositeCount;
    void* reading; /* state of the line linker until WVFRM_Fini */
    void* compositeReading;
};

/* Makes a waveform of keyword code 49, 50, 99, 100, 106, 107 or 109 to 116 at the end of a list and
 * stores it. Kinds that may be given once only (99, 100, 109 to 116) report a second one here
 * (1836) and keep it behind the first. owner must outlive the waveform. 1 done, 0 no memory. */
int WVFRM_New(Wvfrm** list, int code, const char* owner, Wvfrm** out);
/* One data line: a sub-parameter or a line of the table. */
int WVFRM_ReceiveLine(Wvfrm* waveform, const char* line);
/* The keyword's lines have ended: fixture, counts and end cells are judged. */
int WVFRM_Fini(Wvfrm* waveform);
/* Frees a list; null is ignored. */
void WVFRM_FreeList(Wvfrm* list);

/* 1 for the codes of rising edges, -1 for falling ones, 0 for pulse tables. */
int WVFRM_Direction(int code);
/* V_fixture of the corner; the result is its CellState. */
int WVFRM_FixtureVoltage(const Wvfrm* waveform, int corner, double* volts);
/* First or last numeric voltage of the corner. 1 stored, 0 when it has none. */
int WVFRM_EndPoint(const Wvfrm* waveform, int corner, int last, double* volts);
/* Time between the first crossings of 20 and 80 % of the step from the first to the last numeric
 * voltage, by linear interpolation. 1 stored, 0 when there is no such edge. */
int WVFRM_EdgeTime(const Wvfrm* waveform, int corner, double* seconds);
/* Shape rules of one pulse table or waveform of test data. */
void WVFRM_Check(const Wvfrm* waveform);

IBIS_END_DECLS

#endif
