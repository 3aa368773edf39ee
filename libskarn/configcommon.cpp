#include "libskarn/configcommon.h"

#include <cstdio>
#include <istream>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

// --- ConfigIPAddress ---

ConfigIPAddress::ConfigIPAddress(const std::string& name, const SocketAddress& value)
    : Configurable(name), _value(value), _default(value)
{
}

ConfigIPAddress::ConfigIPAddress(const std::string& name, const std::string& value)
    : ConfigIPAddress(name, SocketAddress(value))
{
}

void ConfigIPAddress::set(const SocketAddress& value)
{
    if (value == _value)
        return;
    _value = value;
    _set_changed(true);
}

void ConfigIPAddress::read(std::istream& in, std::ostream& err)
{
    // Text that is no address is reported like a bad float: the walk goes on.
    std::string text;
    if (std::getline(in, text, '\0')) {
        try {
            set(SocketAddress(text));
            return;
        } catch (const SocketError&) {
        }
    }
    err << "unable to read IP address\n";
}

void ConfigIPAddress::write(std::ostream& out) const
{
    out << _value.Presentation();
}

void ConfigIPAddress::write_doctype(std::ostream& out) const
{
    out << "int.int.int.int";
}

// --- ConfigTimezone ---

namespace {

// Not const: the instrument's descriptor replaces it, for every ConfigTimezone at once.
std::vector<std::string>& zones()
{
    static std::vector<std::string> list{"UTC"};
    return list;
}

}  // namespace

ConfigTimezone::ConfigTimezone() : ConfigurableMultipleChoice("zone", zones(), 0) {}

void ConfigTimezone::read_doctype(std::istream& in, std::ostream&)
{
    std::vector<std::string>& list = zones();
    list.clear();
    for (std::string zone; std::getline(in, zone, '|');)
        list.push_back(zone);
}

void ConfigTimezone::set_str(const std::string& zone)
{
    const std::vector<std::string>& list = choices();
    for (size_t i = 0; i < list.size(); ++i) {
        if (list[i] == zone) {
            set(int(i));
            return;
        }
    }
}

std::string ConfigTimezone::get_str() const
{
    return get_string();
}

// --- Shared choices ---

namespace {

const std::vector<std::string>& auto_manual_options()
{
    static const std::vector<std::string> options{"auto", "manual"};
    return options;
}

const std::vector<std::string>& control_options()
{
    static const std::vector<std::string> options{"auto", "on", "off"};
    return options;
}

const std::vector<std::string>& on_off_options()
{
    static const std::vector<std::string> options{"off", "on"};
    return options;
}

const std::vector<std::string>& control_mode_options()
{
    static const std::vector<std::string> options{"off", "percent", "setpoint"};
    return options;
}

const std::vector<std::string>& ptp_options()
{
    static const std::vector<std::string> options{"auto", "slaveonly", "preferred"};
    return options;
}

const std::vector<std::string>& light_source_mode_options()
{
    static const std::vector<std::string> options{"off", "percent", "setpoint", "tracking"};
    return options;
}

}  // namespace

ConfigAutoManual::ConfigAutoManual(const std::string& name, int default_index)
    : ConfigurableMultipleChoice(name, auto_manual_options(), default_index)
{
}

ConfigControl::ConfigControl() : ConfigControl("control") {}

ConfigControl::ConfigControl(const std::string& name) : ConfigurableMultipleChoice(name, control_options(), 0)
{
}

ConfigOnOffControl::ConfigOnOffControl(const std::string& name, bool on)
    : ConfigurableMultipleChoice(name, on_off_options(), on ? 1 : 0)
{
}

ConfigControlMode::ConfigControlMode(const std::string& name, int default_index)
    : ConfigurableMultipleChoice(name, control_mode_options(), default_index)
{
}

ConfigRate::ConfigRate(const std::vector<std::string>& texts, const std::vector<int>& rates, int default_index)
    : ConfigurableMultipleChoice("rate", texts, default_index), _rates(&rates)
{
}

