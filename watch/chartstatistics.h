#pragma once
// Running statistics of a chart's first variable.

#include <cstdint>
#include <limits>

/// Minimum, maximum, mean and sample deviation over every sample since the start or the last
/// Clear, whatever the chart shows. The sums are compensated (Kahan). The mean and deviation are
/// worth showing anew only from the second sample on and not oftener than every two seconds of
/// data time.
class ChartStatistics {
public:
    /// What one sample changed, so that the chart rewrites only those labels.
    struct Changes {
        bool min = false;
        bool max = false;
        bool mean = false;  ///< the mean and the deviation
    };

    Changes Add(double time, double value);
    /// Starts over, but keeps the time of the last mean update.
    void Clear();

    double Min() const { return _min; }
    double Max() const { return _max; }
    double Mean() const { return _sum / _count; }
    /// The sample deviation. Its (n - 1) * n is a 32-bit product: from n = 46342 on it wraps and
    /// the deviation is not a number. That is kept.
    double StdDev() const;

private:
    double _min = std::numeric_limits<double>::max();
    double _max = -std::numeric_limits<double>::max();
    double _sum = 0, _sum_c = 0;
    int32_t _count = 0;
    double _sumsq = 0, _sumsq_c = 0;
    int32_t _countsq = 0;
    double _last_update = 0;
};
