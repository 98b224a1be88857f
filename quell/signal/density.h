// Probability densities on a voltage grid: the arithmetic of the statistical eye.
#ifndef QUELL_SIGNAL_DENSITY_H
#define QUELL_SIGNAL_DENSITY_H

#include <span>
#include <vector>

namespace quell {

// mass[i] is the probability of cell first + i; cell n stands for n voltage steps.
struct Density {
    long first = 0;
    std::vector<double> mass = {1.0};

    long last() const { return first + static_cast<long>(mass.size()) - 1; }
};

// Amplitudes (volts) as whole numbers of steps, in order of magnitude. Each takes over the rounding
// error of the larger ones before it, so that their sum is right to half a step. Splitting an
// amplitude between two cells instead would widen the tails beyond the largest possible sum.
std::vector<long> RoundToGrid(std::span<const double> amplitudes, double step);

// Density of the sum of independent variables that are +c or -c cells with equal probability.
Density SumOfSigns(std::span<const long> cells);

// Density of the sum of two independent variables. By the definition, not by Fourier transform,
// whose rounding would bury probabilities below 1e-17.
Density Convolve(const Density& a, const Density& b);

// Adds weight times the density, moved up by shift cells.
void Accumulate(Density* sum, const Density& density, double weight, long shift);

// A normal distribution with mean 0, by its integral over each cell, out to nine sigma.
Density Gaussian(double sigma, double step);

// Drops cells at both ends that hold less than 1e-24 together: no error rate of interest sees them.
void TrimTails(Density* density);

// The lowest cell v with P(x <= v) >= probability.
long LowerQuantile(const Density& density, double probability);

// P(x < cell) + P(x = cell) / 2, with a fractional cell taken in the middle of its neighbours.
double ProbabilityBelow(const Density& density, double cell);

}  // namespace quell

#endif
