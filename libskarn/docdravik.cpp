#include "libskarn/docdravik.h"

#include <limits>

namespace {

constexpr float float_max = std::numeric_limits<float>::max();
// The floor of every factory controller's integral time but the light source's.
constexpr float ti_min = 0.00104167f;

const std::vector<std::string>& cell_options()
{
    static const std::vector<std::string> options{"reference", "sample"};
    return options;
}

const std::vector<std::string>& control_mode_h2o_options()
{
    static const std::vector<std::string> options{"off", "percent", "setpoint", "setpoint-humidifier-percent"};
    return options;
}

const std::vector<std::string>& pump_speed_options()
{
    static const std::vector<std::string> options{"auto", "high", "medium", "low", "minimum", "off", "manual"};
    return options;
}

const std::vector<std::string>& scrub_mode_options()
{
    static const std::vector<std::string> options{"auto", "on", "off", "manual"};
    return options;
}

const std::vector<std::string>& heatx_control_options()
{
    static const std::vector<std::string> options{"off", "on", "chamber", "leaf", "leafavg"};
    return options;
}

/// Adds each of `children` to `parent` in order.
void add_all(ConfigurableComposite& parent, std::initializer_list<Configurable*> children)
{
    for (Configurable* child : children)
        parent.add(*child);
}

}  // namespace

// --- output ---

const std::vector<std::string>& ConfigOutputDravik::_rate_texts()
{
    static const std::vector<std::string> texts{"0", "1", "2", "5", "10"};
    return texts;
}

const std::vector<int>& ConfigOutputDravik::_rate_hz()
{
    static const std::vector<int> hz{0, 1, 2, 5, 10};
    return hz;
}

ConfigOutputDravik::ConfigOutputDravik() : ConfigurableComposite("output")
{
    AttachUnitsAttribute(_rate, "Hz");
    AttachUnitsAttribute(_avgtime, "secs");
    add_all(*this, {&_rate, &_avgtime, &_waveforms, &_status, &_dataclock, &_datatest, &_lightsource});
}

// --- cfg ---

ConfigCell::ConfigCell() : ConfigurableMultipleChoice("cell", cell_options(), 0) {}

ConfigControlModeH2O::ConfigControlModeH2O() : ConfigurableMultipleChoice("control", control_mode_h2o_options(), 0)
{
}

ConfigControlAir::ConfigControlAir(const std::string& name, float percent_min, float percent_max,
                                   float setpoint_max, const char* units, bool with_cell)
    : ConfigurableComposite(name), _setpoint("setpoint", 0, 0, setpoint_max, false),
      _percent("percent", 0, percent_min, percent_max, false)
{
    add(_control);
    if (with_cell)
        add(_cell);
    AttachUnitsAttribute(_setpoint, units);
    add(_setpoint);
    AttachUnitsAttribute(_percent, "%");
    add(_percent);
}

ConfigControlAirH2O::ConfigControlAirH2O(const std::string& name, float percent_min, float percent_max,
                                         float setpoint_max, const char* units)
    : ConfigurableComposite(name), _setpoint("setpoint", 0, 0, setpoint_max, false),
      _desiccant_percent("desiccant_percent", 0, percent_min, percent_max, false),
      _humidifier_percent("humidifier_percent", 0, percent_min, percent_max, false)
{
    add(_control);
    add(_cell);
    AttachUnitsAttribute(_setpoint, units);
    AttachUnitsAttribute(_desiccant_percent, "%");
    AttachUnitsAttribute(_humidifier_percent, "%");
    add_all(*this, {&_setpoint, &_desiccant_percent, &_humidifier_percent});
}

ConfigConstantsDravik::ConfigConstantsDravik() : ConfigurableComposite("constants")
{
    AttachUnitsAttribute(_S, "cm²");
    add_all(*this, {&_S, &_K, &_gbw});
}

ConfigCfgPumpSpeed::ConfigCfgPumpSpeed() : ConfigurableMultipleChoice("speed", pump_speed_options(), 0) {}

ConfigCfgPump::ConfigCfgPump() : ConfigurableComposite("pump") { add(_speed); }

ConfigCfgScrubMode::ConfigCfgScrubMode() : ConfigurableMultipleChoice("mode", scrub_mode_options(), 0) {}

ConfigCfgScrub::ConfigCfgScrub() : ConfigurableComposite("scrub") { add(_mode); }

