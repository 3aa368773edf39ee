#include "watch/stitch.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <utility>

namespace {

constexpr int LAGS = 100;       // shifts tried each way
constexpr int TRIM = 10;        // points dropped at each end of a scan
constexpr int CENTRE = 50;      // the point at the scan's temperature
constexpr double GRID = 0.05;   // °C between results

// The grid is accumulated in float from a double step, and kept so: the results fall where this
// very sum puts them.
float next_grid(float g)
{
    return float(double(g) + GRID);
}

}  // namespace

void Stitch::Clear()
{
    _lastTemp = 0;
    _lastSample.clear();
    _scans.clear();
    _slopes.clear();
    _temperatures.clear();
    _samples.clear();
    _stitched = false;
}

void Stitch::AddWaveform(float temp, const std::vector<float>& sample, const std::vector<float>& reference)
{
    // A temperature that isn't a number would break the ordering of the scans.
    if (sample.size() != POINTS || reference.size() != POINTS || !std::isfinite(temp))
        return;
    _stitched = false;
    _scans[temp] = Waveform{sample, reference};
    if (_lastTemp != 0)
        _Correlate(temp, sample);
    _lastTemp = temp;
    _lastSample = sample;
}

void Stitch::_Correlate(float temp, const std::vector<float>& sample)
{
    // _lastSample has POINTS points: only such scans are taken.
    int best = 0;
    double best_score = 0.0;
    for (int k = 0; k <= 2 * LAGS; ++k) {
        const int lag = k - LAGS;
        const int n = int(POINTS) - std::abs(lag);
        if (n == 0)
            continue;  // scores 0, which never beats the start
        const int a = std::max(-lag, 0), b = std::max(lag, 0);
        double sum = 0;
        for (int i = 0; i < n; ++i)
            sum += sample[size_t(a + i)] * _lastSample[size_t(b + i)];
        const double score = sum / n;
        if (score > best_score) {
            best_score = score;
            best = k;
        }
    }
    const int lag = best - LAGS;
    if (lag < 1)
        return;
    _slopes.push_back((temp - _lastTemp) / float(lag));
    std::nth_element(_slopes.begin(), _slopes.begin() + std::ptrdiff_t(_slopes.size() / 2), _slopes.end());
}

const std::vector<float>& Stitch::Temperatures() const
{
    _Stitch();
    return _temperatures;
}

const std::vector<float>& Stitch::Samples() const
{
    _Stitch();
    return _samples;
}

const std::vector<float>& Stitch::References() const
{
    _Stitch();
    return _references;
}

void Stitch::_Stitch() const
{
    if (_slopes.empty() || _stitched)
        return;
    const float s = _slopes[_slopes.size() / 2];

    std::map<float, std::pair<float, float>> merged;
    for (const auto& [temp, scan] : _scans)
        for (size_t i = TRIM; i < scan.sample.size() - TRIM; ++i)
            merged[float(int(i) - CENTRE) * s + temp] = {scan.sample[i], scan.reference[i]};

    _temperatures.clear();
    _samples.clear();
    _references.clear();
    _stitched = true;

    // A window of four merged entries. The fill stops on its third entry without passing it, so
    // the main loop takes that entry a second time.
    std::deque<float> x, a, b;
    auto entry = merged.begin();
    for (; entry != merged.end(); ++entry) {
        x.push_back(entry->first);
        a.push_back(entry->second.first);
        b.push_back(entry->second.second);
        if (x.size() == 3)
            break;
    }
    if (x.size() < 3)
        return;  // all scans fell on one or two keys: nothing to average

    float g = 0;
    while (!(x[1] < g)) {
        const float next = next_grid(g);
        if (next == g)
            return;  // beyond where a float grid can reach
        g = next;
    }

    for (; entry != merged.end(); ++entry) {
        x.push_back(entry->first);
        a.push_back(entry->second.first);
        b.push_back(entry->second.second);
        if (!(g < x[1]) && !(x[2] < g)) {
            _temperatures.push_back((x[1] + x[2]) * 0.5f);
            _samples.push_back((a[0] + a[1] + a[2] + a[3]) * 0.25f);
            _references.push_back((b[0] + b[1] + b[2] + b[3]) * 0.25f);
            g = next_grid(g);
        }
        x.pop_front();
        a.pop_front();
        b.pop_front();
    }
}
