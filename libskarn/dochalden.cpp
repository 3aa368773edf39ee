#include "libskarn/dochalden.h"

#include <vector>

namespace {

// The units attribute goes on before the child is added.
void add_with_units(ConfigurableComposite& section, Configurable& child, const char* units)
{
    AttachUnitsAttribute(child, units);
    section.add(child);
}

const std::vector<std::string>& mod_rate_options()
{
    static const std::vector<std::string> options{
        "1", "2", "5", "10", "20", "50", "100", "200", "500", "1000", "2000", "5000",
        "10000", "20000", "50000", "125000", "250000"};
    return options;
}

const std::vector<std::string>& light_source_mode_options()
{
    static const std::vector<std::string> options{"off", "percent", "setpoint", "test"};
    return options;
}

const std::vector<std::string>& raw_capture_start_options()
{
    static const std::vector<std::string> options{"now", "measure", "flash", "dark"};
    return options;
}

const std::vector<std::string>& fan_mode_options()
{
    static const std::vector<std::string> options{"off", "auto", "percent"};
    return options;
}

}  // namespace

// --- output ---

ConfigOutputHalden::ConfigOutputHalden() : ConfigurableComposite("output")
{
    add(_waveforms);
    add(_status);
    add(_dataclock);
    add(_datatest);
    add(_datarawcapture);
}

// --- cfg ---

ConfigCfgRectangularFlash::ConfigCfgRectangularFlash() : ConfigCfgRectangularFlash("rectflash", true) {}

ConfigCfgRectangularFlash::ConfigCfgRectangularFlash(const std::string& name, bool with_outrate)
    : ConfigurableComposite(name)
{
    if (with_outrate)
        add_with_units(*this, _outrate, "Hz");
    add_with_units(*this, _margin, "points");
    add_with_units(*this, _duration, "ms");
    add_with_units(*this, _q_red_setpoint, "µmol/m²/s");
    add_with_units(*this, _d_red_percent, "%");
}

ConfigCfgInductionFlash::ConfigCfgInductionFlash() : ConfigCfgRectangularFlash("inductionflash", false) {}

ConfigCfgMultiPhaseFlash::ConfigCfgMultiPhaseFlash() : ConfigurableComposite("multiphaseflash")
{
    add_with_units(*this, _outrate, "Hz");
    add_with_units(*this, _margin, "points");
    add_with_units(*this, _phase1_duration, "ms");
    add_with_units(*this, _phase2_duration, "ms");
    add_with_units(*this, _phase3_duration, "ms");
    add_with_units(*this, _q_red_setpoint, "µmol/m²/s");
    add_with_units(*this, _d_red_percent, "%");
    add_with_units(*this, _ramp, "%");
}

ConfigCfgDarkPulse::ConfigCfgDarkPulse() : ConfigurableComposite("darkpulse")
{
    add_with_units(*this, _outrate, "Hz");
    add_with_units(*this, _duration, "secs");
    add_with_units(*this, _margin, "points");
    add_with_units(*this, _before, "secs");
    add_with_units(*this, _after, "secs");
    add_with_units(*this, _q_farred_setpoint, "µmol/m²/s");
    add_with_units(*this, _d_farred_percent, "%");
}

ConfigModRate::ConfigModRate(const std::string& name) : ConfigurableMultipleChoice(name, mod_rate_options(), 0) {}

ConfigCfgMeasure::ConfigCfgMeasure() : ConfigurableComposite("measure")
{
    add(_control);
    add_with_units(*this, _outrate, "Hz");
    add_with_units(*this, _dark_modrate, "Hz");
    add_with_units(*this, _light_modrate, "Hz");
    add_with_units(*this, _flash_modrate, "Hz");
    add_with_units(*this, _q_modred_setpoint, "µmol/m²/s");
    add_with_units(*this, _d_modred_percent, "%");
}

ConfigLightSourceModeHalden::ConfigLightSourceModeHalden(const std::string& name, int default_index)
    : ConfigurableMultipleChoice(name, light_source_mode_options(), default_index)
{
}

ConfigLightSourceHalden::ConfigLightSourceHalden() : ConfigurableComposite("lightsource")
{
    add(_control);
    add_with_units(*this, _q_setpoint, "µmol/m²/s");
    add(_red_mix);
    add(_blue_mix);
    add(_farred_mix);
    add_with_units(*this, _d_red_percent, "%");
    add_with_units(*this, _d_blue_percent, "%");
    add_with_units(*this, _d_farred_percent, "%");
}

ConfigRawCaptureStart::ConfigRawCaptureStart() : ConfigurableMultipleChoice("when", raw_capture_start_options(), 0)
{
}

ConfigCfgRawDataCapture::ConfigCfgRawDataCapture() : ConfigurableComposite("rawdatacapture")
{
    add(_when);
    add(_size);
}

ConfigFanMode::ConfigFanMode() : ConfigurableMultipleChoice("fan_mode", fan_mode_options(), 1) {}

