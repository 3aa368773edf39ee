#include "sim/data_line.h"

#include <cstdio>

DataLine& DataLine::Add(const std::string& field)
{
    _text += '\t';
    _text += field;
    return *this;
}

DataLine& DataLine::AddInteger(int64_t value)
{
    return Add(std::to_string(value));
}

DataLine& DataLine::AddFixed(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return Add(text);
}

std::string DataLine::Checked() const
{
    return with_sum(_text + '\t');
}

std::string with_sum(const std::string& body)
{
    unsigned sum = 0;
    for (unsigned char c : body)
        sum += c;
    char digits[4];
    std::snprintf(digits, sizeof digits, "%03u", sum & 0xffu);
    return body + digits + '\n';
}
