#pragma once
// The document of the Tolvan open-path methane analyser: <arvex><tolvan>...</tolvan></arvex>.
//
// Settings sections (output, box, cfg), the calibration state with its history, the one-shot
// commands, the CPLD view and the factory values. DocTolvan can also serve the document, telling a
// DocTolvanListener what each message has changed.

#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "foundation/socketaddress.h"
#include "foundation/timestamp.h"
#include "libskarn/configcommon.h"
#include "libskarn/document.h"

// --- output ---

/// Which data records the instrument sends on the link, and at what rate.
class ConfigOutput : public ConfigurableComposite {
public:
    ConfigOutput();

    ConfigRate& Rate() { return _rate; }
    ConfigurableBool& Waveforms() { return _waveforms; }
    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }
    ConfigurableBool& Dataclocksync() { return _dataclocksync; }

private:
    static const std::vector<std::string>& _rate_texts();
    static const std::vector<int>& _rate_hz();

    ConfigRate _rate{_rate_texts(), _rate_hz(), 6};
    ConfigurableBool _waveforms{"waveforms", false};
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
    ConfigurableBool _dataclocksync{"dataclocksync", false};
};

// --- box ---

/// The data columns of one output of the interface box, tag `data`. The USB log (`with_date`)
/// also has `date` and `time`. `seconds`, `nanoseconds` and `chk` cannot be switched off: a message
/// that tries is dropped without a word.
class ConfigBoxData : public ConfigurableComposite {
public:
    explicit ConfigBoxData(bool with_date);

    ConfigurableBool& Msec() { return _msec; }
    ConfigurableBool& Seconds() { return _seconds; }
    ConfigurableBool& Nanoseconds() { return _nanoseconds; }
    ConfigurableBool& Diag() { return _diag; }
    ConfigurableBool& Ch4() { return _ch4; }
    ConfigurableBool& Ch4d() { return _ch4d; }
    ConfigurableBool& Temp() { return _temp; }
    ConfigurableBool& Pressure() { return _pressure; }
    ConfigurableBool& Rssi() { return _rssi; }
    ConfigurableBool& Droprate() { return _droprate; }
    ConfigurableBool& Aux1() { return _aux1; }
    ConfigurableBool& Aux2() { return _aux2; }
    ConfigurableBool& Aux3() { return _aux3; }
    ConfigurableBool& Aux4() { return _aux4; }
    ConfigurableBool& Aux5() { return _aux5; }
    ConfigurableBool& Aux6() { return _aux6; }
    ConfigurableBool& Aux7() { return _aux7; }
    ConfigurableBool& Aux8() { return _aux8; }
    ConfigurableBool& Auxtc1() { return _auxtc1; }
    ConfigurableBool& Auxtc2() { return _auxtc2; }
    ConfigurableBool& Auxtc3() { return _auxtc3; }
    ConfigurableBool& Chk() { return _chk; }
    /// Members in both forms, children only with `with_date`.
    ConfigurableBool& Date() { return _date; }
    ConfigurableBool& Time() { return _time; }

    /// Replaces `columns` with the data column names ("MSEC", "CH4D", "AUXTC1", ...) of the bools
    /// that are true, `date` and `time` included even where they are no children.
    void GetTrueSet(std::set<std::string>& columns) const;

private:
    ConfigurableBool _msec{"msec", false};
    ConfigurableBool _seconds{"seconds", true};
    ConfigurableBool _nanoseconds{"nanoseconds", true};
    ConfigurableBool _diag{"diag", true};
    ConfigurableBool _ch4d{"ch4d", true};  // made before ch4, added after it
    ConfigurableBool _ch4{"ch4", true};
    ConfigurableBool _temp{"temp", true};
    ConfigurableBool _pressure{"pressure", true};
    ConfigurableBool _rssi{"rssi", true};
    ConfigurableBool _droprate{"droprate", true};
    ConfigurableBool _aux1{"aux1", true}, _aux2{"aux2", true}, _aux3{"aux3", true}, _aux4{"aux4", true};
    ConfigurableBool _aux5{"aux5", true}, _aux6{"aux6", true}, _aux7{"aux7", true}, _aux8{"aux8", true};
    ConfigurableBool _auxtc1{"auxtc1", true}, _auxtc2{"auxtc2", true}, _auxtc3{"auxtc3", true};
    ConfigurableBool _chk{"chk", true};
    ConfigurableBool _date;
    ConfigurableBool _time;
    /// All 24 columns in wire order, date and time last.
    std::vector<ConfigurableBool*> _columns;
};

