#include "watch/chartstatistics.h"

#include <cmath>

namespace {

void kahan_add(double& sum, double& compensation, double value)
{
    const double y = value - compensation;
    const double t = sum + y;
    compensation = (t - sum) - y;
    sum = t;
}

}  // namespace

ChartStatistics::Changes ChartStatistics::Add(double time, double value)
{
    Changes changes;
    if (_min > value) {
        _min = value;
        changes.min = true;
    }
    if (value > _max) {
        _max = value;
        changes.max = true;
    }
    const bool had_one = _count >= 1;
    kahan_add(_sum, _sum_c, value);
    ++_count;
    kahan_add(_sumsq, _sumsq_c, value * value);
    ++_countsq;
    if (time - _last_update > 2.0 && had_one) {
        _last_update = time;
        changes.mean = true;
    }
    return changes;
}

void ChartStatistics::Clear()
{
    const double last_update = _last_update;
    *this = ChartStatistics();
    _last_update = last_update;
}

double ChartStatistics::StdDev() const
{
    const double n = _countsq;
    // Wraps like the 32-bit product it is, without the undefined behaviour of a signed overflow.
    const auto product = int32_t(uint32_t(_countsq - 1) * uint32_t(_countsq));
    return std::sqrt((n * _sumsq - _sum * _sum) / double(product));
}