ConfigMatch::ConfigMatch() : ConfigurableComposite("match")
{
    add_all(*this, {&_percent, &_percentr, &_percents, &_co2_adj, &_h2o_adj});
}

ConfigCfgHeatxControl::ConfigCfgHeatxControl() : ConfigurableMultipleChoice("control", heatx_control_options(), 0)
{
}

ConfigCfgHeatx::ConfigCfgHeatx() : ConfigurableComposite("heatx")
{
    add(_control);
    AttachUnitsAttribute(_setpoint, "C");
    add(_setpoint);
}

ConfigCfgPPFD::ConfigCfgPPFD(const std::string& name) : ConfigurableComposite(name)
{
    add(_sn);
    AttachUnitsAttribute(_mult, "µmol/m²/s/µA");
    add(_mult);
}

ConfigCfgAuxPower::ConfigCfgAuxPower() : ConfigurableComposite("auxpower")
{
    AttachUnitsAttribute(_volts, "V");
    add(_volts);
}

ConfigCfgDravik::ConfigCfgDravik()
    : ConfigurableComposite("cfg"), _co2("co2", 0, 100, 3000, "µmol/mol", true),
      _h2o("h2o", -30, 130, 100, "mmol/mol"), _flow("flow", -100, 100, 3000, "µmol/s"),
      _chamber_p("chamber_p", -100, 100, 1, "kPa"), _mixingfan("mixingfan", 0, 100, 20000, "RPM")
{
    add_all(*this, {&_constants, &_co2, &_h2o, &_flow, &_chamber_p, &_pump, &_scrub, &_match, &_heatx,
                    &_mixingfan, &_ppfdin, &_ppfdout, &_lightsource, &_auxpower, &_clock, &_network});
}

// --- cal ---

ConfigCalDravik::Channel::Channel(const std::string& ch)
    : zero(ch + "zero", 1), span1(ch + "span1", 1), span2(ch + "span2", 0), span2a(ch + "span2a", 0),
      span2b(ch + "span2b", 0), spanconc1(ch + "spanconc1", 0), spanconc2(ch + "spanconc2", 0)
{
}

ConfigCalDravik::ConfigCalDravik() : ConfigurableComposite("cal")
{
    AttachUnitsAttribute(_oxygen, "%");
    add(_oxygen);
    for (Channel* ch : {&_co2a, &_co2b, &_h2oa, &_h2ob})
        add_all(*this, {&ch->zero, &ch->span1, &ch->span2, &ch->span2a, &ch->span2b, &ch->spanconc1,
                        &ch->spanconc2});
    AttachUnitsAttribute(_tazero, "C");
    AttachUnitsAttribute(_tbzero, "C");
    add_all(*this, {&_tazero, &_tbzero, &_flowmeterzero, &_flowazero, &_flowbzero, &_chamberpressurezero,
                    &_ssa_ref, &_ssb_ref});
}

using Record = ConfigCalRecordDravik;
const std::array<ConfigurableFloat Record::*, 21> Record::_values{
    &Record::_oxygen,    &Record::_co2azero,  &Record::_co2aspan1, &Record::_co2aspan2,     &Record::_co2bzero,
    &Record::_co2bspan1, &Record::_co2bspan2, &Record::_h2oazero,  &Record::_h2oaspan1,     &Record::_h2oaspan2,
    &Record::_h2obzero,  &Record::_h2obspan1, &Record::_h2obspan2, &Record::_tazero,        &Record::_tbzero,
    &Record::_flowmeterzero, &Record::_flowazero, &Record::_flowbzero, &Record::_chamberpressurezero,
    &Record::_ssa_ref,   &Record::_ssb_ref};

ConfigCalRecordDravik::ConfigCalRecordDravik(const std::string& name, const std::string& type)
    : ConfigurableComposite(name), _type("type", type)
{
    add(_time);
    add(_type);
    for (auto value : _values)
        add(this->*value);
}

