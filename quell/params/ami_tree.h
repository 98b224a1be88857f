// The parameters in an AMI parameter file, read from the tree of the parser library. For a process
// of its own: the library's buffer holds one text at a time.
#ifndef QUELL_PARAMS_AMI_TREE_H
#define QUELL_PARAMS_AMI_TREE_H

#include <string>

#include "IbisParser/amitree.h"
#include "quell/process/frames.h"
#include "quell/reader/opening.h"

namespace quell {

enum AmiFrameKind : uint64_t {
    AMI_FRAME_ROOT,       // text: name
    AMI_FRAME_PROBLEM,    // text: why there is no tree, or what of it is left out
    AMI_FRAME_PARAMETER,  // number: reserved; texts: name, usage, type, default, description;
                          // number: items of its format; texts: the items
};

// The tree of the parameter text that the library read last.
class AmiTree {
public:
    AmiTree();
    ~AmiTree();
    AmiTree(const AmiTree&) = delete;
    AmiTree& operator=(const AmiTree&) = delete;

    int Result() const { return m_Result; }
    const _tagNodeStruct* Root() const;  // null when there is none

private:
    _tagTreeStruct* m_Tree = nullptr;
    int m_Result = TREE_NO_LIST;
};

// The node's branch or leaf; null when it is the other.
const _tagBranchStruct* BranchOf(const _tagNodeStruct& node);
const _tagLeafStruct* LeafOf(const _tagNodeStruct& node);

// Reads the file and sends what it holds.
int SendParameters(const Opening& opening, FrameWriter& writer);

// The value of the reserved parameter AMI_Version in the text that was read last, empty without
// one. Versions before 5.1 have no such parameter.
std::string DeclaredAmiVersion();

}  // namespace quell

#endif