/// The records that the box passes on to its serial output, tag `output`.
class ConfigBoxOutput : public ConfigurableComposite {
public:
    ConfigBoxOutput();

    ConfigBoxData& Data() { return _data; }
    ConfigurableBool& Waveforms() { return _waveforms; }
    ConfigurableBool& Status() { return _status; }
    ConfigurableBool& Dataclock() { return _dataclock; }

private:
    ConfigBoxData _data{false};
    ConfigurableBool _waveforms{"waveforms", false};
    ConfigurableBool _status{"status", false};
    ConfigurableBool _dataclock{"dataclock", false};
};

/// Where status records go in the USB log, tag `status`: "same_file", "separate_file" or "off".
class ConfigBoxUSBStatus : public ConfigurableMultipleChoice {
public:
    ConfigBoxUSBStatus();
};

/// After how many minutes the USB log starts a new file, tag `split`; "0" never splits.
class ConfigBoxUSBSplit : public ConfigurableMultipleChoice {
public:
    ConfigBoxUSBSplit();

    /// The selected length in seconds.
    int get_seconds() const;
};

/// Logging to the box's USB storage, tag `usb`.
class ConfigBoxUSB : public ConfigurableComposite {
public:
    ConfigBoxUSB();

    ConfigBoxData& Data() { return _data; }
    ConfigBoxUSBStatus& Status() { return _status; }
    ConfigBoxUSBSplit& Split() { return _split; }
    ConfigurableBool& Zip() { return _zip; }

private:
    ConfigBoxData _data{true};
    ConfigBoxUSBStatus _status;
    ConfigBoxUSBSplit _split;
    ConfigurableBool _zip{"zip", false};
};

/// The interface box's outputs, tag `box`.
class ConfigBox : public ConfigurableComposite {
public:
    ConfigBox();

    ConfigBoxOutput& Output() { return _output; }
    ConfigBoxUSB& Usb() { return _usb; }

private:
    ConfigBoxOutput _output;
    ConfigBoxUSB _usb;
};

// --- cfg ---

/// The temperature range, tag `temprange`: "low" or "high". Every value read counts as a change,
/// even the one already held, so that the instrument re-applies it.
class ConfigCfgTempRange : public ConfigurableMultipleChoice {
public:
    ConfigCfgTempRange();
    void read(std::istream& in, std::ostream& err) override;
};

/// How an auxiliary input's coefficients are applied, tag `type`: "poly", "steinhart" or "linear-rt".
class ConfigCfgAuxType : public ConfigurableMultipleChoice {
public:
    ConfigCfgAuxType();
};

/// One auxiliary input, `aux1` to `aux8`: the conversion and its coefficients.
class ConfigCfgAux : public ConfigurableComposite {
public:
    explicit ConfigCfgAux(const std::string& name);

    ConfigCfgAuxType& Type() { return _type; }
    ConfigurableFloat& A0() { return _a0; }
    ConfigurableFloat& A1() { return _a1; }
    ConfigurableFloat& A2() { return _a2; }
    ConfigurableFloat& A3() { return _a3; }

private:
    ConfigCfgAuxType _type;
    ConfigurableFloat _a0{"a0", 0};
    ConfigurableFloat _a1{"a1", 1};
    ConfigurableFloat _a2{"a2", 0};
    ConfigurableFloat _a3{"a3", 0};
};

/// What an analogue output follows, tag `src`: "set" (a fixed voltage) or one of the data columns.
class ConfigCfgDacSrc : public ConfigurableMultipleChoice {
public:
    explicit ConfigCfgDacSrc(int default_index);
};

