#pragma once
// The document of the Dravik photosynthesis head: <arvex><dravik>...</dravik></arvex>.
//
// Output selection, the settings of the two gas analysers, the leaf chamber and its controls,
// scripts, the calibration coefficients with their history, one-shot commands and the factory
// values.

#include <array>
#include <map>
#include <string>
#include <vector>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "libskarn/configcommon.h"
#include "libskarn/configscript.h"
#include "libskarn/document.h"

// --- output ---

/// Which data records the head sends, at what rate, and over how long values are averaged.
class ConfigOutputDravik : public ConfigurableComposite {
public:
    ConfigOutputDravik();

    ConfigRate& Rate() { return _rate; }
    ConfigurableFloat& Avgtime() { return _avgtime; }
    ConfigurableBool& Waveforms() { return _waveforms; }
    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }
    ConfigurableBool& Datatest() { return _datatest; }
    ConfigurableBool& Lightsource() { return _lightsource; }

private:
    static const std::vector<std::string>& _rate_texts();
    static const std::vector<int>& _rate_hz();

    ConfigRate _rate{_rate_texts(), _rate_hz(), 2};
    ConfigurableFloat _avgtime{"avgtime", 0, 0, 10, false};
    ConfigurableBool _waveforms{"waveforms", false};
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
    ConfigurableBool _datatest{"datatest", false};
    ConfigurableBool _lightsource{"lightsource", false};
};

// --- cfg ---

/// Which analyser cell a control follows, tag `cell`: "reference" or "sample".
class ConfigCell : public ConfigurableMultipleChoice {
public:
    ConfigCell();
};

/// How the humidity is controlled, tag `control`: "off", "percent", "setpoint" or
/// "setpoint-humidifier-percent".
class ConfigControlModeH2O : public ConfigurableMultipleChoice {
public:
    ConfigControlModeH2O();
};

/// One controlled quantity of the air path: off, a fixed drive in percent, or a set point. The
/// same class serves quantities of very different scale; the caller gives the ranges. `cell`
/// exists in every instance but is a child only `with_cell`; elsewhere it is skipped on the wire.
class ConfigControlAir : public ConfigurableComposite {
public:
    ConfigControlAir(const std::string& name, float percent_min, float percent_max, float setpoint_max,
                     const char* units, bool with_cell = false);

    ConfigControlMode& Control() { return _control; }
    ConfigCell& Cell() { return _cell; }
    ConfigurableFloat& Setpoint() { return _setpoint; }
    ConfigurableFloat& Percent() { return _percent; }

private:
    ConfigControlMode _control{"control", 0};
    ConfigCell _cell;
    ConfigurableFloat _setpoint;
    ConfigurableFloat _percent;
};

/// The humidity control, which drives a desiccant and a humidifier valve instead of one output.
class ConfigControlAirH2O : public ConfigurableComposite {
public:
    ConfigControlAirH2O(const std::string& name, float percent_min, float percent_max, float setpoint_max,
                        const char* units);

    ConfigControlModeH2O& Control() { return _control; }
    ConfigCell& Cell() { return _cell; }
    ConfigurableFloat& Setpoint() { return _setpoint; }
    ConfigurableFloat& Desiccant_percent() { return _desiccant_percent; }
    ConfigurableFloat& Humidifier_percent() { return _humidifier_percent; }

private:
    ConfigControlModeH2O _control;
    ConfigCell _cell;
    ConfigurableFloat _setpoint;
    ConfigurableFloat _desiccant_percent;
    ConfigurableFloat _humidifier_percent;
};

/// Leaf and chamber constants used in the gas-exchange computation, tag `constants`: leaf area,
/// stomatal ratio and boundary-layer conductance.
class ConfigConstantsDravik : public ConfigurableComposite {
public:
    ConfigConstantsDravik();

    ConfigurableFloat& S() { return _S; }
    ConfigurableFloat& K() { return _K; }
    ConfigurableFloat& Gbw() { return _gbw; }

private:
    ConfigurableFloat _S{"S", 6};
    ConfigurableFloat _K{"K", 0.5f};
    ConfigurableFloat _gbw{"gbw", 1};
};

/// Pump speed, tag `speed`: "auto", "high", "medium", "low", "minimum", "off" or "manual".
class ConfigCfgPumpSpeed : public ConfigurableMultipleChoice {
public:
    ConfigCfgPumpSpeed();
};

/// The pump, tag `pump`.
class ConfigCfgPump : public ConfigurableComposite {
public:
    ConfigCfgPump();

    ConfigCfgPumpSpeed& Speed() { return _speed; }

private:
    ConfigCfgPumpSpeed _speed;
};

/// Scrubber mode, tag `mode`: "auto", "on", "off" or "manual".
class ConfigCfgScrubMode : public ConfigurableMultipleChoice {
public:
    ConfigCfgScrubMode();
};

