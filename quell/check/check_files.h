// The check of many files at once.
#ifndef QUELL_CHECK_CHECK_FILES_H
#define QUELL_CHECK_CHECK_FILES_H

#include <ostream>
#include <string>
#include <vector>

#include "quell/check/files.h"
#include "quell/check/format.h"

namespace quell {

struct CheckRequest {
    std::vector<CheckFile> files;
    std::string version;  // check as if they declared this one; empty: as they do
    size_t jobs = 1;      // files read at once
};

// Reads each file in a process of its own and gives what was found to the format, which prints it
// file by file in their order. Throws Interruption when the user ends the program.
Totals CheckFiles(const CheckRequest& request, CheckFormat& format, std::ostream& out);

}  // namespace quell

#endif
