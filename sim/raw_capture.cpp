#include "sim/raw_capture.h"

#include <algorithm>
#include <iterator>

#include "foundation/base64.h"

unsigned char SimRawCapture::Byte(int64_t index)
{
    const uint64_t sample = uint64_t(index / 2);
    // A cheap hash gives the noise; the pulse repeats every 4096 samples.
    uint64_t noise = sample * 0x9E3779B97F4A7C15ull;
    noise ^= noise >> 29;
    const uint64_t phase = sample % 4096;
    const unsigned value = unsigned(8000 + (phase < 1024 ? phase * 20 : 20480 - (phase - 1024) * 20 / 3) + (noise & 0x3f));
    return (index % 2 == 0) ? (unsigned char)(value & 0xff) : (unsigned char)(value >> 8);
}

std::string SimRawCapture::Lines(int64_t bytes)
{
    if (_done)
        return "";
    const int64_t limit = std::min(_size, _read + std::max<int64_t>(bytes, 0));
    auto read = [this, limit](Bytef* to, Bytef* end) {
        for (; to != end && _read < limit; ++to, ++_read)
            *to = Byte(_read);
        return to;
    };
    auto write = [this](Bytef* from, Bytef* end) {
        _compressed.append(reinterpret_cast<const char*>(from), size_t(end - from));
        return end;
    };
    auto step = [this] { _deflate._Deflate(false); };
    // As Deflate() does in one go, in pieces: what the reader gave is all taken in before returning.
    while (_deflate.Input(read, step)) {
        step();
        _deflate.Output(write);
    }
    do {
        step();
        _deflate.Output(write);
    } while (_deflate.InBufPending() > 0);
    const bool last = _read == _size;
    if (last) {
        do {
            _deflate._Deflate(true);
            _deflate.Output(write);
        } while (!_deflate.Ended());
    }

    std::string lines;
    size_t start = 0;
    for (; _compressed.size() - start >= LINE_BYTES; start += LINE_BYTES)
        lines += _Line(_compressed.substr(start, LINE_BYTES));
    _compressed.erase(0, start);
    if (last) {
        if (!_compressed.empty())
            lines += _Line(_compressed);
        _compressed.clear();
        lines += "DATAFLRAW\t\n";
        _done = true;
    }
    return lines;
}

std::string SimRawCapture::_Line(const std::string& payload)
{
    std::string line = "DATAFLRAW\t";
    Base64Encode(payload.begin(), payload.end(), std::back_inserter(line), true);
    return line + '\n';
}
