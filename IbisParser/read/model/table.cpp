// Lines of a first column and three corners.
#include <cctype>
#include <cstdio>
#include <cstring>

#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/rng.h"
#include "IbisParser/vitbl.h"

static const char s_Module[] = "IbisParser/table";

static const char s_blanks[] = " \t\n\v\f\r";

int TABLE_BeginsWithCell(const char* text)
{
    CMN_ASSERT(text != nullptr);
    text += std::strspn(text, s_blanks);
    if (std::isdigit(static_cast<unsigned char>(text[0]))) return 1;
    double value = 0.0;
    if (CMN_StrToDbl(text, &value) != 0) return 1;
    return std::strcspn(text, s_blanks) == 2 && CMN_StrSameICn(text, "NA", 2);
}

int TABLE_CountItems(const char* text)
{
    CMN_ASSERT(text != nullptr);
    int items = 0;
    for (text += std::strspn(text, s_blanks); *text != '\0'; text += std::strspn(text, s_blanks)) {
        ++items;
        text += std::strcspn(text, s_blanks);
    }
    return items;
}

TableItem TABLE_FirstItem(const char* text)
{
    CMN_ASSERT(text != nullptr);
    text += std::strspn(text, s_blanks);
    TableItem item;
    std::snprintf(item.text, sizeof item.text, "%.*s",
                  static_cast<int>(std::strcspn(text, s_blanks)), text);
    return item;
}

const RngpLine* TABLE_Tail(const RngpLine* head)
{
    CMN_ASSERT(head != nullptr);
    while (head->next != nullptr)
        head = head->next;
    return head;
}

int TABLE_EndIsNA(const RngpLine* head, const RngpLine* tail, int corner)
{
    double value = 0.0;
    if (VITBL_Cell(head, corner, &value) != CELL_NA && VITBL_Cell(tail, corner, &value) != CELL_NA)
        return 0;
    for (const RngpLine* line = head; line != nullptr; line = line->next) {
        if (VITBL_Cell(line, corner, &value) == CELL_NUMBER) return 1;
    }
    return 0;
}

void TABLE_EndReading(void** reading)
{
    if (*reading == nullptr) return;
    RNGP_EndList(static_cast<RngpList*>(*reading));
    CMN_freeSetNull(reading);
}
