#ifndef FOUNDATION_STR_UTIL_H
#define FOUNDATION_STR_UTIL_H

#include <cstddef>
#include <string>

// Functions on byte strings. White space is always the C locale's (blank, \t, \n, \v, \f, \r),
// whatever locale the program runs in; case is ASCII case.

/// The first character that is not white space, or 0 if there is none.
char FirstNonWhite(const std::string& s);

/// A copy without any white space other than the blank.
std::string StripNonSpaceWS(const std::string& s);

/// A copy without any white space other than the blank, and with each run of blanks reduced
/// to one; other white space between two blanks does not separate them.
std::string StripNonSpaceWSOne(const std::string& s);

/// A copy without white space at both ends; inner white space stays.
std::string StripEndWS(const std::string& s);

/// Offset of the first case-blind occurrence of `sought` in `text` at or after `start`, or
/// std::string::npos.
std::size_t CaseInsensitiveStringFind(const std::string& text, const std::string& sought,
                                      std::size_t start);

/// -1, 0 or 1 by case-blind comparison of the bytes, taken as unsigned; a string that is the
/// start of the other is the lesser.
int CaseInsensitiveStringCompare(const std::string& a, const std::string& b);

/// A field of comma-separated text: as it stands, or in double quotes with its quotes doubled when
/// it holds a comma, a quote or a line break.
std::string CsvField(const std::string& text);

#endif