/// One analogue output, `dac1` to `dac6`: its source and the source values of the two ends.
class ConfigCfgDac : public ConfigurableComposite {
public:
    ConfigCfgDac(const std::string& name, int src_index);

    /// Volts while `src` is "set".
    ConfigurableFloat& Set() { return _set; }
    ConfigCfgDacSrc& Src() { return _src; }
    ConfigurableFloat& Low() { return _low; }
    ConfigurableFloat& High() { return _high; }

private:
    ConfigurableFloat _set{"set", 0, -5, 5, false};
    ConfigCfgDacSrc _src;
    ConfigurableFloat _low{"low", 0};
    ConfigurableFloat _high{"high", 0};
};

/// The top (window) heater, tag `top`.
class ConfigTopHeater : public ConfigurableComposite {
public:
    ConfigTopHeater();

    ConfigurableInteger& Heaterpower() { return _heaterpower; }
    ConfigControl& Control() { return _control; }
    ConfigurableTime_HourMinutes& Ontime() { return _ontime; }
    ConfigurableTime_HourMinutes& Offtime() { return _offtime; }
    ConfigurableFloat& Deltat() { return _deltat; }

private:
    ConfigurableInteger _heaterpower{"heaterpower", 100, 0, 100};
    ConfigControl _control;
    ConfigurableTime_HourMinutes _ontime{"ontime", Timestamp(0)};
    ConfigurableTime_HourMinutes _offtime{"offtime", Timestamp(0)};
    ConfigurableFloat _deltat{"deltat", 0, -5, 5, false};
};

/// The bottom heater, tag `bottom`; it follows the signal strength instead of a temperature step.
class ConfigBottomHeater : public ConfigurableComposite {
public:
    ConfigBottomHeater();

    ConfigurableInteger& Heaterpower() { return _heaterpower; }
    ConfigControl& Control() { return _control; }
    ConfigurableTime_HourMinutes& Ontime() { return _ontime; }
    ConfigurableTime_HourMinutes& Offtime() { return _offtime; }
    ConfigurableInteger& Signalstrengthlevel() { return _signalstrengthlevel; }

private:
    ConfigurableInteger _heaterpower{"heaterpower", 100, 0, 100};
    ConfigControl _control;
    ConfigurableTime_HourMinutes _ontime{"ontime", Timestamp(0)};
    ConfigurableTime_HourMinutes _offtime{"offtime", Timestamp(0)};
    ConfigurableInteger _signalstrengthlevel{"signalstrengthlevel", 40, 0, 100};
};

/// The two heaters, tag `heater`.
class ConfigHeater : public ConfigurableComposite {
public:
    ConfigHeater();

    ConfigTopHeater& Top() { return _top; }
    ConfigBottomHeater& Bottom() { return _bottom; }

private:
    ConfigTopHeater _top;
    ConfigBottomHeater _bottom;
};

/// The spin mirror that clears the optics, tag `spinmirror`. `repeatinterval` is a length of time
/// kept in a time-of-day leaf: seconds from midnight, written as hours and minutes.
class ConfigSpinMirror : public ConfigurableComposite {
public:
    ConfigSpinMirror();

    ConfigControl& Control() { return _control; }
    ConfigurableTime_HourMinutes& Ontime() { return _ontime; }
    ConfigurableTime_HourMinutes& Offtime() { return _offtime; }
    ConfigurableInteger& Duration() { return _duration; }
    ConfigurableTime_HourMinutes& Repeatinterval() { return _repeatinterval; }
    ConfigurableInteger& Signalstrengthlevel() { return _signalstrengthlevel; }

private:
    ConfigControl _control;
    ConfigurableTime_HourMinutes _ontime{"ontime", Timestamp(0)};
    ConfigurableTime_HourMinutes _offtime{"offtime", Timestamp(0)};
    ConfigurableInteger _duration{"duration", 30, 0, 300};
    ConfigurableTime_HourMinutes _repeatinterval{"repeatinterval", Timestamp(1800)};
    ConfigurableInteger _signalstrengthlevel{"signalstrengthlevel", 40, 0, 100};
};

