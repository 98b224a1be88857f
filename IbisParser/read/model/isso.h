// The supply-collapse tables and the drive tables whose current they scale.
#ifndef IBISPARSER_READ_MODEL_ISSO_H
#define IBISPARSER_READ_MODEL_ISSO_H

#include "IbisParser/isso.h"
#include "IbisParser/mdl.h"
#include "IbisParser/vitbl.h"

struct IssoRow {
    const char* name;
    Vitbl* Mdl::*table;
    const char* driveName;
    Vitbl* Mdl::*drive;
};
enum { ISSO_ROWS = 2 };
extern const IssoRow issoRows[ISSO_ROWS];

#endif
