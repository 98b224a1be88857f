// Looks up values in the parameter string that a simulator passes at initialisation.
#ifndef AMI_PARAMPARSER_H
#define AMI_PARAMPARSER_H

#include "IbisParser/amitree.h"

namespace TalvernQuell::AMI {

// A leaf is addressed by the names from the root down to itself, joined with ".": Root.Branch.Leaf.
// Names are compared exactly. Where two leaves share a path the first one in the text counts, and
// of a leaf only the first value. A lookup that fails returns false and leaves `out` untouched; a
// text that does not parse makes every lookup fail.
class ParamParser {
public:
    // The text is not kept.
    explicit ParamParser(const char* text);
    // The tree stays until the process ends.
    ~ParamParser() = default;

    // True when the branch has children and the first of them is a leaf.
    bool IsParamLeafBranch(const _tagBranchStruct* branch) const;
    // Depth-first search below a branch whose own path is parentPath and its name.
    const _tagLeafStruct* FindLeafWithName(const _tagBranchStruct* branch, const char* name,
                                           const char* parentPath) const;
    const _tagLeafStruct* GetLeaf(const char* name) const;

    // Strings only. out is null or an array made with new[], which is released; the copy of the
    // value replaces only this function's own pointer, so the caller gets no more than the result.
    bool GetValue(char* out, const char* name) const;
    // Integers and floating-point numbers.
    bool GetValue(double& out, const char* name) const;
    // As for double, truncated toward zero.
    bool GetValue(int& out, const char* name) const;
    // "True" and "False".
    bool GetValue(bool& out, const char* name) const;

    int parsed = 0;  // 1 when there is a tree
    _tagTreeStruct* tree = nullptr;
};

}  // namespace TalvernQuell::AMI

#endif