/// The scrubbers, tag `scrub`.
class ConfigCfgScrub : public ConfigurableComposite {
public:
    ConfigCfgScrub();

    ConfigCfgScrubMode& Mode() { return _mode; }

private:
    ConfigCfgScrubMode _mode;
};

/// Matching the two analysers on the same air, tag `match`.
class ConfigMatch : public ConfigurableComposite {
public:
    ConfigMatch();

    ConfigurableFloat& Percent() { return _percent; }
    ConfigurableFloat& Percentr() { return _percentr; }
    ConfigurableFloat& Percents() { return _percents; }
    ConfigurableFloat& Co2_adj() { return _co2_adj; }
    ConfigurableFloat& H2o_adj() { return _h2o_adj; }

private:
    ConfigurableFloat _percent{"percent", 100, -100, 100, false};
    ConfigurableFloat _percentr{"percentr", 100, -100, 100, false};
    ConfigurableFloat _percents{"percents", 100, -100, 100, false};
    ConfigurableFloat _co2_adj{"co2_adj", 0};
    ConfigurableFloat _h2o_adj{"h2o_adj", 0};
};

/// What the leaf heat exchanger follows, tag `control`: "off", "on", "chamber", "leaf" or "leafavg".
class ConfigCfgHeatxControl : public ConfigurableMultipleChoice {
public:
    ConfigCfgHeatxControl();
};

/// The leaf heat exchanger, tag `heatx`.
class ConfigCfgHeatx : public ConfigurableComposite {
public:
    ConfigCfgHeatx();

    ConfigCfgHeatxControl& Control() { return _control; }
    ConfigurableFloat& Setpoint() { return _setpoint; }

private:
    ConfigCfgHeatxControl _control;
    ConfigurableFloat _setpoint{"setpoint", 26, -10, 60, false};
};

/// A light sensor, `ppfdin` or `ppfdout`: its serial number and multiplier.
class ConfigCfgPPFD : public ConfigurableComposite {
public:
    explicit ConfigCfgPPFD(const std::string& name);

    ConfigurableString& Sn() { return _sn; }
    ConfigurableFloat& Mult() { return _mult; }

private:
    ConfigurableString _sn{"sn", ""};
    ConfigurableFloat _mult{"mult", 0};
};

/// The auxiliary power output, tag `auxpower`.
class ConfigCfgAuxPower : public ConfigurableComposite {
public:
    ConfigCfgAuxPower();

    ConfigurableFloat& Volts() { return _volts; }

private:
    ConfigurableFloat _volts{"volts", 0, 0, 19.9f, false};
};

/// The Dravik's settings, tag `cfg`.
class ConfigCfgDravik : public ConfigurableComposite {
public:
    ConfigCfgDravik();

    ConfigConstantsDravik& Constants() { return _constants; }
    ConfigControlAir& Co2() { return _co2; }
    ConfigControlAirH2O& H2o() { return _h2o; }
    ConfigControlAir& Flow() { return _flow; }
    ConfigControlAir& Chamber_p() { return _chamber_p; }
    ConfigCfgPump& Pump() { return _pump; }
    ConfigCfgScrub& Scrub() { return _scrub; }
    ConfigMatch& Match() { return _match; }
    ConfigCfgHeatx& Heatx() { return _heatx; }
    ConfigControlAir& Mixingfan() { return _mixingfan; }
    ConfigCfgPPFD& Ppfdin() { return _ppfdin; }
    ConfigCfgPPFD& Ppfdout() { return _ppfdout; }
    ConfigLightSource& Lightsource() { return _lightsource; }
    ConfigCfgAuxPower& Auxpower() { return _auxpower; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }

private:
    ConfigConstantsDravik _constants;
    ConfigControlAir _co2;
    ConfigControlAirH2O _h2o;
    ConfigControlAir _flow;
    ConfigControlAir _chamber_p;
    ConfigCfgPump _pump;
    ConfigCfgScrub _scrub;
    ConfigMatch _match;
    ConfigCfgHeatx _heatx;
    ConfigControlAir _mixingfan;
    ConfigCfgPPFD _ppfdin{"ppfdin"};
    ConfigCfgPPFD _ppfdout{"ppfdout"};
    ConfigLightSource _lightsource;
    ConfigCfgAuxPower _auxpower;
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
};

// --- cal ---

/// The calibration coefficients of the two analysers, tag `cal`; the instrument writes them. The
/// channels co2a, co2b, h2oa, h2ob each have zero, two spans, the two parts of span 2, and the
/// concentrations that go with a span command.
class ConfigCalDravik : public ConfigurableComposite {
public:
    ConfigCalDravik();

