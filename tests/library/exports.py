#!/usr/bin/env python3
"""What the built libraries export, need and carry. usage: exports.py BUILD_DIR"""

import re
import subprocess
import sys

IDENTITY = [
    "$Id: File Description  Kormavist 2012.06 IBIS-AMI Model $",
    "$Id: File Version      2012.06 $",
    "$Id: Product Name      Kormavist $",
    "$Id: Product Version   2012.06 $",
    "$Id: Company Name       $",
    "$Id: Copyright          $",
]
# The loader is a part of the C library.
MAY_NEED = {"libc.so.6", "libm.so.6", "libgcc_s.so.1", "ld-linux-x86-64.so.2"}
PLAIN = (
    "AMI_Init AMI_Close INIT PARSE TEST FINI AMI_Test GetParsedTree FreeParsedTree ScanForNodes "
    "ISValidBuffer GetValueType BSearchErrorLogTable errorLogTable Scales keywords keywords_Ver3 "
    "keywords_Ver4 keywords_Ver5 gbSuppressCautions gbSuppressBanners gbAllowAnyLineLength "
    "gbAllowAnyCharacter gbContinue gulLineNum gulError_cnt gpLogFile gsBuffer gsFileName "
    "gsFilePath_ibs gpcComment geFileVersion geCurrFileType geCurrentKeyword ERRLOG_ErrorNew "
    "CMN_Get_Value RNG_ParseRange RNGP_LinkLine IBIS_GetIBIS HDR_GetFile_Rev ALGMOD_Test "
    "IBIS_Test EBD_Test"
).split()
FRAMEWORK = [
    "TalvernQuell::Gain<double>::Run()",
    "TalvernQuell::SDomainIIR::Initialize()",
    "TalvernQuell::AMI::ParamParser::GetLeaf(char const*) const",
    "TalvernQuellCodeGen::version()",
    "Quell_PCIe_Gen2_Tx::Run()",
    "vtable for TalvernQuell::SDomainIIR",
]

failures = []


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def expect(ok, what):
    if not ok:
        failures.append(what)


def exported(path, *options):
    symbols = {}
    for line in run("nm", "-D", "--defined-only", *options, path).splitlines():
        _, kind, name = line.split(" ", 2)
        symbols[name] = kind
    return symbols


def check(path):
    needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "-d", path)))
    expect(needed <= MAY_NEED, f"{path} needs {sorted(needed - MAY_NEED)}")
    unique = [name for name, kind in exported(path).items() if kind == "u"]
    expect(not unique, f"{path} has unique symbols: {unique[:3]}")
    text = run("strings", "-n", "8", path).splitlines()
    for line in IDENTITY:
        expect(line in text, f"{path} lacks the line {line!r}")


def main():
    library = f"{sys.argv[1]}/lib/libQuell_PCIe_Gen2_Tx.so"
    model = f"{sys.argv[1]}/kit/quell_pcie_gen2_tx.so"
    check(library)
    check(model)

    expect(sorted(exported(model)) == ["AMI_Close", "AMI_Init"],
           f"the model file exports {sorted(exported(model))}")

    plain, names = exported(library), exported(library, "-C")
    for name in PLAIN:
        expect(name in plain, f"{name} is not exported")
    for name in FRAMEWORK:
        expect(name in names, f"{name} is not exported")
    expect("AMI_GetWave" not in plain, "AMI_GetWave is exported")
    expect(not any(name.startswith("s_") for name in plain), "a module's private name is exported")
    foreign = [n for n in names if re.search(r"\bstd::|__gnu_cxx|__cxa|operator (new|delete)", n)
               and not re.search(r"TalvernQuell|Quell_PCIe", n)]
    expect(not foreign, f"the C++ library is exported again: {foreign[:3]}")

    for failure in failures:
        print(failure)
    return 1 if failures else 0


sys.exit(main())