ConfigCalRecordDravik::ConfigCalRecordDravik(long time, const std::string& type, float oxygen, float co2azero,
                                             float co2aspan1, float co2aspan2, float co2bzero, float co2bspan1,
                                             float co2bspan2, float h2oazero, float h2oaspan1, float h2oaspan2,
                                             float h2obzero, float h2obspan1, float h2obspan2, float tazero,
                                             float tbzero, float flowmeterzero, float flowazero, float flowbzero,
                                             float chamberpressurezero, float ssa_ref, float ssb_ref)
    : ConfigCalRecordDravik("record", type)
{
    _time.set(time);
    const std::array<float, 21> values{oxygen,   co2azero,  co2aspan1, co2aspan2,     co2bzero,  co2bspan1,
                                       co2bspan2, h2oazero, h2oaspan1, h2oaspan2,     h2obzero,  h2obspan1,
                                       h2obspan2, tazero,   tbzero,    flowmeterzero, flowazero, flowbzero,
                                       chamberpressurezero, ssa_ref, ssb_ref};
    for (size_t i = 0; i < _values.size(); ++i)
        (this->*_values[i]).set(values[i]);
}

ConfigCalRecordDravik::ConfigCalRecordDravik(const ConfigCalRecordDravik& other)
    : ConfigCalRecordDravik(other.name())
{
    *this = other;
}

ConfigCalRecordDravik& ConfigCalRecordDravik::operator=(const ConfigCalRecordDravik& other)
{
    if (this == &other)
        return *this;
    _time.set(other._time.get());
    _time.set_flags(other._time.flags());
    _type.set(other._type.get());
    _type.set_flags(other._type.flags());
    for (auto value : _values) {
        (this->*value).set((other.*value).get());
        (this->*value).set_flags((other.*value).flags());
    }
    set_flags(other.flags());
    return *this;
}

// --- cmd ---

ConfigCmdDravik::ConfigCmdDravik() : ConfigurableComposite("cmd")
{
    add_all(*this, {&_poll,          &_co2azero,  &_co2bzero,  &_h2oazero,           &_h2obzero,
                    &_co2aspan1,     &_co2aspan2, &_co2bspan1, &_co2bspan2,          &_h2oaspan1,
                    &_h2oaspan2,     &_h2obspan1, &_h2obspan2, &_tazero,             &_tbzero,
                    &_flowmeterzero, &_flowazero, &_flowbzero, &_chamberpressurezero, &_ssa_reset,
                    &_ssb_reset,     &_reboot,    &_polltest,  &_connectlightsource, &_disconnectlightsource,
                    &_irgapoweroff,  &_poweroff,  &_poweron});
}

// --- factory ---

ConfigFactoryPIControl::ConfigFactoryPIControl(const std::string& name, float kp, float ti)
    : ConfigurableComposite(name), _kp("kp", kp, 0, float_max, false), _ti("ti", ti, ti_min, float_max, false)
{
    add(_kp);
    add(_ti);
}

ConfigFactoryHeatxControl::ConfigFactoryHeatxControl(const std::string& name, float kp, float ti)
    : ConfigFactoryPIControl(name, kp, ti)
{
    add(_gamma_tcm);
}

ConfigFactoryPIDControl::ConfigFactoryPIDControl(const std::string& name, float kp, float ti, float td)
    : ConfigurableComposite(name), _kp("kp", kp, 0, float_max, false), _ti("ti", ti, ti_min, float_max, false),
      _td("td", td, 0, float_max, false)
{
    add_all(*this, {&_kp, &_ti, &_td});
}

ConfigFactoryPITempControl::ConfigFactoryPITempControl(const std::string& name, bool on, float setpoint, float kp,
                                                       float ti)
    : ConfigurableComposite(name), _control("control", on), _setpoint("setpoint", setpoint),
      _kp("kp", kp, 0, float_max, false), _ti("ti", ti, ti_min, float_max, false)
{
    AttachUnitsAttribute(_setpoint, "C");
    add_all(*this, {&_control, &_setpoint, &_kp, &_ti});
}

ConfigFactoryChopperMotor::ConfigFactoryChopperMotor(const std::string& name) : ConfigurableComposite(name)
{
    add_all(*this, {&_kp, &_ki, &_kd});
}

ConfigFactoryChamber::ConfigFactoryChamber() : ConfigurableComposite("chamber")
{
    AttachUnitsAttribute(_ppfdcal, "µmol/m²/s/µA");
    AttachUnitsAttribute(_vol, "cm³");
    add_all(*this, {&_id, &_sn, &_rev, &_ppfdcal, &_vol});
}

ConfigFactoryBandBroadening::ConfigFactoryBandBroadening() : ConfigurableComposite("bb")
{
    add_all(*this, {&_ch, &_cx, &_hx0, &_hx1});
}

