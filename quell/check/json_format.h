// Findings as JSON, for programs.
#ifndef QUELL_CHECK_JSON_FORMAT_H
#define QUELL_CHECK_JSON_FORMAT_H

#include "quell/check/format.h"

namespace quell {

// All findings, in the order in which they were found, their texts as the reader gave them. They
// may be too many to be held.
class JsonFormat : public CheckFormat {
public:
    explicit JsonFormat(const FormatOptions&) {}
    void Begin(Output& output) override;
    void Add(const Finding& finding, Spool& waiting) override;
    void File(const CheckFile& file, const FileReport& report, Spool& waiting,
              Output& output) override;
    void End(const Totals& totals, Output& output) override;

private:
    bool m_First = true;
};

}  // namespace quell

#endif