    ConfigurableFloat& Oxygen() { return _oxygen; }
    ConfigurableFloat& Co2azero() { return _co2a.zero; }
    ConfigurableFloat& Co2aspan1() { return _co2a.span1; }
    ConfigurableFloat& Co2aspan2() { return _co2a.span2; }
    ConfigurableFloat& Co2aspan2a() { return _co2a.span2a; }
    ConfigurableFloat& Co2aspan2b() { return _co2a.span2b; }
    ConfigurableFloat& Co2aspanconc1() { return _co2a.spanconc1; }
    ConfigurableFloat& Co2aspanconc2() { return _co2a.spanconc2; }
    ConfigurableFloat& Co2bzero() { return _co2b.zero; }
    ConfigurableFloat& Co2bspan1() { return _co2b.span1; }
    ConfigurableFloat& Co2bspan2() { return _co2b.span2; }
    ConfigurableFloat& Co2bspan2a() { return _co2b.span2a; }
    ConfigurableFloat& Co2bspan2b() { return _co2b.span2b; }
    ConfigurableFloat& Co2bspanconc1() { return _co2b.spanconc1; }
    ConfigurableFloat& Co2bspanconc2() { return _co2b.spanconc2; }
    ConfigurableFloat& H2oazero() { return _h2oa.zero; }
    ConfigurableFloat& H2oaspan1() { return _h2oa.span1; }
    ConfigurableFloat& H2oaspan2() { return _h2oa.span2; }
    ConfigurableFloat& H2oaspan2a() { return _h2oa.span2a; }
    ConfigurableFloat& H2oaspan2b() { return _h2oa.span2b; }
    ConfigurableFloat& H2oaspanconc1() { return _h2oa.spanconc1; }
    ConfigurableFloat& H2oaspanconc2() { return _h2oa.spanconc2; }
    ConfigurableFloat& H2obzero() { return _h2ob.zero; }
    ConfigurableFloat& H2obspan1() { return _h2ob.span1; }
    ConfigurableFloat& H2obspan2() { return _h2ob.span2; }
    ConfigurableFloat& H2obspan2a() { return _h2ob.span2a; }
    ConfigurableFloat& H2obspan2b() { return _h2ob.span2b; }
    ConfigurableFloat& H2obspanconc1() { return _h2ob.spanconc1; }
    ConfigurableFloat& H2obspanconc2() { return _h2ob.spanconc2; }
    ConfigurableFloat& Tazero() { return _tazero; }
    ConfigurableFloat& Tbzero() { return _tbzero; }
    ConfigurableFloat& Flowmeterzero() { return _flowmeterzero; }
    ConfigurableFloat& Flowazero() { return _flowazero; }
    ConfigurableFloat& Flowbzero() { return _flowbzero; }
    ConfigurableFloat& Chamberpressurezero() { return _chamberpressurezero; }
    ConfigurableFloat& Ssa_ref() { return _ssa_ref; }
    ConfigurableFloat& Ssb_ref() { return _ssb_ref; }

private:
    /// The seven nodes of one channel, named with its prefix; added one after another.
    struct Channel {
        explicit Channel(const std::string& ch);
        ConfigurableFloat zero, span1, span2, span2a, span2b, spanconc1, spanconc2;
    };

    ConfigurableFloat _oxygen{"oxygen", 21};
    Channel _co2a{"co2a"}, _co2b{"co2b"}, _h2oa{"h2oa"}, _h2ob{"h2ob"};
    ConfigurableFloat _tazero{"tazero", 0};
    ConfigurableFloat _tbzero{"tbzero", 0};
    ConfigurableFloat _flowmeterzero{"flowmeterzero", 1};
    ConfigurableFloat _flowazero{"flowazero", 0};
    ConfigurableFloat _flowbzero{"flowbzero", 0};
    ConfigurableFloat _chamberpressurezero{"chamberpressurezero", 2.5f};
    ConfigurableFloat _ssa_ref{"ssa_ref", 50000};
    ConfigurableFloat _ssb_ref{"ssb_ref", 50000};
};

// --- calibration history, shared with the Halden ---

/// A calibration history, tag `history`, that keeps the newest record of each kind of step.
/// The kind is the record's `type` up to the first ":" (all of it when there is none).
///
/// Reused by every model whose history is of this kind; the model's history derives from
/// ConfigCalHistoryByKind<ItsRecord> and supplies only `_is_same` (the key of the list, which
/// compares `time` in whatever leaf type the record keeps it). `Record` must provide:
///   - `explicit Record(const std::string& name)`: a record with all defaults and an empty type;
///   - a copy constructor, and `operator=` that takes values and flags and keeps the name;
///   - `const ConfigurableString& Type() const`.
/// Example: class ConfigCalHistoryHalden : public ConfigCalHistoryByKind<ConfigCalRecordHalden>.
template <class Record>
class ConfigCalHistoryByKind : public ConfigurableCompositeDynamic<Record> {
public:
    ConfigCalHistoryByKind() : ConfigurableCompositeDynamic<Record>("history") {}

