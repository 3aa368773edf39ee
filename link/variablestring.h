#pragma once
// The name of one value: host, record and field with colons between them, "host:DATA:CO2".

#include <string>

struct VariableString {
    enum Field { HOST = 0, RECORD = 1, VARIABLE = 2 };

    /// Text without ":" goes whole into `default_field`; "a:b" gives host and record; with two or
    /// more colons the rest after the second one is the variable, colons included.
    explicit VariableString(const std::string& text, int default_field = HOST);
    VariableString(const std::string& h, const std::string& r, const std::string& v) : host(h), record(r), variable(v) {}

    /// All three fields joined by colons, empty ones included: ":x:".
    std::string str() const { return host + ':' + record + ':' + variable; }

    std::string host, record, variable;
};
