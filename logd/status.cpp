#include "logd/status.h"

#include <algorithm>
#include <cstdio>

namespace {

// The q-quantile, by rank; 0 for no values.
double quantile(std::vector<double>& values, double q)
{
    if (values.empty())
        return 0;
    const auto at = values.begin() + std::ptrdiff_t(q * double(values.size() - 1) + 0.5);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

}  // namespace

std::string StatusLine::Line(int connected, int total, Recorder::Stats stats)
{
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::max(1e-3, std::chrono::duration<double>(now - _since).count());
    _since = now;
    if (!stats.last_error.empty())
        _last_error = stats.last_error;
    char text[200];
    std::snprintf(text, sizeof text,
                  "%d of %d instruments connected, %.1f rows/s, %llu rows in the spool, "
                  "commit latency p50 %.2f s p99 %.2f s, last error: ",
                  connected, total, double(stats.committed) / seconds, (unsigned long long)stats.spooled,
                  quantile(stats.latencies, 0.5), quantile(stats.latencies, 0.99));
    return text + (_last_error.empty() ? std::string("none") : _last_error);
}
