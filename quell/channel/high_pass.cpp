// The high-pass of a coupling capacitor in a through response.
#include "quell/channel/high_pass.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace quell {

namespace {

constexpr double LeastPlateau = 0.3;
constexpr double MostAtLowest = 0.95;  // of the plateau
constexpr double MostAtDc = 0.3;       // of the plateau
constexpr double LeastShare = 0.1;     // of the plateau, in a point that tells the corner
constexpr double KeptFrom = 2;         // corners
// A file may begin above the corner: what tells it there is the phase, which leads by corner / f.
// It is looked for in the lowest decade, from this lead in the lowest point on, if the phases lie
// near enough to their fit.
constexpr double LeastLead = 0.02;  // rad
constexpr double MostMisfit = 0.2;  // of the lead, root mean square
constexpr size_t LeastPoints = 6;

// The corner of a first-order high-pass that passes this share of its plateau at a frequency.
double CornerFrom(double frequency, double share)
{
    return frequency * std::sqrt(std::max(1 / (share * share) - 1, 0.0));
}

// Solves the normal equations of a least-squares fit with three terms; NaN when they are singular.
std::array<double, 3> Solve(std::array<std::array<double, 4>, 3> m)
{
    for (size_t k = 0; k < 3; ++k) {
        for (size_t row = 0; row < 3; ++row) {
            if (row == k) continue;
            const double factor = m[row][k] / m[k][k];
            for (size_t column = k; column < 4; ++column)
                m[row][column] -= factor * m[k][column];
        }
    }
    return {m[0][3] / m[0][0], m[1][3] / m[1][1], m[2][3] / m[2][2]};
}

// The corner of a high-pass below the band: the phase of the lowest decade, delay taken out, fitted
// by the lead corner / f, the lag of the skin effect and what is left of the delay.
std::optional<double> CornerBelow(const FrequencyResponse& response)
{
    const double lowest = response.frequency.front();
    if (!(lowest > 0)) return std::nullopt;
    const double delay = GroupDelay(response);
    std::vector<std::array<double, 4>> rows;  // the three terms and the phase
    double turn = 0;
    for (size_t k = 0; k < response.frequency.size() && response.frequency[k] <= 10 * lowest; ++k) {
        const double f = response.frequency[k];
        const double angle =
            std::arg(response.gain[k]) + std::remainder(f * delay, 1.0) * 2 * std::numbers::pi;
        // An inverted path is half a turn off.
        if (k == 0) turn = std::numbers::pi * std::round(angle / std::numbers::pi);
        const double phase = std::remainder(angle - turn, 2 * std::numbers::pi);
        rows.push_back({lowest / f, std::sqrt(f / lowest), f / lowest, phase});
    }
    if (rows.size() < LeastPoints) return std::nullopt;
    std::array<std::array<double, 4>, 3> normal = {};
    for (const std::array<double, 4>& row : rows)
        for (size_t i = 0; i < 3; ++i)
            for (size_t j = 0; j < 4; ++j)
                normal[i][j] += row[i] * row[j];
    const std::array<double, 3> fit = Solve(normal);
    double misfit = 0;
    for (const std::array<double, 4>& row : rows) {
        const double off = row[3] - fit[0] * row[0] - fit[1] * row[1] - fit[2] * row[2];
        misfit += off * off / static_cast<double>(rows.size());
    }
    if (!(fit[0] >= LeastLead) || !(std::sqrt(misfit) <= MostMisfit * fit[0])) return std::nullopt;
    return std::tan(std::min(fit[0], 1.0)) * lowest;
}

}  // namespace

std::optional<HighPass> FindHighPass(const FrequencyResponse& response)
{
    const std::vector<double>& f = response.frequency;
    size_t peak = 0;
    for (size_t k = 1; k < f.size(); ++k)
        if (std::abs(response.gain[k]) > std::abs(response.gain[peak])) peak = k;
    const double plateau = std::abs(response.gain[peak]);
    const auto share = [&](size_t k) { return std::abs(response.gain[k]) / plateau; };
    if (!(plateau >= LeastPlateau)) return std::nullopt;
    if (share(0) > MostAtLowest) {
        const std::optional<double> corner = CornerBelow(response);
        if (!corner) return std::nullopt;
        return HighPass{*corner, f[0], plateau};
    }
    if (f[0] == 0 && share(0) > MostAtDc) return std::nullopt;

    // The point nearest to the corner tells it best.
    HighPass highPass = {0, 0, plateau};
    const double half = std::sqrt(0.5);
    double nearest = 1;
    size_t teller = 0;
    for (size_t k = 0; k < peak; ++k) {
        if (share(k) < half) highPass.above = f[k + 1];
        const double distance = std::abs(share(k) - half);
        if (f[k] == 0 || share(k) < LeastShare || share(k) > MostAtLowest || distance >= nearest)
            continue;
        nearest = distance;
        teller = k;
        highPass.corner = CornerFrom(f[k], share(k));
    }
    if (highPass.above == 0) highPass.above = f[0];
    // The line behind the capacitor has its own loss: the plateau at the teller is what the
    // response without the high-pass found so far has there.
    for (int round = 0; highPass.corner > 0 && round < 6; ++round) {
        const FrequencyResponse rest = WithoutHighPass(response, highPass);
        if (rest.frequency.size() < 2) break;
        const double there = std::abs(ResponseCurve(rest).At(f[teller]));
        if (!(there > std::abs(response.gain[teller]))) break;
        highPass.corner = CornerFrom(f[teller], std::abs(response.gain[teller]) / there);
    }
    if (WithoutHighPass(response, highPass).frequency.size() < 2) return std::nullopt;
    return highPass;
}

FrequencyResponse WithoutHighPass(const FrequencyResponse& response, const HighPass& highPass)
{
    FrequencyResponse rest;
    const double least = highPass.corner > 0 ? KeptFrom * highPass.corner : highPass.above;
    for (size_t k = 0; k < response.frequency.size(); ++k) {
        const double f = response.frequency[k];
        if (f == 0 || f < least) continue;
        rest.frequency.push_back(f);
        rest.gain.push_back(response.gain[k] * std::complex<double>(1, -highPass.corner / f));
    }
    return rest;
}

}  // namespace quell
