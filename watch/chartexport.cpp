#include "watch/chartexport.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

namespace {

template <class Number>
std::string shortest(Number value)
{
    if (std::isnan(value))
        return "nan";
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

}  // namespace

std::string CsvNumber(double value)
{
    return shortest(value);
}

std::string CsvNumber(float value)
{
    return shortest(value);
}

std::string CsvLine(const std::vector<std::string>& fields)
{
    std::string line;
    for (size_t i = 0; i < fields.size(); ++i)
        line += (i ? "," : "") + CsvField(fields[i]);
    return line + '\n';
}

std::string ColumnsCsv(const std::vector<std::string>& header, const std::vector<std::vector<float>>& columns)
{
    size_t rows = columns.empty() ? 0 : columns.front().size();
    for (const std::vector<float>& column : columns)
        rows = std::min(rows, column.size());
    std::string text = CsvLine(header);
    std::vector<std::string> fields(columns.size());
    for (size_t row = 0; row < rows; ++row) {
        for (size_t i = 0; i < columns.size(); ++i)
            fields[i] = CsvNumber(columns[i][row]);
        text += CsvLine(fields);
    }
    return text;
}

std::string ChartCsv(const std::vector<ChartSeries>& series, double from, double to)
{
    // Keyed by the record time and the sample's rank among its variable's samples at that time.
    using Key = std::pair<double, int>;
    std::map<Key, std::vector<std::optional<double>>> rows;
    std::optional<double> newest;
    for (size_t column = 0; column < series.size(); ++column) {
        const ChartSeries& variable = series[column];
        const size_t count = std::min(variable.times.size(), variable.values.size());
        if (count == 0)
            continue;
        const double own_newest = variable.times[count - 1];
        newest = std::max(newest.value_or(own_newest), own_newest);
        std::map<double, int> seen;
        for (size_t i = 0; i < count; ++i) {
            const double time = variable.times[i];
            const double before = time - own_newest;
            if (before < from || before > to)
                continue;
            auto& cells = rows[{time, seen[time]++}];
            cells.resize(series.size());
            cells[column] = variable.values[i];
        }
    }

    std::vector<std::string> fields = {"Seconds Before Newest", "Record Time"};
    for (const ChartSeries& variable : series)
        fields.push_back(variable.name);
    std::string text = CsvLine(fields);
    for (const auto& [key, cells] : rows) {
        // To the microsecond: the difference of two large record times carries noise beyond it.
        fields = {CsvNumber(std::round((key.first - *newest) * 1e6) / 1e6), CsvNumber(key.first)};
        for (const std::optional<double>& cell : cells)
            fields.push_back(cell ? CsvNumber(*cell) : "");
        text += CsvLine(fields);
    }
    return text;
}
