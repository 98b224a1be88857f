// The names of the corners, RngCorner, as messages write them.
#ifndef IBISPARSER_BASE_CORNER_H
#define IBISPARSER_BASE_CORNER_H

const char* CORNER_Name(int corner);        // "typical", "minimum", "maximum"
const char* CORNER_Title(int corner);       // "Typical" ...
const char* CORNER_Short(int corner);       // "typ", "min", "max"
const char* CORNER_ShortTitle(int corner);  // "Typ" ...

// The corner that a file calls "Typ", "Min" or "Max" in any case; -1 for another word.
int CORNER_Find(const char* word);

#endif
