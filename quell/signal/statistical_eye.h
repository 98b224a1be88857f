// The statistical eye of a link, from its pulse responses.
//
// Random data of both polarities are sent with one volt between the rails, so a bit contributes
// plus or minus half of its cursor. At one sampling phase the received voltage of a transmitted one
// is p0 / 2 plus the sum of +-pk / 2 over the other cursors: its density is the convolution of
// their two-point densities (Casper et al., "An accurate and efficient analysis method for
// multi-Gb/s chip-to-chip signaling schemes", VLSI Circuits 2002; Sanders et al., DesignCon 2004).
#ifndef QUELL_SIGNAL_STATISTICAL_EYE_H
#define QUELL_SIGNAL_STATISTICAL_EYE_H

#include <cstddef>
#include <span>
#include <vector>

#include "quell/signal/density.h"

namespace quell {

struct EyeOptions {
    double noise = 0.0;         // volts, standard deviation of Gaussian noise at the receiver
    double randomJitter = 0.0;  // seconds, standard deviation of the sampling instant
    double dualDirac = 0.0;     // seconds, distance of the two equally likely sampling instants
    double voltageStep = 0.0;   // volts; 0 takes 1/16384 of the largest main cursor, or what the
                                // work allows
    std::size_t phases = 64;    // at least so many in a unit interval
};

// One sampling phase. isi is the density of everything but half the main cursor, in voltage steps:
// a transmitted one is received at mainCursor / 2 + isi, a zero mirrored.
struct EyePhase {
    double mainCursor;  // volts
    Density isi;
};

// phases[i] samples at (i - centre) * phaseStep seconds from the middle of the eye that peak
// distortion leaves; together they span one unit interval with both ends included. The samples of
// the response lie at firstSample and every samplePhases from there.
struct StatisticalEye {
    double unitInterval;  // seconds
    double phaseStep;     // seconds
    double voltageStep;   // volts
    double middle;        // seconds from the first sample of the response to the centre
    std::size_t centre;
    std::size_t firstSample;
    std::size_t samplePhases;
    std::vector<EyePhase> phases;
};

// Opening between the rails at an error rate q: p0 - 2 |v_q| with P(isi < v_q) = q. Negative when
// closed. Volts.
double EyeHeight(const StatisticalEye& eye, std::size_t phase, double errorRate);

// The phase with the greatest height at the error rate, of those that a sample of the response lies
// at; of equal ones the one nearest to the middle of their run.
std::size_t BestPhase(const StatisticalEye& eye, double errorRate);

// Width of the opening around the best phase, in unit intervals: to where the height, interpolated
// between phases, crosses zero; 1 when it is open all over, 0 when it is closed.
double EyeWidth(const StatisticalEye& eye, double errorRate);

// Probability that a bit sampled at this phase is on the wrong side of zero.
double ErrorRate(const StatisticalEye& eye, std::size_t phase);

// victim and aggressors are pulse responses (volts) on one time grid of samplesPerUi samples in a
// unit interval, cubic between the samples. Aggressors are asynchronous: the density of each is
// averaged over its phases. Jitter mixes the densities at the instants that it moves the sampling
// to: dual-Dirac jitter exactly there, random jitter in steps of a quarter of its deviation, but no
// finer than a 512th of the unit interval. The victim must hold at least one sample above zero.
StatisticalEye ComputeEye(std::span<const double> victim,
                          std::span<const std::vector<double>> aggressors, std::size_t samplesPerUi,
                          double sampleInterval, const EyeOptions& options = {});

}  // namespace quell

#endif