    /// Keeps, of each kind, the record that stands last in the list, and orders the list by kind.
    /// Records with an empty type are one kind.
    void ClearOldRecords()
    {
        std::map<std::string, Record> newest;
        const auto& list = this->children();
        for (auto it = list.rbegin(); it != list.rend(); ++it) {
            const auto* record = dynamic_cast<const Record*>(*it);
            if (!record)
                continue;
            const std::string& type = record->Type().get();
            newest.emplace(type.substr(0, type.find(':')), *record);
        }
        this->clear();
        for (const auto& entry : newest) {
            Record* record = _create(entry.second.name());
            *record = entry.second;
            this->add(*record);
        }
    }

protected:
    Record* _create(const std::string& name) override { return new Record(name); }
    void _copy(Record& to, const Record& from) override { to = from; }
};

/// One calibration step of the Dravik: when, what was done, and the coefficients after it.
/// As a list element its tag is `record`; in the factory section it is `cal`, type "Factory".
class ConfigCalRecordDravik : public ConfigurableComposite {
public:
    /// All defaults.
    explicit ConfigCalRecordDravik(const std::string& name, const std::string& type = "");
    /// A record of the given values, tag `record`; the values in child order.
    ConfigCalRecordDravik(long time, const std::string& type, float oxygen, float co2azero, float co2aspan1,
                          float co2aspan2, float co2bzero, float co2bspan1, float co2bspan2, float h2oazero,
                          float h2oaspan1, float h2oaspan2, float h2obzero, float h2obspan1, float h2obspan2,
                          float tazero, float tbzero, float flowmeterzero, float flowazero, float flowbzero,
                          float chamberpressurezero, float ssa_ref, float ssb_ref);
    /// A record of the same name with the other's values and flags, standing alone.
    ConfigCalRecordDravik(const ConfigCalRecordDravik& other);
    /// Takes the other's values and flags, leaf by leaf; keeps its own name.
    ConfigCalRecordDravik& operator=(const ConfigCalRecordDravik& other);

    /// Seconds; reads a count or a local "YYYY-MM-DD HH:MM:SS".
    ConfigurableTimeT& Time() { return _time; }
    const ConfigurableTimeT& Time() const { return _time; }
    /// What was done; the part before the first ":" is the kind of step.
    ConfigurableString& Type() { return _type; }
    const ConfigurableString& Type() const { return _type; }
    ConfigurableFloat& Oxygen() { return _oxygen; }
    ConfigurableFloat& Co2azero() { return _co2azero; }
    ConfigurableFloat& Co2aspan1() { return _co2aspan1; }
    ConfigurableFloat& Co2aspan2() { return _co2aspan2; }
    ConfigurableFloat& Co2bzero() { return _co2bzero; }
    ConfigurableFloat& Co2bspan1() { return _co2bspan1; }
    ConfigurableFloat& Co2bspan2() { return _co2bspan2; }
    ConfigurableFloat& H2oazero() { return _h2oazero; }
    ConfigurableFloat& H2oaspan1() { return _h2oaspan1; }
    ConfigurableFloat& H2oaspan2() { return _h2oaspan2; }
    ConfigurableFloat& H2obzero() { return _h2obzero; }
    ConfigurableFloat& H2obspan1() { return _h2obspan1; }
    ConfigurableFloat& H2obspan2() { return _h2obspan2; }
    ConfigurableFloat& Tazero() { return _tazero; }
    ConfigurableFloat& Tbzero() { return _tbzero; }
    ConfigurableFloat& Flowmeterzero() { return _flowmeterzero; }
    ConfigurableFloat& Flowazero() { return _flowazero; }
    ConfigurableFloat& Flowbzero() { return _flowbzero; }
    ConfigurableFloat& Chamberpressurezero() { return _chamberpressurezero; }
    ConfigurableFloat& Ssa_ref() { return _ssa_ref; }
    ConfigurableFloat& Ssb_ref() { return _ssb_ref; }

private:
    /// The 21 coefficients in child order.
    static const std::array<ConfigurableFloat ConfigCalRecordDravik::*, 21> _values;

