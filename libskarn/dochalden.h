#pragma once
// The document of the Halden fluorometer: red, blue, far-red and modulating red light sources,
// flash sequences, measurement and raw capture. <arvex><halden>...</halden></arvex>.

#include <cstdint>
#include <map>
#include <string>

#include "foundation/timestamp.h"
#include "libskarn/configcommon.h"
#include "libskarn/docdravik.h"
#include "libskarn/document.h"

// --- output ---

/// Which data records the instrument sends on the link, tag `output`. There is no rate.
class ConfigOutputHalden : public ConfigurableComposite {
public:
    ConfigOutputHalden();

    ConfigurableBool& Waveforms() { return _waveforms; }
    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }
    ConfigurableBool& Datatest() { return _datatest; }
    ConfigurableBool& Datarawcapture() { return _datarawcapture; }

private:
    ConfigurableBool _waveforms{"waveforms", false};
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
    ConfigurableBool _datatest{"datatest", false};
    ConfigurableBool _datarawcapture{"datarawcapture", false};
};

// --- cfg ---

/// A rectangular flash, tag `rectflash`: a plateau of red actinic light.
class ConfigCfgRectangularFlash : public ConfigurableComposite {
public:
    ConfigCfgRectangularFlash();

    /// A member of the induction flash too, but not one of its children.
    ConfigurableInteger& Outrate() { return _outrate; }
    ConfigurableInteger& Margin() { return _margin; }
    ConfigurableInteger& Duration() { return _duration; }
    ConfigurableFloat& Q_red_setpoint() { return _q_red_setpoint; }
    /// Unbounded, unlike the light source's percent.
    ConfigurableFloat& D_red_percent() { return _d_red_percent; }

protected:
    ConfigCfgRectangularFlash(const std::string& name, bool with_outrate);

private:
    ConfigurableInteger _outrate{"outrate", 1, 1, 10000};
    ConfigurableInteger _margin{"margin", 0, 0, 100};
    ConfigurableInteger _duration{"duration", 0, 0, 3000};
    ConfigurableFloat _q_red_setpoint{"Q_red_setpoint", 0};
    ConfigurableFloat _d_red_percent{"D_red_percent", 0};
};

/// An induction flash, tag `inductionflash`: the rectangular flash without `outrate`.
class ConfigCfgInductionFlash : public ConfigCfgRectangularFlash {
public:
    ConfigCfgInductionFlash();
};

/// A flash in three phases with a ramp, tag `multiphaseflash`.
class ConfigCfgMultiPhaseFlash : public ConfigurableComposite {
public:
    ConfigCfgMultiPhaseFlash();

    ConfigurableInteger& Outrate() { return _outrate; }
    ConfigurableInteger& Margin() { return _margin; }
    ConfigurableInteger& Phase1_duration() { return _phase1_duration; }
    ConfigurableInteger& Phase2_duration() { return _phase2_duration; }
    ConfigurableInteger& Phase3_duration() { return _phase3_duration; }
    ConfigurableFloat& Q_red_setpoint() { return _q_red_setpoint; }
    ConfigurableFloat& D_red_percent() { return _d_red_percent; }
    ConfigurableFloat& Ramp() { return _ramp; }

private:
    ConfigurableInteger _outrate{"outrate", 1, 1, 10000};
    ConfigurableInteger _margin{"margin", 0, 0, 100};
    ConfigurableInteger _phase1_duration{"phase1_duration", 0, 0, 3000};
    ConfigurableInteger _phase2_duration{"phase2_duration", 0, 0, 3000};
    ConfigurableInteger _phase3_duration{"phase3_duration", 0, 0, 3000};
    ConfigurableFloat _q_red_setpoint{"Q_red_setpoint", 0};
    ConfigurableFloat _d_red_percent{"D_red_percent", 0};
    ConfigurableFloat _ramp{"ramp", 0, 0, 100, false};
};

/// A dark pulse under far-red light, tag `darkpulse`.
class ConfigCfgDarkPulse : public ConfigurableComposite {
public:
    ConfigCfgDarkPulse();

