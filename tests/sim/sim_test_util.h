#pragma once
// Helpers of the simulator tests: lines of the stream, fields of a record, documents as text.

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "configurable/configurable.h"

/// The lines of a piece of the stream, without their line feeds.
inline std::vector<std::string> split_lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// The lines of one record name.
inline std::vector<std::string> records(const std::string& text, const std::string& name)
{
    std::vector<std::string> found;
    for (const std::string& line : split_lines(text))
        if (line.compare(0, name.size() + 1, name + '\t') == 0)
            found.push_back(line);
    return found;
}

/// The tab-separated fields of a line, the record name first.
inline std::vector<std::string> fields(const std::string& line)
{
    std::vector<std::string> out;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        out.push_back(field);
    return out;
}

/// A document as one line, as the instrument answers "<arvex>&query;</arvex>".
inline std::string compact_query(const Configurable& doc)
{
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc.configuration(out);
    return out.str();
}

/// The text with the clock's time and date blanked: they move on between two queries.
inline std::string without_clock_time(const std::string& text)
{
    static const std::regex clock("<clock><time>[^<]*</time><date>[^<]*</date>");
    return std::regex_replace(text, clock, "<clock><time/><date/>");
}
