// A format of what a check found: a class of its own, which the check drives without knowing it.
#ifndef QUELL_CHECK_FORMAT_H
#define QUELL_CHECK_FORMAT_H

#include "quell/check/files.h"
#include "quell/check/output.h"
#include "quell/check/report.h"
#include "quell/check/spool.h"

namespace quell {

// What the user wants of any format.
struct FormatOptions {
    bool colour = false;
};

class CheckFormat {
public:
    virtual ~CheckFormat() = default;

    // True for the library's own log, as it is printed, in place of findings: it then waits for
    // the file's turn, and Add is not called.
    virtual bool ShowsLog() const { return false; }
    // How many findings of a number in a file its report keeps; the others are counted only.
    virtual size_t KeptPerNumber() const { return 0; }

    virtual void Begin(Output&) {}
    // A finding as soon as it is found, so that none need be kept. Files may be read at once: what
    // is added waits for the turn of its file, and is dropped when that is not checked after all.
    virtual void Add(const Finding&, Spool& /*waiting*/) {}
    // Each file in its turn; what waits is to be printed.
    virtual void File(const CheckFile& file, const FileReport& report, Spool& waiting,
                      Output& output) = 0;
    virtual void End(const Totals&, Output&) {}
};

}  // namespace quell

#endif