    ConfigurableInteger& Outrate() { return _outrate; }
    ConfigurableInteger& Duration() { return _duration; }
    ConfigurableInteger& Margin() { return _margin; }
    ConfigurableInteger& Before() { return _before; }
    ConfigurableInteger& After() { return _after; }
    ConfigurableFloat& Q_farred_setpoint() { return _q_farred_setpoint; }
    ConfigurableFloat& D_farred_percent() { return _d_farred_percent; }

private:
    ConfigurableInteger _outrate{"outrate", 1, 1, 10000};
    ConfigurableInteger _duration{"duration", 0, 0};
    ConfigurableInteger _margin{"margin", 0, 0, 100};
    ConfigurableInteger _before{"before", 0, 0};
    ConfigurableInteger _after{"after", 0, 0};
    ConfigurableFloat _q_farred_setpoint{"Q_farred_setpoint", 0};
    ConfigurableFloat _d_farred_percent{"D_farred_percent", 0};
};

/// A modulation rate in Hz, as text: "1" to "250000" in fixed steps. Other rates are refused.
class ConfigModRate : public ConfigurableMultipleChoice {
public:
    explicit ConfigModRate(const std::string& name);
};

/// The measuring light, tag `measure`: modulation rates in the dark, in light and in a flash.
class ConfigCfgMeasure : public ConfigurableComposite {
public:
    ConfigCfgMeasure();

    ConfigControlMode& Control() { return _control; }
    ConfigurableInteger& Outrate() { return _outrate; }
    ConfigModRate& Dark_modrate() { return _dark_modrate; }
    ConfigModRate& Light_modrate() { return _light_modrate; }
    ConfigModRate& Flash_modrate() { return _flash_modrate; }
    ConfigurableFloat& Q_modred_setpoint() { return _q_modred_setpoint; }
    ConfigurableFloat& D_modred_percent() { return _d_modred_percent; }

private:
    ConfigControlMode _control{"control", 0};
    ConfigurableInteger _outrate{"outrate", 1, 1, 10000};
    ConfigModRate _dark_modrate{"dark_modrate"};
    ConfigModRate _light_modrate{"light_modrate"};
    ConfigModRate _flash_modrate{"flash_modrate"};
    ConfigurableFloat _q_modred_setpoint{"Q_modred_setpoint", 0};
    ConfigurableFloat _d_modred_percent{"D_modred_percent", 0, 0, 100, false};
};

/// "off", "percent", "setpoint" or "test".
class ConfigLightSourceModeHalden : public ConfigurableMultipleChoice {
public:
    ConfigLightSourceModeHalden(const std::string& name, int default_index);
};

/// The Halden's own actinic light source, tag `lightsource`: a setpoint with a colour mix, or
/// one percent per colour.
class ConfigLightSourceHalden : public ConfigurableComposite {
public:
    ConfigLightSourceHalden();

    ConfigLightSourceModeHalden& Control() { return _control; }
    ConfigurableFloat& Q_setpoint() { return _q_setpoint; }
    ConfigurableFloat& Red_mix() { return _red_mix; }
    ConfigurableFloat& Blue_mix() { return _blue_mix; }
    ConfigurableFloat& Farred_mix() { return _farred_mix; }
    ConfigurableFloat& D_red_percent() { return _d_red_percent; }
    ConfigurableFloat& D_blue_percent() { return _d_blue_percent; }
    ConfigurableFloat& D_farred_percent() { return _d_farred_percent; }

private:
    ConfigLightSourceModeHalden _control{"control", 0};
    ConfigurableFloat _q_setpoint{"Q_setpoint", 0};
    ConfigurableFloat _red_mix{"red_mix", 0};
    ConfigurableFloat _blue_mix{"blue_mix", 0};
    ConfigurableFloat _farred_mix{"farred_mix", 0};
    ConfigurableFloat _d_red_percent{"D_red_percent", 0, 0, 100, false};
    ConfigurableFloat _d_blue_percent{"D_blue_percent", 0, 0, 100, false};
    ConfigurableFloat _d_farred_percent{"D_farred_percent", 0, 0, 100, false};
};

