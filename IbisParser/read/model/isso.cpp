// Reading of composite currents, and presence of the supply-collapse tables.
#include "IbisParser/isso.h"

#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/model/isso.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/store/section.h"
#include "IbisParser/vitbl.h"

static const char s_Module[] = "IbisParser/isso";

static const char s_composite[] = "Composite Current";

enum { MAX_POINTS = 1000 };

const IssoRow issoRows[ISSO_ROWS] = {
    {"ISSO PD", &Mdl::issoPD, "Pulldown", &Mdl::pulldown},
    {"ISSO PU", &Mdl::issoPU, "Pullup", &Mdl::pullup},
};

int ISSO_KeywordLine(Mdl* model, Wvfrm* waveform, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    if (waveform == nullptr) {
        ERRLOG_LineErrorNew(4902, model->name);
        return 0;
    }
    if (waveform->composite != nullptr) {
        // The first table stays; these lines have no place to go.
        ERRLOG_LineErrorNew(4903, model->name);
        return 0;
    }
    waveform->compositeReading = SEC_NewPart(1908, s_Module, __LINE__, sizeof(RngpList));
    return waveform->compositeReading != nullptr;
}

int ISSO_ReceiveLine(Mdl* model, Wvfrm* waveform, const char* text)
{
    CMN_ASSERT(model != nullptr && text != nullptr);
    if (waveform == nullptr || waveform->compositeReading == nullptr) return 1;
    if (!TABLE_BeginsWithCell(text)) {
        ERRLOG_LineErrorNew(4905, TABLE_FirstItem(text).text);
        return 1;
    }
    RngpLine* line = nullptr;
    if (!RNGP_ParseLine(text, s_composite, "Time", &line)) return 0;
    KRNG_CleanLine(line, text, s_composite);
    RngpList* list = static_cast<RngpList*>(waveform->compositeReading);
    const bool number = line->xState == CELL_NUMBER;
    if (!number || (list->tail != nullptr && line->x <= list->tail->x))
        ERRLOG_LineErrorNew(4905, TABLE_FirstItem(text).text);
    if (!number) {
        RNGP_FreeList(line);
        return 1;
    }
    waveform->compositeCount = RNGP_Append(list, line, 0);
    waveform->composite = list->head;
    return 1;
}

int ISSO_Fini(Mdl* model, Wvfrm* waveform)
{
    CMN_ASSERT(model != nullptr);
    if (waveform == nullptr || waveform->compositeReading == nullptr) return 1;
    const RngpLine* head = waveform->composite;
    const RngpLine* tail = static_cast<const RngpList*>(waveform->compositeReading)->tail;
    if (waveform->compositeCount < TABLE_MIN_POINTS || waveform->compositeCount > MAX_POINTS)
        ERRLOG_LineErrorNew(4904, model->name, waveform->compositeCount);
    for (int corner = CORNER_TYP; corner < CORNER_COUNT && head != nullptr; ++corner) {
        if (TABLE_EndIsNA(head, tail, corner))
            ERRLOG_LineErrorNew(4911, model->name, CORNER_Name(corner));
    }
    TABLE_EndReading(&waveform->compositeReading);
    return 1;
}

static bool s_conducts(const Vitbl* table)
{
    for (const RngpLine* line = table != nullptr ? table->head : nullptr; line != nullptr;
         line = line->next) {
        for (int corner = CORNER_TYP; corner < CORNER_COUNT; ++corner) {
            double current = 0.0;
            if (VITBL_Cell(line, corner, &current) == CELL_NUMBER && current != 0.0) return true;
        }
    }
    return false;
}

int ISSO_EndModel(const Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    for (const IssoRow& isso : issoRows) {
        if (model->*isso.table != nullptr && model->*isso.drive == nullptr)
            ERRLOG_LineErrorNew(4901, model->name, isso.name, isso.driveName);
    }
    if (s_conducts(model->pulldown) && s_conducts(model->pullup) &&
        (model->issoPD != nullptr) != (model->issoPU != nullptr)) {
        const int given = model->issoPD != nullptr ? 0 : 1;
        ERRLOG_LineWarnNew(4906, model->name, issoRows[given].name, issoRows[1 - given].name);
    }
    return 1;
}
