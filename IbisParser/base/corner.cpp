#include "IbisParser/base/corner.h"

#include "IbisParser/cmn.h"
#include "IbisParser/rng.h"

static const char s_Module[] = "IbisParser/table";

struct CornerRow {
    const char* name;
    const char* title;
    const char* shortName;
    const char* shortTitle;
};

static const CornerRow* s_row(int corner)
{
    static const CornerRow rows[CORNER_COUNT] = {
        {"typical", "Typical", "typ", "Typ"},
        {"minimum", "Minimum", "min", "Min"},
        {"maximum", "Maximum", "max", "Max"},
    };
    CMN_ASSERT(corner >= 0 && corner < CORNER_COUNT);
    return &rows[corner];
}

const char* CORNER_Name(int corner)
{
    return s_row(corner)->name;
}

const char* CORNER_Title(int corner)
{
    return s_row(corner)->title;
}

const char* CORNER_Short(int corner)
{
    return s_row(corner)->shortName;
}

const char* CORNER_ShortTitle(int corner)
{
    return s_row(corner)->shortTitle;
}

int CORNER_Find(const char* word)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner)
        if (CMN_StrSameIC(word, CORNER_ShortTitle(corner))) return corner;
    return -1;
}
