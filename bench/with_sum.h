#pragma once
// Data lines as instruments send them, for the benchmarks that feed a connector.

#include <cstdio>
#include <string>

/// The line with its 8-bit sum appended as three digits and a line feed.
inline std::string with_sum(const std::string& body)
{
    unsigned sum = 0;
    for (unsigned char c : body)
        sum += c;
    char digits[4];
    std::snprintf(digits, sizeof digits, "%03u", sum & 0xff);
    return body + digits + "\n";
}
