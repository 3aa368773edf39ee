#include "libskarn/doctolvan.h"

#include <algorithm>
#include <cctype>
#include <istream>
#include <map>
#include <stdexcept>

namespace {

long whole_seconds(const ConfigurableTimestamp& leaf)
{
    return static_cast<long>(leaf.get().get());
}

}  // namespace

// --- output ---

const std::vector<std::string>& ConfigOutput::_rate_texts()
{
    static const std::vector<std::string> texts{"0", "1", "2", "5", "10", "20", "40"};
    return texts;
}

const std::vector<int>& ConfigOutput::_rate_hz()
{
    static const std::vector<int> hz{0, 1, 2, 5, 10, 20, 40};
    return hz;
}

ConfigOutput::ConfigOutput() : ConfigurableComposite("output")
{
    add(_rate);
    add(_waveforms);
    add(_status);
    add(_dataclock);
    add(_dataclocksync);
}

// --- box ---

ConfigBoxData::ConfigBoxData(bool with_date)
    : ConfigurableComposite("data"), _date("date", with_date), _time("time", with_date),
      _columns{&_msec, &_seconds, &_nanoseconds, &_diag, &_ch4, &_ch4d, &_temp, &_pressure,
               &_rssi, &_droprate, &_aux1, &_aux2, &_aux3, &_aux4, &_aux5, &_aux6,
               &_aux7, &_aux8, &_auxtc1, &_auxtc2, &_auxtc3, &_chk, &_date, &_time}
{
    // The time stamp and the checksum are always sent, whatever a message says.
    _seconds.set_read_blocked(true);
    _nanoseconds.set_read_blocked(true);
    _chk.set_read_blocked(true);
    for (ConfigurableBool* column : _columns)
        if (with_date || (column != &_date && column != &_time))
            add(*column);
}

void ConfigBoxData::GetTrueSet(std::set<std::string>& columns) const
{
    columns.clear();
    for (const ConfigurableBool* column : _columns) {
        if (!column->get())
            continue;
        std::string name = column->name();
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
        columns.insert(name);
    }
}

ConfigBoxOutput::ConfigBoxOutput() : ConfigurableComposite("output")
{
    add(_data);
    add(_waveforms);
    add(_status);
    add(_dataclock);
}

namespace {

const std::vector<std::string>& usb_status_options()
{
    static const std::vector<std::string> options{"same_file", "separate_file", "off"};
    return options;
}

const std::vector<std::string>& usb_split_minutes()
{
    static const std::vector<std::string> options{"0", "15", "30", "60", "90", "120", "180", "240", "1440"};
    return options;
}

const std::vector<int>& usb_split_seconds()
{
    static const std::vector<int> seconds = [] {
        std::vector<int> s;
        for (const std::string& minutes : usb_split_minutes())
            s.push_back(std::stoi(minutes) * 60);
        return s;
    }();
    return seconds;
}

}  // namespace

ConfigBoxUSBStatus::ConfigBoxUSBStatus() : ConfigurableMultipleChoice("status", usb_status_options(), 0) {}

ConfigBoxUSBSplit::ConfigBoxUSBSplit() : ConfigurableMultipleChoice("split", usb_split_minutes(), 0) {}

int ConfigBoxUSBSplit::get_seconds() const
{
    return usb_split_seconds()[get()];
}

ConfigBoxUSB::ConfigBoxUSB() : ConfigurableComposite("usb")
{
    add(_data);
    add(_status);
    add(_split);
    add(_zip);
}

ConfigBox::ConfigBox() : ConfigurableComposite("box")
{
    add(_output);
    add(_usb);
}

// --- cfg ---

namespace {

const std::vector<std::string>& temprange_options()
{
    static const std::vector<std::string> options{"low", "high"};
    return options;
}

const std::vector<std::string>& aux_type_options()
{
    static const std::vector<std::string> options{"poly", "steinhart", "linear-rt"};
    return options;
}

const std::vector<std::string>& dac_src_options()
{
    static const std::vector<std::string> options{
        "set",  "ch4d", "ch4",  "temp", "pressure", "rssi",   "droprate", "aux1",   "aux2",
        "aux3", "aux4", "aux5", "aux6", "aux7",     "aux8",   "auxtc1",   "auxtc2", "auxtc3"};
    return options;
}

const std::vector<std::string>& laser_cooler_options()
{
    static const std::vector<std::string> options{"auto", "manual", "daccount"};
    return options;
}

const std::vector<std::string>& laser_block_options()
{
    static const std::vector<std::string> options{"off", "on", "daccount"};
    return options;
}

}  // namespace

