#pragma once
// The typed leaves of a document. Each holds a value and a default, and marks itself changed only
// when a set() or a read really changes the value. Floats go on the wire in the stream's default
// form (six significant digits: 0.1234, 88.11, 1, 1.23457e+06; "inf", "-inf", "nan").

#include <cstdint>
#include <string>
#include <vector>

#include "configurable/configurable.h"
#include "foundation/timestamp.h"

/// Range handling of ConfigurableFloat and ConfigurableDouble.
enum class RangeMode : int32_t {
    NONE = 0,         ///< any value
    CLAMP = 1,        ///< values are clamped to [min, max]
    RANGE_ERROR = 2,  ///< as CLAMP, but a value neither above min nor below max throws std::range_error
};

/// A float (T = float) or double (T = double) leaf; the two differ only in their type word.
template <class T>
class ConfigurableReal : public Configurable {
public:
    /// No range: the extreme finite values of the type.
    ConfigurableReal(const std::string& name, T value);
    /// A range; throw_on_range selects RANGE_ERROR over CLAMP. The value is not clamped here.
    ConfigurableReal(const std::string& name, T value, T min, T max, bool throw_on_range);

    void set(T value);
    T get() const { return _value; }
    T get_default() const { return _default; }
    T get_min() const { return _min; }
    T get_max() const { return _max; }
    RangeMode range_mode() const { return _mode; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    /// Plain text is read without a stream when the leaf is of this class itself.
    bool _read(const std::string& text, XMLWriter& writer) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;

private:
    static const char* _type_word();
    T _value, _min, _max, _default;
    RangeMode _mode;
};

class ConfigurableFloat : public ConfigurableReal<float> {
public:
    using ConfigurableReal<float>::ConfigurableReal;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableFloat(*this); }
};

class ConfigurableDouble : public ConfigurableReal<double> {
public:
    using ConfigurableReal<double>::ConfigurableReal;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableDouble(*this); }
};

/// A signed 64-bit integer, clamped silently to its limits.
class ConfigurableInteger : public Configurable {
public:
    ConfigurableInteger(const std::string& name, int64_t value);
    ConfigurableInteger(const std::string& name, int64_t value, int64_t min);
    ConfigurableInteger(const std::string& name, int64_t value, int64_t min, int64_t max);

    void set(int64_t value);
    int64_t get() const { return _value; }
    int64_t get_min() const { return _min; }
    int64_t get_max() const { return _max; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    /// Plain text is read without a stream when the leaf is of this class itself.
    bool _read(const std::string& text, XMLWriter& writer) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableInteger(*this); }

private:
    int64_t _value, _min, _max, _default;
};

/// Seconds, not below 0. Reads either seconds or a local date and time "YYYY-MM-DD HH:MM:SS".
class ConfigurableTimeT : public ConfigurableInteger {
public:
    ConfigurableTimeT(const std::string& name, int64_t value);
    void read(std::istream& in, std::ostream& err) override;
};

class ConfigurableBool : public Configurable {
public:
    ConfigurableBool(const std::string& name, bool value);

    void set(bool value);
    bool get() const { return _value; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    /// Plain text is read without a stream when the leaf is of this class itself.
    bool _read(const std::string& text, XMLWriter& writer) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableBool(*this); }

private:
    bool _value, _default;
};

/// A byte string. A message cannot empty it: empty text is never read.
class ConfigurableString : public Configurable {
public:
    ConfigurableString(const std::string& name, const std::string& value);

    /// Subclasses may refuse or transform a value.
    virtual void set(const std::string& value);
    const std::string& get() const { return _value; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    /// Plain text is read without a stream when the leaf is of this class itself.
    bool _read(const std::string& text, XMLWriter& writer) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableString(*this); }

private:
    std::string _value, _default;
};

/// Shows another leaf's string under its own name; reading it does nothing.
class ConfigurableStringProxyReadOnly : public Configurable {
public:
    ConfigurableStringProxyReadOnly(const std::string& name, const ConfigurableString& target);
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;

private:
    const ConfigurableString& _target;
};

/// A date and time, "YYYY-MM-DD HH:MM:SS.SS"; the subclasses show parts of it.
class ConfigurableTimestamp : public Configurable {
public:
    ConfigurableTimestamp(const std::string& name, const Timestamp& value);

    void set(const Timestamp& value);
    const Timestamp& get() const { return _value; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableTimestamp(*this); }

private:
    Timestamp _value, _default;
};

/// HH:MM:SS, counted from the Timestamp base.
class ConfigurableTime : public ConfigurableTimestamp {
public:
    using ConfigurableTimestamp::ConfigurableTimestamp;
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableTime(*this); }
};

/// HH:MM.
class ConfigurableTime_HourMinutes : public ConfigurableTimestamp {
public:
    using ConfigurableTimestamp::ConfigurableTimestamp;
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableTime_HourMinutes(*this); }
};

/// YYYY-MM-DD at midnight.
class ConfigurableDate : public ConfigurableTimestamp {
public:
    using ConfigurableTimestamp::ConfigurableTimestamp;
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableDate(*this); }
};

/// YYYY-MM. Read as day 0 of the month, i.e. the last day of the month before, and written from
/// that value: "2001-02" reads back as "2001-01". Instruments rely on it.
class ConfigurableDate_YearMonth : public ConfigurableTimestamp {
public:
    using ConfigurableTimestamp::ConfigurableTimestamp;
    void read(std::istream& in, std::ostream& err) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableDate_YearMonth(*this); }
};

/// One of a table of strings; the table is shared by all leaves of a class and not owned.
class ConfigurableMultipleChoice : public Configurable {
public:
    ConfigurableMultipleChoice(const std::string& name, const std::vector<std::string>& choices,
                               int default_index);

    /// Ignored for an index out of the table.
    void set(int index);
    int get() const { return _index; }
    /// The chosen text; "" when the table no longer reaches the index (a shared table can shrink).
    const std::string& get_string() const;
    const std::vector<std::string>& choices() const { return *_choices; }

    void set_to_default() override { set(_default); }
    void read(std::istream& in, std::ostream& err) override;
    /// Plain text is read without a stream when the leaf is of this class itself.
    bool _read(const std::string& text, XMLWriter& writer) override;
    void write(std::ostream& out) const override;
    void write_doctype(std::ostream& out) const override;
    void do_accept(ConfigurableVisitor& v) override { v.VisitConfigurableMultipleChoice(*this); }

private:
    const std::vector<std::string>* _choices;
    int32_t _index, _default;
};
