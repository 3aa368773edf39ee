#pragma once
// Sections and leaves that several models' trees are built from: the address and time-zone
// leaves, the shared choices, clock, network, the factory cmd, the light source and the units
// attribute.

#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "foundation/socketaddress.h"

/// An IPv4 or IPv6 address leaf, written in presentation form ("192.168.1.95").
class ConfigIPAddress : public Configurable {
public:
    ConfigIPAddress(const std::string& name, const SocketAddress& value);
    /// `value` is address text; text that does not parse throws SocketError.
    ConfigIPAddress(const std::string& name, const std::string& value);

    /// Marks a change only when the address differs.
    void set(const SocketAddress& value);
    const SocketAddress& get() const { return _value; }

    void set_to_default() override { set(_default); }
    /// Text that is no address is reported as "unable to read IP address"; the value stays.
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;

private:
    SocketAddress _value, _default;
};

/// The time zone, tag `zone`. The list of zones is one for the whole process: it starts as
/// {"UTC"} and is replaced by the descriptor of the last instrument that sent one.
class ConfigTimezone : public ConfigurableMultipleChoice {
public:
    ConfigTimezone();

    /// Replaces the process-wide list with the descriptor's options ("UTC|Europe/Oslo|...").
    void read_doctype(std::istream& in, std::ostream& err) override;
    /// Selects the zone of exactly that name; an unknown name is ignored.
    void set_str(const std::string& zone);
    /// The selected zone, or "" when the list no longer reaches the selected index.
    std::string get_str() const;
};

/// "auto" or "manual".
class ConfigAutoManual : public ConfigurableMultipleChoice {
public:
    ConfigAutoManual(const std::string& name, int default_index);
};

/// "auto", "on" or "off"; "auto" by default.
class ConfigControl : public ConfigurableMultipleChoice {
public:
    /// Tag `control`.
    ConfigControl();
    explicit ConfigControl(const std::string& name);
};

/// "off" or "on".
class ConfigOnOffControl : public ConfigurableMultipleChoice {
public:
    ConfigOnOffControl(const std::string& name, bool on);
};

/// "off", "percent" or "setpoint".
class ConfigControlMode : public ConfigurableMultipleChoice {
public:
    ConfigControlMode(const std::string& name, int default_index);
};

/// The output rate, tag `rate`: option texts with a parallel table of rates in Hz. The model's
/// output section owns both tables.
class ConfigRate : public ConfigurableMultipleChoice {
public:
    ConfigRate(const std::vector<std::string>& texts, const std::vector<int>& rates, int default_index);

    const std::vector<int>& rates() const { return *_rates; }
    /// The selected rate in Hz; 0 means polled.
    int get_rate() const { return (*_rates)[get()]; }

private:
    const std::vector<int>* _rates;
};

/// Precision time protocol role, tag `ptp`: "auto", "slaveonly" or "preferred".
class ConfigCfgClockPTP : public ConfigurableMultipleChoice {
public:
    ConfigCfgClockPTP();
};

/// The instrument's clock, tag `clock`: date and time as text, zone and PTP role.
class ConfigCfgClock : public ConfigurableComposite {
public:
    ConfigCfgClock();

    ConfigurableString& Time() { return _time; }
    ConfigurableString& Date() { return _date; }
    ConfigTimezone& Zone() { return _zone; }
    ConfigCfgClockPTP& Ptp() { return _ptp; }

    /// Sets date ("YYYY-MM-DD") and time ("HH:MM:SS") from `t` in the computer's local zone.
    void TimeDate(std::time_t t);
    /// Date and time read as local time. Throws std::runtime_error when a separator is wrong or
    /// a number is missing; field values are not checked (month 13 rolls over).
    std::time_t TimeDate() const;

private:
    ConfigurableString _time{"time", "00:00:00"};
    ConfigurableString _date{"date", "1970-01-01"};
    ConfigTimezone _zone;
    ConfigCfgClockPTP _ptp;
};

/// The instrument's network settings, tag `network`.
class ConfigCfgNetwork : public ConfigurableComposite {
public:
    ConfigCfgNetwork();

    ConfigurableString& Name() { return _name; }
    ConfigAutoManual& Configuration() { return _configuration; }
    ConfigIPAddress& Ipaddress() { return _ipaddress; }
    ConfigIPAddress& Netmask() { return _netmask; }
    ConfigIPAddress& Gateway() { return _gateway; }

private:
    ConfigurableString _name{"name", "ch4-xxxx"};
    ConfigAutoManual _configuration{"configuration", 0};
    ConfigIPAddress _ipaddress{"ipaddress", "192.168.1.95"};
    ConfigIPAddress _netmask{"netmask", "255.255.255.0"};
    ConfigIPAddress _gateway{"gateway", "192.168.1.1"};
};

