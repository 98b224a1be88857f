"""A host in another language: filters the recorded cases through the shared libraries.

usage: host_ctypes.py LIBRARY... CASES
"""
import ctypes
import json
import sys

DOUBLES = ctypes.POINTER(ctypes.c_double)


def load(path):
    library = ctypes.CDLL(path)
    library.AMI_Init.restype = ctypes.c_long
    library.AMI_Init.argtypes = [
        DOUBLES, ctypes.c_long, ctypes.c_long, ctypes.c_double, ctypes.c_double,
        ctypes.c_char_p, ctypes.POINTER(ctypes.c_char_p), ctypes.POINTER(ctypes.c_void_p),
        ctypes.POINTER(ctypes.c_char_p)]
    library.AMI_Close.restype = ctypes.c_long
    library.AMI_Close.argtypes = [ctypes.c_void_p]
    return library


def run(library, case):
    matrix = (ctypes.c_double * len(case["matrix"]))(*map(float.fromhex, case["matrix"]))
    out, handle, message = ctypes.c_char_p(), ctypes.c_void_p(), ctypes.c_char_p()
    result = library.AMI_Init(
        matrix, case["row_size"], case["aggressors"], float.fromhex(case["sample_interval"]),
        float.fromhex(case["bit_time"]), case["parameters"].encode(), ctypes.byref(out),
        ctypes.byref(handle), ctypes.byref(message))
    text = None if message.value is None else message.value.decode()
    closed = library.AMI_Close(handle)
    return {"result": result, "msg": text, "closed": closed, "out": out.value,
            "output": [x.hex() for x in matrix]}


def main(paths, cases_path):
    with open(cases_path, encoding="utf-8") as file:
        cases = json.load(file)["cases"]
    failures = 0
    for path in paths:
        library = load(path)
        for case in cases:
            got = run(library, case)
            expected = {"result": case["result"], "msg": case["msg"], "closed": 1, "out": None,
                        "output": [float.fromhex(x).hex() for x in case["output"]]}
            if got != expected:
                failures += 1
                print(f"{path}: {case['name']}: {got} instead of {expected}")
    print(f"{len(paths)} libraries, {len(cases)} cases, {failures} failures")
    return failures != 0 or not cases


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:-1], sys.argv[-1]))