ConfigFactoryIrgaCO2::ConfigFactoryIrgaCO2() : ConfigurableComposite("co2")
{
    add_all(*this, {&_a1, &_a2, &_a3, &_a4, &_a5, &_z, &_s1, &_s2, &_s3});
}

ConfigFactoryIrgaH2O::ConfigFactoryIrgaH2O() : ConfigurableComposite("h2o")
{
    add_all(*this, {&_a1, &_a2, &_a3, &_z, &_s1, &_s2, &_s3});
}

ConfigFactoryIrgaFlow::ConfigFactoryIrgaFlow() : ConfigurableComposite("flow")
{
    add_all(*this, {&_a1, &_a2, &_a3, &_a4});
}

ConfigFactoryIrga::ConfigFactoryIrga(const std::string& name) : ConfigurableComposite(name)
{
    add_all(*this, {&_Xhc, &_Xch, &_co2, &_h2o, &_flow});
}

ConfigFactoryPressure::ConfigFactoryPressure(const std::string& name) : ConfigurableComposite(name)
{
    add(_zero);
    add(_span);
}

ConfigFactoryFlowMeter::ConfigFactoryFlowMeter(const std::string& name) : ConfigurableComposite(name)
{
    add_all(*this, {&_a, &_b, &_c, &_d, &_e, &_f, &_g});
}

ConfigFactoryDravik::ConfigFactoryDravik() : ConfigurableComposite("factory")
{
    add_all(*this, {&_serialnumber, &_caldate, &_cal, &_heatx, &_chopper_temp, &_chopper_motor, &_flow,
                    &_chamber, &_chamber_p, &_mixingfan, &_source_a, &_source_b, &_bb, &_irga_a, &_irga_b,
                    &_pressure, &_flowmeter, &_co2r, &_co2s, &_h2or, &_h2os, &_h2oc, &_lightsource});
}

// --- the model ---

ConfigDravik::ConfigDravik() : ConfigModel("dravik")
{
    _add_opening_nodes(_factory.Serialnumber(), true);
    add_all(*this, {&_output, &_cfg, &_run, &_cal, &_history, &_cmd, &_factory});
    _add_closing_nodes();
}

bool ConfigDravik::IsConfigChanged() const
{
    if (!has_changed())
        return false;
    for (const char* tag :
         {"output", "cfg", "cal", "history", "factory", "ver", "name", "serialnumber", "ipaddress"})
        if (lookup(tag)->has_changed())
            return true;
    return false;
}

