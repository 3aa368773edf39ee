#pragma once
// Joins the narrow waveforms of a wide laser scan into one spectrum on one temperature axis.

#include <cstddef>
#include <map>
#include <vector>

/// Collects the scans of a sweep (one sample and one reference waveform of 100 points per laser
/// temperature) and joins them on demand.
///
/// Each new scan is correlated with the one before to estimate how far the laser moves per point;
/// the median of those estimates places the points 10 to 89 of every scan on the temperature axis
/// (point 50 at the scan's temperature), a later scan winning where keys coincide. The merged
/// points are then smoothed by a four-point boxcar and thinned to one value per 0.05 °C. Where two
/// merged points lie further apart than that, the result ends.
///
/// The readers give three vectors of equal length and join the scans only when they have changed.
/// With fewer than two scans that give an estimate, they are empty.
class Stitch {
public:
    /// Forgets every scan. The references of the last result stay until the next join.
    void Clear();
    /// Adds one scan; a scan at a temperature already held replaces it. Scans whose waveforms
    /// are not both 100 points long, or whose temperature is not a finite number, are ignored.
    /// A scan at exactly 0 °C is taken but counts as no scan for the next one's estimate.
    void AddWaveform(float temp, const std::vector<float>& sample, const std::vector<float>& reference);

    const std::vector<float>& Temperatures() const;
    const std::vector<float>& Samples() const;
    const std::vector<float>& References() const;

    /// The length of a waveform.
    static constexpr size_t POINTS = 100;

private:
    struct Waveform {
        std::vector<float> sample;
        std::vector<float> reference;
    };

    /// Estimates the shift of `sample` against the previous scan; appends it to the slopes.
    void _Correlate(float temp, const std::vector<float>& sample);
    void _Stitch() const;

    float _lastTemp = 0;  ///< 0: no scan yet
    std::vector<float> _lastSample;
    std::map<float, Waveform> _scans;
    std::vector<float> _slopes;  ///< °C per point; element size / 2 is the median

    mutable std::vector<float> _temperatures;
    mutable std::vector<float> _samples;
    mutable std::vector<float> _references;
    mutable bool _stitched = false;
};
