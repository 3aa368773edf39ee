#pragma once
// A buffer that cuts what a socket delivers into messages: at line ends, or at the earliest of a
// list of delimiters (for streams whose messages end in a closing tag). Text after the last
// complete message waits for more data.

#include <list>
#include <string>
#include <vector>

class DelimParser {
public:
    DelimParser() = default;
    explicit DelimParser(const std::string& delimiter) { AddDelimiter(delimiter); }

    void AddDelimiter(const std::string& delimiter) { _delimiters.push_back(delimiter); }
    void AppendRawData(const std::string& data) { _raw.append(data); }
    void AppendRawData(const std::vector<char>& data) { _raw.append(data.begin(), data.end()); }
    void AppendRawData(const char* data, size_t size) { _raw.append(data, size); }
    void ClearRawData()
    {
        _raw.clear();
        _scanned = 0;
    }

    /// Takes out the data up to and including the earliest delimiter (the first added wins a tie;
    /// an empty delimiter is found at once). False, and nothing taken, when none is found.
    bool GetNextDelimString(std::string& out);
    bool GetNextDelimString(std::string& out, std::string& delimiter);
    /// Takes out the data up to and including the first line feed; false when there is none.
    bool GetNextStringToEOL(std::string& out);

private:
    std::list<std::string> _delimiters;
    std::string _raw;
    size_t _scanned = 0;  // no line feed before this offset
};
