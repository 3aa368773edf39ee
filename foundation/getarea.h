#pragma once
// The get area of any stream buffer, for readers that scan bytes in place instead of taking them
// one call at a time. streambuf keeps these members for its derived classes; naming them through
// a derived class is the one way to reach them on a buffer of any type.

#include <streambuf>

struct StreamGetArea : std::streambuf {
    static char* begin(std::streambuf& sb) { return (sb.*&StreamGetArea::eback)(); }
    static char* next(std::streambuf& sb) { return (sb.*&StreamGetArea::gptr)(); }
    static char* end(std::streambuf& sb) { return (sb.*&StreamGetArea::egptr)(); }
    /// Moves the read position by n bytes within the get area.
    static void bump(std::streambuf& sb, int n) { (sb.*&StreamGetArea::gbump)(n); }
};
