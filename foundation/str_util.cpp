#include "foundation/str_util.h"

#include <algorithm>

namespace {

// Not <cctype>: a GUI program sets the C library's locale from the user's environment.
bool IsWhite(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsNonSpaceWhite(char c) { return c != ' ' && IsWhite(c); }

unsigned char Lower(char c) {
    unsigned char u = static_cast<unsigned char>(c);
    return u >= 'A' && u <= 'Z' ? static_cast<unsigned char>(u - 'A' + 'a') : u;
}

}  // namespace

char FirstNonWhite(const std::string& s) {
    auto it = std::find_if_not(s.begin(), s.end(), IsWhite);
    return it == s.end() ? 0 : *it;
}

std::string StripNonSpaceWS(const std::string& s) {
    std::string r = s;
    r.erase(std::remove_if(r.begin(), r.end(), IsNonSpaceWhite), r.end());
    return r;
}

std::string StripNonSpaceWSOne(const std::string& s) {
    std::string r;
    for (char c : s) {
        if (IsNonSpaceWhite(c) || (c == ' ' && !r.empty() && r.back() == ' '))
            continue;
        r += c;
    }
    return r;
}

std::string StripEndWS(const std::string& s) {
    auto first = std::find_if_not(s.begin(), s.end(), IsWhite);
    auto last = std::find_if_not(s.rbegin(), std::string::const_reverse_iterator(first), IsWhite);
    return std::string(first, last.base());
}

std::size_t CaseInsensitiveStringFind(const std::string& text, const std::string& sought,
                                      std::size_t start) {
    if (start > text.size())
        return std::string::npos;
    auto it = std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
                          sought.begin(), sought.end(),
                          [](char a, char b) { return Lower(a) == Lower(b); });
    return it == text.end() && !sought.empty() ? std::string::npos
                                               : static_cast<std::size_t>(it - text.begin());
}

int CaseInsensitiveStringCompare(const std::string& a, const std::string& b) {
    auto diff = std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                              [](char x, char y) { return Lower(x) == Lower(y); });
    if (diff.first == a.end())
        return diff.second == b.end() ? 0 : -1;
    if (diff.second == b.end())
        return 1;
    return Lower(*diff.first) < Lower(*diff.second) ? -1 : 1;
}

std::string CsvField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}
