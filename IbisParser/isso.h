/* Power-aware data of IBIS 5.0: [Composite Current] of a waveform, and the rules of the ISSO
 * tables, whose lines are read as V-I tables (vitbl.h).
 *
 * An ISSO table holds the drive current over the collapse of its supply: [ISSO PD] over the rise of
 * the pulldown reference, [ISSO PU] over the fall of the pullup reference, both swept from -Vcc to
 * Vcc. Without collapse it must give the full drive current: at 0 V the pulldown (pullup) current
 * at the table voltage Vcc, within ISSO_DRIVE_TOLERANCE. Voltages in volt, currents in ampere. */
#ifndef IBISPARSER_ISSO_H
#define IBISPARSER_ISSO_H

#include "IbisParser/ibis.h"
#include "IbisParser/wvfrm.h"

IBIS_BEGIN_DECLS

#define ISSO_SPAN_TOLERANCE 0.05  /* of Vcc, at both ends of the sweep */
#define ISSO_DRIVE_TOLERANCE 0.10 /* of the full drive current */
#define ISSO_TIME_TOLERANCE                                               \
    0.01 /* of the waveform's span, at both ends of its composite current \
          */

/* [Composite Current] of a model. waveform is the one that the model read last and that nothing but
 * a [Composite Current] has followed, or null. The same pointer goes to the other two. */
int ISSO_KeywordLine(Mdl* model, Wvfrm* waveform, const char* line);
int ISSO_ReceiveLine(Mdl* model, Wvfrm* waveform, const char* line);
int ISSO_Fini(Mdl* model, Wvfrm* waveform);
/* End of a model's record: ISSO tables without their drive table, one ISSO table only. */
int ISSO_EndModel(const Mdl* model);
/* Span and value of the ISSO tables, time spans of composite currents. */
int ISSO_Test(const Mdl* model);

IBIS_END_DECLS

#endif