/// The one-shot commands of a factory section, tag `cmd`: make permanent or discard.
class ConfigFactoryCmd : public ConfigurableComposite {
public:
    ConfigFactoryCmd();

    ConfigurableBool& Commit() { return _commit; }
    ConfigurableBool& Rollback() { return _rollback; }

private:
    ConfigurableBool _commit{"commit", false};
    ConfigurableBool _rollback{"rollback", false};
};

/// The one-shot commands of a model whose only command is a restart, tag `cmd`.
class ConfigCmdReboot : public ConfigurableComposite {
public:
    ConfigCmdReboot();

    ConfigurableBool& Reboot() { return _reboot; }

private:
    ConfigurableBool _reboot{"reboot", false};
};

/// "off", "percent", "setpoint" or "tracking".
class ConfigLightSourceMode : public ConfigurableMultipleChoice {
public:
    ConfigLightSourceMode(const std::string& name, int default_index);
};

/// The light source settings, tag `lightsource`. `D_percent` and `color_mix` are the instrument's
/// free text, one value per colour channel. The `labels` attribute of `color_mix` stays out of
/// value output until the instrument names it.
class ConfigLightSource : public ConfigurableComposite {
public:
    ConfigLightSource();

    ConfigLightSourceMode& Control() { return _control; }
    ConfigurableFloat& Q_setpoint() { return _q_setpoint; }
    ConfigurableString& D_percent() { return _d_percent; }
    ConfigurableString& Color_mix() { return _color_mix; }
    /// The attribute `labels` of `color_mix`.
    ConfigurableString& Labels() { return _labels; }
    ConfigurableFloat& Transmittance() { return _transmittance; }

private:
    ConfigLightSourceMode _control{"control", 0};
    ConfigurableFloat _q_setpoint{"Q_setpoint", 0, 0, std::numeric_limits<float>::max(), false};
    ConfigurableString _d_percent{"D_percent", ""};
    ConfigurableString _color_mix{"color_mix", ""};
    ConfigurableString _labels{"labels", ""};
    ConfigurableFloat _transmittance{"transmittance", 1, 0, 1, false};
};

/// The light source's factory values, tag `lightsource`.
class ConfigFactoryLightSource : public ConfigurableComposite {
public:
    ConfigFactoryLightSource();

    ConfigurableString& Id() { return _id; }
    ConfigurableString& Sn() { return _sn; }
    ConfigurableString& F() { return _f; }
    ConfigurableString& U0() { return _u0; }
    ConfigurableString& U1() { return _u1; }
    ConfigurableString& U2() { return _u2; }
    ConfigurableFloat& Kp() { return _kp; }
    ConfigurableFloat& Ti() { return _ti; }
    ConfigurableInteger& Rate() { return _rate; }

private:
    ConfigurableString _id{"id", ""};
    ConfigurableString _sn{"sn", ""};
    ConfigurableString _f{"f", ""};
    ConfigurableString _u0{"u0", ""};
    ConfigurableString _u1{"u1", ""};
    ConfigurableString _u2{"u2", ""};
    ConfigurableFloat _kp{"kp", 0.05f, 0, std::numeric_limits<float>::max(), false};
    ConfigurableFloat _ti{"ti", 0.03f, 0.001f, std::numeric_limits<float>::max(), false};
    ConfigurableInteger _rate{"rate", 2, 1, 60};
};

/// The `units` attribute. It is shown only in descriptor output: it is disabled from the start,
/// and whatever a message does to it leaves it disabled and unchanged.
class ConfigUnitsAttribute : public ConfigurableString {
public:
    explicit ConfigUnitsAttribute(const char* units);

    /// Accepts nothing; undoes the enabling that an incoming attribute causes.
    void read(std::istream& in, std::ostream& err) override;
    /// Never marks itself or anything above it: one object serves every node with these units.
    void _set_changed(bool changed) override;
};

/// Gives `node` the attribute units="`units`". Call it after the node exists and before it is
/// added. One attribute object serves each literal, found by its address, not by its text; the
/// objects live until the process ends.
void AttachUnitsAttribute(Configurable& node, const char* units);
