// The reader's own output.
#include "quell/check/classic_format.h"

#include "quell/base/printable.h"

namespace quell {

void ClassicFormat::File(const CheckFile&, const FileReport& report, Spool& waiting, Output& output)
{
    output.Print(waiting);
    if (!report.reason.empty())
        output.PrintError(Printable(report.name) + ": " + Printable(report.reason));
}

}  // namespace quell
