#!/bin/sh
# Installs into an empty folder and builds a C program against what came out.
# usage: install.sh CMAKE BUILD_DIR CC
set -eu
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$1" --install "$2" --prefix "$prefix" >/dev/null

for file in lib/libQuell_PCIe_Gen2_Tx.so lib/libQuell_PCIe_Gen2_Tx.a \
    lib/quell/quell_pcie_gen2_tx.so lib/quell/quell_pcie_gen2_tx.ami \
    lib/quell/quell_pcie_gen2_tx.ibs bin/quell \
    include/quell/IbisParser/parse.h include/quell/IbisParser/keywords.inc \
    include/quell/dataflow/Gain.h include/quell/ami/ParamParser.h include/quell/model/AMI.h; do
    [ -e "$prefix/$file" ] || { echo "not installed: $file"; exit 1; }
done
if find "$prefix/include" -name '*_internal.h' | grep .; then
    echo "internal headers are installed"
    exit 1
fi

cat >"$prefix/check.c" <<'SOURCE'
#include "IbisParser/amitree.h"

int main(void)
{
    char text[] = "(Root (Leaf 1))";
    _tagTreeStruct* tree = 0;
    if (GetParsedTree(text, &tree) != TREE_OK) return 1;
    FreeParsedTree(&tree);
    return 0;
}
SOURCE
"$3" -std=c11 -I"$prefix/include/quell" "$prefix/check.c" -L"$prefix/lib" -lQuell_PCIe_Gen2_Tx \
    -Wl,-rpath,"$prefix/lib" -o "$prefix/check"
"$prefix/check"

# The installed command finds its model without being told.
"$prefix/bin/quell" run loss:8dB@2.5GHz >/dev/null
