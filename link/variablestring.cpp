#include "link/variablestring.h"

VariableString::VariableString(const std::string& text, int default_field)
{
    const size_t first = text.find(':');
    if (first == std::string::npos) {
        (default_field == VARIABLE ? variable : default_field == RECORD ? record : host) = text;
        return;
    }
    host = text.substr(0, first);
    const size_t second = text.find(':', first + 1);
    if (second == std::string::npos) {
        record = text.substr(first + 1);
        return;
    }
    record = text.substr(first + 1, second - first - 1);
    variable = text.substr(second + 1);
}
