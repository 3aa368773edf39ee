#pragma once
// The document of the Quenta, the gas console that feeds a Dravik head: valves for humidifier and
// desiccant, a pump, a CO2 injector and scrubber, four analogue outputs and eight digital lines.
// <arvex><quenta>...</quenta></arvex>.

#include <array>
#include <map>
#include <string>

#include "libskarn/configcommon.h"
#include "libskarn/document.h"

// --- cfg ---

/// A proportional valve, `humidifier` or `desiccant`. The percent may overshoot 0 to 100 by 30
/// either way, which drives the valve hard against its stop.
class ConfigCfgValve : public ConfigurableComposite {
public:
    explicit ConfigCfgValve(const std::string& name);

    ConfigurableFloat& Percent() { return _percent; }

private:
    ConfigurableFloat _percent{"percent", 0, -30, 130, false};
};

/// The pump and the pressures it works against, tag `flow`.
class ConfigCfgFlow : public ConfigurableComposite {
public:
    explicit ConfigCfgFlow(const std::string& name);

    ConfigurableFloat& Pump_percent() { return _pump_percent; }
    ConfigurableFloat& Humidity_pressure_percent() { return _humidity_pressure_percent; }
    ConfigurableFloat& Pump_pressure_percent() { return _pump_pressure_percent; }

private:
    ConfigurableFloat _pump_percent{"pump_percent", 0, 0, 100, false};
    ConfigurableFloat _humidity_pressure_percent{"humidity_pressure_percent", 0, 0, 100, false};
    ConfigurableFloat _pump_pressure_percent{"pump_pressure_percent", 0, 0, 100, false};
};

/// The CO2 scrubber, tag `scrub`.
class ConfigCfgScrubQuenta : public ConfigurableComposite {
public:
    explicit ConfigCfgScrubQuenta(const std::string& name);

    ConfigOnOffControl& Co2_scrub() { return _co2_scrub; }

private:
    ConfigOnOffControl _co2_scrub{"co2_scrub", false};
};

/// The CO2 injector, tag `injector`. A percent of -1 lies below the working range on purpose.
class ConfigCfgInjector : public ConfigurableComposite {
public:
    explicit ConfigCfgInjector(const std::string& name);

    ConfigurableFloat& Co2_injector_percent() { return _co2_injector_percent; }
    ConfigurableBool& Co2_injector_calibrate() { return _co2_injector_calibrate; }

private:
    ConfigurableFloat _co2_injector_percent{"co2_injector_percent", 0, -1, 100, false};
    ConfigurableBool _co2_injector_calibrate{"co2_injector_calibrate", false};
};

/// The four analogue outputs in volts, tag `dacs`.
class ConfigCfgDacs : public ConfigurableComposite {
public:
    ConfigCfgDacs();

    ConfigurableFloat& Dac1() { return _dac1; }
    ConfigurableFloat& Dac2() { return _dac2; }
    ConfigurableFloat& Dac3() { return _dac3; }
    ConfigurableFloat& Dac4() { return _dac4; }

private:
    ConfigurableFloat _dac1{"dac1", 0, -5, 5, false};
    ConfigurableFloat _dac2{"dac2", 0, -5, 5, false};
    ConfigurableFloat _dac3{"dac3", 0, -5, 5, false};
    ConfigurableFloat _dac4{"dac4", 0, -5, 5, false};
};

/// One digital line, `io1` to `io8`: "input", "low" or "high". What it drives is the user's wiring.
class ConfigCfgGpioPin : public ConfigurableMultipleChoice {
public:
    explicit ConfigCfgGpioPin(const std::string& name);
};

/// Power switches and digital lines, tag `gpio`.
class ConfigCfgGpio : public ConfigurableComposite {
public:
    ConfigCfgGpio();

    ConfigOnOffControl& Excitation_5v() { return _excitation_5v; }
    ConfigOnOffControl& Power_12v() { return _power_12v; }
    ConfigOnOffControl& Power_5v() { return _power_5v; }
    ConfigOnOffControl& Ch1_pullup() { return _ch1_pullup; }
    /// `io1` to `io8`; throws std::out_of_range for any other n.
    ConfigCfgGpioPin& Io(unsigned n) { return _io.at(n - 1); }

private:
    ConfigOnOffControl _excitation_5v{"excitation_5v", false};
    ConfigOnOffControl _power_12v{"power_12v", false};
    ConfigOnOffControl _power_5v{"power_5v", false};
    ConfigOnOffControl _ch1_pullup{"ch1_pullup", false};
    std::array<ConfigCfgGpioPin, 8> _io;
};

/// The Quenta's settings, tag `cfg`. `head` names the Dravik head of this console; "auto" stands
/// for whichever head is found.
class ConfigCfgQuenta : public ConfigurableComposite {
public:
    ConfigCfgQuenta();

    ConfigurableString& Head() { return _head; }
    ConfigLightSource& Lightsource() { return _lightsource; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }
    ConfigCfgValve& Humidifier() { return _humidifier; }
    ConfigCfgValve& Desiccant() { return _desiccant; }
    ConfigCfgFlow& Flow() { return _flow; }
    ConfigCfgScrubQuenta& Scrub() { return _scrub; }
    ConfigCfgInjector& Injector() { return _injector; }
    ConfigCfgDacs& Dacs() { return _dacs; }
    ConfigCfgGpio& Gpio() { return _gpio; }

private:
    ConfigurableString _head{"head", "auto"};
    ConfigLightSource _lightsource;
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
    ConfigCfgValve _humidifier{"humidifier"};
    ConfigCfgValve _desiccant{"desiccant"};
    ConfigCfgFlow _flow{"flow"};
    ConfigCfgScrubQuenta _scrub{"scrub"};
    ConfigCfgInjector _injector{"injector"};
    ConfigCfgDacs _dacs;
    ConfigCfgGpio _gpio;
};