    ConfigurableTimeT _time{"time", 0};
    ConfigurableString _type;
    ConfigurableFloat _oxygen{"oxygen", 21};
    ConfigurableFloat _co2azero{"co2azero", 1};
    ConfigurableFloat _co2aspan1{"co2aspan1", 1};
    ConfigurableFloat _co2aspan2{"co2aspan2", 0};
    ConfigurableFloat _co2bzero{"co2bzero", 1};
    ConfigurableFloat _co2bspan1{"co2bspan1", 1};
    ConfigurableFloat _co2bspan2{"co2bspan2", 0};
    ConfigurableFloat _h2oazero{"h2oazero", 1};
    ConfigurableFloat _h2oaspan1{"h2oaspan1", 1};
    ConfigurableFloat _h2oaspan2{"h2oaspan2", 0};
    ConfigurableFloat _h2obzero{"h2obzero", 1};
    ConfigurableFloat _h2obspan1{"h2obspan1", 1};
    ConfigurableFloat _h2obspan2{"h2obspan2", 0};
    ConfigurableFloat _tazero{"tazero", 0};
    ConfigurableFloat _tbzero{"tbzero", 0};
    ConfigurableFloat _flowmeterzero{"flowmeterzero", 1};
    ConfigurableFloat _flowazero{"flowazero", 0};
    ConfigurableFloat _flowbzero{"flowbzero", 0};
    ConfigurableFloat _chamberpressurezero{"chamberpressurezero", 2.5f};
    ConfigurableFloat _ssa_ref{"ssa_ref", 50000};
    ConfigurableFloat _ssb_ref{"ssb_ref", 50000};
};

/// The Dravik's calibration history, tag `history`, a child of the model node. Keyed by `time`.
class ConfigCalHistoryDravik : public ConfigCalHistoryByKind<ConfigCalRecordDravik> {
protected:
    bool _is_same(const ConfigCalRecordDravik& a, const ConfigCalRecordDravik& b) const override
    {
        return a.Time().get() == b.Time().get();
    }
};

// --- cmd ---

/// The one-shot commands, tag `cmd`. A command is true only in the message that carries it; a
/// span command goes with its concentration in `cal`.
class ConfigCmdDravik : public ConfigurableComposite {
public:
    ConfigCmdDravik();

    ConfigurableBool& Poll() { return _poll; }
    ConfigurableBool& Co2azero() { return _co2azero; }
    ConfigurableBool& Co2bzero() { return _co2bzero; }
    ConfigurableBool& H2oazero() { return _h2oazero; }
    ConfigurableBool& H2obzero() { return _h2obzero; }
    ConfigurableBool& Co2aspan1() { return _co2aspan1; }
    ConfigurableBool& Co2aspan2() { return _co2aspan2; }
    ConfigurableBool& Co2bspan1() { return _co2bspan1; }
    ConfigurableBool& Co2bspan2() { return _co2bspan2; }
    ConfigurableBool& H2oaspan1() { return _h2oaspan1; }
    ConfigurableBool& H2oaspan2() { return _h2oaspan2; }
    ConfigurableBool& H2obspan1() { return _h2obspan1; }
    ConfigurableBool& H2obspan2() { return _h2obspan2; }
    ConfigurableBool& Tazero() { return _tazero; }
    ConfigurableBool& Tbzero() { return _tbzero; }
    ConfigurableBool& Flowmeterzero() { return _flowmeterzero; }
    ConfigurableBool& Flowazero() { return _flowazero; }
    ConfigurableBool& Flowbzero() { return _flowbzero; }
    ConfigurableBool& Chamberpressurezero() { return _chamberpressurezero; }
    ConfigurableBool& Ssa_reset() { return _ssa_reset; }
    ConfigurableBool& Ssb_reset() { return _ssb_reset; }
    ConfigurableBool& Reboot() { return _reboot; }
    ConfigurableBool& Polltest() { return _polltest; }
    ConfigurableBool& Connectlightsource() { return _connectlightsource; }
    ConfigurableBool& Disconnectlightsource() { return _disconnectlightsource; }
    ConfigurableBool& Irgapoweroff() { return _irgapoweroff; }
    ConfigurableBool& Poweroff() { return _poweroff; }
    ConfigurableBool& Poweron() { return _poweron; }

private:
    ConfigurableBool _poll{"poll", false};
    ConfigurableBool _co2azero{"co2azero", false};
    ConfigurableBool _co2bzero{"co2bzero", false};
    ConfigurableBool _h2oazero{"h2oazero", false};
    ConfigurableBool _h2obzero{"h2obzero", false};
    ConfigurableBool _co2aspan1{"co2aspan1", false};
    ConfigurableBool _co2aspan2{"co2aspan2", false};
    ConfigurableBool _co2bspan1{"co2bspan1", false};
    ConfigurableBool _co2bspan2{"co2bspan2", false};
    ConfigurableBool _h2oaspan1{"h2oaspan1", false};
    ConfigurableBool _h2oaspan2{"h2oaspan2", false};
    ConfigurableBool _h2obspan1{"h2obspan1", false};
    ConfigurableBool _h2obspan2{"h2obspan2", false};
    ConfigurableBool _tazero{"tazero", false};
    ConfigurableBool _tbzero{"tbzero", false};
    ConfigurableBool _flowmeterzero{"flowmeterzero", false};
    ConfigurableBool _flowazero{"flowazero", false};
    ConfigurableBool _flowbzero{"flowbzero", false};
    ConfigurableBool _chamberpressurezero{"chamberpressurezero", false};
    ConfigurableBool _ssa_reset{"ssa_reset", false};
    ConfigurableBool _ssb_reset{"ssb_reset", false};
    ConfigurableBool _reboot{"reboot", false};
    ConfigurableBool _polltest{"polltest", false};
    ConfigurableBool _connectlightsource{"connectlightsource", false};
    ConfigurableBool _disconnectlightsource{"disconnectlightsource", false};
    ConfigurableBool _irgapoweroff{"irgapoweroff", false};
    ConfigurableBool _poweroff{"poweroff", false};
    ConfigurableBool _poweron{"poweron", false};
};

