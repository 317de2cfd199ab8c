"""Ionisation of water by electrons (binary-encounter-Bethe) and by protons
(Rudd): total cross sections over the primary energy and the spectrum of
secondary electrons, dsigma/dW, at one energy of each.

    python3 plot_water.py [water.png]

Plots with matplotlib when it is installed; prints a few numbers either way.
"""

import os
import sys

import numpy as np

import vlkxs


def spectrum(xs, E):
    """W (keV) and dsigma/dW (cm2/keV) of the sum shell at the record nearest E."""
    records = xs.shells[-1].energies
    rec = min(records, key=lambda r: abs(np.log(r.E / E)))
    # Ionisation grids are kept in fractions of WNorm.
    return rec.E, rec.dv1 * rec.WNorm, rec.dvSig1


def main(argv):
    sets = [
        ("electrons, BEB", "keV", vlkxs.calc("e", "H2O", "i", "s", "beb", energies="0.02,10000"), 1.0),
        ("protons, Rudd", "MeV/u", vlkxs.calc("p", "H2O", "i", "s", "rudd", energies="0.01,10"), 0.1),
    ]
    for label, unit, xs, E in sets:
        grid = xs.shells[-1].E
        print("%s: %d shells, %d primary energies from %g to %g %s" % (
            label, len(xs.shells), len(grid), grid[0], grid[-1], unit))
        probe = np.geomspace(grid[0], grid[-1], 5)
        for e, s in zip(probe, xs.sigma(probe)):
            print("  sigma(%10.4g %s) = %.4e cm2" % (e, unit, s))
        Erec, W, dsdw = spectrum(xs, E)
        print("  dsigma/dW at %g %s: %d points, W up to %.4g keV, peak %.4e cm2/keV" % (
            Erec, unit, len(W), W[-1], dsdw.max()))
    try:
        import matplotlib
        matplotlib.use(os.environ.get("MPLBACKEND", "Agg"))
        import matplotlib.pyplot as plt
    except ImportError:
        print("matplotlib is not installed: no plot (apt-get install python3-matplotlib)")
        return 0
    fig, axes = plt.subplots(2, 2, figsize=(10, 8))
    for row, (label, unit, xs, E) in zip(axes, sets):
        grid = xs.shells[-1].E
        row[0].loglog(grid, xs.sigma(grid))
        row[0].set(title="%s in water" % label, xlabel="E / %s" % unit, ylabel="sigma / cm2")
        Erec, W, dsdw = spectrum(xs, E)
        keep = (W > 0) & (dsdw > 0)
        row[1].loglog(W[keep], dsdw[keep])
        row[1].set(title="E = %g %s" % (Erec, unit), xlabel="W / keV", ylabel="dsigma/dW / (cm2/keV)")
    fig.tight_layout()
    out = argv[0] if argv else "water.png"
    os.makedirs(os.path.dirname(os.path.abspath(out)), exist_ok=True)
    fig.savefig(out)
    print("plot written to", out)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
