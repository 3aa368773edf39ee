#pragma once
// The get and put areas of any stream buffer, for readers and writers that move bytes in place
// instead of one call at a time. streambuf keeps these members for its derived classes; naming
// them through a derived class is the one way to reach them on a buffer of any type. Bytes taken
// from or put into an area this way are what sbumpc() and sputc() would take or put.

#include <streambuf>

struct StreamGetArea : std::streambuf {
    static char* begin(std::streambuf& sb) { return (sb.*&StreamGetArea::eback)(); }
    static char* next(std::streambuf& sb) { return (sb.*&StreamGetArea::gptr)(); }
    static char* end(std::streambuf& sb) { return (sb.*&StreamGetArea::egptr)(); }
    /// Moves the read position by n bytes within the get area.
    static void bump(std::streambuf& sb, int n) { (sb.*&StreamGetArea::gbump)(n); }
};

struct StreamPutArea : std::streambuf {
    static char* next(std::streambuf& sb) { return (sb.*&StreamPutArea::pptr)(); }
    static char* end(std::streambuf& sb) { return (sb.*&StreamPutArea::epptr)(); }
    /// Moves the write position by n bytes within the put area.
    static void bump(std::streambuf& sb, int n) { (sb.*&StreamPutArea::pbump)(n); }
};
