#pragma once
// The text of data records: a record name and fields separated by tabs, one line each.

#include <cstdint>
#include <string>

/// One data line under construction.
class DataLine {
public:
    explicit DataLine(const std::string& record) : _text(record) {}

    DataLine& Add(const std::string& field);
    DataLine& AddInteger(int64_t value);
    /// `value` with `decimals` digits after the point.
    DataLine& AddFixed(double value, int decimals);

    /// The line closed by a line feed, with no sum: headers, units, events, clock records.
    std::string Plain() const { return _text + '\n'; }
    /// The line closed by a tab, its 8-bit sum as three decimal digits, and a line feed. The sum
    /// is that of every byte before the digits, the record name and the last tab included.
    std::string Checked() const;

private:
    std::string _text;
};

/// `body` followed by its 8-bit sum as three decimal digits and a line feed: the sum is that of
/// every byte of `body`, which for a data record ends with the tab before the digits.
std::string with_sum(const std::string& body);
