#include "ami/ParamParser.h"

#include <cstring>
#include <string>
#include <vector>

#include "IbisParser/cmn.h"
#include "dataflow/Numeric.h"

namespace TalvernQuell::AMI {

namespace {

// A branch on the way from the root to where the search stands.
struct Visit {
    const _tagBranchStruct* branch;
    int next;              // child to look at
    std::size_t pathSize;  // of the branch's own path
};

}  // namespace

static char* CopyText(const char* text)
{
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(new char[size], text, size));
}

// The first value of a leaf when it is one of the two types; else null.
static const _tagValueStruct* FirstValue(const _tagLeafStruct* leaf, int type, int otherType)
{
    if (leaf == nullptr || leaf->values == nullptr || leaf->valueCount < 1) return nullptr;
    const _tagValueStruct& value = leaf->values[0];
    return value.valueType == type || value.valueType == otherType ? &value : nullptr;
}

ParamParser::ParamParser(const char* text)
{
    char* const copy = CopyText(text);
    parsed = GetParsedTree(copy, &tree) == TREE_OK;
    delete[] copy;
}

bool ParamParser::IsParamLeafBranch(const _tagBranchStruct* branch) const
{
    return branch != nullptr && branch->childCount > 0 && branch->children[0].kind == NODE_LEAF;
}

// The stack is the search's own and the path one growing string, because the text decides how deep
// the tree is.
const _tagLeafStruct* ParamParser::FindLeafWithName(const _tagBranchStruct* branch,
                                                    const char* name, const char* parentPath) const
{
    std::vector<Visit> visits;
    std::string path = parentPath;
    const auto enter = [&](const _tagBranchStruct* next) {
        if (next == nullptr || next->childCount < 1) return;
        if (!path.empty()) path += '.';
        path += next->name;
        visits.push_back({next, 0, path.size()});
    };

    enter(branch);
    while (!visits.empty()) {
        Visit& visit = visits.back();
        path.resize(visit.pathSize);
        if (visit.next == visit.branch->childCount) {
            visits.pop_back();
            continue;
        }
        const _tagNodeStruct& child = visit.branch->children[visit.next++];
        if (child.kind == NODE_BRANCH) {
            enter(static_cast<const _tagBranchStruct*>(child.detail));
            continue;
        }
        const auto* const leaf = static_cast<const _tagLeafStruct*>(child.detail);
        path.append(".").append(leaf->name);
        if (path == name) return leaf;
    }
    return nullptr;
}

const _tagLeafStruct* ParamParser::GetLeaf(const char* name) const
{
    if (!parsed || tree == nullptr || tree->nodes == nullptr || tree->nodes[0].detail == nullptr)
        return nullptr;
    return FindLeafWithName(static_cast<const _tagBranchStruct*>(tree->nodes[0].detail), name, "");
}

bool ParamParser::GetValue(char* out, const char* name) const
{
    const _tagValueStruct* const value = FirstValue(GetLeaf(name), VALUE_STRING, VALUE_STRING);
    if (value == nullptr) return false;
    delete[] out;
    // The copy is out of reach from here on; the header says so.
    out = CopyText(value->text);  // NOLINT(clang-analyzer-deadcode.DeadStores)
    return true;                  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
}

bool ParamParser::GetValue(double& out, const char* name) const
{
    const _tagValueStruct* const value = FirstValue(GetLeaf(name), VALUE_INTEGER, VALUE_FLOAT);
    if (value == nullptr) return false;
    CMN_StrToDbl(value->text, &out);
    return true;
}

bool ParamParser::GetValue(int& out, const char* name) const
{
    double value = 0.0;
    if (!GetValue(value, name)) return false;
    out = TruncateToInt32(value);
    return true;
}

bool ParamParser::GetValue(bool& out, const char* name) const
{
    const _tagValueStruct* const value = FirstValue(GetLeaf(name), VALUE_BOOLEAN, VALUE_BOOLEAN);
    if (value == nullptr) return false;
    out = CMN_StrSameIC(value->text, "true") != 0;
    return true;
}

}  // namespace TalvernQuell::AMI
