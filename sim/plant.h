#pragma once
// The world that a simulated instrument measures: the air along its path, and its own laser.

#include <random>

/// The air and the laser, moved on in steps of time. Readings draw fresh noise at each call, so
/// two records never carry quite the same values; the random sequence is the same at every run.
class SimPlant {
public:
    /// Moves the world on by `seconds`.
    void Advance(double seconds);

    /// The temperature that the laser cooler drives the laser to; the laser follows with a lag.
    void SetLaserTarget(double celsius) { _laser_target = celsius; }
    /// The temperature that the block heater drives the laser block to.
    void SetBlockTarget(double celsius) { _block_target = celsius; }
    /// Puts the laser at a temperature at once, as at power-up.
    void SetLaserTemperature(double celsius) { _laser = celsius; }
    double LaserTarget() const { return _laser_target; }
    double LaserTemperature() const { return _laser; }
    double BlockTarget() const { return _block_target; }
    double BlockTemperature() const { return _block; }

    /// Methane in the air, µmol/mol: about 2 with a slow drift.
    double Methane();
    /// What the optics make of a methane mole fraction before calibration: a little off in gain
    /// and offset, and noisy. Zero and span calibration take these errors out.
    double Optical(double methane);
    /// Air temperature, °C.
    double AirTemperature();
    /// Air pressure, kPa.
    double Pressure();
    /// Signal strength, % of the clean-optics signal.
    double SignalStrength();
    /// Share of samples dropped for low signal, %.
    double DropRate();

    /// Gaussian noise of standard deviation `sigma`.
    double Noise(double sigma);

private:
    std::mt19937 _random{1989};
    double _time = 0;
    double _methane_walk = 0;
    double _laser = 25, _laser_target = 25;
    double _block = 22, _block_target = 22;
};
