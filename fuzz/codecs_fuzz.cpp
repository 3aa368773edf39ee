// Base64 text decoded and inflated, as a raw capture arrives; and any bytes deflated and inflated
// in pieces of any size, which must give them back.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <stdexcept>
#include <string>

#include "foundation/base64.h"
#include "foundation/zlib.h"

namespace {

// A reader or writer that moves at most `piece` bytes per call.
struct Pieces {
    std::string::const_iterator at, end;
    size_t piece;
    Bytef* operator()(Bytef* to, Bytef* to_end)
    {
        for (size_t n = 0; n < piece && to != to_end && at != end; ++n)
            *to++ = static_cast<Bytef>(*at++);
        return to;
    }
};

struct Sink {
    std::string* out;
    size_t piece;
    Bytef* operator()(Bytef* from, Bytef* from_end)
    {
        for (size_t n = 0; n < piece && from != from_end; ++n)
            out->push_back(static_cast<char>(*from++));
        return from;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const size_t read_piece = data[0] % 64 + 1, write_piece = data[1] % 64 + 1;
    const std::string input(reinterpret_cast<const char*>(data + 2), size - 2);

    std::string decoded;
    Base64Decode(input.begin(), input.end(), std::back_inserter(decoded));
    std::string inflated;
    try {
        Inflate(Pieces{decoded.cbegin(), decoded.cend(), read_piece}, Sink{&inflated, write_piece});
    } catch (const std::runtime_error&) {
        // Not a zlib stream: the capture reports it; nothing else is promised.
    }

    std::string deflated, back;
    Deflate(Pieces{input.cbegin(), input.cend(), read_piece}, Sink{&deflated, write_piece});
    Inflate(Pieces{deflated.cbegin(), deflated.cend(), write_piece}, Sink{&back, read_piece});
    if (back != input)
        abort();

    std::string encoded, redecoded;
    Base64Encode(input.begin(), input.end(), std::back_inserter(encoded), true);
    Base64Decode(encoded.begin(), encoded.end(), std::back_inserter(redecoded));
    if (redecoded != input)
        abort();
    return 0;
}
