#!/bin/sh
# The committed IBIS file of the kit is what its script computes. usage: kit.sh PYTHON KIT_DIR
set -eu
"$1" "$2/make_ibs.py" | diff - "$2/quell_pcie_gen2_tx.ibs"
