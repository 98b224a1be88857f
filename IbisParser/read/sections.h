// The routing table: which section of the library owns which keywords.
#ifndef IBISPARSER_READ_SECTIONS_H
#define IBISPARSER_READ_SECTIONS_H

#include "IbisParser/keyword.h"

struct Section {
    // Codes whose lines the section receives. A section with two ranges has two rows.
    KeywordCode first;
    KeywordCode last;
    // The keyword that begins a record, NOT_KEY in the further rows of a section.
    KeywordCode opener;
    // By file type from FILE_IBS to FILE_EBD: 0 where the section may stand, else the number of
    // the message that refuses its opener. Its lines are dropped there.
    int refusal[3];
    int (*init)(void);
    int (*receiveLine)(int kind, int code, char* line);
    int (*fini)(int nextCode);  // may be null
};

// The row that holds the code, or null: the end keyword, the comment character and NOT_KEY belong
// to no section.
const Section* SECTIONS_Find(int code);

#endif
