// The routing table: which section of the library owns which keywords.
#ifndef IBISPARSER_READ_SECTIONS_H
#define IBISPARSER_READ_SECTIONS_H

#include "IbisParser/base/keyword.h"
#include "IbisParser/base/raise.h"

struct Section {
    KeywordSection section;
    KeywordCode opener;  // the keyword that begins a record
    // By file type from FILE_IBS to FILE_EBD: 0 where the section may stand, else the number of
    // the message that refuses its opener. Its lines are dropped there.
    ErrNumber<> refusal[3];
    int (*init)(void);
    int (*receiveLine)(int kind, int code, char* line);
    int (*fini)(int nextCode);  // may be null
};

// The row of the code's section, or null: the end keyword, the comment character and NOT_KEY belong
// to no section.
const Section* SECTIONS_Find(int code);

#endif
