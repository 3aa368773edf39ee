#pragma once
// A raw capture as an instrument sends it.

#include <iterator>
#include <string>
#include <vector>

#include "foundation/base64.h"
#include "foundation/zlib.h"

/// The Base64 payloads of `bytes` deflated, `line_bytes` compressed bytes a line, each line
/// decodable on its own.
inline std::vector<std::string> raw_payloads(const std::string& bytes, size_t line_bytes)
{
    std::string compressed;
    Deflate(bytes.begin(), bytes.end(), std::back_inserter(compressed));
    std::vector<std::string> payloads;
    for (size_t at = 0; at < compressed.size(); at += line_bytes) {
        std::string payload;
        const auto from = compressed.begin() + long(at);
        Base64Encode(from, from + long(std::min(line_bytes, compressed.size() - at)), std::back_inserter(payload), true);
        payloads.push_back(payload);
    }
    return payloads;
}
