#pragma once
#include <streambuf>
#include <string>

// A read-only stream buffer over a string, so that loops time the reader, not a copy.
class ViewBuf : public std::streambuf {
public:
    explicit ViewBuf(const std::string& s)
    {
        char* p = const_cast<char*>(s.data());
        setg(p, p, p + s.size());
    }
};