ConfigCfgTempRange::ConfigCfgTempRange() : ConfigurableMultipleChoice("temprange", temprange_options(), 1) {}

void ConfigCfgTempRange::read(std::istream& in, std::ostream& err)
{
    ConfigurableMultipleChoice::read(in, err);
    _set_changed(true);
}

ConfigCfgAuxType::ConfigCfgAuxType() : ConfigurableMultipleChoice("type", aux_type_options(), 0) {}

ConfigCfgAux::ConfigCfgAux(const std::string& name) : ConfigurableComposite(name)
{
    add(_type);
    add(_a0);
    add(_a1);
    add(_a2);
    add(_a3);
}

ConfigCfgDacSrc::ConfigCfgDacSrc(int default_index)
    : ConfigurableMultipleChoice("src", dac_src_options(), default_index)
{
}

ConfigCfgDac::ConfigCfgDac(const std::string& name, int src_index) : ConfigurableComposite(name), _src(src_index)
{
    add(_set);
    add(_src);
    add(_low);
    add(_high);
}

ConfigTopHeater::ConfigTopHeater() : ConfigurableComposite("top")
{
    add(_heaterpower);
    add(_control);
    add(_ontime);
    add(_offtime);
    add(_deltat);
}

ConfigBottomHeater::ConfigBottomHeater() : ConfigurableComposite("bottom")
{
    add(_heaterpower);
    add(_control);
    add(_ontime);
    add(_offtime);
    add(_signalstrengthlevel);
}

ConfigHeater::ConfigHeater() : ConfigurableComposite("heater")
{
    add(_top);
    add(_bottom);
}

ConfigSpinMirror::ConfigSpinMirror() : ConfigurableComposite("spinmirror")
{
    add(_control);
    add(_ontime);
    add(_offtime);
    add(_duration);
    add(_repeatinterval);
    add(_signalstrengthlevel);
}

ConfigLaserCoolerAutoManual::ConfigLaserCoolerAutoManual()
    : ConfigurableMultipleChoice("control", laser_cooler_options(), 0)
{
}

ConfigLaserBlockOnOff::ConfigLaserBlockOnOff() : ConfigurableMultipleChoice("control", laser_block_options(), 1) {}

ConfigLaserCooler::ConfigLaserCooler() : ConfigurableComposite("lasercooler")
{
    add(_control);
    add(_temp);
    add(_daccount);
}

ConfigLaserBlock::ConfigLaserBlock() : ConfigurableComposite("laserblock")
{
    add(_control);
    add(_temp);
    add(_daccount);
}

ConfigLineLock::ConfigLineLock() : ConfigurableComposite("linelock")
{
    add(_lasercooler);
    add(_laserblock);
}

ConfigCfg::ConfigCfg() : ConfigurableComposite("cfg")
{
    // Default sources of dac1 to dac6: ch4d, temp, pressure, rssi, droprate, ch4.
    static const int dac_sources[] = {1, 3, 4, 5, 6, 2};
    for (unsigned n = 1; n <= 8; ++n)
        _aux.push_back(std::make_shared<ConfigCfgAux>("aux" + std::to_string(n)));
    for (unsigned n = 1; n <= 6; ++n)
        _dac.push_back(std::make_shared<ConfigCfgDac>("dac" + std::to_string(n), dac_sources[n - 1]));

    add(_temprange);
    add(_clock);
    add(_network);
    for (auto& aux : _aux)
        add(*aux);
    for (auto& dac : _dac)
        add(*dac);
    add(_heater);
    add(_linelock);
    add(_spinmirror);
    add(_sdmaddress);
}

ConfigCfgAux& ConfigCfg::Aux(unsigned n)
{
    if (n == 0 || n > _aux.size())
        throw std::runtime_error("Invalid Auxilliary: " + std::to_string(n));
    return *_aux[n - 1];
}

ConfigCfgDac& ConfigCfg::Dac(unsigned n)
{
    if (n == 0 || n > _dac.size())
        throw std::runtime_error("Invalid Dac: " + std::to_string(n));
    return *_dac[n - 1];
}

// --- cal ---

ConfigCalRecord::ConfigCalRecord(const std::string& name) : ConfigurableComposite(name)
{
    add(_time);
    add(_type);
    add(_ch4zero);
    add(_ch4span);
}

ConfigCalRecord::ConfigCalRecord(const Timestamp& time, const std::string& type, float zero, float span)
    : ConfigCalRecord("record")
{
    _time.set(time);
    _type.set(type);
    _ch4zero.set(zero);
    _ch4span.set(span);
}

