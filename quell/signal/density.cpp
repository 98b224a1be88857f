#include "quell/signal/density.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>

namespace quell {

namespace {

// Sums this long are kept whole, down to their rarest pattern.
constexpr std::size_t UntrimmedCells = 65536;

bool Symmetric(const std::vector<double>& mass)
{
    return std::equal(mass.begin(), mass.begin() + static_cast<std::ptrdiff_t>(mass.size() / 2),
                      mass.rbegin());
}

}  // namespace

std::vector<long> RoundToGrid(std::span<const double> amplitudes, double step)
{
    std::vector<double> magnitudes;
    magnitudes.reserve(amplitudes.size());
    for (const double amplitude : amplitudes)
        magnitudes.push_back(std::abs(amplitude));
    std::sort(magnitudes.begin(), magnitudes.end(), std::greater<>());

    std::vector<long> cells;
    double error = 0.0;
    for (const double magnitude : magnitudes) {
        const double wanted = magnitude / step + error;
        const double rounded = std::max(std::round(wanted), 0.0);
        error = wanted - rounded;
        if (rounded > 0.0) cells.push_back(static_cast<long>(rounded));
    }
    return cells;
}

void TrimTails(Density* density)
{
    constexpr double Dropped = 0.5e-24;
    std::vector<double>& mass = density->mass;
    std::size_t begin = 0;
    for (double sum = mass[0]; begin + 1 < mass.size() && sum < Dropped; sum += mass[begin])
        ++begin;
    std::size_t end = mass.size();
    for (double sum = mass[end - 1]; end > begin + 1 && sum < Dropped; sum += mass[end - 1])
        --end;
    mass.erase(mass.begin() + static_cast<std::ptrdiff_t>(end), mass.end());
    mass.erase(mass.begin(), mass.begin() + static_cast<std::ptrdiff_t>(begin));
    density->first += static_cast<long>(begin);
}

Density SumOfSigns(std::span<const long> cells)
{
    // Small steps first keep the array short for as long as possible.
    std::vector<long> ascending(cells.begin(), cells.end());
    std::sort(ascending.begin(), ascending.end());

    Density sum;
    std::vector<double> next;
    for (const long c : ascending) {
        const std::vector<double>& now = sum.mass;
        const std::size_t gap = 2 * static_cast<std::size_t>(c);
        next.resize(now.size() + gap);
        const std::size_t overlap = now.size() > gap ? now.size() - gap : 0;
        const double* low = now.data();
        double* out = next.data();
        for (std::size_t i = 0; i < now.size() - overlap; ++i)
            out[i] = 0.5 * low[i];
        for (std::size_t i = now.size(); i < gap; ++i)
            out[i] = 0.0;
        for (std::size_t i = 0; i < overlap; ++i)
            out[i + gap] = 0.5 * (low[i + gap] + low[i]);
        for (std::size_t i = overlap; i < now.size(); ++i)
            out[i + gap] = 0.5 * low[i];
        sum.mass.swap(next);
        sum.first -= c;
        // A long sum is bell-shaped: its width grows with the square root of the cursors.
        if (sum.mass.size() > UntrimmedCells) TrimTails(&sum);
    }
    return sum;
}

Density Convolve(const Density& a, const Density& b)
{
    const Density& longer = a.mass.size() >= b.mass.size() ? a : b;
    const Density& shorter = a.mass.size() >= b.mass.size() ? b : a;
    Density sum = {a.first + b.first, {}};
    const std::size_t size = a.mass.size() + b.mass.size() - 1;
    sum.mass.assign(size, 0.0);
    // What is the same on both sides is made once.
    const bool mirrored = Symmetric(a.mass) && Symmetric(b.mass);
    const std::size_t made = mirrored ? (size + 1) / 2 : size;

    // Four cells of the shorter one go over the longer one together.
    constexpr std::size_t Together = 4;
    std::vector<double> padded(longer.mass.size() + 2 * (Together - 1), 0.0);
    std::copy(longer.mass.begin(), longer.mass.end(), padded.begin() + (Together - 1));
    for (std::size_t i = 0; i < shorter.mass.size() && i < made; i += Together) {
        double w[Together] = {};
        for (std::size_t k = 0; k < Together && i + k < shorter.mass.size(); ++k)
            w[k] = shorter.mass[i + k];
        if (w[0] == 0.0 && w[1] == 0.0 && w[2] == 0.0 && w[3] == 0.0) continue;
        double* out = sum.mass.data() + i;
        const double* in = padded.data();
        const std::size_t count = std::min(made - i, padded.size() - (Together - 1));
        for (std::size_t k = 0; k < count; ++k)
            out[k] += (w[0] * in[k + 3] + w[1] * in[k + 2]) + (w[2] * in[k + 1] + w[3] * in[k]);
    }
    for (std::size_t i = made; i < size; ++i)
        sum.mass[i] = sum.mass[size - 1 - i];
    return sum;
}

void Accumulate(Density* sum, const Density& density, double weight, long shift)
{
    const long first = density.first + shift;
    const long last = density.last() + shift;
    if (sum->mass.empty()) sum->first = first;
    if (first < sum->first) {
        sum->mass.insert(sum->mass.begin(), static_cast<std::size_t>(sum->first - first), 0.0);
        sum->first = first;
    }
    if (last > sum->last()) sum->mass.resize(static_cast<std::size_t>(last - sum->first) + 1, 0.0);
    double* out = sum->mass.data() + (first - sum->first);
    for (std::size_t i = 0; i < density.mass.size(); ++i)
        out[i] += weight * density.mass[i];
}

Density Gaussian(double sigma, double step)
{
    if (!(sigma > 0.0)) return {};
    const long reach = static_cast<long>(std::ceil(9.0 * sigma / step));
    const double scale = step / (sigma * std::sqrt(2.0));
    // P(x > edge), exact in the far tail, where differences of erf would be all rounding.
    const auto above = [scale](double edge) { return 0.5 * std::erfc(edge * scale); };
    Density density = {-reach, std::vector<double>(2 * static_cast<std::size_t>(reach) + 1)};
    for (long cell = 0; cell <= reach; ++cell) {
        const double edge = static_cast<double>(cell);
        const double mass =
            cell == 0 ? 1.0 - 2.0 * above(0.5) : above(edge - 0.5) - above(edge + 0.5);
        density.mass[static_cast<std::size_t>(reach + cell)] = mass;
        density.mass[static_cast<std::size_t>(reach - cell)] = mass;
    }
    return density;
}

long LowerQuantile(const Density& density, double probability)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < density.mass.size(); ++i) {
        sum += density.mass[i];
        if (sum >= probability) return density.first + static_cast<long>(i);
    }
    return density.last();
}

double ProbabilityBelow(const Density& density, double cell)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < density.mass.size(); ++i) {
        const double here = static_cast<double>(density.first + static_cast<long>(i));
        if (here > cell) break;
        sum += here == cell ? 0.5 * density.mass[i] : density.mass[i];
    }
    return sum;
}

}  // namespace quell
