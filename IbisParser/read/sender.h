// The sender: keywords by version, and the way of a line to its section.
#ifndef IBISPARSER_READ_SENDER_H
#define IBISPARSER_READ_SENDER_H

#include "IbisParser/keyword.h"

enum { VERSION_FIRST = 2, VERSION_LAST = 5 };

// What a version class means to the reader.
struct VersionRow {
    const KeywordEntry* keywords;
    int lineMax;  // characters of a line
    const char* name;
};

// Classes below the first are read as the first.
const VersionRow* SENDER_Version(int versionClass);

// Sends a line of a LineKind, without comment and trailing blanks, to the section that owns it.
void SENDER_Send(int kind, char* line);

#endif
