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
    void AppendRawData(const std::string& data) { AppendRawData(data.data(), data.size()); }
    void AppendRawData(const std::vector<char>& data) { AppendRawData(data.data(), data.size()); }
    void AppendRawData(const char* data, size_t size);
    void ClearRawData()
    {
        _raw.clear();
        _taken = 0;
        _scanned = 0;
    }

    /// Takes out the data up to and including the earliest delimiter (the first added wins a tie;
    /// an empty delimiter is found at once). False, and nothing taken, when none is found.
    bool GetNextDelimString(std::string& out);
    bool GetNextDelimString(std::string& out, std::string& delimiter);
    /// Takes out the data up to and including the first line feed; false when there is none.
    bool GetNextStringToEOL(std::string& out);

private:
    /// Hands out `_raw` from `_taken` to `end` and moves past it.
    void _Take(size_t end, std::string& out);

    std::list<std::string> _delimiters;
    // What was taken stays at the front of `_raw` until an append finds it the larger part, so a
    // backlog of many messages is taken in time linear in its size.
    std::string _raw;
    size_t _taken = 0;    // the data starts here
    size_t _scanned = 0;  // no line feed between `_taken` and this offset
};
