// The message table as other programs see it.
#include "IbisParser/errlog.h"

const ErrorRow errorLogTable[] = {
#include "IbisParser/base/messages/table.inc"
};
static_assert(sizeof errorLogTable / sizeof errorLogTable[0] == ERRLOG_ROWS, "row lost or added");