ConfigCfgClockPTP::ConfigCfgClockPTP() : ConfigurableMultipleChoice("ptp", ptp_options(), 0) {}

ConfigLightSourceMode::ConfigLightSourceMode(const std::string& name, int default_index)
    : ConfigurableMultipleChoice(name, light_source_mode_options(), default_index)
{
}

// --- ConfigCfgClock ---

ConfigCfgClock::ConfigCfgClock() : ConfigurableComposite("clock")
{
    add(_time);
    add(_date);
    add(_zone);
    add(_ptp);
}

void ConfigCfgClock::TimeDate(std::time_t t)
{
    std::tm local{};
    localtime_r(&t, &local);
    char date[32], time[32];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
    _date.set(date);
    _time.set(time);
}

namespace {

// Reads "int sep int sep int"; only the separators are checked.
bool read_triple(const std::string& text, char separator, int& a, int& b, int& c)
{
    std::istringstream in(text);
    char s1 = 0, s2 = 0;
    in >> a >> s1 >> b >> s2 >> c;
    return in && s1 == separator && s2 == separator;
}

}  // namespace

std::time_t ConfigCfgClock::TimeDate() const
{
    std::tm local{};
    if (!read_triple(_date.get(), '-', local.tm_year, local.tm_mon, local.tm_mday))
        throw std::runtime_error("Invalid date format (should be YYYY-MM-DD): " + _date.get());
    if (!read_triple(_time.get(), ':', local.tm_hour, local.tm_min, local.tm_sec))
        throw std::runtime_error("Invalid time format (should be HH:MM:SS): " + _time.get());
    local.tm_year -= 1900;
    local.tm_mon -= 1;
    local.tm_isdst = -1;
    return std::mktime(&local);
}

// --- ConfigCfgNetwork, ConfigFactoryCmd ---

ConfigCfgNetwork::ConfigCfgNetwork() : ConfigurableComposite("network")
{
    add(_name);
    add(_configuration);
    add(_ipaddress);
    add(_netmask);
    add(_gateway);
}

ConfigFactoryCmd::ConfigFactoryCmd() : ConfigurableComposite("cmd")
{
    add(_commit);
    add(_rollback);
}

ConfigCmdReboot::ConfigCmdReboot() : ConfigurableComposite("cmd") { add(_reboot); }

// --- Light source ---

ConfigLightSource::ConfigLightSource() : ConfigurableComposite("lightsource")
{
    add(_control);
    AttachUnitsAttribute(_q_setpoint, "µmol/m²/s");
    add(_q_setpoint);
    add(_d_percent);
    _labels.set_enabled(false);
    _color_mix.add_attribute(_labels);
    add(_color_mix);
    add(_transmittance);
}

ConfigFactoryLightSource::ConfigFactoryLightSource() : ConfigurableComposite("lightsource")
{
    add(_id);
    add(_sn);
    add(_f);
    add(_u0);
    add(_u1);
    add(_u2);
    add(_kp);
    add(_ti);
    AttachUnitsAttribute(_rate, "Hz");
    add(_rate);
}

// --- Units ---

ConfigUnitsAttribute::ConfigUnitsAttribute(const char* units) : ConfigurableString("units", units)
{
    set_enabled(false);
}

void ConfigUnitsAttribute::read(std::istream&, std::ostream&)
{
    set_enabled(false);
}

void ConfigUnitsAttribute::_set_changed(bool)
{
    // The attribute's parent is whichever node attached it last, so a change must not travel up;
    // and a change only ever comes from a message enabling it.
    set_enabled(false);
    Configurable::_set_changed(false);
}

void AttachUnitsAttribute(Configurable& node, const char* units)
{
    // Never destroyed: documents that outlive static destruction may still point at the objects.
    static auto& registry = *new std::map<const char*, ConfigUnitsAttribute*>;
    ConfigUnitsAttribute*& attribute = registry[units];
    if (!attribute)
        attribute = new ConfigUnitsAttribute(units);
    node.add_attribute(*attribute);
}
