// What the checks need that read a further file in the middle of a run.
#ifndef IBISPARSER_READ_PARSE_H
#define IBISPARSER_READ_PARSE_H

#include <cstdio>

#include "IbisParser/parse.h"

// Reads an AMI parameter file, whatever its extension, into gsBuffer and closes it. 1 done, 0 when
// memory ran out.
int PARSE_ReadParameters(const char* name, std::FILE* file);

#endif