const std::map<std::string, std::string>& ConfigDravik::Labels()
{
    static const std::map<std::string, std::string> labels{
        // The model node, output and cfg.
        {"serialnumber", "Serial Number"},
        {"cal", "Calibration"},
        {"cmd", ":EXCLUDE:"},
        {"rate", "Rate"},
        {"avgtime", "Avg Time"},
        {"lightsource", "Light Source"},
        {"constants", "Constants"},
        {"co2", "CO2"},
        {"h2o", "H2O"},
        {"flow", "Flow"},
        {"chamber_p", "Chamber Pressure"},
        {"pump", "Pump"},
        {"scrub", "Scrub"},
        {"match", "Match"},
        {"heatx", "Leaf Heat Exchanger"},
        {"mixingfan", "Mixing Fan"},
        {"ppfdin", "PPFD In"},
        {"ppfdout", "PPFD Out"},
        {"auxpower", "Aux Power"},
        {"clock", ":EXCLUDE:"},
        {"network", "Network"},
        {"control", "Control"},
        {"cell", "Cell"},
        {"setpoint", "Set Point"},
        {"percent", "Percent"},
        {"desiccant_percent", "Desiccant Percent"},
        {"humidifier_percent", "Humidifier Percent"},
        {"speed", "Speed"},
        {"mode", "Mode"},
        {"percentr", "Percent R"},
        {"percents", "Percent S"},
        {"co2_adj", "CO2 Adjust"},
        {"h2o_adj", "H2O Adjust"},
        {"sn", "SN"},
        {"mult", "Multiplier"},
        {"volts", "Volts"},
        {"Q_setpoint", "Q setpoint"},
        {"D_percent", "Dx percent"},
        {"color_mix", "Color mix"},
        {"transmittance", "Transmittance"},
        // Calibration, and the records that show it.
        {"type", "Type"},
        {"oxygen", "Oxygen"},
        {"co2azero", "CO2A Zero"},
        {"co2aspan1", "CO2A Span1"},
        {"co2aspan2", "CO2A Span2"},
        {"co2bzero", "CO2B Zero"},
        {"co2bspan1", "CO2B Span1"},
        {"co2bspan2", "CO2B Span2"},
        {"h2oazero", "H2OA Zero"},
        {"h2oaspan1", "H2OA Span1"},
        {"h2oaspan2", "H2OA Span2"},
        {"h2obzero", "H2OB Zero"},
        {"h2obspan1", "H2OB Span1"},
        {"h2obspan2", "H2OB Span2"},
        {"tazero", "TCell A Zero"},
        {"tbzero", "TCell B Zero"},
        {"flowmeterzero", "Flow Meter Zero"},
        {"flowazero", "Flow A Zero"},
        {"flowbzero", "Flow B Zero"},
        {"chamberpressurezero", "Chamber Pressure Zero"},
        {"ssa_ref", "SS A Ref"},
        {"ssb_ref", "SS B Ref"},
        // Factory.
        {"caldate", "Cal Date"},
        {"chopper_temp", "Chopper Temperature"},
        {"chopper_motor", "Chopper Motor"},
        {"chamber", "Chamber"},
        {"source_a", "Source A"},
        {"source_b", "Source B"},
        {"bb", "Band Broadening"},
        {"irga_a", "IRGA A"},
        {"irga_b", "IRGA B"},
        {"pressure", "Pressure Sensor"},
        {"flowmeter", "Flow Meter"},
        {"co2r", "CO2R"},
        {"co2s", "CO2S"},
        {"h2or", "H2OR"},
        {"h2os", "H2OS"},
        {"h2oc", "H2O Console"},
        {"kp", "Kp"},
        {"ti", "Ti"},
        {"td", "Td"},
        {"ki", "Ki"},
        {"gamma_tcm", "Gamma TCM"},
        {"id", "ID"},
        {"rev", "Revision"},
        {"ppfdcal", "PPFD Cal"},
        {"vol", "Volume"},
        {"irga_a/co2", "IRGA A - CO2"},
        {"irga_b/co2", "IRGA B - CO2"},
        {"irga_a/h2o", "IRGA A - H2O"},
        {"irga_b/h2o", "IRGA B - H2O"},
        {"irga_a/flow", "IRGA A - Flow"},
        {"irga_b/flow", "IRGA B - Flow"},
        {"zero", "Zero"},
        {"span", "Span"},
        {"f", "Fx"},
        {"u0", "ux0"},
        {"u1", "ux1"},
        {"u2", "ux2"},
        // Keys that name no node of this tree.
        {"leaf", "Leaf"},
        {"chopper", "Chopper Motor"},
        {"inlet_p", "Inlet Pressure"},
        {"irga", "IRGA"},
        {"irga/co2", "IRGA - CO2"},
        {"irga/h2o", "IRGA - H2O"},
        {"chopper_gain", "Chopper Gain"},
        {"ti_slow", "Ti slow"},
        {"ti_medium", "Ti medium"},
        {"ti_fast", "Ti fast"},
        {"externalsensors", "External Sensors"},
        {"quantum", "Quantum"},
        {"quantumsensor", "Quantum Sensor"},
        {"co2_percent", "CO2 Percent"},
        {"pump_percent", "Pump Percent"},
        {"humidity_percent", "Humidity Percent"},
        {"pressure_percent", "Pressure Percent"},
        {"u", "ux"},
        {"manual_percent", "Manual Percent"},
        {"manual_pressure_percent", "Manual Pressure Percent"},
        {"dac1", "DAC1"},
        {"dac2", "DAC2"},
        {"dac3", "DAC3"},
        {"dac4", "DAC4"},
        {"dacs", "DACs"},
        {"stability", "Stability"},
        {"co2s_slope_thresh", "CO2S Slope Threshold"},
        {"h2os_slope_thresh", "H2OS Slope Threshold"},
        {"co2s_stdev_thresh", "CO2S Stdev Threshold"},
        {"h2os_stdev_thresh", "H2OS Stdev Threshold"},
        {"inlet_temp", "Has IRGA Inlet Temp Sensors"},
    };
    return labels;
}
