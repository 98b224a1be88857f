#!/usr/bin/env python3
"""Writes stripline_200mm.s4p: a coupled stripline pair of 200 mm between two connectors' pads.

Differential and common mode are transmission lines with skin-effect and dielectric loss, each
shunted at both ends by the pads' capacitance. The dielectric follows the wideband Debye model
(Djordjevic et al., "Wideband frequency-domain characterization of FR-4", 2001) and the conductor
has equal surface resistance and reactance, so that the file is causal; it is passive because every
part of it is. Ports 1 and 3 are the near end, 2 and 4 the far end. Standard library only.

usage: make_channel.py [FILE]
"""

import cmath
import math
import sys

LENGTH = 0.200  # m
REFERENCE = 50.0  # ohm, single-ended
STEP, LAST = 50e6, 15e9  # Hz
LIGHT = 299792458.0  # m/s
PAD = 0.3e-12  # F, at each end of each conductor

# Characteristic impedance of one conductor in each mode, and its resistance: 75 um wide, 18 um
# thick, rough copper, return path included.
MODES = {"differential": 46.0, "common": 54.0}  # ohm
RESISTANCE_DC = 12.6  # ohm/m
RESISTANCE_SKIN = 4.2e-3  # ohm/m per sqrt(Hz)

# Relative permittivity and loss tangent at 1 GHz, and the edges of the Debye band.
PERMITTIVITY, LOSS_TANGENT, AT = 4.0, 0.03, 1e9
LOW, HIGH = 1e3, 1e12  # Hz


def permittivity(f):
    """Complex relative permittivity of the wideband Debye model."""
    def band(f):
        return cmath.log((HIGH + 1j * f) / (LOW + 1j * f)) / math.log(HIGH / LOW)

    spread = -LOSS_TANGENT * PERMITTIVITY / band(AT).imag
    high = PERMITTIVITY - spread * band(AT).real
    return high + spread * band(f)


def chain(f, impedance):
    """Chain matrix of pad, line, pad in one mode."""
    omega = 2j * math.pi * f
    inductance = impedance * math.sqrt(PERMITTIVITY) / LIGHT
    capacitance = math.sqrt(PERMITTIVITY) / (LIGHT * impedance)
    # sqrt of DC and skin impedance together: right at both ends and causal in between.
    series = omega * inductance + cmath.sqrt(RESISTANCE_DC**2 + 2j * f * RESISTANCE_SKIN**2)
    shunt = omega * capacitance * permittivity(f) / PERMITTIVITY
    gamma = cmath.sqrt(series * shunt)
    line = cmath.sqrt(series / shunt)
    a, b = cmath.cosh(gamma * LENGTH), line * cmath.sinh(gamma * LENGTH)
    c = cmath.sinh(gamma * LENGTH) / line
    pad = omega * PAD
    # [1 0; pad 1] [a b; c a] [1 0; pad 1]
    return a + b * pad, b, pad * a + c + (pad * b + a) * pad, pad * b + a


def scattering(f, impedance):
    """S11 and S21 of the symmetrical two-port of one mode."""
    a, b, c, d = chain(f, impedance)
    total = a + b / REFERENCE + c * REFERENCE + d
    return (a + b / REFERENCE - c * REFERENCE - d) / total, 2 / total


def point(f):
    """The 4 x 4 matrix: sum and difference of the modes."""
    dm, cm = (scattering(f, MODES[m]) for m in ("differential", "common"))
    same = [(c + d) / 2 for c, d in zip(cm, dm)]
    other = [(c - d) / 2 for c, d in zip(cm, dm)]
    matrix = []
    for out in range(4):
        row = []
        for into in range(4):
            conductor = same if out // 2 == into // 2 else other
            row.append(conductor[0 if out % 2 == into % 2 else 1])
        matrix.append(row)
    return matrix


def main():
    name = sys.argv[1] if len(sys.argv) > 1 else "stripline_200mm.s4p"
    with open(name, "w", encoding="ascii", newline="\n") as out:
        out.write("! Coupled stripline pair, 200 mm, with pads; written by make_channel.py\n")
        out.write("! Near end: ports 1 and 3. Far end: ports 2 and 4.\n")
        out.write("# MHz S RI R 50\n")
        for k in range(1, round(LAST / STEP) + 1):
            f = k * STEP
            for n, row in enumerate(point(f)):
                head = f"{f / 1e6:.0f}" if n == 0 else ""
                out.write(head + "".join(f" {s.real:.6f} {s.imag:.6f}" for s in row) + "\n")


if __name__ == "__main__":
    main()
