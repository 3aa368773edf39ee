#include "sim/spectrum.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <ostream>

namespace {

struct Line {
    double centre;     // °C
    double width;      // half width at half depth, °C
    double sample;     // peak absorption in the sample path
    double reference;  // peak absorption in the reference cell
};

// Lines some degrees apart and narrower than a waveform, so that most waveforms of a scan hold a
// feature to match against their neighbours. The lines at 9.1 and 30.4 °C are the sample's own.
constexpr Line LINES[] = {
    {4.3, 0.10, 0.05, 0.40},  {9.1, 0.15, 0.12, 0.00},  {13.8, 0.12, 0.08, 0.70}, {18.2, 0.20, 0.06, 0.50},
    {22.9, 0.10, 0.03, 0.30}, {25.6, 0.14, 0.15, 0.95}, {30.4, 0.25, 0.18, 0.00}, {35.1, 0.12, 0.07, 0.60},
    {40.7, 0.18, 0.05, 0.45}, {45.2, 0.11, 0.04, 0.35},
};

double lorentzian(const Line& line, double temperature)
{
    const double x = (temperature - line.centre) / line.width;
    return 1.0 / (1.0 + x * x);
}

}  // namespace

double SimSpectrum::Sample(double temperature)
{
    double sum = 0;
    for (const Line& line : LINES)
        sum += line.sample * lorentzian(line, temperature);
    return sum;
}

double SimSpectrum::Reference(double temperature)
{
    double sum = 0;
    for (const Line& line : LINES)
        sum += line.reference * lorentzian(line, temperature);
    return sum;
}

double SimSpectrum::LockTemperature()
{
    return std::max_element(std::begin(LINES), std::end(LINES),
                            [](const Line& a, const Line& b) { return a.reference < b.reference; })
        ->centre;
}

void SimSpectrum::Dump(std::ostream& out)
{
    // Counted in whole steps, so that rounding cannot add or lose the last line.
    const int steps = int((HIGHEST - LOWEST) / POINT_STEP + 1e-9);
    char line[96];
    for (int i = 0; i <= steps; ++i) {
        const double t = LOWEST + i * POINT_STEP;
        std::snprintf(line, sizeof line, "%.4f\t%.6f\t%.6f\n", t, Sample(t), Reference(t));
        out << line;
    }
}