/// When a raw capture starts, tag `when`: "now", "measure", "flash" or "dark".
class ConfigRawCaptureStart : public ConfigurableMultipleChoice {
public:
    ConfigRawCaptureStart();
};

/// The raw data capture, tag `rawdatacapture`; set by the raw data dialog only.
class ConfigCfgRawDataCapture : public ConfigurableComposite {
public:
    ConfigCfgRawDataCapture();

    ConfigRawCaptureStart& When() { return _when; }
    ConfigurableInteger& Size() { return _size; }

private:
    ConfigRawCaptureStart _when;
    ConfigurableInteger _size{"size", 0, 0};
};

/// The fan's mode, tag `fan_mode`: "off", "auto" or "percent"; "auto" by default.
class ConfigFanMode : public ConfigurableMultipleChoice {
public:
    ConfigFanMode();
};

/// The Halden's settings, tag `cfg`.
class ConfigCfgHalden : public ConfigurableComposite {
public:
    ConfigCfgHalden();

    ConfigCfgRectangularFlash& Rectflash() { return _rectflash; }
    ConfigCfgMultiPhaseFlash& Multiphaseflash() { return _multiphaseflash; }
    ConfigCfgInductionFlash& Inductionflash() { return _inductionflash; }
    ConfigLightSourceHalden& Lightsource() { return _lightsource; }
    ConfigCfgMeasure& Measure() { return _measure; }
    ConfigCfgDarkPulse& Darkpulse() { return _darkpulse; }
    ConfigCfgRawDataCapture& Rawdatacapture() { return _rawdatacapture; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }
    ConfigFanMode& Fan_mode() { return _fan_mode; }
    ConfigurableInteger& Fan_duty() { return _fan_duty; }
    ConfigurableInteger& Fan_freq() { return _fan_freq; }

private:
    ConfigCfgRectangularFlash _rectflash;
    ConfigCfgMultiPhaseFlash _multiphaseflash;
    ConfigCfgInductionFlash _inductionflash;
    ConfigLightSourceHalden _lightsource;
    ConfigCfgMeasure _measure;
    ConfigCfgDarkPulse _darkpulse;
    ConfigCfgRawDataCapture _rawdatacapture;
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
    ConfigFanMode _fan_mode;
    ConfigurableInteger _fan_duty{"fan_duty", 50, 0, 100};
    ConfigurableInteger _fan_freq{"fan_freq", 60, 1, 20000};
};

// --- cal and history ---

/// The calibration, tag `cal`: the two zero values in counts.
class ConfigCalHalden : public ConfigurableComposite {
public:
    ConfigCalHalden();

    ConfigurableInteger& DC0() { return _dc0; }
    ConfigurableInteger& Pc0() { return _pc0; }

private:
    ConfigurableInteger _dc0{"DC0", 0};
    ConfigurableInteger _pc0{"Pc0", 0};
};

/// One step of the calibration history, tag `record` unless the list names it.
class ConfigCalRecordHalden : public ConfigurableComposite {
public:
    /// All defaults.
    explicit ConfigCalRecordHalden(const std::string& name);
    ConfigCalRecordHalden(const Timestamp& time, const std::string& type, int64_t dc0, int64_t pc0);
    /// A record of the same name with the other's values and flags, standing alone.
    ConfigCalRecordHalden(const ConfigCalRecordHalden& other);
    /// Takes the other's values and flags; keeps its own name.
    ConfigCalRecordHalden& operator=(const ConfigCalRecordHalden& other);

    ConfigurableTimestamp& Time() { return _time; }
    const ConfigurableTimestamp& Time() const { return _time; }
    /// What was done; the part before the first ":" is the kind of step.
    ConfigurableString& Type() { return _type; }
    const ConfigurableString& Type() const { return _type; }
    ConfigurableInteger& DC0() { return _dc0; }
    ConfigurableInteger& Pc0() { return _pc0; }

private:
    ConfigurableTimestamp _time{"time", Timestamp(0)};
    ConfigurableString _type{"type", ""};
    ConfigurableInteger _dc0{"DC0", 0};
    ConfigurableInteger _pc0{"Pc0", 0};
};