// --- factory ---

/// A PI controller's gains, named by the caller. `ti` has a floor of 0.00104167.
class ConfigFactoryPIControl : public ConfigurableComposite {
public:
    ConfigFactoryPIControl(const std::string& name, float kp, float ti);

    ConfigurableFloat& Kp() { return _kp; }
    ConfigurableFloat& Ti() { return _ti; }

private:
    ConfigurableFloat _kp;
    ConfigurableFloat _ti;
};

/// The heat exchanger's PI controller, with the switch `gamma_tcm` behind the gains.
class ConfigFactoryHeatxControl : public ConfigFactoryPIControl {
public:
    ConfigFactoryHeatxControl(const std::string& name, float kp, float ti);

    ConfigurableBool& Gamma_tcm() { return _gamma_tcm; }

private:
    ConfigurableBool _gamma_tcm{"gamma_tcm", false};
};

/// A PID controller's gains, named by the caller.
class ConfigFactoryPIDControl : public ConfigurableComposite {
public:
    ConfigFactoryPIDControl(const std::string& name, float kp, float ti, float td);

    ConfigurableFloat& Kp() { return _kp; }
    ConfigurableFloat& Ti() { return _ti; }
    ConfigurableFloat& Td() { return _td; }

private:
    ConfigurableFloat _kp;
    ConfigurableFloat _ti;
    ConfigurableFloat _td;
};

/// A temperature held by a PI controller that can be switched off.
class ConfigFactoryPITempControl : public ConfigurableComposite {
public:
    ConfigFactoryPITempControl(const std::string& name, bool on, float setpoint, float kp, float ti);

    ConfigOnOffControl& Control() { return _control; }
    ConfigurableFloat& Setpoint() { return _setpoint; }
    ConfigurableFloat& Kp() { return _kp; }
    ConfigurableFloat& Ti() { return _ti; }

private:
    ConfigOnOffControl _control;
    ConfigurableFloat _setpoint;
    ConfigurableFloat _kp;
    ConfigurableFloat _ti;
};

/// The chopper motor's speed loop; gains within 0..256.
class ConfigFactoryChopperMotor : public ConfigurableComposite {
public:
    explicit ConfigFactoryChopperMotor(const std::string& name);

    ConfigurableFloat& Kp() { return _kp; }
    ConfigurableFloat& Ki() { return _ki; }
    ConfigurableFloat& Kd() { return _kd; }

private:
    ConfigurableFloat _kp{"kp", 0.1f, 0, 256, false};
    ConfigurableFloat _ki{"ki", 1, 0, 256, false};
    ConfigurableFloat _kd{"kd", 10, 0, 256, false};
};

/// The identity of the leaf chamber, its light sensor's calibration and its volume, tag `chamber`.
class ConfigFactoryChamber : public ConfigurableComposite {
public:
    ConfigFactoryChamber();

    ConfigurableString& Id() { return _id; }
    ConfigurableString& Sn() { return _sn; }
    ConfigurableString& Rev() { return _rev; }
    ConfigurableFloat& Ppfdcal() { return _ppfdcal; }
    ConfigurableFloat& Vol() { return _vol; }

private:
    ConfigurableString _id{"id", "skarn-xx"};
    ConfigurableString _sn{"sn", "0"};
    ConfigurableString _rev{"rev", "0"};
    ConfigurableFloat _ppfdcal{"ppfdcal", 0};
    ConfigurableFloat _vol{"vol", 0};
};

/// Band broadening coefficients of the analysers, tag `bb`.
class ConfigFactoryBandBroadening : public ConfigurableComposite {
public:
    ConfigFactoryBandBroadening();

    ConfigurableFloat& Ch() { return _ch; }
    ConfigurableFloat& Cx() { return _cx; }
    ConfigurableFloat& Hx0() { return _hx0; }
    ConfigurableFloat& Hx1() { return _hx1; }

private:
    ConfigurableFloat _ch{"ch", 1.4f};
    ConfigurableFloat _cx{"cx", 0.9f};
    ConfigurableFloat _hx0{"hx0", 0.96f};
    ConfigurableFloat _hx1{"hx1", 0.00190476f};
};