/// Laser cooler mode, tag `control`: "auto", "manual" or "daccount".
class ConfigLaserCoolerAutoManual : public ConfigurableMultipleChoice {
public:
    ConfigLaserCoolerAutoManual();
};

/// Laser block mode, tag `control`: "off", "on" or "daccount"; "on" by default.
class ConfigLaserBlockOnOff : public ConfigurableMultipleChoice {
public:
    ConfigLaserBlockOnOff();
};

/// The laser's own cooler, tag `lasercooler`. The wide scan steps the laser through `temp`.
class ConfigLaserCooler : public ConfigurableComposite {
public:
    ConfigLaserCooler();

    ConfigLaserCoolerAutoManual& Control() { return _control; }
    ConfigurableFloat& Temp() { return _temp; }
    ConfigurableInteger& Daccount() { return _daccount; }

private:
    ConfigLaserCoolerAutoManual _control;
    ConfigurableFloat _temp{"temp", 25, 0, 50, false};
    ConfigurableInteger _daccount{"daccount", 0, 0, 65535};
};

/// The temperature of the block the laser sits in, tag `laserblock`.
class ConfigLaserBlock : public ConfigurableComposite {
public:
    ConfigLaserBlock();

    ConfigLaserBlockOnOff& Control() { return _control; }
    ConfigurableFloat& Temp() { return _temp; }
    ConfigurableInteger& Daccount() { return _daccount; }

private:
    ConfigLaserBlockOnOff _control;
    ConfigurableFloat _temp{"temp", 22, 0, 50, false};
    ConfigurableInteger _daccount{"daccount", 0, 0, 65535};
};

/// What keeps the laser on the methane line, tag `linelock`.
class ConfigLineLock : public ConfigurableComposite {
public:
    ConfigLineLock();

    ConfigLaserCooler& Lasercooler() { return _lasercooler; }
    ConfigLaserBlock& Laserblock() { return _laserblock; }

private:
    ConfigLaserCooler _lasercooler;
    ConfigLaserBlock _laserblock;
};

/// The Tolvan's settings, tag `cfg`.
class ConfigCfg : public ConfigurableComposite {
public:
    ConfigCfg();

    ConfigCfgTempRange& Temprange() { return _temprange; }
    ConfigCfgClock& Clock() { return _clock; }
    ConfigCfgNetwork& Network() { return _network; }
    /// `aux1` to `aux8`; throws std::runtime_error "Invalid Auxilliary: n" for any other n.
    ConfigCfgAux& Aux(unsigned n);
    /// `dac1` to `dac6`; throws std::runtime_error "Invalid Dac: n" for any other n.
    ConfigCfgDac& Dac(unsigned n);
    ConfigHeater& Heater() { return _heater; }
    ConfigLineLock& Linelock() { return _linelock; }
    ConfigSpinMirror& Spinmirror() { return _spinmirror; }
    ConfigurableInteger& Sdmaddress() { return _sdmaddress; }

private:
    ConfigCfgTempRange _temprange;
    ConfigCfgClock _clock;
    ConfigCfgNetwork _network;
    std::vector<std::shared_ptr<ConfigCfgAux>> _aux;
    std::vector<std::shared_ptr<ConfigCfgDac>> _dac;
    ConfigHeater _heater;
    ConfigLineLock _linelock;
    ConfigSpinMirror _spinmirror;
    ConfigurableInteger _sdmaddress{"sdmaddress", 0, 0, 15};
};

// --- cal ---

/// One step of the calibration history, tag `record` unless the list names it.
class ConfigCalRecord : public ConfigurableComposite {
public:
    explicit ConfigCalRecord(const std::string& name);
    ConfigCalRecord(const Timestamp& time, const std::string& type, float zero, float span);
    /// A record of the same name with the other's values and flags, standing alone.
    ConfigCalRecord(const ConfigCalRecord& other);
    /// Takes the other's values and flags; keeps its own name.
    ConfigCalRecord& operator=(const ConfigCalRecord& other);