ConfigCalRecord::ConfigCalRecord(const ConfigCalRecord& other) : ConfigCalRecord(other.name())
{
    *this = other;
}

ConfigCalRecord& ConfigCalRecord::operator=(const ConfigCalRecord& other)
{
    if (this == &other)
        return *this;
    _time.set(other._time.get());
    _type.set(other._type.get());
    _ch4zero.set(other._ch4zero.get());
    _ch4span.set(other._ch4span.get());
    _time.set_flags(other._time.flags());
    _type.set_flags(other._type.flags());
    _ch4zero.set_flags(other._ch4zero.flags());
    _ch4span.set_flags(other._ch4span.flags());
    set_flags(other.flags());
    return *this;
}

ConfigCalHistory::ConfigCalHistory() : ConfigurableCompositeDynamic("history") {}

bool ConfigCalHistory::_is_same(const ConfigCalRecord& a, const ConfigCalRecord& b) const
{
    return a.Time().get().get() == b.Time().get().get();
}

void ConfigCalHistory::ClearOldRecords(const Timestamp& lastzero, const Timestamp& lastspan)
{
    // Keyed by kind, so that span comes out before zero and a later match replaces an earlier one.
    std::map<std::string, ConfigCalRecord> kept;
    for (Configurable* child : children()) {
        auto* record = dynamic_cast<ConfigCalRecord*>(child);
        if (!record || record->Type().get().empty())
            continue;
        const std::string& type = record->Type().get();
        const double time = record->Time().get().get();
        const char* key = nullptr;
        if (type.find("CH4 Zero") != std::string::npos && time == lastzero.get())
            key = "CH4 Zero";
        else if (type.find("CH4 Span") != std::string::npos && time == lastspan.get())
            key = "CH4 Span";
        if (!key)
            continue;
        kept.erase(key);
        kept.emplace(key, *record);
    }
    clear();
    for (const auto& entry : kept) {
        ConfigCalRecord* record = _create(entry.second.name());
        *record = entry.second;
        add(*record);
    }
}

ConfigCal::ConfigCal() : ConfigurableComposite("cal")
{
    add(_ch4zero);
    add(_ch4span);
    add(_ch4spanconc);
    add(_ch4lastzero);
    add(_ch4lastspan);
    add(_history);
}

// --- cmd, cpld, factory ---

ConfigCmd::ConfigCmd() : ConfigurableComposite("cmd")
{
    for (ConfigurableBool* command : {&_poll, &_ch4zero, &_ch4span, &_calcommit, &_calrollback, &_calabort,
                                      &_logusbstart, &_logusbstop, &_reboot, &_polltest, &_linelock})
        add(*command);
}

ConfigCPLDMotor::ConfigCPLDMotor() : ConfigurableComposite("motor")
{
    add(_control);
    add(_desired_pos);
    add(_actual_pos);
}

ConfigCPLD::ConfigCPLD() : ConfigurableComposite("cpld")
{
    add(_ver);
    add(_motor);
}

ConfigFactory::ConfigFactory() : ConfigurableComposite("factory")
{
    add(_serialnumber);
    add(_lasermoddepth);
    add(_laserstarttemp);
    add(_blockstarttemp);
    add(_blockstarttemplowrange);
    add(_rssidropthresh);
    add(_pzero);
    add(_pspan);
    add(_samplegain);
    add(_refgain);
    add(_mirrorpos);
    add(_offset1);
    add(_delta1);
    add(_offset2);
    add(_delta2);
    add(_dither);
    add(_sampledcoffset);
    add(_sampleacoffset);
    add(_sampleopticaloffset);
    add(_cmd);
}

// --- the model and the document ---

ConfigTolvan::ConfigTolvan() : ConfigModel("tolvan")
{
    _add_opening_nodes(_factory.Serialnumber());
    add(_output);
    add(_box);
    add(_cfg);
    add(_cal);
    add(_cmd);
    add(_cpld);
    add(_factory);
    _add_closing_nodes();
}

bool ConfigTolvan::IsConfigChanged() const
{
    if (!has_changed())
        return false;
    for (const char* tag : {"output", "box", "cfg", "cal", "factory", "ver", "name", "serialnumber", "ipaddress"})
        if (lookup(tag)->has_changed())
            return true;
    return false;
}

