#pragma once
// What sondar-cli prints, as plain text: data records as tsv, csv or JSON lines, settings as
// JSON trees with typed values, and the progress of a capture.

#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

class Configurable;

/// How records are printed, one line each.
///   tsv:   a header line "DATAH<TAB>SECONDS<TAB>..." whenever the record's header arrives, then
///          "DATA<TAB>1716543210<TAB>...": the record name first, the field texts as sent;
///   csv:   the same with commas, a field quoted where it must be;
///   jsonl: {"record":"DATA","SECONDS":1716543210,...}: the header's names as keys, numbers as
///          numbers, other texts as strings; no header line.
enum class RecordFormat { Tsv, Csv, Jsonl };

/// "tsv", "csv" or "jsonl"; false for any other word.
bool ParseRecordFormat(const std::string& word, RecordFormat& format);

/// The line that names the fields of a record, with its line feed; "" for jsonl.
std::string HeaderLine(RecordFormat format, const std::string& header_record, const std::vector<std::string>& names);

/// One record with its line feed. `texts` are its field texts in the order of `names`; a name
/// without a text (a short line) is left out of a JSON line and empty in tsv and csv.
std::string RecordLine(RecordFormat format, const std::string& record, const std::vector<std::string>& names,
                       const std::vector<std::string>& texts);

/// A field's text as JSON: a whole number as an integer, a decimal number as a number, anything
/// else ("0x00ff", "nan", "ok") as the string itself.
Json::Value JsonField(const std::string& text);

/// A node of a document as JSON: a section as an object of its enabled children (children that
/// share a name become an array), a float or integer as a number, a bool as true or false, any
/// other leaf as its text. Attributes (units) are left out.
Json::Value JsonTree(const Configurable& node);

/// JSON text with a line feed: indented, or on one line.
std::string JsonText(const Json::Value& value, bool one_line = false);

/// The state of a transfer for a person: "1.50 of 2.00 MB, 0.75 MB/s, 1 s left". `seconds` is
/// the time since it began; rate and time left are left out until there is a rate.
std::string ProgressText(uint64_t done, uint64_t total, double seconds);

/// The same behind a bar `width` characters wide: "[#####-----] 50% 1.00 of 2.00 MB, ...".
std::string ProgressBar(uint64_t done, uint64_t total, double seconds, int width = 30);