/// The calibration history, tag `history`, a child of the model node. Keyed by `time`;
/// ClearOldRecords keeps the newest record of each kind.
class ConfigCalHistoryHalden : public ConfigCalHistoryByKind<ConfigCalRecordHalden> {
protected:
    bool _is_same(const ConfigCalRecordHalden& a, const ConfigCalRecordHalden& b) const override;
};

// --- cmd ---

/// One-shot commands, tag `cmd`: flashes, zeroing, capture, and the factory dialog's test buttons.
class ConfigCmdHalden : public ConfigurableComposite {
public:
    ConfigCmdHalden();

    ConfigurableBool& Rect() { return _rect; }
    ConfigurableBool& Mpf() { return _mpf; }
    ConfigurableBool& Induction() { return _induction; }
    ConfigurableBool& Dark() { return _dark; }
    ConfigurableBool& Zero_dc0() { return _zero_dc0; }
    ConfigurableBool& Zero_pc0() { return _zero_pc0; }
    ConfigurableBool& Break() { return _break; }
    ConfigurableBool& Reset() { return _reset; }
    ConfigurableBool& Reboot() { return _reboot; }
    /// Sent together with output/datarawcapture, so one message switches the record on and starts.
    ConfigurableBool& Rawcapture() { return _rawcapture; }
    ConfigurableBool& Redmodon() { return _redmodon; }
    ConfigurableBool& Redmodoff() { return _redmodoff; }
    ConfigurableBool& Testvecton() { return _testvecton; }
    ConfigurableBool& Testvectoff() { return _testvectoff; }

private:
    ConfigurableBool _rect{"rect", false};
    ConfigurableBool _mpf{"mpf", false};
    ConfigurableBool _induction{"induction", false};
    ConfigurableBool _dark{"dark", false};
    ConfigurableBool _zero_dc0{"zero_dc0", false};
    ConfigurableBool _zero_pc0{"zero_pc0", false};
    ConfigurableBool _break{"break", false};
    ConfigurableBool _reset{"reset", false};
    ConfigurableBool _reboot{"reboot", false};
    ConfigurableBool _rawcapture{"rawcapture", false};
    ConfigurableBool _redmodon{"redmodon", false};
    ConfigurableBool _redmodoff{"redmodoff", false};
    ConfigurableBool _testvecton{"testvecton", false};
    ConfigurableBool _testvectoff{"testvectoff", false};
};

// --- factory ---

/// The light sources' spans and DAC zeros, tag `calibration`.
class ConfigFactoryCalibrationHalden : public ConfigurableComposite {
public:
    ConfigFactoryCalibrationHalden();

    ConfigurableFloat& F_red() { return _f_red; }
    ConfigurableFloat& F_blue() { return _f_blue; }
    ConfigurableFloat& F_farred() { return _f_farred; }
    ConfigurableFloat& F_modred() { return _f_modred; }
    ConfigurableFloat& U_red() { return _u_red; }
    ConfigurableFloat& U_blue() { return _u_blue; }
    ConfigurableFloat& U_farred() { return _u_farred; }
    ConfigurableFloat& U_modred() { return _u_modred; }
    ConfigurableFloat& Dac_red_zero() { return _dac_red_zero; }
    ConfigurableFloat& Dac_blue_zero() { return _dac_blue_zero; }
    ConfigurableFloat& Dac_farred_zero() { return _dac_farred_zero; }
    ConfigurableFloat& Dac_modred_zero() { return _dac_modred_zero; }

private:
    ConfigurableFloat _f_red{"F_red", 1};
    ConfigurableFloat _f_blue{"F_blue", 1};
    ConfigurableFloat _f_farred{"F_farred", 1};
    ConfigurableFloat _f_modred{"F_modred", 1};
    ConfigurableFloat _u_red{"u_red", 1};
    ConfigurableFloat _u_blue{"u_blue", 1};
    ConfigurableFloat _u_farred{"u_farred", 1};
    ConfigurableFloat _u_modred{"u_modred", 1};
    ConfigurableFloat _dac_red_zero{"dac_red_zero", 0};
    ConfigurableFloat _dac_blue_zero{"dac_blue_zero", 0};
    ConfigurableFloat _dac_farred_zero{"dac_farred_zero", 0};
    ConfigurableFloat _dac_modred_zero{"dac_modred_zero", 0};
};

