#ifndef FOUNDATION_ZLIB_H
#define FOUNDATION_ZLIB_H

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

/// One zlib stream with an input and an output buffer of BUFFER_SIZE bytes each.
///
/// The caller fills the free room of the input buffer, [InBufFilled(), InBufEnd()), and
/// reports it with InBufFilledTo(); a step of the derived policy moves data through the
/// library; the caller takes the output, [OutBufEmptied(), OutBufFilled()), and reports it
/// with OutBufEmptiedTo(). Library failures throw std::runtime_error.
class ZLibBasePolicy {
public:
    typedef Bytef* iterator;
    static constexpr std::size_t BUFFER_SIZE = 36864;

    ZLibBasePolicy(const ZLibBasePolicy&) = delete;
    ZLibBasePolicy& operator=(const ZLibBasePolicy&) = delete;
    virtual ~ZLibBasePolicy();

    /// Positions and stream back to the start.
    virtual void Reset();

    /// The input buffer now holds data up to `to`.
    void InBufFilledTo(iterator to);
    /// The output has been taken up to `to`; once all is taken the whole buffer is free again.
    void OutBufEmptiedTo(iterator to);

    iterator InBufFilled() const { return _in_filled; }
    iterator InBufEnd() const { return _in.get() + BUFFER_SIZE; }
    /// Bytes in the input buffer that the library has not used yet.
    std::size_t InBufPending() const { return _stream->avail_in; }
    iterator OutBufEmptied() const { return _out_emptied; }
    iterator OutBufFilled() const { return _out_filled; }

    /// The library has reported the end of the stream; further steps do nothing.
    bool Ended() const { return _ended; }

protected:
    ZLibBasePolicy();

    /// Throws std::runtime_error with `message`, ": " and zlib's text for `code`.
    [[noreturn]] static void _Error(const std::string& message, int code);
    /// After a library call: the output's filled mark follows the stream, and used-up input
    /// lets the input buffer start afresh.
    void _Advance();

    std::unique_ptr<z_stream> _stream;  // on the heap: zlib keeps a pointer back to it
    bool _ended;

private:
    std::unique_ptr<Bytef[]> _in, _out;
    iterator _in_filled, _out_emptied, _out_filled;
};

/// Compresses at level 1, the fastest.
class ZLibDeflatePolicy : public ZLibBasePolicy {
public:
    ZLibDeflatePolicy();
    ~ZLibDeflatePolicy() override;
    void Reset() override;

    /// One deflate() call, finishing the stream if `finish`. Does nothing once the stream has
    /// ended, without input unless finishing, or with the output buffer full.
    void _Deflate(bool finish);

private:
    void _Init();
};

class ZLibInflatePolicy : public ZLibBasePolicy {
public:
    ZLibInflatePolicy();
    ~ZLibInflatePolicy() override;
    void Reset() override;

    /// One inflate() call. Does nothing once the stream has ended, or without input or
    /// output room.
    void _Inflate();

private:
    void _Init();
};

/// Moves data between a policy's buffers and the caller's reader and writer.
template <class Policy>
class ZLibCore : public Policy {
public:
    /// Fills the input buffer's free room by read(begin, end), which returns the end of what it
    /// filled, calling step() after each read, until the room is full or the stream has ended.
    /// Returns false once the reader gives nothing.
    template <class Reader, class Step>
    bool Input(Reader& read, Step step) {
        while (!this->Ended() && this->InBufFilled() != this->InBufEnd()) {
            typename Policy::iterator from = this->InBufFilled();
            std::size_t got = static_cast<std::size_t>(read(from, this->InBufEnd()) - from);
            if (got == 0)
                return false;
            this->InBufFilledTo(from + got);
            step();
        }
        return true;
    }

    /// Hands all pending output to write(begin, end), which returns the end of what it took,
    /// in as many rounds as it takes. Returns the number of bytes taken.
    template <class Writer>
    uint32_t Output(Writer& write) {
        uint32_t total = 0;
        while (this->OutBufEmptied() != this->OutBufFilled()) {
            typename Policy::iterator from = this->OutBufEmptied();
            std::size_t took = static_cast<std::size_t>(write(from, this->OutBufFilled()) - from);
            if (took == 0)  // would never finish
                throw std::runtime_error("ZLib writer took no data");
            total += static_cast<uint32_t>(took);
            this->OutBufEmptiedTo(from + took);
        }
        return total;
    }
};

/// Compresses what read(begin, end) delivers (returning the end of what it filled; nothing
/// at the end of the data) and hands it to write(begin, end) (returning the end of what it
/// took). Returns the number of bytes written.
template <class Reader, class Writer>
uint32_t Deflate(Reader read, Writer write) {
    ZLibCore<ZLibDeflatePolicy> z;
    auto step = [&z] { z._Deflate(false); };
    uint32_t written = 0;
    while (z.Input(read, step)) {
        step();
        written += z.Output(write);
    }
    do {
        z._Deflate(true);
        written += z.Output(write);
    } while (!z.Ended());
    return written;
}

/// Decompresses, with reader and writer as for Deflate. Stops at the end of the compressed
/// stream; data cut short gives what could be decompressed. Returns the number of bytes written.
template <class Reader, class Writer>
uint32_t Inflate(Reader read, Writer write) {
    ZLibCore<ZLibInflatePolicy> z;
    auto step = [&z] { z._Inflate(); };
    uint32_t written = 0;
    bool more = true;
    while (!z.Ended() && (more || z.InBufPending() > 0)) {
        if (more)
            more = z.Input(read, step);
        step();
        written += z.Output(write);
    }
    return written;
}

/// A reader over [begin, end) that advances `begin` as it goes.
template <class InIt>
auto ZLibRangeReader(InIt& begin, InIt end) {
    return [&begin, end](Bytef* to, Bytef* to_end) {
        for (; to != to_end && begin != end; ++to, ++begin)
            *to = static_cast<Bytef>(*begin);
        return to;
    };
}

/// A writer that takes everything into `out` and advances it.
template <class OutIt>
auto ZLibRangeWriter(OutIt& out) {
    return [&out](Bytef* from, Bytef* from_end) {
        for (; from != from_end; ++from)
            *out++ = *from;
        return from;
    };
}

/// Compresses [begin, end) into out; returns the end of the output.
template <class InIt, class OutIt>
OutIt Deflate(InIt begin, InIt end, OutIt out) {
    Deflate(ZLibRangeReader(begin, end), ZLibRangeWriter(out));
    return out;
}

/// Decompresses [begin, end) into out; returns the end of the output.
template <class InIt, class OutIt>
OutIt Inflate(InIt begin, InIt end, OutIt out) {
    Inflate(ZLibRangeReader(begin, end), ZLibRangeWriter(out));
    return out;
}

#endif
