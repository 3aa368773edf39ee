#include "link/rawdatacapture.h"

#include <algorithm>

#include "foundation/base64.h"

std::string_view _RawDataCapture::Payload(const std::string& record, const std::string& line)
{
    const size_t from = record.size() + 1;
    return line.size() <= from + 1 ? std::string_view() : std::string_view(line).substr(from, line.size() - 1 - from);
}

_RawDataCapture::_RawDataCapture(const std::string& filename)
    : _file(filename, std::ios::binary | std::ios::trunc)
{
}

void _RawDataCapture::HandleData(const char* begin, const char* end)
{
    if (begin == end)
        return;
    for (;;) {
        // Decode into the free room of the input buffer: whole groups of four, three bytes each.
        bool placed = false;
        const size_t room = size_t(InBufEnd() - InBufFilled());
        if (!Ended() && begin != end && room >= 3) {
            const size_t chars = std::min(size_t(end - begin), room / 3 * 4);
            const auto reached = Base64Decode(begin, begin + chars, InBufFilled());
            placed = reached.first != begin;
            // Fewer bytes than whole groups give: padding or an invalid character ended the data.
            const bool cut = reached.first == begin + chars && size_t(reached.second - InBufFilled()) < chars / 4 * 3;
            begin = cut ? end : reached.first;
            InBufFilledTo(reached.second);
        }
        _Inflate();
        const bool produced = OutBufEmptied() != OutBufFilled();
        _Write();
        // Pending input is inflated before returning: the end mark may come next.
        if (Ended() || (!placed && !produced))
            return;
    }
}

void _RawDataCapture::_Write()
{
    const auto size = OutBufFilled() - OutBufEmptied();
    _file.write(reinterpret_cast<const char*>(OutBufEmptied()), size);
    _written += uint64_t(size);
    OutBufEmptiedTo(OutBufFilled());
}