// --- cal, output, cmd ---

/// The calibration, tag `cal`: one zero value and no history.
class ConfigCalQuenta : public ConfigurableComposite {
public:
    ConfigCalQuenta();

    ConfigurableFloat& Zero() { return _zero; }

private:
    ConfigurableFloat _zero{"zero", 0};
};

/// Which data records the console sends on the link, tag `output`. There is no rate.
class ConfigOutputQuenta : public ConfigurableComposite {
public:
    ConfigOutputQuenta();

    ConfigurableBool& Waveforms() { return _waveforms; }
    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }
    ConfigurableBool& Datatest() { return _datatest; }
    ConfigurableBool& Lightsource() { return _lightsource; }

private:
    ConfigurableBool _waveforms{"waveforms", false};
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
    ConfigurableBool _datatest{"datatest", false};
    ConfigurableBool _lightsource{"lightsource", false};
};

/// One-shot commands, tag `cmd`: restart, attach or detach the light source.
class ConfigCmdQuenta : public ConfigurableComposite {
public:
    ConfigCmdQuenta();

    ConfigurableBool& Reboot() { return _reboot; }
    ConfigurableBool& Connectlightsource() { return _connectlightsource; }
    ConfigurableBool& Disconnectlightsource() { return _disconnectlightsource; }

private:
    ConfigurableBool _reboot{"reboot", false};
    ConfigurableBool _connectlightsource{"connectlightsource", false};
    ConfigurableBool _disconnectlightsource{"disconnectlightsource", false};
};

// --- factory ---

/// The pump's drive and pressure at one named speed, `high` to `minimum`.
class ConfigFactoryPumpSpeed : public ConfigurableComposite {
public:
    ConfigFactoryPumpSpeed(const std::string& name, float percent, float pressure_percent);

    ConfigurableFloat& Percent() { return _percent; }
    ConfigurableFloat& Pressure_percent() { return _pressure_percent; }

private:
    ConfigurableFloat _percent;
    ConfigurableFloat _pressure_percent;
};

/// The four pump speeds, tag `pump`.
class ConfigFactoryPump : public ConfigurableComposite {
public:
    ConfigFactoryPump();

    ConfigFactoryPumpSpeed& High() { return _high; }
    ConfigFactoryPumpSpeed& Medium() { return _medium; }
    ConfigFactoryPumpSpeed& Low() { return _low; }
    ConfigFactoryPumpSpeed& Minimum() { return _minimum; }

private:
    ConfigFactoryPumpSpeed _high{"high", 55, 65};
    ConfigFactoryPumpSpeed _medium{"medium", 40, 45};
    ConfigFactoryPumpSpeed _low{"low", 30, 30};
    ConfigFactoryPumpSpeed _minimum{"minimum", 20, 20};
};

/// The travel of a valve's motor in steps, `humidifier` or `desiccant`. Each bound has its own
/// range; none is checked against another.
class ConfigFactoryValveMargins : public ConfigurableComposite {
public:
    explicit ConfigFactoryValveMargins(const std::string& name);

    ConfigurableInteger& Low() { return _low; }
    ConfigurableInteger& High() { return _high; }
    ConfigurableInteger& Max() { return _max; }

private:
    ConfigurableInteger _low{"low", 32, 0, 193};
    ConfigurableInteger _high{"high", 546, 451, 644};
    ConfigurableInteger _max{"max", 644, 547, 644};
};

/// Factory values, tag `factory`.
class ConfigFactoryQuenta : public ConfigurableComposite {
public:
    ConfigFactoryQuenta();

    ConfigurableString& Serialnumber() { return _serialnumber; }
    ConfigFactoryPump& Pump() { return _pump; }
    ConfigFactoryLightSource& Lightsource() { return _lightsource; }
    ConfigFactoryValveMargins& Humidifier() { return _humidifier; }
    ConfigFactoryValveMargins& Desiccant() { return _desiccant; }

private:
    ConfigurableString _serialnumber{"serialnumber", "SKC-XXXX"};
    ConfigFactoryPump _pump;
    ConfigFactoryLightSource _lightsource;
    ConfigFactoryValveMargins _humidifier{"humidifier"};
    ConfigFactoryValveMargins _desiccant{"desiccant"};
};

// --- the model and the document ---

/// The model node, tag "quenta".
class ConfigQuenta : public ConfigModel {
public:
    ConfigQuenta();

    ConfigCfgQuenta& Cfg() { return _cfg; }
    ConfigCalQuenta& Cal() { return _cal; }
    ConfigOutputQuenta& Output() { return _output; }
    ConfigCmdQuenta& Cmd() { return _cmd; }
    ConfigFactoryQuenta& Factory() { return _factory; }

    /// Sets the commands back to false.
    void ResetCommands() { _cmd.set_to_default(); }
    /// Whether cfg, factory or one of the reported texts has changed; cal and output never count.
    bool IsConfigChanged() const;

    /// The generic dialogs' labels. Many keys are shared with the other models' maps and name no
    /// node here; `adc_ch1_pullup` misses the tag `ch1_pullup`, which shows under its own name.
    static const std::map<std::string, std::string>& Labels();

private:
    ConfigCfgQuenta _cfg;
    ConfigCalQuenta _cal;
    ConfigOutputQuenta _output;
    ConfigCmdQuenta _cmd;
    ConfigFactoryQuenta _factory;
};

/// The Quenta document, root `arvex`.
class DocQuenta : public ListenedDocument<ConfigQuenta> {
};
