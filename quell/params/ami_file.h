// The parameters that an AMI parameter file describes, and whether settings fit them.
#ifndef QUELL_PARAMS_AMI_FILE_H
#define QUELL_PARAMS_AMI_FILE_H

#include <string>
#include <vector>

#include "quell/link/parameters.h"

namespace quell {

// Texts as the file gives them, quotes removed; empty when there is none.
struct AmiParameter {
    std::string name;  // below its branch, with dots: "tap.0"
    bool reserved = false;
    std::string usage;
    std::string type;
    std::string defaultValue;
    std::string description;
    std::vector<std::string> format;  // its word and what follows: "Range", "3.5", "0", "9.5"

    bool TakesValue() const;  // Usage In or InOut
};

struct AmiFile {
    std::string file;
    std::string root;  // of the tree; empty when there is no name
    std::vector<AmiParameter> parameters;
    std::vector<std::string> problems;  // why parameters are missing
};

// Reads the file in a process of its own. Throws InputError when it cannot be read.
AmiFile ReadAmiFile(const std::string& path);

// Throws InputError for a setting that a file with model-specific parameters does not know, naming
// the nearest one that it knows. Returns a line for each value that is outside of what the file
// allows.
std::vector<std::string> CheckSettings(const std::vector<Setting>& settings, const AmiFile& file);

}  // namespace quell

#endif