ConfigCfgHalden::ConfigCfgHalden() : ConfigurableComposite("cfg")
{
    add(_rectflash);
    add(_multiphaseflash);
    add(_inductionflash);
    add(_lightsource);
    add(_measure);
    add(_darkpulse);
    add(_rawdatacapture);
    add(_clock);
    add(_network);
    add(_fan_mode);
    add_with_units(*this, _fan_duty, "%");
    add_with_units(*this, _fan_freq, "Hz");
}

// --- cal and history ---

ConfigCalHalden::ConfigCalHalden() : ConfigurableComposite("cal")
{
    add_with_units(*this, _dc0, "counts");
    add_with_units(*this, _pc0, "counts");
}

ConfigCalRecordHalden::ConfigCalRecordHalden(const std::string& name) : ConfigurableComposite(name)
{
    add(_time);
    add(_type);
    add(_dc0);
    add(_pc0);
}

ConfigCalRecordHalden::ConfigCalRecordHalden(const Timestamp& time, const std::string& type, int64_t dc0,
                                             int64_t pc0)
    : ConfigCalRecordHalden("record")
{
    _time.set(time);
    _type.set(type);
    _dc0.set(dc0);
    _pc0.set(pc0);
}

ConfigCalRecordHalden::ConfigCalRecordHalden(const ConfigCalRecordHalden& other)
    : ConfigCalRecordHalden(other.name())
{
    *this = other;
}

ConfigCalRecordHalden& ConfigCalRecordHalden::operator=(const ConfigCalRecordHalden& other)
{
    if (this == &other)
        return *this;
    _time.set(other._time.get());
    _type.set(other._type.get());
    _dc0.set(other._dc0.get());
    _pc0.set(other._pc0.get());
    _time.set_flags(other._time.flags());
    _type.set_flags(other._type.flags());
    _dc0.set_flags(other._dc0.flags());
    _pc0.set_flags(other._pc0.flags());
    set_flags(other.flags());
    return *this;
}

bool ConfigCalHistoryHalden::_is_same(const ConfigCalRecordHalden& a, const ConfigCalRecordHalden& b) const
{
    return a.Time().get().get() == b.Time().get().get();
}

// --- cmd ---

ConfigCmdHalden::ConfigCmdHalden() : ConfigurableComposite("cmd")
{
    for (ConfigurableBool* command : {&_rect, &_mpf, &_induction, &_dark, &_zero_dc0, &_zero_pc0, &_break, &_reset,
                                      &_reboot, &_rawcapture, &_redmodon, &_redmodoff, &_testvecton, &_testvectoff})
        add(*command);
}

// --- factory ---

ConfigFactoryCalibrationHalden::ConfigFactoryCalibrationHalden() : ConfigurableComposite("calibration")
{
    for (ConfigurableFloat* f : {&_f_red, &_f_blue, &_f_farred, &_f_modred})
        add_with_units(*this, *f, "µmol/m²/s/Pc");
    for (ConfigurableFloat* u : {&_u_red, &_u_blue, &_u_farred, &_u_modred})
        add_with_units(*this, *u, "Pc/DAC");
    for (ConfigurableFloat* zero : {&_dac_red_zero, &_dac_blue_zero, &_dac_farred_zero, &_dac_modred_zero})
        add_with_units(*this, *zero, "DAC");
}

ConfigFactoryBiasHalden::ConfigFactoryBiasHalden() : ConfigurableComposite("bias")
{
    for (ConfigurableInteger* value : {&_red_offset, &_blue_offset, &_farred_offset, &_modred_offset, &_red_bias,
                                       &_blue_bias, &_modred_bias, &_red_precharge})
        add_with_units(*this, *value, "DAC counts");
    add_with_units(*this, _red_precharge_time, "µsecs");
}

ConfigFactoryHalden::ConfigFactoryHalden() : ConfigurableComposite("factory")
{
    add(_serialnumber);
    add(_calibration);
    add(_bias);
}

// --- the model ---

ConfigHalden::ConfigHalden() : ConfigModel("halden")
{
    _add_opening_nodes(_factory.Serialnumber(), true);
    add(_output);
    add(_cfg);
    add(_cal);
    add(_history);
    add(_cmd);
    add(_factory);
    _add_closing_nodes();
}

bool ConfigHalden::IsConfigChanged() const
{
    if (!has_changed())
        return false;
    for (const char* tag : {"output", "cfg", "cal", "factory", "ver", "name", "serialnumber", "ipaddress"})
        if (lookup(tag)->has_changed())
            return true;
    return false;
}

