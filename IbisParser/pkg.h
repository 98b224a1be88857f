/* [Package]: lumped parasitics that hold for every pin without its own. */
#ifndef IBISPARSER_PKG_H
#define IBISPARSER_PKG_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef struct Pkg Pkg;
struct Pkg {
    RngRange* R_pkg; /* ohm */
    RngRange* L_pkg; /* henry */
    RngRange* C_pkg; /* farad */
    unsigned named;  /* bits of the three in their order: it has a line, if only a wrong one */
};

/* Makes an empty record; a slot that is filled is kept. */
int PKG_New(Pkg** slot);
int PKG_ReceiveLine(Pkg* package, const char* line);
/* The checks of the finished keyword; owner is the component's name. */
int PKG_Fini(const Pkg* package, const char* owner);
void PKG_Free(Pkg* package);

IBIS_END_DECLS

#endif
