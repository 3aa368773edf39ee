#include "sim/sim_instrument.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "configurable/configcomposite.h"
#include "libskarn/configcommon.h"
#include "libskarn/document.h"
#include "sim/sim_bremmel.h"
#include "sim/sim_dravik.h"
#include "sim/sim_halden.h"
#include "sim/sim_morvik.h"
#include "sim/sim_ostrel.h"
#include "sim/sim_quenta.h"
#include "sim/sim_tolvan.h"

namespace {

double unix_time_now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// A reply is one line on the wire; a line end inside it (some error texts end with one) would
// start a line that is no message.
std::string one_line(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\r', ' ');
    return text;
}

std::string compact_text(const Configurable& node, std::ostream& (Configurable::*write)(std::ostream&) const)
{
    std::ostringstream out;
    Configurable::set_compact(out, true);
    (node.*write)(out);
    return out.str();
}

// Whether `node` holds a change once the command sections are left out. Marks that only the
// commands left are cleared, so that `changed` writes settings alone.
bool settle(Configurable& node, const std::vector<ConfigurableComposite*>& commands)
{
    if (!node.has_changed())
        return false;
    auto* composite = dynamic_cast<ConfigurableComposite*>(&node);
    if (composite && std::find(commands.begin(), commands.end(), composite) != commands.end()) {
        node._set_changed(false);
        return false;
    }
    // A dynamic list changes as a whole, like a leaf.
    if (!composite || dynamic_cast<ConfigurableCompositeDynamicBase*>(composite))
        return true;
    bool changed = false;
    for (Configurable* child : composite->children())
        changed = settle(*child, commands) || changed;
    if (!changed)
        node._set_changed(false);
    return changed;
}

}  // namespace

std::unique_ptr<SimInstrument> SimInstrument::Make(const std::string& model, const std::string& name)
{
    if (model == "tolvan")
        return std::make_unique<SimTolvan>(name);
    if (model == "morvik" || model == "sarnel")
        return std::make_unique<SimMorvik>(name);
    if (model == "dravik")
        return std::make_unique<SimDravik>(name);
    if (model == "quenta")
        return std::make_unique<SimQuenta>(name);
    if (model == "halden")
        return std::make_unique<SimHalden>(name);
    if (model == "bremmel")
        return std::make_unique<SimBremmel>(name);
    if (model == "ostrel")
        return std::make_unique<SimOstrel>();
    return nullptr;
}

const char* const SimInstrument::LIGHT_SOURCE_HEADER = "DATALTH\tTIME\tCONTROL\tQSETPOINT\tQ\tTRANSMITTANCE\tCHK\n";

SimInstrument::SimInstrument(int rate) : _clock_set(unix_time_now()), _rate(rate)
{
}

bool SimInstrument::SetRate(int hz)
{
    if (hz < 0 || hz > 40)
        return false;
    _rate = hz;
    return true;
}

bool SimInstrument::_SelectRate(ConfigRate& rate, int hz)
{
    const std::vector<int>& rates = rate.rates();
    const auto found = std::find(rates.begin(), rates.end(), hz);
    if (found == rates.end())
        return false;
    rate.set(int(found - rates.begin()));
    return true;
}

std::string SimInstrument::_LightSourceRecord(const ConfigLightSource& source, double time)
{
    auto& ls = const_cast<ConfigLightSource&>(source);
    DataLine line("DATALT");
    _AddClockSeconds(line, time);
    const double q = _light_source ? std::max(0.0, double(ls.Q_setpoint().get()) + _plant.Noise(0.5)) : 0.0;
    line.AddInteger(ls.Control().get())
        .AddFixed(ls.Q_setpoint().get(), 1)
        .AddFixed(q, 1)
        .AddFixed(ls.Transmittance().get(), 3);
    return line.Checked();
}

void SimInstrument::_PowerUp(const std::string& name)
{
    if (ConfigCfgClock* clock = _Clock()) {
        // The zones an instrument offers; its descriptor hands them to the clock dialog.
        std::istringstream zones("UTC|Europe/London|Europe/Oslo|Europe/Berlin|America/New_York|America/Denver|"
                                 "America/Los_Angeles|Asia/Tokyo|Australia/Sydney");
        std::ostringstream ignored;
        clock->Zone().read_doctype(zones, ignored);
    }
    if (ConfigModel* model = _Model())
        model->Name().set(name);
    if (ConfigCfgNetwork* network = _Network())
        network->Name().set(name);
    if (_FactoryCmd())
        _committed_factory = compact_text(*_Factory(), &Configurable::configuration_noparent);
    _sent_headers = _Headers();
    _Doc()._set_changed(false);
}

SimInstrument::Served SimInstrument::Serve(const std::string& message)
{
    for (ConfigurableComposite* commands : _Commands())
        commands->set_to_default();
    // A query of the clock reads the instrument's time; setting it is not a change of the message.
    if (ConfigCfgClock* clock = _Clock())
        clock->TimeDate(std::time_t(_ClockAt(_now)));
    _Doc()._set_changed(false);

    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    Served served;
    try {
        _Apply(in, out);
        _ServeSharedSections(served);
    } catch (const std::exception& e) {
        // A date or time that cannot be read: the clock stays as it was, and says so to every client.
        std::cerr << "sondar-sim: " << e.what() << '\n';
        if (ConfigCfgClock* clock = _Clock())
            clock->TimeDate(std::time_t(_ClockAt(_now)));
    }
    served.reply = one_line(out.str());

    const std::string headers = _Headers();
    if (headers != _sent_headers) {
        _sent_headers = headers;
        _Send(headers);
    }
    const std::vector<ConfigurableComposite*> commands = _Commands();
    for (ConfigurableComposite* section : commands)
        section->set_to_default();
    if (settle(_Doc(), commands))
        served.changes = one_line(compact_text(_Doc(), &Configurable::changed));
    _Doc()._set_changed(false);
    return served;
}

