#pragma once
// The one absorption spectrum that every simulated Tolvan looks at, over the laser temperature
// that tunes its wavelength. It never changes, so that a wide scan has a truth to reconstruct.

#include <iosfwd>

/// A fixed synthetic spectrum from 0 to 50 °C: a handful of Lorentzian lines of different depths
/// and widths on a zero baseline. The reference cell sees the methane lines deep; the sample path
/// sees them shallow and also sees two lines of its own.
class SimSpectrum {
public:
    static constexpr double LOWEST = 0.0;
    static constexpr double HIGHEST = 50.0;
    /// A waveform has WINDOW_POINTS points, POINT_STEP °C apart; point CENTRE_POINT is the laser's
    /// temperature.
    static constexpr int WINDOW_POINTS = 100;
    static constexpr int CENTRE_POINT = 50;
    static constexpr double POINT_STEP = 0.0165;

    /// Absorption in the sample path at a laser temperature.
    static double Sample(double temperature);
    /// Absorption in the reference cell.
    static double Reference(double temperature);
    /// The laser temperature of point `i` of a waveform centred on `centre`.
    static double PointTemperature(double centre, int i) { return centre + (i - CENTRE_POINT) * POINT_STEP; }
    /// The centre of the deepest reference line: where line lock puts the laser.
    static double LockTemperature();
    /// The ground truth, one line per POINT_STEP from LOWEST to HIGHEST: the temperature, the
    /// sample and the reference, separated by tabs.
    static void Dump(std::ostream& out);
};