/// The light sources' DAC offsets and biases, tag `bias`. Bounds are inclusive: 4096 stands.
class ConfigFactoryBiasHalden : public ConfigurableComposite {
public:
    ConfigFactoryBiasHalden();

    ConfigurableInteger& Red_offset() { return _red_offset; }
    ConfigurableInteger& Blue_offset() { return _blue_offset; }
    ConfigurableInteger& Farred_offset() { return _farred_offset; }
    ConfigurableInteger& Modred_offset() { return _modred_offset; }
    ConfigurableInteger& Red_bias() { return _red_bias; }
    ConfigurableInteger& Blue_bias() { return _blue_bias; }
    ConfigurableInteger& Modred_bias() { return _modred_bias; }
    ConfigurableInteger& Red_precharge() { return _red_precharge; }
    ConfigurableFloat& Red_precharge_time() { return _red_precharge_time; }

private:
    ConfigurableInteger _red_offset{"red_offset", 0, 0, 4096};
    ConfigurableInteger _blue_offset{"blue_offset", 0, 0, 4096};
    ConfigurableInteger _farred_offset{"farred_offset", 0, 0, 4096};
    ConfigurableInteger _modred_offset{"modred_offset", 0, 0, 4096};
    ConfigurableInteger _red_bias{"red_bias", 3375, 0, 4096};
    ConfigurableInteger _blue_bias{"blue_bias", 2916, 0, 4096};
    ConfigurableInteger _modred_bias{"modred_bias", 2048, 0, 4096};
    ConfigurableInteger _red_precharge{"red_precharge", 0, 0, 4096};
    ConfigurableFloat _red_precharge_time{"red_precharge_time", 0, 0, 2.55f, false};
};

/// Factory values, tag `factory`.
class ConfigFactoryHalden : public ConfigurableComposite {
public:
    ConfigFactoryHalden();

    ConfigurableString& Serialnumber() { return _serialnumber; }
    ConfigFactoryCalibrationHalden& Calibration() { return _calibration; }
    ConfigFactoryBiasHalden& Bias() { return _bias; }

private:
    ConfigurableString _serialnumber{"serialnumber", "SKF-XXXX"};
    ConfigFactoryCalibrationHalden _calibration;
    ConfigFactoryBiasHalden _bias;
};

// --- the model and the document ---

/// The model node, tag "halden".
class ConfigHalden : public ConfigModel {
public:
    ConfigHalden();

    ConfigOutputHalden& Output() { return _output; }
    ConfigCfgHalden& Cfg() { return _cfg; }
    ConfigCalHalden& Cal() { return _cal; }
    ConfigCalHistoryHalden& History() { return _history; }
    ConfigCmdHalden& Cmd() { return _cmd; }
    ConfigFactoryHalden& Factory() { return _factory; }

    /// Sets the commands back to false.
    void ResetCommands() { _cmd.set_to_default(); }
    /// Whether output, cfg, cal, factory or one of the reported texts has changed. The history
    /// and the commands never count.
    bool IsConfigChanged() const;

    /// The generic dialog's labels.
    static const std::map<std::string, std::string>& Labels();
    /// The factory dialog's labels: Labels() with the factory values' labels and the test buttons.
    static const std::map<std::string, std::string>& FactoryLabels();

private:
    ConfigOutputHalden _output;
    ConfigCfgHalden _cfg;
    ConfigCalHalden _cal;
    ConfigCalHistoryHalden _history;
    ConfigCmdHalden _cmd;
    ConfigFactoryHalden _factory;
};

/// The Halden document, root `arvex`.
class DocHalden : public ListenedDocument<ConfigHalden> {
};
