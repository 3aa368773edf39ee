#include "sim/plant.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double TWO_PI = 6.283185307179586;
// A thermo-electric cooler on a small laser settles in seconds; the block is heavier.
constexpr double LASER_LAG = 3.0;
constexpr double BLOCK_LAG = 30.0;
// The optics' own errors, which calibration is there to find.
constexpr double OPTICAL_GAIN = 0.97;
constexpr double OPTICAL_OFFSET = 0.035;

double wave(double time, double period)
{
    return std::sin(TWO_PI * time / period);
}

// First-order lag: the share of the way to the target that is made in `seconds`.
double approach(double value, double target, double seconds, double lag)
{
    return value + (target - value) * (1.0 - std::exp(-seconds / lag));
}

}  // namespace

void SimPlant::Advance(double seconds)
{
    if (seconds <= 0)
        return;
    _time += seconds;
    // A random walk held near zero, under the slow swing of Methane().
    _methane_walk += Noise(0.002 * std::sqrt(seconds)) - _methane_walk * std::min(1.0, seconds / 600.0);
    _laser = approach(_laser, _laser_target, seconds, LASER_LAG);
    _block = approach(_block, _block_target, seconds, BLOCK_LAG);
}

double SimPlant::Methane()
{
    return 1.95 + 0.05 * wave(_time, 900) + _methane_walk + Noise(0.004);
}

double SimPlant::Optical(double methane)
{
    return methane * OPTICAL_GAIN + OPTICAL_OFFSET + Noise(0.002);
}

double SimPlant::AirTemperature()
{
    return 18 + 3 * wave(_time, 3600) + Noise(0.02);
}

double SimPlant::Pressure()
{
    return 101.3 + 0.15 * wave(_time, 1800) + Noise(0.005);
}

double SimPlant::SignalStrength()
{
    return std::clamp(78 + 4 * wave(_time, 300) + Noise(0.5), 0.0, 100.0);
}

double SimPlant::DropRate()
{
    return std::max(0.0, 0.4 + Noise(0.2));
}

double SimPlant::Noise(double sigma)
{
    return std::normal_distribution<double>(0.0, sigma)(_random);
}