/// The CO2 polynomial of one analyser, tag `co2`.
class ConfigFactoryIrgaCO2 : public ConfigurableComposite {
public:
    ConfigFactoryIrgaCO2();

    ConfigurableFloat& A1() { return _a1; }
    ConfigurableFloat& A2() { return _a2; }
    ConfigurableFloat& A3() { return _a3; }
    ConfigurableFloat& A4() { return _a4; }
    ConfigurableFloat& A5() { return _a5; }
    ConfigurableFloat& Z() { return _z; }
    ConfigurableFloat& S1() { return _s1; }
    ConfigurableFloat& S2() { return _s2; }
    ConfigurableFloat& S3() { return _s3; }

private:
    ConfigurableFloat _a1{"a1", 1}, _a2{"a2", 0}, _a3{"a3", 0}, _a4{"a4", 0}, _a5{"a5", 0};
    ConfigurableFloat _z{"z", 0}, _s1{"s1", 0}, _s2{"s2", 0}, _s3{"s3", 0};
};

/// The H2O polynomial of one analyser, tag `h2o`.
class ConfigFactoryIrgaH2O : public ConfigurableComposite {
public:
    ConfigFactoryIrgaH2O();

    ConfigurableFloat& A1() { return _a1; }
    ConfigurableFloat& A2() { return _a2; }
    ConfigurableFloat& A3() { return _a3; }
    ConfigurableFloat& Z() { return _z; }
    ConfigurableFloat& S1() { return _s1; }
    ConfigurableFloat& S2() { return _s2; }
    ConfigurableFloat& S3() { return _s3; }

private:
    ConfigurableFloat _a1{"a1", 1}, _a2{"a2", 0}, _a3{"a3", 0};
    ConfigurableFloat _z{"z", 0}, _s1{"s1", 0}, _s2{"s2", 0}, _s3{"s3", 0};
};

/// The flow sensor polynomial of one analyser, tag `flow`.
class ConfigFactoryIrgaFlow : public ConfigurableComposite {
public:
    ConfigFactoryIrgaFlow();

    ConfigurableFloat& A1() { return _a1; }
    ConfigurableFloat& A2() { return _a2; }
    ConfigurableFloat& A3() { return _a3; }
    ConfigurableFloat& A4() { return _a4; }

private:
    ConfigurableFloat _a1{"a1", 1}, _a2{"a2", 0}, _a3{"a3", 0}, _a4{"a4", 0};
};

/// One gas analyser's coefficients, `irga_a` or `irga_b`.
class ConfigFactoryIrga : public ConfigurableComposite {
public:
    explicit ConfigFactoryIrga(const std::string& name);

    ConfigurableFloat& Xhc() { return _Xhc; }
    ConfigurableFloat& Xch() { return _Xch; }
    ConfigFactoryIrgaCO2& Co2() { return _co2; }
    ConfigFactoryIrgaH2O& H2o() { return _h2o; }
    ConfigFactoryIrgaFlow& Flow() { return _flow; }

private:
    ConfigurableFloat _Xhc{"Xhc", 0};
    ConfigurableFloat _Xch{"Xch", 0};
    ConfigFactoryIrgaCO2 _co2;
    ConfigFactoryIrgaH2O _h2o;
    ConfigFactoryIrgaFlow _flow;
};

/// A pressure sensor's zero and span.
class ConfigFactoryPressure : public ConfigurableComposite {
public:
    explicit ConfigFactoryPressure(const std::string& name);

    ConfigurableFloat& Zero() { return _zero; }
    ConfigurableFloat& Span() { return _span; }

private:
    ConfigurableFloat _zero{"zero", 0};
    ConfigurableFloat _span{"span", 1};
};

/// The flow meter's coefficients `a` to `g`.
class ConfigFactoryFlowMeter : public ConfigurableComposite {
public:
    explicit ConfigFactoryFlowMeter(const std::string& name);

    ConfigurableFloat& A() { return _a; }
    ConfigurableFloat& B() { return _b; }
    ConfigurableFloat& C() { return _c; }
    ConfigurableFloat& D() { return _d; }
    ConfigurableFloat& E() { return _e; }
    ConfigurableFloat& F() { return _f; }
    ConfigurableFloat& G() { return _g; }

private:
    ConfigurableFloat _a{"a", 100}, _b{"b", 90}, _c{"c", -20}, _d{"d", 5}, _e{"e", 40}, _f{"f", 0}, _g{"g", 0};
};

/// The values the head was made with, tag `factory`. Unlike the Tolvan's, it has no commit or
/// rollback: the instrument keeps what it is sent.
class ConfigFactoryDravik : public ConfigurableComposite {
public:
    ConfigFactoryDravik();

