#pragma once
// Charts as comma-separated text for a spreadsheet or a colleague: the strip chart's samples
// merged by time, and the pieces every table of numbers is written with.

#include <string>
#include <vector>

#include "foundation/str_util.h"  // CsvField

/// The shortest text that reads back as the same number ("0.1", "1234567890.25", "nan").
std::string CsvNumber(double value);
std::string CsvNumber(float value);
/// The fields with commas between them and a line feed at the end.
std::string CsvLine(const std::vector<std::string>& fields);

/// Columns as CSV: the header, then one line per row as far as the shortest column reaches.
std::string ColumnsCsv(const std::vector<std::string>& header, const std::vector<std::vector<float>>& columns);

/// One variable of a strip chart: its name as the legend shows it and its samples, oldest first,
/// at the instrument's record times.
struct ChartSeries {
    std::string name;
    std::vector<double> times, values;
};

/// The chart as CSV. The header reads "Seconds Before Newest", "Record Time" and the variables'
/// names; below it one line per record time, oldest first: the time less the newest time of all
/// the variables (to the microsecond), the record time, and each variable's value, or an empty cell where it has no
/// sample at that time. A variable with several samples at one time (a record that repeats the
/// time of the one before) gets a line for each, so that nothing is lost.
///
/// A chart draws each variable against its own newest sample; only the samples that lie from
/// `from` to `to` seconds (both 0 or negative, `from` first) before their own variable's newest
/// are written, so that the visible stretch of the time axis gives what the user sees.
std::string ChartCsv(const std::vector<ChartSeries>& series, double from, double to);
