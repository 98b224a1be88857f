// What the reader knows of keywords beside the public tables.
#ifndef IBISPARSER_BASE_KEYWORD_H
#define IBISPARSER_BASE_KEYWORD_H

#include "IbisParser/keyword.h"

enum { KEYWORD_MAX = 117 /* characters between brackets */ };

#endif