    ConfigurableString& Serialnumber() { return _serialnumber; }
    ConfigurableString& Caldate() { return _caldate; }
    /// The factory calibration, a record of type "Factory".
    ConfigCalRecordDravik& Cal() { return _cal; }
    ConfigFactoryHeatxControl& Heatx() { return _heatx; }
    ConfigFactoryPITempControl& Chopper_temp() { return _chopper_temp; }
    ConfigFactoryChopperMotor& Chopper_motor() { return _chopper_motor; }
    ConfigFactoryPIControl& Flow() { return _flow; }
    ConfigFactoryChamber& Chamber() { return _chamber; }
    ConfigFactoryPIControl& Chamber_p() { return _chamber_p; }
    ConfigFactoryPIControl& Mixingfan() { return _mixingfan; }
    ConfigurableInteger& Source_a() { return _source_a; }
    ConfigurableInteger& Source_b() { return _source_b; }
    ConfigFactoryBandBroadening& Bb() { return _bb; }
    ConfigFactoryIrga& Irga_a() { return _irga_a; }
    ConfigFactoryIrga& Irga_b() { return _irga_b; }
    ConfigFactoryPressure& Pressure() { return _pressure; }
    ConfigFactoryFlowMeter& Flowmeter() { return _flowmeter; }
    ConfigFactoryPIDControl& Co2r() { return _co2r; }
    ConfigFactoryPIDControl& Co2s() { return _co2s; }
    ConfigFactoryPIDControl& H2or() { return _h2or; }
    ConfigFactoryPIDControl& H2os() { return _h2os; }
    ConfigFactoryPIDControl& H2oc() { return _h2oc; }
    ConfigFactoryLightSource& Lightsource() { return _lightsource; }

private:
    ConfigurableString _serialnumber{"serialnumber", "SKH-XXXX"};
    ConfigurableString _caldate{"caldate", ""};
    ConfigCalRecordDravik _cal{"cal", "Factory"};
    ConfigFactoryHeatxControl _heatx{"heatx", 10, 5};
    ConfigFactoryPITempControl _chopper_temp{"chopper_temp", true, 30, 2.5f, 5};
    ConfigFactoryChopperMotor _chopper_motor{"chopper_motor"};
    ConfigFactoryPIControl _flow{"flow", 0.2f, 0.1f};
    ConfigFactoryChamber _chamber;
    ConfigFactoryPIControl _chamber_p{"chamber_p", 1, 0.3f};
    ConfigFactoryPIControl _mixingfan{"mixingfan", 0.002f, 0.1f};
    ConfigurableInteger _source_a{"source_a", 881, 0, 1800};
    ConfigurableInteger _source_b{"source_b", 881, 0, 1800};
    ConfigFactoryBandBroadening _bb;
    ConfigFactoryIrga _irga_a{"irga_a"};
    ConfigFactoryIrga _irga_b{"irga_b"};
    ConfigFactoryPressure _pressure{"pressure"};
    ConfigFactoryFlowMeter _flowmeter{"flowmeter"};
    ConfigFactoryPIDControl _co2r{"co2r", 0.008f, 0.2f, 0};
    ConfigFactoryPIDControl _co2s{"co2s", 1, 2, 0};
    ConfigFactoryPIDControl _h2or{"h2or", 2, 0.4f, 0};
    ConfigFactoryPIDControl _h2os{"h2os", 0.7f, 1, 0};
    ConfigFactoryPIDControl _h2oc{"h2oc", 1, 5, 0};
    ConfigFactoryLightSource _lightsource;
};

// --- the model and the document ---

/// The model node, tag "dravik". The history is its child, not a child of `cal`.
class ConfigDravik : public ConfigModel {
public:
    ConfigDravik();

    ConfigOutputDravik& Output() { return _output; }
    ConfigCfgDravik& Cfg() { return _cfg; }
    ConfigRun& Run() { return _run; }
    ConfigCalDravik& Cal() { return _cal; }
    ConfigCalHistoryDravik& History() { return _history; }
    ConfigCmdDravik& Cmd() { return _cmd; }
    ConfigFactoryDravik& Factory() { return _factory; }

    /// Sets every command back to false.
    void ResetCommands() { _cmd.set_to_default(); }
    /// Whether a setting worth keeping has changed: output, cfg, cal, history, factory or one of
    /// the reported texts. Commands, scripts and the fpga and dsp versions never count.
    bool IsConfigChanged() const;

    /// The texts of the generic dialog by tag or path ("irga_a/co2"); ":EXCLUDE:" leaves a node out.
    static const std::map<std::string, std::string>& Labels();

private:
    ConfigOutputDravik _output;
    ConfigCfgDravik _cfg;
    ConfigRun _run;
    ConfigCalDravik _cal;
    ConfigCalHistoryDravik _history;
    ConfigCmdDravik _cmd;
    ConfigFactoryDravik _factory;
};

/// The Dravik document, root `arvex`.
class DocDravik : public ListenedDocument<ConfigDravik> {
};
