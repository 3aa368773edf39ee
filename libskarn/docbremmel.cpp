#include "libskarn/docbremmel.h"

#include <vector>

ConfigOutputBremmel::ConfigOutputBremmel() : ConfigurableComposite("output")
{
    add(_status);
    add(_dataclock);
}

namespace {

const std::vector<std::string>& gps_type_options()
{
    static const std::vector<std::string> options{"Hemisphere", "Garmin"};
    return options;
}

}  // namespace

ConfigCfgGPSType::ConfigCfgGPSType() : ConfigurableMultipleChoice("gpstype", gps_type_options(), 0) {}

ConfigCfgBremmel::ConfigCfgBremmel() : ConfigurableComposite("cfg")
{
    add(_head);
    add(_sonicbaud);
    add(_gpsbaud);
    add(_gpstype);
    add(_clock);
    add(_network);
}

ConfigCmdBremmel::ConfigCmdBremmel() : ConfigurableComposite("cmd")
{
    add(_logusbstart);
    add(_logusbstop);
    add(_ejectusb);
    add(_reboot);
}

ConfigFactoryBremmel::ConfigFactoryBremmel() : ConfigurableComposite("factory")
{
    add(_serialnumber);
}

ConfigBremmel::ConfigBremmel() : ConfigModel("bremmel")
{
    _add_opening_nodes(_factory.Serialnumber());
    add(_output);
    add(_cfg);
    add(_cmd);
    add(_factory);
    _add_closing_nodes();
}

bool ConfigBremmel::IsConfigChanged() const
{
    if (!has_changed())
        return false;
    for (const char* tag : {"output", "cfg", "ver", "name", "serialnumber", "ipaddress"})
        if (lookup(tag)->has_changed())
            return true;
    return false;
}

const std::map<std::string, std::string>& ConfigBremmel::Labels()
{
    static const std::map<std::string, std::string> labels{
        {"serialnumber", "Serial Number"},
        {"cmd", ":EXCLUDE:"},
        {"clock", ":EXCLUDE:"},
        {"network", "Network"},
        // The logger's map is the head's: these keys name nothing in this tree.
        {"match", ":EXCLUDE:"},
        {"chamber_p", "Chamber Pressure"},
        {"chopper", "Chopper Motor"},
        {"flow", "Flow"},
        {"flowmeter", "Flow Meter"},
        {"heatx", "Leaf Heat Exchanger"},
        {"inlet_p", "Inlet Pressure"},
        {"irga", "IRGA"},
        {"pressure", "Pressure"},
        {"chopper_gain", "Chopper Gain"},
        {"source_a", "Source A"},
        {"source_b", "Source B"},
        {"kp", "Kp"},
        {"ki", "Ki"},
        {"ti", "Ti"},
        {"ti_slow", "Ti slow"},
        {"ti_medium", "Ti medium"},
        {"ti_fast", "Ti fast"},
        {"setpoint", "Set Point"},
        {"caldate", "Cal Date"},
        {"mixingfan", "Mixing Fan"},
        {"lightsource", "Light Source"},
        {"id", "ID"},
        {"Q_setpoint", "Q setpoint"},
        {"D_percent", "Dx percent"},
        {"color_mix", "Color mix"},
        {"control", "Control"},
        {"externalsensors", "External Sensors"},
        {"quantum", "Quantum"},
        {"rate", "Rate"},
        {"quantumsensor", "Quantum Sensor"},
        {"sn", "SN"},
        {"mult", "Multiplier"},
        {"ppfdin", "PPFD In"},
        {"ppfdout", "PPFD Out"},
        {"transmittance", "Transmittance"},
        {"co2_percent", "CO2 Percent"},
        {"pump_percent", "Pump Percent"},
        {"humidity_percent", "Humidity Percent"},
        {"pressure_percent", "Pressure Percent"},
        {"chopper_temp", "Chopper Temp"},
        {"chopper_motor", "Chopper Motor"},
        {"f", "Fx"},
        {"u", "ux"},
        {"avgtime", "Avg Time"},
    };
    return labels;
}
