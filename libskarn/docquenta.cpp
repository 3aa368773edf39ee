#include "libskarn/docquenta.h"

#include <vector>

// --- cfg ---

ConfigCfgValve::ConfigCfgValve(const std::string& name) : ConfigurableComposite(name)
{
    AttachUnitsAttribute(_percent, "%");
    add(_percent);
}

ConfigCfgFlow::ConfigCfgFlow(const std::string& name) : ConfigurableComposite(name)
{
    for (ConfigurableFloat* percent : {&_pump_percent, &_humidity_pressure_percent, &_pump_pressure_percent}) {
        AttachUnitsAttribute(*percent, "%");
        add(*percent);
    }
}

ConfigCfgScrubQuenta::ConfigCfgScrubQuenta(const std::string& name) : ConfigurableComposite(name)
{
    add(_co2_scrub);
}

ConfigCfgInjector::ConfigCfgInjector(const std::string& name) : ConfigurableComposite(name)
{
    AttachUnitsAttribute(_co2_injector_percent, "%");
    add(_co2_injector_percent);
    add(_co2_injector_calibrate);
}

ConfigCfgDacs::ConfigCfgDacs() : ConfigurableComposite("dacs")
{
    for (ConfigurableFloat* dac : {&_dac1, &_dac2, &_dac3, &_dac4}) {
        AttachUnitsAttribute(*dac, "V");
        add(*dac);
    }
}

namespace {

const std::vector<std::string>& gpio_pin_options()
{
    static const std::vector<std::string> options{"input", "low", "high"};
    return options;
}

}  // namespace

ConfigCfgGpioPin::ConfigCfgGpioPin(const std::string& name)
    : ConfigurableMultipleChoice(name, gpio_pin_options(), 0)
{
}

ConfigCfgGpio::ConfigCfgGpio()
    : ConfigurableComposite("gpio"),
      _io{{ConfigCfgGpioPin("io1"), ConfigCfgGpioPin("io2"), ConfigCfgGpioPin("io3"), ConfigCfgGpioPin("io4"),
           ConfigCfgGpioPin("io5"), ConfigCfgGpioPin("io6"), ConfigCfgGpioPin("io7"), ConfigCfgGpioPin("io8")}}
{
    add(_excitation_5v);
    add(_power_12v);
    add(_power_5v);
    add(_ch1_pullup);
    for (ConfigCfgGpioPin& pin : _io)
        add(pin);
}

ConfigCfgQuenta::ConfigCfgQuenta() : ConfigurableComposite("cfg")
{
    add(_head);
    add(_lightsource);
    add(_clock);
    add(_network);
    add(_humidifier);
    add(_desiccant);
    add(_flow);
    add(_scrub);
    add(_injector);
    add(_dacs);
    add(_gpio);
}

// --- cal, output, cmd ---

ConfigCalQuenta::ConfigCalQuenta() : ConfigurableComposite("cal")
{
    add(_zero);
}

ConfigOutputQuenta::ConfigOutputQuenta() : ConfigurableComposite("output")
{
    add(_waveforms);
    add(_status);
    add(_dataclock);
    add(_datatest);
    add(_lightsource);
}

ConfigCmdQuenta::ConfigCmdQuenta() : ConfigurableComposite("cmd")
{
    add(_reboot);
    add(_connectlightsource);
    add(_disconnectlightsource);
}

// --- factory ---

ConfigFactoryPumpSpeed::ConfigFactoryPumpSpeed(const std::string& name, float percent, float pressure_percent)
    : ConfigurableComposite(name), _percent("percent", percent, 0, 100, false),
      _pressure_percent("pressure_percent", pressure_percent, 0, 100, false)
{
    add(_percent);
    add(_pressure_percent);
}

ConfigFactoryPump::ConfigFactoryPump() : ConfigurableComposite("pump")
{
    add(_high);
    add(_medium);
    add(_low);
    add(_minimum);
}

ConfigFactoryValveMargins::ConfigFactoryValveMargins(const std::string& name) : ConfigurableComposite(name)
{
    add(_low);
    add(_high);
    add(_max);
}

ConfigFactoryQuenta::ConfigFactoryQuenta() : ConfigurableComposite("factory")
{
    add(_serialnumber);
    add(_pump);
    add(_lightsource);
    add(_humidifier);
    add(_desiccant);
}

// --- the model ---

ConfigQuenta::ConfigQuenta() : ConfigModel("quenta")
{
    _add_opening_nodes(_factory.Serialnumber());
    add(_cfg);
    add(_cal);
    add(_output);
    add(_cmd);
    add(_factory);
    _add_closing_nodes();
}

