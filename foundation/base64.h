#ifndef FOUNDATION_BASE64_H
#define FOUNDATION_BASE64_H

#include <utility>

// Base64 with the standard alphabet, "=" padding and no line breaks. Both functions take
// forward iterators over bytes or characters and return the positions reached in input and
// output, so that data can be fed in pieces.

/// Encodes [begin, end) three bytes at a time. A last group of one or two bytes is written
/// with padding if `final`; otherwise it is left, and the returned input position is its start.
template <class InIt, class OutIt>
std::pair<InIt, OutIt> Base64Encode(InIt begin, InIt end, OutIt out, bool final) {
    static const char alphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    while (begin != end) {
        InIt group = begin;
        unsigned char b[3] = {0, 0, 0};
        int n = 0;
        for (; n < 3 && begin != end; ++n, ++begin)
            b[n] = static_cast<unsigned char>(*begin);
        if (n < 3 && !final)
            return {group, out};
        *out++ = alphabet[b[0] >> 2];
        *out++ = alphabet[(b[0] & 0x3) << 4 | b[1] >> 4];
        *out++ = n > 1 ? alphabet[(b[1] & 0xf) << 2 | b[2] >> 6] : '=';
        *out++ = n > 2 ? alphabet[b[2] & 0x3f] : '=';
    }
    return {begin, out};
}

/// Decodes [begin, end) four characters at a time; each character is looked up on its low
/// seven bits. Input that ends inside a group returns the start of that group and writes
/// nothing for it. A padding or invalid character ends the decoding: the bytes of the group
/// that are already complete are written, and the returned input position is `end`.
template <class InIt, class OutIt>
std::pair<InIt, OutIt> Base64Decode(InIt begin, InIt end, OutIt out) {
    static const signed char value[128] = {
        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 62, -1, -1, -1, 63,
        52, 53, 54, 55, 56, 57, 58, 59, 60, 61, -1, -1, -1, -1, -1, -1,
        -1, 0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
        15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, -1, -1, -1, -1, -1,
        -1, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40,
        41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51, -1, -1, -1, -1, -1,
    };
    while (begin != end) {
        InIt group = begin;
        int v[4];
        for (int n = 0; n < 4; ++n, ++begin) {
            if (begin == end)
                return {group, out};
            v[n] = value[*begin & 0x7f];
            if (v[n] < 0) {
                if (n >= 2)
                    *out++ = static_cast<unsigned char>(v[0] << 2 | v[1] >> 4);
                if (n == 3)
                    *out++ = static_cast<unsigned char>((v[1] & 0xf) << 4 | v[2] >> 2);
                return {end, out};
            }
        }
        *out++ = static_cast<unsigned char>(v[0] << 2 | v[1] >> 4);
        *out++ = static_cast<unsigned char>((v[1] & 0xf) << 4 | v[2] >> 2);
        *out++ = static_cast<unsigned char>((v[2] & 0x3) << 6 | v[3]);
    }
    return {begin, out};
}

#endif
