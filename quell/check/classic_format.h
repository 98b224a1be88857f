// The reader's own output, banner and totals included.
#ifndef QUELL_CHECK_CLASSIC_FORMAT_H
#define QUELL_CHECK_CLASSIC_FORMAT_H

#include "quell/check/format.h"

namespace quell {

class ClassicFormat : public CheckFormat {
public:
    explicit ClassicFormat(const FormatOptions&) {}
    bool ShowsLog() const override { return true; }
    void File(const CheckFile& file, const FileReport& report, Spool& waiting,
              Output& output) override;
};

}  // namespace quell

#endif
