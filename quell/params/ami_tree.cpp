// The parameters in an AMI parameter file.
#include "quell/params/ami_tree.h"

#include <cstring>
#include <memory>
#include <vector>

#include "IbisParser/parse.h"
#include "quell/reader/message_sink.h"

namespace quell {

AmiTree::AmiTree()
{
    if (gsBuffer == nullptr) return;
    const int saved = gbAllowAnyLineLength;
    gbAllowAnyLineLength = 1;  // long runs of blanks are legal here
    m_Result = GetParsedTree(gsBuffer, &m_Tree);
    gbAllowAnyLineLength = saved;
}

AmiTree::~AmiTree()
{
    FreeParsedTree(&m_Tree);
}

const _tagNodeStruct* AmiTree::Root() const
{
    return m_Tree != nullptr && m_Tree->count > 0 ? &m_Tree->nodes[0] : nullptr;
}

const _tagBranchStruct* BranchOf(const _tagNodeStruct& node)
{
    return node.kind == NODE_BRANCH ? static_cast<const _tagBranchStruct*>(node.detail) : nullptr;
}

const _tagLeafStruct* LeafOf(const _tagNodeStruct& node)
{
    return node.kind == NODE_LEAF ? static_cast<const _tagLeafStruct*>(node.detail) : nullptr;
}

namespace {

constexpr size_t DeepestBranch = 100;
constexpr const char* Reserved = "Reserved_Parameters";
constexpr const char* Specific = "Model_Specific";

// Leaves that give a format under its own name, without the word Format: the form of later
// versions.
constexpr const char* FormatNames[] = {"Value", "Range",    "List",       "Corner", "Increment",
                                       "Steps", "Gaussian", "Dual-Dirac", "DjRj",   "Table"};

const char* ProblemOf(int result)
{
    switch (result) {
        case TREE_UNBALANCED:
            return "its parentheses do not match";
        case TREE_NO_LIST:
            return gsBuffer == nullptr ? "it holds no text" : "it does not begin with (NAME";
        case TREE_NO_RECORD:
        case TREE_CLOSED_TOO_EARLY:
            return "it is no single list of branches and leaves";
        case TREE_NO_PARENT:
            return "it holds more than one list";
        default:
            return "its parameter tree cannot be read";
    }
}

const _tagBranchStruct* FindBranch(const _tagBranchStruct* parent, const char* name)
{
    for (int k = 0; parent != nullptr && k < parent->childCount; ++k) {
        const _tagBranchStruct* branch = BranchOf(parent->children[k]);
        if (branch != nullptr && std::strcmp(branch->name, name) == 0) return branch;
    }
    return nullptr;
}

std::string FirstValue(const _tagLeafStruct* leaf)
{
    return leaf != nullptr && leaf->valueCount > 0 ? leaf->values[0].text : "";
}

// The format as its items: "Range", "3.5", "0", "9.5".
std::vector<std::string> FormatItems(const _tagBranchStruct& branch)
{
    for (int k = 0; k < branch.childCount; ++k) {
        const _tagLeafStruct* leaf = LeafOf(branch.children[k]);
        if (leaf == nullptr) continue;
        std::vector<std::string> items;
        if (leaf->nameKind != LEAF_FORMAT) {
            for (const char* name : FormatNames)
                if (std::strcmp(leaf->name, name) == 0) items.emplace_back(name);
            if (items.empty()) continue;
        }
        for (int n = 0; n < leaf->valueCount; ++n)
            items.emplace_back(leaf->values[n].text);
        return items;
    }
    return {};
}

// A branch with one of the leaves that describe a parameter is one; others hold parameters.
void SendParameter(FrameWriter& writer, const _tagBranchStruct& branch, const std::string& name,
                   bool reserved)
{
    const _tagLeafStruct* leaves[LEAF_LABELS + 1] = {};
    for (int k = 0; k < branch.childCount; ++k) {
        const _tagLeafStruct* leaf = LeafOf(branch.children[k]);
        if (leaf != nullptr && leaves[leaf->nameKind] == nullptr) leaves[leaf->nameKind] = leaf;
    }
    const std::vector<std::string> format = FormatItems(branch);
    constexpr int described[] = {LEAF_USAGE, LEAF_TYPE, LEAF_DEFAULT, LEAF_DESCRIPTION};
    bool parameter = !format.empty();
    for (const int kind : described)
        parameter = parameter || (kind != LEAF_DESCRIPTION && leaves[kind] != nullptr);
    if (!parameter) return;
    writer.Begin();
    writer.Number(AMI_FRAME_PARAMETER);
    writer.Number(reserved);
    writer.Text(name);
    for (const int kind : described)
        writer.Text(FirstValue(leaves[kind]));
    writer.Number(format.size());
    for (const std::string& item : format)
        writer.Text(item);
    writer.End();
}

// Branches at any depth, in the order of the file, each named by its path below the top.
void SendBranches(FrameWriter& writer, const _tagBranchStruct& top, bool reserved)
{
    struct Walk {
        const _tagBranchStruct* branch;
        int next;
        size_t nameSize;  // of the path to it
    };
    std::vector<Walk> stack = {{&top, 0, 0}};
    std::string name;
    bool cut = false;
    while (!stack.empty()) {
        Walk& walk = stack.back();
        name.resize(walk.nameSize);
        if (walk.next == walk.branch->childCount) {
            stack.pop_back();
            continue;
        }
        const _tagBranchStruct* child = BranchOf(walk.branch->children[walk.next++]);
        if (child == nullptr) continue;
        if (stack.size() > DeepestBranch) {
            cut = true;
            continue;
        }
        name += (name.empty() ? "" : ".") + std::string(child->name);
        SendParameter(writer, *child, name, reserved);
        stack.push_back({child, 0, name.size()});
    }
    if (cut)
        writer.Send(AMI_FRAME_PROBLEM, "branches nested deeper than " +
                                           std::to_string(DeepestBranch) + " are left out");
}

// The name behind the first parenthesis of a text that is no tree.
std::string NameBehindParenthesis(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const size_t open = text.find_first_not_of(blanks);
    if (open == std::string_view::npos || text[open] != '(') return "";
    const size_t begin = text.find_first_not_of(blanks, open + 1);
    if (begin == std::string_view::npos) return "";
    return std::string(text.substr(begin, text.find_first_of(" \t\r\n\v\f()\"", begin) - begin));
}

}  // namespace

int SendParameters(const Opening& opening, FrameWriter& writer)
{
    const MessageSink dropped;
    if (!ParseOpened(opening)) {
        writer.Send(AMI_FRAME_PROBLEM, "it cannot be read");
        return 1;
    }
    const AmiTree tree;
    if (tree.Result() != TREE_OK || tree.Root() == nullptr) {
        if (gsBuffer != nullptr) writer.Send(AMI_FRAME_ROOT, NameBehindParenthesis(gsBuffer));
        writer.Send(AMI_FRAME_PROBLEM, ProblemOf(tree.Result()));
        return 1;
    }
    const _tagBranchStruct* root = BranchOf(*tree.Root());
    const _tagLeafStruct* leaf = LeafOf(*tree.Root());
    if (root != nullptr) writer.Send(AMI_FRAME_ROOT, root->name);
    if (leaf != nullptr) writer.Send(AMI_FRAME_ROOT, leaf->name);
    if (const _tagBranchStruct* reserved = FindBranch(root, Reserved))
        SendBranches(writer, *reserved, true);
    if (const _tagBranchStruct* specific = FindBranch(root, Specific))
        SendBranches(writer, *specific, false);
    return 0;
}

std::string DeclaredAmiVersion()
{
    // Most files have none: no second parse for them.
    if (gsBuffer == nullptr || std::strstr(gsBuffer, "AMI_Version") == nullptr) return "";
    const AmiTree tree;
    if (tree.Root() == nullptr) return "";
    const _tagBranchStruct* version =
        FindBranch(FindBranch(BranchOf(*tree.Root()), Reserved), "AMI_Version");
    if (version == nullptr) return "";
    const std::vector<std::string> items = FormatItems(*version);
    if (items.size() > 1) return items[1];
    for (int k = 0; k < version->childCount; ++k) {
        const _tagLeafStruct* leaf = LeafOf(version->children[k]);
        if (leaf != nullptr && leaf->nameKind == LEAF_DEFAULT) return FirstValue(leaf);
    }
    return "";
}

}  // namespace quell
