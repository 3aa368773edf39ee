#include "cli/format.h"

#include <json/writer.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>

#include "cli/settings.h"
#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "foundation/str_util.h"

namespace {

std::string joined(RecordFormat format, const std::string& first, const std::vector<std::string>& rest)
{
    const char separator = format == RecordFormat::Csv ? ',' : '\t';
    std::string line = format == RecordFormat::Csv ? CsvField(first) : first;
    for (const std::string& field : rest)
        line += separator + (format == RecordFormat::Csv ? CsvField(field) : field);
    return line + '\n';
}

std::string megabytes(uint64_t bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", double(bytes) / 1e6);
    return text;
}

}  // namespace

bool ParseRecordFormat(const std::string& word, RecordFormat& format)
{
    if (word == "tsv")
        format = RecordFormat::Tsv;
    else if (word == "csv")
        format = RecordFormat::Csv;
    else if (word == "jsonl")
        format = RecordFormat::Jsonl;
    else
        return false;
    return true;
}

std::string HeaderLine(RecordFormat format, const std::string& header_record, const std::vector<std::string>& names)
{
    return format == RecordFormat::Jsonl ? "" : joined(format, header_record, names);
}

std::string RecordLine(RecordFormat format, const std::string& record, const std::vector<std::string>& names,
                       const std::vector<std::string>& texts)
{
    if (format != RecordFormat::Jsonl) {
        std::vector<std::string> cells(texts.begin(), texts.begin() + long(std::min(names.size(), texts.size())));
        cells.resize(names.size());
        return joined(format, record, cells);
    }
    Json::Value object(Json::objectValue);
    object["record"] = record;
    for (size_t i = 0; i < names.size() && i < texts.size(); ++i)
        object[names[i]] = JsonField(texts[i]);
    return JsonText(object, true);
}

Json::Value JsonField(const std::string& text)
{
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    // from_chars reads "inf" and "nan", which are no JSON numbers.
    const bool numeric = !text.empty() && (std::isdigit((unsigned char)text[0]) || text[0] == '-' || text[0] == '.');
    Json::Int64 whole;
    if (numeric && std::from_chars(begin, end, whole).ptr == end)
        return Json::Value(whole);
    double real;
    if (numeric && std::from_chars(begin, end, real).ptr == end)
        return Json::Value(real);
    return Json::Value(text);
}

Json::Value JsonTree(const Configurable& node)
{
    if (const auto* section = dynamic_cast<const ConfigurableComposite*>(&node)) {
        Json::Value object(Json::objectValue);
        for (const Configurable* child : section->children()) {
            if (!child->is_enabled())
                continue;
            Json::Value& slot = object[child->name()];
            if (slot.isNull()) {
                slot = JsonTree(*child);
                continue;
            }
            if (!slot.isArray())
                slot = Json::Value(Json::arrayValue).append(slot);
            slot.append(JsonTree(*child));
        }
        return object;
    }
    if (const auto* flag = dynamic_cast<const ConfigurableBool*>(&node))
        return flag->get();
    if (const auto* number = dynamic_cast<const ConfigurableInteger*>(&node))
        return Json::Int64(number->get());
    // A float is printed with the digits the instrument sends, not with those of its binary value.
    const std::string text = TextOf(node);
    if (dynamic_cast<const ConfigurableFloat*>(&node) || dynamic_cast<const ConfigurableDouble*>(&node))
        return JsonField(text);
    return text;
}

std::string JsonText(const Json::Value& value, bool one_line)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = one_line ? "" : "  ";
    builder["precision"] = 15;
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value) + '\n';
}

std::string ProgressText(uint64_t done, uint64_t total, double seconds)
{
    std::string text = megabytes(done) + " of " + megabytes(total) + " MB";
    const double rate = seconds > 0 ? double(done) / seconds : 0;
    if (rate > 0) {
        char tail[64];
        std::snprintf(tail, sizeof tail, ", %.2f MB/s, %.0f s left", rate / 1e6,
                      double(total > done ? total - done : 0) / rate);
        text += tail;
    }
    return text;
}

std::string ProgressBar(uint64_t done, uint64_t total, double seconds, int width)
{
    const double part = total ? std::min(1.0, double(done) / double(total)) : 1.0;
    const int filled = int(part * width);
    char percent[8];
    std::snprintf(percent, sizeof percent, "%3d%%", int(part * 100));
    return "[" + std::string(size_t(filled), '#') + std::string(size_t(width - filled), '-') + "] " + percent + " " +
           ProgressText(done, total, seconds);
}