    ConfigurableTimestamp& Time() { return _time; }
    const ConfigurableTimestamp& Time() const { return _time; }
    /// What was done: contains "CH4 Zero" or "CH4 Span".
    ConfigurableString& Type() { return _type; }
    ConfigurableFloat& Ch4zero() { return _ch4zero; }
    ConfigurableFloat& Ch4span() { return _ch4span; }

private:
    ConfigurableTimestamp _time{"time", Timestamp(0)};
    ConfigurableString _type{"type", ""};
    ConfigurableFloat _ch4zero{"ch4zero", 0};
    ConfigurableFloat _ch4span{"ch4span", 1};
};

/// The calibration history, tag `history`. Records are keyed by their time alone: two records of
/// one instant count as the same whatever their type.
class ConfigCalHistory : public ConfigurableCompositeDynamic<ConfigCalRecord> {
public:
    ConfigCalHistory();

    /// Keeps only the last "CH4 Span" record whose time is exactly `lastspan` and the last
    /// "CH4 Zero" record whose time is exactly `lastzero`, span first. Records with no such match
    /// are dropped, however new.
    void ClearOldRecords(const Timestamp& lastzero, const Timestamp& lastspan);

protected:
    ConfigCalRecord* _create(const std::string& name) override { return new ConfigCalRecord(name); }
    void _copy(ConfigCalRecord& to, const ConfigCalRecord& from) override { to = from; }
    bool _is_same(const ConfigCalRecord& a, const ConfigCalRecord& b) const override;
};

/// The calibration state, tag `cal`: current coefficients, span gas, when each was last taken.
class ConfigCal : public ConfigurableComposite {
public:
    ConfigCal();

    ConfigurableFloat& Ch4zero() { return _ch4zero; }
    ConfigurableFloat& Ch4span() { return _ch4span; }
    ConfigurableFloat& Ch4spanconc() { return _ch4spanconc; }
    ConfigurableTimestamp& Ch4lastzero() { return _ch4lastzero; }
    ConfigurableTimestamp& Ch4lastspan() { return _ch4lastspan; }
    ConfigCalHistory& History() { return _history; }

    /// Clears the history down to the records of the last zero and the last span.
    void ClearOldHistoryRecords() { _history.ClearOldRecords(_ch4lastzero.get(), _ch4lastspan.get()); }

private:
    ConfigurableFloat _ch4zero{"ch4zero", 0};
    ConfigurableFloat _ch4span{"ch4span", 1};
    ConfigurableFloat _ch4spanconc{"ch4spanconc", 2};
    ConfigurableTimestamp _ch4lastzero{"ch4lastzero", Timestamp(0)};
    ConfigurableTimestamp _ch4lastspan{"ch4lastspan", Timestamp(0)};
    ConfigCalHistory _history;
};

// --- cmd, cpld, factory ---

/// The one-shot commands, tag `cmd`. A command is true only in the message that carries it.
class ConfigCmd : public ConfigurableComposite {
public:
    ConfigCmd();

    ConfigurableBool& Poll() { return _poll; }
    ConfigurableBool& Ch4zero() { return _ch4zero; }
    /// Takes a span at `cal`/`ch4spanconc`.
    ConfigurableBool& Ch4span() { return _ch4span; }
    ConfigurableBool& Calcommit() { return _calcommit; }
    ConfigurableBool& Calrollback() { return _calrollback; }
    ConfigurableBool& Calabort() { return _calabort; }
    ConfigurableBool& Logusbstart() { return _logusbstart; }
    ConfigurableBool& Logusbstop() { return _logusbstop; }
    ConfigurableBool& Reboot() { return _reboot; }
    ConfigurableBool& Polltest() { return _polltest; }
    ConfigurableBool& Linelock() { return _linelock; }

private:
    ConfigurableBool _poll{"poll", false};
    ConfigurableBool _ch4zero{"ch4zero", false};
    ConfigurableBool _ch4span{"ch4span", false};
    ConfigurableBool _calcommit{"calcommit", false};
    ConfigurableBool _calrollback{"calrollback", false};
    ConfigurableBool _calabort{"calabort", false};
    ConfigurableBool _logusbstart{"logusbstart", false};
    ConfigurableBool _logusbstop{"logusbstop", false};
    ConfigurableBool _reboot{"reboot", false};
    ConfigurableBool _polltest{"polltest", false};
    ConfigurableBool _linelock{"linelock", false};
};

