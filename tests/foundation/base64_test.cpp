#include "foundation/base64.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

std::string Encode(const std::string& in, bool final, std::size_t* used = nullptr) {
    std::string out;
    auto r = Base64Encode(in.begin(), in.end(), std::back_inserter(out), final);
    if (used)
        *used = static_cast<std::size_t>(r.first - in.begin());
    return out;
}

std::string Decode(const std::string& in, std::size_t* used = nullptr) {
    std::string out;
    auto r = Base64Decode(in.begin(), in.end(), std::back_inserter(out));
    if (used)
        *used = static_cast<std::size_t>(r.first - in.begin());
    return out;
}

TEST(Base64, KnownTexts) {
    const struct {
        std::string plain, coded;
    } rows[] = {
        {"", ""},           {"f", "Zg=="},         {"fo", "Zm8="},
        {"foo", "Zm9v"},    {"foob", "Zm9vYg=="},  {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
        {std::string("\xfb\xff\xbf\x00", 4), "+/+/AA=="},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(Encode(r.plain, true), r.coded) << r.plain;
        std::size_t used;
        EXPECT_EQ(Decode(r.coded, &used), r.plain) << r.coded;
        EXPECT_EQ(used, r.coded.size()) << r.coded;
    }
}

TEST(Base64, NotFinalLeavesTheLastPartialGroup) {
    for (std::size_t n = 0; n < 10; ++n) {
        std::string in(n, 'x');
        std::size_t used;
        std::string coded = Encode(in, false, &used);
        EXPECT_EQ(used, n / 3 * 3) << n;
        EXPECT_EQ(coded, Encode(in.substr(0, used), true)) << n;
    }
    // Fed again with what follows, pieces give the same text as the whole.
    std::string text = "pieces of a longer text", coded, rest;
    for (std::size_t at = 0; at < text.size(); at += 5) {
        rest += text.substr(at, 5);
        std::size_t used;
        coded += Encode(rest, at + 5 >= text.size(), &used);
        rest.erase(0, used);
    }
    EXPECT_EQ(coded, Encode(text, true));
}

TEST(Base64, DecodeStops) {
    const struct {
        std::string coded, plain;
        std::size_t used;
    } rows[] = {
        {"Zm9vYm", "foo", 4},         // cut inside a group: back to its start
        {"Zm9vY", "foo", 4}, {"Zm9", "", 0}, {"Zm9v", "foo", 4},
        {"Zm9vYg==Zm9v", "foob", 12},  // padding ends the decoding
        {"Zm9=Zm9v", "fo", 8}, {"Zm==", "f", 4}, {"Z===", "", 4}, {"=Zm9v", "", 5},
        {"Zm9v\nZm9v", "foo", 9},      // so does any other character
        {"Zm9*", "fo", 4}, {"Zm*v", "f", 4},
        {"\xda\xed\xb9\xf6", "foo", 4},  // looked up on the low seven bits
    };
    for (const auto& r : rows) {
        std::size_t used;
        EXPECT_EQ(Decode(r.coded, &used), r.plain) << r.coded;
        EXPECT_EQ(used, r.used) << r.coded;
    }
}

}  // namespace
