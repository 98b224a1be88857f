#!/usr/bin/env python3
"""Writes quell_pcie_gen2_tx.ibs: the analogue stage of the transmitter as an IBIS 5.0 file.

Each leg is a voltage-mode driver: a linear source resistance to either rail. Into the 100 ohm
differential termination of the link the swing is then the supply voltage, peak to peak and
differential: 1.0 V typically, 0.905 V at the least and 1.105 V at the most, inside the 0.8 V to
1.2 V of PCI Express Gen2. Tables, waveforms and ramp are computed from the same numbers, so they
agree with each other to the digits printed.
"""

import math
import sys

CORNERS = {  # supply in volts, source resistance in ohms, 20-80 % edge in seconds
    "typ": (1.00, 50.0, 15e-12),
    "min": (0.95, 55.0, 18e-12),
    "max": (1.05, 45.0, 12e-12),
}
R_FIXTURE = 50.0
TABLE_V = [round(-1.05 + 0.15 * i, 2) for i in range(22)]  # -Vcc ... 2 Vcc of every corner
SPAN = 60e-12
POINTS = 61


def cells(values, scale, unit, digits):
    return "  ".join(f"{v / scale + 0.0:.{digits}f}{unit}" for v in values)


def table(sign):
    rows = []
    for v in TABLE_V:
        currents = [sign * v / r for _, r, _ in CORNERS.values()]
        rows.append(f"{v:6.2f}  " + cells(currents, 1e-3, "m", 4))
    return "\n".join(rows)


def levels(corner, to_supply):
    """Settled low and high voltage of one leg into the fixture."""
    supply, r, _ = CORNERS[corner]
    fixture = supply if to_supply else 0.0
    share = R_FIXTURE / (R_FIXTURE + r)
    return fixture + (0.0 - fixture) * share, fixture + (supply - fixture) * share


def edge(t, t2080):
    """A raised-cosine step whose 20-80 % time is t2080; it starts at 5 ps."""
    width = t2080 * math.pi / (2.0 * math.asin(0.6))
    phase = min(max((t - 5e-12) / width, 0.0), 1.0)
    return 0.5 - 0.5 * math.cos(math.pi * phase)


def waveform(rising, to_supply):
    head = "Rising" if rising else "Falling"
    fixtures = [CORNERS[c][0] if to_supply else 0.0 for c in CORNERS]
    lines = [
        f"[{head} Waveform]",
        f"R_fixture = {R_FIXTURE:g}",
        f"V_fixture = {fixtures[0]:g}",
        f"V_fixture_min = {fixtures[1]:g}",
        f"V_fixture_max = {fixtures[2]:g}",
    ]
    for i in range(POINTS):
        t = SPAN * i / (POINTS - 1)
        values = []
        for corner, (_, _, t2080) in CORNERS.items():
            low, high = levels(corner, to_supply)
            done = edge(t, t2080)
            values.append(low + (high - low) * (done if rising else 1.0 - done))
        lines.append(f"{t / 1e-12:5.1f}p  " + cells(values, 1.0, "", 6))
    return "\n".join(lines)


def ramp():
    items = []
    for corner, (_, _, t2080) in CORNERS.items():
        low, high = levels(corner, False)
        items.append(f"{0.6 * (high - low):.4f}/{t2080 / 1e-12:.1f}p")
    return "  ".join(items)


def main():
    supplies = "  ".join(f"{supply:.2f}" for supply, _, _ in CORNERS.values())
    print(f"""[IBIS Ver]      5.0
[File Name]     quell_pcie_gen2_tx.ibs
[File Rev]      1.0
[Date]          November 21, 2026
[Source]        Computed from supply, source resistance and edge time by make_ibs.py.
[Notes]         The analogue stage of one lane. De-emphasis and the bandwidth of the
                driver belong to the algorithmic model; the edge given here is that of
                the output stage alone.
[Disclaimer]    A behavioural model without warranty of any kind.
[Copyright]     The authors of quell.
|
[Component]     Quell_PCIe_Gen2_Tx
[Manufacturer]  Quell
[Package]
R_pkg   0.10    0.08    0.12
L_pkg   0.30n   0.25n   0.35n
C_pkg   0.12p   0.10p   0.14p
|
[Pin]  signal_name  model_name  R_pin  L_pin  C_pin
1      TXP          pcie_tx     0.10   0.30n  0.12p
2      TXN          pcie_tx     0.10   0.30n  0.12p
3      VDDTX        POWER
4      VSSTX        GND
|
[Pin Mapping]  pulldown_ref  pullup_ref
1              VSSTX         VDDTX
2              VSSTX         VDDTX
3              NC            VDDTX
4              VSSTX         NC
|
[Diff Pin]  inv_pin  vdiff  tdelay_typ  tdelay_min  tdelay_max
1           2        NA     0           0           0
|
[Model]         pcie_tx
Model_type      Output
Polarity        Non-Inverting
Vmeas = 0.25
Cref = 0
Rref = 50
Vref = 0
C_comp          0.30p   0.25p   0.35p
|
[Temperature Range]  50  100  0
[Voltage Range]      {supplies}
|
[Algorithmic Model]
Executable Linux_gcc12_64 quell_pcie_gen2_tx.so quell_pcie_gen2_tx.ami
[End Algorithmic Model]
|
[Pulldown]
| voltage  I(typ)  I(min)  I(max)
{table(1.0)}
|
[Pullup]
| voltage  I(typ)  I(min)  I(max)
{table(-1.0)}
|
[Ramp]
dV/dt_r  {ramp()}
dV/dt_f  {ramp()}
R_load = {R_FIXTURE:g}
|""")
    for to_supply in (False, True):
        for rising in (True, False):
            print(waveform(rising, to_supply))
            print("|")
    print("[End]")


if __name__ == "__main__":
    sys.exit(main())
