#include "link/delimparser.h"

void DelimParser::AppendRawData(const char* data, size_t size)
{
    if (_taken > _raw.size() - _taken) {
        _raw.erase(0, _taken);
        _scanned -= _taken;
        _taken = 0;
    }
    _raw.append(data, size);
}

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
        size_t at = _raw.find(d, _taken);
        if (at != std::string::npos && (found == nullptr || at < best)) {
            best = at;
            found = &d;
        }
    }
    if (!found)
        return false;
    _Take(best + found->size(), out);
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
    _Take(at + 1, out);
    return true;
}

void DelimParser::_Take(size_t end, std::string& out)
{
    out.assign(_raw, _taken, end - _taken);
    _taken = end;
    _scanned = end;
    if (_taken == _raw.size())
        ClearRawData();
}