std::istream& DocTolvan::configure_and_send_events(std::istream& in, std::ostream& out)
{
    ConfigTolvan& conf = Conf();
    conf.Cmd().set_to_default();
    conf.Factory().Cmd().set_to_default();
    configure(in, out);
    if (!_listener)
        return in;
    DocTolvanListener& listener = *_listener;

    bool save_needed = conf.Box().has_changed();
    if (conf.Cal().has_changed())
        listener.OnCalChanged();

    ConfigOutput& output = conf.Output();
    if (output.has_changed() && output.Rate().has_changed()) {
        listener.OnRate(output.Rate().get_rate());
        save_needed = true;
    }

    ConfigCfg& cfg = conf.Cfg();
    if (cfg.has_changed()) {
        if (cfg.Temprange().has_changed()) {
            listener.OnTempRange(cfg.Temprange().get());
            save_needed = true;
        }
        if (cfg.Heater().has_changed()) {
            ConfigBottomHeater& bottom = cfg.Heater().Bottom();
            if (bottom.has_changed())
                listener.OnBottomHeater(bottom.Heaterpower().get(), bottom.Control().get(),
                                        bottom.Signalstrengthlevel().get(), whole_seconds(bottom.Ontime()),
                                        whole_seconds(bottom.Offtime()));
            ConfigTopHeater& top = cfg.Heater().Top();
            if (top.has_changed())
                listener.OnTopHeater(top.Heaterpower().get(), top.Control().get(), whole_seconds(top.Ontime()),
                                     whole_seconds(top.Offtime()), top.Deltat().get());
            save_needed = true;
        }
        ConfigSpinMirror& mirror = cfg.Spinmirror();
        if (mirror.has_changed()) {
            listener.OnSpinMirror(mirror.Control().get(), mirror.Signalstrengthlevel().get(),
                                  whole_seconds(mirror.Ontime()), whole_seconds(mirror.Offtime()),
                                  mirror.Duration().get(), whole_seconds(mirror.Repeatinterval()));
            save_needed = true;
        }
        ConfigLineLock& linelock = cfg.Linelock();
        if (linelock.has_changed()) {
            ConfigLaserCooler& cooler = linelock.Lasercooler();
            ConfigLaserBlock& block = linelock.Laserblock();
            listener.OnLineLockChanged(cooler.Control().get(), cooler.Daccount().get(), block.Control().get(),
                                       block.Daccount().get(), cooler.Temp().get(), block.Temp().get());
        }
        ConfigCfgClock& clock = cfg.Clock();
        if (clock.has_changed()) {
            if (clock.Time().has_changed() || clock.Date().has_changed())
                listener.OnSetTime(clock.TimeDate());
            if (clock.Zone().has_changed())
                listener.OnTimeZone(clock.Zone().get_str());
            if (clock.Ptp().has_changed())
                listener.OnPTP(clock.Ptp().get());
        }
        ConfigCfgNetwork& network = cfg.Network();
        if (network.has_changed())
            listener.OnNetwork(network.Name().get(), network.Configuration().get() == 0, network.Ipaddress().get(),
                               network.Netmask().get(), network.Gateway().get());
        for (unsigned n = 1; n <= 8; ++n) {
            ConfigCfgAux& aux = cfg.Aux(n);
            if (aux.has_changed()) {
                listener.OnAux(n, aux.Type().get(), aux.A0().get(), aux.A1().get(), aux.A2().get(), aux.A3().get());
                save_needed = true;
            }
        }
        for (unsigned n = 1; n <= 6; ++n)
            if (cfg.Dac(n).has_changed())
                save_needed = true;
    }

    ConfigFactory& factory = conf.Factory();
    if (factory.has_changed()) {
        if (factory.Cmd().has_changed()) {
            if (factory.Cmd().Commit().get())
                listener.OnFactoryCommit();
            if (factory.Cmd().Rollback().get())
                listener.OnFactoryRollback();
        }
        listener.OnFactoryChanged();
    }

    if (save_needed)
        listener.OnConfigChanged();

    ConfigCmd& cmd = conf.Cmd();
    if (cmd.has_changed()) {
        if (cmd.Linelock().get())
            listener.OnLineLock();
        if (cmd.Poll().get())
            listener.OnPoll();
        if (cmd.Polltest().get())
            listener.OnPollTest();
        if (cmd.Ch4zero().get())
            listener.OnCH4Zero();
        if (cmd.Ch4span().get())
            listener.OnCH4Span(conf.Cal().Ch4spanconc().get());
        if (cmd.Calcommit().get())
            listener.OnCalCommit();
        if (cmd.Calrollback().get())
            listener.OnCalRollback();
        if (cmd.Calabort().get())
            listener.OnCalAbort();
        if (cmd.Logusbstart().get())
            listener.OnLogUSBStart();
        if (cmd.Logusbstop().get())
            listener.OnLogUSBStop();
        if (cmd.Reboot().get())
            listener.OnReboot();
    }
    return in;
}