bool ConfigQuenta::IsConfigChanged() const
{
    if (!has_changed())
        return false;
    for (const char* tag : {"cfg", "factory", "ver", "name", "serialnumber", "ipaddress"})
        if (lookup(tag)->has_changed())
            return true;
    return false;
}

const std::map<std::string, std::string>& ConfigQuenta::Labels()
{
    static const std::map<std::string, std::string> labels{
        {"serialnumber", "Serial Number"},
        {"cmd", ":EXCLUDE:"},
        // cfg
        {"head", "Dravik Head Hostname"},
        {"lightsource", "Light Source"},
        {"clock", ":EXCLUDE:"},
        {"network", "Network"},
        {"humidifier", "Humidifier"},
        {"desiccant", "Desiccant"},
        {"flow", "Flow"},
        {"scrub", "Scrub"},
        {"injector", "Injector"},
        {"dacs", "DACs"},
        {"gpio", "GPIO"},
        {"percent", "Percent"},
        {"pump_percent", "Pump Percent"},
        {"humidity_pressure_percent", "Humidity Pressure Percent"},
        {"pump_pressure_percent", "Pump Pressure Percent"},
        {"co2_scrub", "CO2 Scrub"},
        {"co2_injector_percent", "CO2 Injector Percent"},
        {"co2_injector_calibrate", "CO2 Injector Calibrate Mode"},
        {"dac1", "DAC1"},
        {"dac2", "DAC2"},
        {"dac3", "DAC3"},
        {"dac4", "DAC4"},
        {"excitation_5v", "Excitation 5V"},
        {"power_12v", "Power 12V"},
        {"power_5v", "Power 5V"},
        {"adc_ch1_pullup", "ADC CH1 Pullup"},
        {"io1", "IO1"},
        {"io2", "IO2"},
        {"io3", "IO3"},
        {"io4", "IO4"},
        {"io5", "IO5"},
        {"io6", "IO6"},
        {"io7", "IO7"},
        {"io8", "IO8"},
        // cfg/lightsource
        {"control", "Control"},
        {"Q_setpoint", "Q setpoint"},
        {"D_percent", "Dx percent"},
        {"color_mix", "Color mix"},
        {"transmittance", "Transmittance"},
        // factory; the pump speeds show only through their paths, as the pump itself is excluded
        {"pump", ":EXCLUDE:"},
        {"pump/high", "Pump - High"},
        {"pump/medium", "Pump - Medium"},
        {"pump/low", "Pump - Low"},
        {"pump/minimum", "Pump - Minimum"},
        {"pressure_percent", "Pressure Percent"},
        // factory/lightsource; u1 and u2 have no label here
        {"id", "ID"},
        {"sn", "SN"},
        {"f", "Fx"},
        {"u0", "ux0"},
        {"kp", "Kp"},
        {"ti", "Ti"},
        {"rate", "Rate"},
        // Keys of the other models' maps that name no node in this tree.
        {"match", ":EXCLUDE:"},
        {"caldate", "Cal Date"},
        {"setpoint", "Set Point"},
        {"quantum", "Quantum"},
        {"quantumsensor", "Quantum Sensor"},
        {"mult", "Multiplier"},
        {"dark", "Dark"},
        {"flash", "Flash"},
        {"flash/mpf", "Flash - Multi Phase"},
        {"flash/rect", "Flash - Rectangular"},
        {"measure", "Measure"},
        {"outrate", "Output Rate"},
        {"modrate", "Modulation Rate"},
        {"duration", "Duration"},
        {"before", "Before"},
        {"after", "After"},
        {"Q_farred_setpoint", "Far-Red Setpoint (Qd)"},
        {"Q_red_setpoint", "Red Actinic Setpoint (Qr)"},
        {"Q_blue_setpoint", "Blue Actinic Setpoint (Qb)"},
        {"D_farred_percent", "Far-Red Percent (Dd)"},
        {"D_red_percent", "Red Actinic Percent (Dr)"},
        {"D_blue_percent", "Blue Actinic Percent (Db)"},
        {"blue_action", "Blue Action"},
        {"phase1", "Phase 1"},
        {"phase2", "Phase 2"},
        {"phase3", "Phase 3"},
        {"ramp", "Red Actinic Ramp (R)"},
        {"red_mix", "Red Actinic Mix (Mr)"},
        {"blue_mix", "Blue Actinic Mix (Mb)"},
        {"farred_mix", "Far-Red Mix (Md)"},
        {"intensity", "Intensity"},
        {"co2_percent", "CO2 Percent"},
        {"humidity_percent", "Humidity Percent"},
        {"highres", "High Resolution"},
        {"stepvalvemotor", "Step Valve Motor"},
        {"rhsensor", "RH Sensor"},
        {"newmanifold", "New Manifold"},
    };
    return labels;
}