/// The CPLD's mirror motor, tag `motor`.
class ConfigCPLDMotor : public ConfigurableComposite {
public:
    ConfigCPLDMotor();

    ConfigurableInteger& Control() { return _control; }
    ConfigurableInteger& Desired_pos() { return _desired_pos; }
    ConfigurableInteger& Actual_pos() { return _actual_pos; }

private:
    ConfigurableInteger _control{"control", 0};
    ConfigurableInteger _desired_pos{"desired_pos", 0};
    ConfigurableInteger _actual_pos{"actual_pos", 0};
};

/// The CPLD's view, tag `cpld`.
class ConfigCPLD : public ConfigurableComposite {
public:
    ConfigCPLD();

    ConfigurableString& Ver() { return _ver; }
    ConfigCPLDMotor& Motor() { return _motor; }

private:
    ConfigurableString _ver{"ver", ""};
    ConfigCPLDMotor _motor;
};

/// The factory values, tag `factory`, with their own commit and rollback.
class ConfigFactory : public ConfigurableComposite {
public:
    ConfigFactory();

    ConfigurableString& Serialnumber() { return _serialnumber; }
    ConfigurableInteger& Lasermoddepth() { return _lasermoddepth; }
    ConfigurableFloat& Laserstarttemp() { return _laserstarttemp; }
    ConfigurableFloat& Blockstarttemp() { return _blockstarttemp; }
    ConfigurableFloat& Blockstarttemplowrange() { return _blockstarttemplowrange; }
    ConfigurableFloat& Rssidropthresh() { return _rssidropthresh; }
    ConfigurableFloat& Pzero() { return _pzero; }
    ConfigurableFloat& Pspan() { return _pspan; }
    ConfigurableInteger& Samplegain() { return _samplegain; }
    ConfigurableInteger& Refgain() { return _refgain; }
    ConfigurableInteger& Mirrorpos() { return _mirrorpos; }
    ConfigurableInteger& Offset1() { return _offset1; }
    ConfigurableInteger& Delta1() { return _delta1; }
    ConfigurableInteger& Offset2() { return _offset2; }
    ConfigurableInteger& Delta2() { return _delta2; }
    ConfigurableInteger& Dither() { return _dither; }
    ConfigurableInteger& Sampledcoffset() { return _sampledcoffset; }
    ConfigurableInteger& Sampleacoffset() { return _sampleacoffset; }
    ConfigurableInteger& Sampleopticaloffset() { return _sampleopticaloffset; }
    ConfigFactoryCmd& Cmd() { return _cmd; }

private:
    ConfigurableString _serialnumber{"serialnumber", "ch4-XXXX"};
    ConfigurableInteger _lasermoddepth{"lasermoddepth", 7000};
    ConfigurableFloat _laserstarttemp{"laserstarttemp", 22, 0, 50, false};
    ConfigurableFloat _blockstarttemp{"blockstarttemp", 30, 0, 50, false};
    ConfigurableFloat _blockstarttemplowrange{"blockstarttemplowrange", 5, 0, 50, false};
    ConfigurableFloat _rssidropthresh{"rssidropthresh", 1, 0, 100, false};
    ConfigurableFloat _pzero{"pzero", 0};
    ConfigurableFloat _pspan{"pspan", 1};
    ConfigurableInteger _samplegain{"samplegain", 0, 0};
    ConfigurableInteger _refgain{"refgain", 0, 0};
    ConfigurableInteger _mirrorpos{"mirrorpos", 0, 0, 1023};
    ConfigurableInteger _offset1{"offset1", 0, 0, 65535};
    ConfigurableInteger _delta1{"delta1", 0, 0, 65535};
    ConfigurableInteger _offset2{"offset2", 0, 0, 65535};
    ConfigurableInteger _delta2{"delta2", 0, 0, 65535};
    ConfigurableInteger _dither{"dither", 0, 0, 65535};
    ConfigurableInteger _sampledcoffset{"sampledcoffset", 0, 0, 65535};
    ConfigurableInteger _sampleacoffset{"sampleacoffset", 0, -32768, 32767};
    ConfigurableInteger _sampleopticaloffset{"sampleopticaloffset", 0, -32768, 32767};
    ConfigFactoryCmd _cmd;
};