const std::map<std::string, std::string>& ConfigHalden::Labels()
{
    static const std::map<std::string, std::string> labels{
        {"serialnumber", "Serial Number"},
        {"cmd", ":EXCLUDE:"},
        {"calibration", "Calibration"},
        // cfg
        {"rectflash", "Rectangular Flash"},
        {"multiphaseflash", "Multi Phase Flash"},
        {"inductionflash", "Induction Flash"},
        {"lightsource", "Light Source"},
        {"measure", "Measure"},
        {"darkpulse", "Dark Pulse"},
        {"rawdatacapture", ":EXCLUDE:"},
        {"clock", ":EXCLUDE:"},
        {"network", "Network"},
        {"fan_mode", "Fan Mode"},
        {"fan_duty", "Fan Duty Cycle"},
        {"fan_freq", "Fan Frequency"},
        // the flashes and the dark pulse
        {"outrate", "Output Rate"},
        {"margin", "Margin"},
        {"duration", "Duration"},
        {"phase1_duration", "Phase 1 Duration"},
        {"phase2_duration", "Phase 2 Duration"},
        {"phase3_duration", "Phase 3 Duration"},
        {"Q_red_setpoint", "Red Actinic Setpoint (Qr)"},
        {"D_red_percent", "Red Actinic Percent (Dr)"},
        {"ramp", "Red Actinic Ramp (R)"},
        {"before", "Before"},
        {"after", "After"},
        {"Q_farred_setpoint", "Far-Red Setpoint (Qd)"},
        {"D_farred_percent", "Far-Red Percent (Dd)"},
        // measure
        {"control", "Control"},
        {"dark_modrate", "Dark Modulation Rate"},
        {"light_modrate", "Light Modulation Rate"},
        {"flash_modrate", "Flash Modulation Rate"},
        {"Q_modred_setpoint", "Modulating Red Peak Setpoint (Qm_pk)"},
        {"D_modred_percent", "Modulating Red Peak Percent (Dm)"},
        // lightsource
        {"Q_setpoint", "Setpoint (Qt)"},
        {"red_mix", "Red Actinic Mix (Mr)"},
        {"blue_mix", "Blue Actinic Mix (Mb)"},
        {"farred_mix", "Far-Red Mix (Md)"},
        {"D_blue_percent", "Blue Actinic Percent (Db)"},
        // Keys of the other models' maps that name no node in this tree.
        {"match", ":EXCLUDE:"},
        {"kp", "Kp"},
        {"ti", "Ti"},
        {"setpoint", "Set Point"},
        {"caldate", "Cal Date"},
        {"id", "ID"},
        {"D_percent", "Dx percent"},
        {"color_mix", "Color mix"},
        {"quantum", "Quantum"},
        {"rate", "Rate"},
        {"quantumsensor", "Quantum Sensor"},
        {"sn", "SN"},
        {"mult", "Multiplier"},
        {"maxoutrate", "Max Output Rate"},
        {"modrate", "Modulation Rate"},
        {"Q_blue_setpoint", "Blue Actinic Setpoint (Qb)"},
        {"blue_action", "Blue Action"},
        {"intensity", "Intensity"},
    };
    return labels;
}

const std::map<std::string, std::string>& ConfigHalden::FactoryLabels()
{
    static const std::map<std::string, std::string> labels = [] {
        std::map<std::string, std::string> map = Labels();
        map.insert({
            {"bias", "Factory Bias"},
            // calibration
            {"F_red", "Red Actinic Pc Span (Fr)"},
            {"F_blue", "Blue Actinic Pc Span (Fb)"},
            {"F_farred", "Far-Red Pc Span (Fd)"},
            {"F_modred", "Red Modulating Pc Span (Fm)"},
            {"u_red", "Red Actinic DAC Span (ur)"},
            {"u_blue", "Blue Actinic DAC Span (ub)"},
            {"u_farred", "Far-Red DAC Span (ud)"},
            {"u_modred", "Red Modulating DAC Span (um)"},
            {"dac_red_zero", "Red Actinic DAC Zero (Dr0)"},
            {"dac_blue_zero", "Blue Actinic DAC Zero (Db0)"},
            {"dac_farred_zero", "Far-Red DAC Zero (Dd0)"},
            {"dac_modred_zero", "Red Modulating DAC Zero (Dm0)"},
            // bias
            {"red_offset", "Red Actinic Offset"},
            {"blue_offset", "Blue Actinic Offset"},
            {"farred_offset", "Far-Red Offset"},
            {"modred_offset", "Red Modulating Offset"},
            {"red_bias", "Red Actinic Bias"},
            {"blue_bias", "Blue Actinic Bias"},
            {"modred_bias", "Red Modulating Bias"},
            {"red_precharge", "Red Actinic Precharge"},
            {"red_precharge_time", "Red Actinic Precharge Time"},
            // test buttons
            {"redmodon", ":BTN:Red Mod On:<arvex><halden><cmd><redmodon>true</redmodon></cmd></halden></arvex>\n"},
            {"redmodoff", ":BTN:Red Mod Off:<arvex><halden><cmd><redmodoff>true</redmodoff></cmd></halden></arvex>\n"},
            {"testvecton",
             ":BTN:Test Vect On:<arvex><halden><cmd><testvecton>true</testvecton></cmd></halden></arvex>\n"},
            {"testvectoff",
             ":BTN:Test Vect Off:<arvex><halden><cmd><testvectoff>true</testvectoff></cmd></halden></arvex>\n"},
        });
        return map;
    }();
    return labels;
}
