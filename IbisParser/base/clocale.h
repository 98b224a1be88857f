// The C locale as an object: numbers mean the same whatever locale the host program has set.
#ifndef IBISPARSER_BASE_CLOCALE_H
#define IBISPARSER_BASE_CLOCALE_H

#include <locale.h>

// Made once and kept.
inline locale_t CLocale()
{
    static const locale_t object = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return object;
}

// strtod of the C locale. *end is where the number ends, text when there is none.
double StrtodC(const char* text, const char** end);

#endif
