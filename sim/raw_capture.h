#pragma once
// A raw capture of a simulated Halden: the detector's bytes, deflated and sent as DATAFLRAW lines.

#include <cstdint>
#include <string>

#include "foundation/zlib.h"

/// One capture of `size` bytes, sent in pieces. The bytes are the same at every capture: byte i is
/// Byte(i), so that a receiver can be checked against them. The compressed stream is cut into
/// lines of whole Base64 groups, padded only on its last line, so that each line decodes alone;
/// a line with an empty payload ends the capture.
class SimRawCapture {
public:
    /// Compressed bytes on one full line: 256 Base64 groups.
    static constexpr size_t LINE_BYTES = 768;

    explicit SimRawCapture(int64_t size) : _size(size) {}

    /// Byte `index` of every capture: 16-bit detector counts, low byte first, a slow pulse with
    /// a little noise.
    static unsigned char Byte(int64_t index);

    /// The lines for up to `bytes` more of the capture; once every byte is in, the rest of the
    /// compressed stream and the end mark.
    std::string Lines(int64_t bytes);
    /// Whether the end mark has been given.
    bool Done() const { return _done; }

private:
    static std::string _Line(const std::string& payload);

    ZLibCore<ZLibDeflatePolicy> _deflate;
    int64_t _size;
    int64_t _read = 0;
    std::string _compressed;  ///< deflated, not yet on a line
    bool _done = false;
};
