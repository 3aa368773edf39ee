#include "link/delimparser.h"

bool DelimParser::GetNextDelimString(std::string& out)
{
    std::string delimiter;
    return GetNextDelimString(out, delimiter);
}

bool DelimParser::GetNextDelimString(std::string& out, std::string& delimiter)
{
    size_t best = std::string::npos;
    const std::string* found = nullptr;
    for (const std::string& d : _delimiters) {
        size_t at = _raw.find(d);
        if (at != std::string::npos && (found == nullptr || at < best)) {
            best = at;
            found = &d;
        }
    }
    if (!found)
        return false;
    const size_t end = best + found->size();
    out.assign(_raw, 0, end);
    _raw.erase(0, end);
    _scanned = 0;
    delimiter = *found;
    return true;
}

bool DelimParser::GetNextStringToEOL(std::string& out)
{
    // A long line arriving in many pieces is scanned once, not once per piece.
    const size_t at = _raw.find('\n', _scanned);
    if (at == std::string::npos) {
        _scanned = _raw.size();
        return false;
    }
    out.assign(_raw, 0, at + 1);
    _raw.erase(0, at + 1);
    _scanned = 0;
    return true;
}