void SimInstrument::_ServeSharedSections(Served& served)
{
    if (ConfigCfgClock* clock = _Clock()) {
        if (clock->Time().has_changed() || clock->Date().has_changed()) {
            _clock_set = double(clock->TimeDate());
            _clock_set_at = _now;
            _SendEvent("SETTIME", _ClockText(_now));
        }
        if (clock->Zone().has_changed())
            _SendEvent("TIMEZONE", clock->Zone().get_str());
        if (clock->Ptp().has_changed())
            _SendEvent("PTP", clock->Ptp().get_string());
    }

    ConfigCfgNetwork* network = _Network();
    if (network && network->has_changed())
        _SendEvent("NETWORK", network->Name().get() + " " + network->Configuration().get_string() + " " +
                                  network->Ipaddress().get().Presentation() + " " +
                                  network->Netmask().get().Presentation() + " " +
                                  network->Gateway().get().Presentation());

    if (ConfigFactoryCmd* factory_cmd = _FactoryCmd()) {
        const bool commit = factory_cmd->Commit().get();
        const bool rollback = factory_cmd->Rollback().get();
        factory_cmd->set_to_default();  // the committed copy holds no command
        if (commit) {
            _committed_factory = compact_text(*_Factory(), &Configurable::configuration_noparent);
            _SendEvent("FACTORYCOMMIT", "factory values kept");
        }
        if (rollback) {
            std::istringstream committed(_committed_factory);
            std::ostringstream ignored;
            _Factory()->configure(committed, ignored);
            _SendEvent("FACTORYROLLBACK", "factory values restored");
        }
    }
    ConfigurableBool* reboot = _RebootCmd();
    if (reboot && reboot->get()) {
        served.reboot = true;
        _SendEvent("REBOOT", "restarting");
    }
}

void SimInstrument::Advance(double now)
{
    _plant.Advance(now - _now);
    _now = now;

    const int rate = Rate();
    if (rate != _data_rate) {
        // Samples keep to the clock of the once-a-second records, so that each of those goes out
        // with a sample taken at the same moment.
        _data_rate = rate;
        _data_origin = _power_up;
        _data_sent = (long long)((now - _data_origin) * rate);
    }
    if (rate > 0) {
        const long long due = (long long)((now - _data_origin) * rate) + 1;
        // After a stall (a suspended process) the stream goes on from now, without a burst.
        if (due - _data_sent > rate)
            _data_sent = due - 1;
        for (; _data_sent < due; ++_data_sent)
            _SendData(_data_origin + double(_data_sent) / rate);
    }

    if (!_stream_held)
        _Stream();

    const long long status_due = (long long)(now - _power_up) + 1;
    if (status_due - _status_sent > 1)
        _status_sent = status_due - 1;
    for (; _status_sent < status_due; ++_status_sent)
        _SendStatus(_power_up + double(_status_sent));
}

std::string SimInstrument::TakeLines()
{
    std::string lines;
    lines.swap(_lines);
    return lines;
}

void SimInstrument::Restart()
{
    if (_FactoryCmd()) {
        std::istringstream committed(_committed_factory);
        std::ostringstream ignored;
        _Factory()->configure(committed, ignored);
    }
    _light_source = false;
    _Restart();
    _lines.clear();
    _power_up = _now;
    _data_rate = -1;
    _status_sent = 0;
    _Doc()._set_changed(false);
}

void SimInstrument::_SendEvent(const std::string& event, const std::string& text)
{
    _Send(DataLine("DATAEVENT").Add(event).Add(text).Plain());
}

void SimInstrument::_ServeLightSource(bool connect, bool disconnect)
{
    if (connect) {
        _light_source = true;
        _SendEvent("LIGHTSOURCECONNECTED", "light source connected");
    }
    if (disconnect) {
        _light_source = false;
        _SendEvent("LIGHTSOURCEDISCONNECTED", "light source disconnected");
    }
}

int64_t SimInstrument::_DiagWord(std::initializer_list<bool> bits)
{
    int64_t word = 0, bit = 1;
    for (bool on : bits) {
        if (on)
            word |= bit;
        bit <<= 1;
    }
    return word;
}

void SimInstrument::_AddClockSeconds(DataLine& line, double time) const
{
    line.AddFixed(_ClockAt(time), 3);
}

void SimInstrument::_AddStamp(DataLine& line, double time) const
{
    line.AddInteger(int64_t(std::llround((time - _power_up) * 1000)));
    _AddClockStamp(line, time);
}

void SimInstrument::_AddClockStamp(DataLine& line, double time) const
{
    const double clock = _ClockAt(time);
    const double seconds = std::floor(clock);
    line.AddInteger(int64_t(seconds))
        .AddInteger(std::min(int64_t(999999999), int64_t(std::llround((clock - seconds) * 1e9))));
}

std::string SimInstrument::_ClockText(double time) const
{
    const double clock = _ClockAt(time);
    const std::time_t seconds = std::time_t(std::floor(clock));
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  std::min(999, int((clock - double(seconds)) * 1000)));
    return text;
}

Timestamp SimInstrument::_ClockStamp() const
{
    const std::time_t seconds = std::time_t(std::floor(_ClockAt(_now)));
    std::tm local{};
    localtime_r(&seconds, &local);
    return Timestamp(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}