// --- the model and the document ---

/// The model node, tag `tolvan`.
class ConfigTolvan : public ConfigModel {
public:
    ConfigTolvan();

    ConfigOutput& Output() { return _output; }
    ConfigBox& Box() { return _box; }
    ConfigCfg& Cfg() { return _cfg; }
    ConfigCal& Cal() { return _cal; }
    ConfigCmd& Cmd() { return _cmd; }
    ConfigCPLD& Cpld() { return _cpld; }
    ConfigFactory& Factory() { return _factory; }

    /// Whether a setting worth keeping has changed: output, box, cfg, cal, factory or one of the
    /// reported texts. Commands and the CPLD view never count.
    bool IsConfigChanged() const;

private:
    ConfigOutput _output;
    ConfigBox _box;
    ConfigCfg _cfg;
    ConfigCal _cal;
    ConfigCmd _cmd;
    ConfigCPLD _cpld;
    ConfigFactory _factory;
};

/// What a served Tolvan document reports after each message. Times are whole seconds: of the day
/// for ontime and offtime, a length for repeatinterval.
class DocTolvanListener {
public:
    virtual ~DocTolvanListener() = default;

    virtual void OnTempRange(int index) = 0;
    virtual void OnRate(int hz) = 0;
    virtual void OnCH4Zero() = 0;
    virtual void OnCH4Span(float concentration) = 0;
    virtual void OnCalCommit() = 0;
    virtual void OnCalRollback() = 0;
    virtual void OnCalAbort() = 0;
    virtual void OnCalChanged() = 0;
    virtual void OnPoll() = 0;
    virtual void OnPollTest() = 0;
    virtual void OnLineLock() = 0;
    virtual void OnLogUSBStart() = 0;
    virtual void OnLogUSBStop() = 0;
    virtual void OnTopHeater(int64_t heaterpower, int control, long ontime, long offtime, float deltat) = 0;
    virtual void OnBottomHeater(int64_t heaterpower, int control, int64_t signalstrengthlevel, long ontime,
                                long offtime) = 0;
    virtual void OnSpinMirror(int control, int64_t signalstrengthlevel, long ontime, long offtime,
                              int64_t duration, long repeatinterval) = 0;
    virtual void OnLineLockChanged(int cooler_control, int64_t cooler_daccount, int block_control,
                                   int64_t block_daccount, float cooler_temp, float block_temp) = 0;
    virtual void OnSetTime(std::time_t t) = 0;
    virtual void OnTimeZone(const std::string& zone) = 0;
    virtual void OnPTP(int index) = 0;
    virtual void OnNetwork(const std::string& name, bool automatic, const SocketAddress& ipaddress,
                           const SocketAddress& netmask, const SocketAddress& gateway) = 0;
    /// `n` counts from 1.
    virtual void OnAux(unsigned n, int type, float a0, float a1, float a2, float a3) = 0;
    virtual void OnFactoryChanged() = 0;
    virtual void OnFactoryCommit() = 0;
    virtual void OnFactoryRollback() = 0;
    virtual void OnReboot() = 0;
    /// A setting that the instrument keeps across restarts has changed; sent after the section
    /// events and before the commands.
    virtual void OnConfigChanged() = 0;
};

/// The Tolvan document, root `arvex`.
class DocTolvan : public Document<ConfigTolvan> {
public:
    /// The listener of configure_and_send_events, not owned; null (none) to start with.
    void SetListener(DocTolvanListener* listener) { _listener = listener; }

    /// Serves one message: resets the commands, applies the message, then tells the listener what
    /// the changed flags say, sections before commands. The changed flags are left for the caller
    /// to clear once it has acted. Throws std::runtime_error when the clock's changed date or
    /// time cannot be read.
    std::istream& configure_and_send_events(std::istream& in, std::ostream& out);

private:
    DocTolvanListener* _listener = nullptr;
};
