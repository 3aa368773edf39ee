// The two codecs of a raw capture: Base64 lines of a deflated stream.

#include "foundation/base64.h"
#include "foundation/zlib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

typedef std::vector<unsigned char> Bytes;

// A few hundred KB: text that compresses well, alternating with runs of random bytes that
// don't, so that both buffers fill and drain in many different rhythms.
Bytes Sample() {
    Bytes data;
    std::mt19937 random(42);
    const std::string text = "DATASTAT\t12.345\t0.0021\t1013.2\t25.01\tOK\n";
    for (int block = 0; block < 40; ++block) {
        for (int i = 0; i < 120; ++i)
            data.insert(data.end(), text.begin(), text.end());
        for (int i = 0; i < 3000 + block * 97; ++i)
            data.push_back(static_cast<unsigned char>(random()));
    }
    return data;
}

// A reader that hands out at most `piece` bytes per call.
struct PieceReader {
    const Bytes* data;
    std::size_t piece, at = 0;
    Bytef* operator()(Bytef* begin, Bytef* end) {
        std::size_t n = std::min({piece, static_cast<std::size_t>(end - begin), data->size() - at});
        std::copy_n(data->begin() + static_cast<std::ptrdiff_t>(at), n, begin);
        at += n;
        return begin + n;
    }
};

// A writer that takes at most `piece` bytes per call.
struct PieceWriter {
    Bytes* data;
    std::size_t piece;
    Bytef* operator()(Bytef* begin, Bytef* end) {
        Bytef* to = begin + std::min(piece, static_cast<std::size_t>(end - begin));
        data->insert(data->end(), begin, to);
        return to;
    }
};

TEST(ZLib, PiecesAndEnds) {
    const Bytes sample = Sample();
    ASSERT_GT(sample.size(), 300000u);
    Bytes packed, out;
    Deflate(sample.begin(), sample.end(), std::back_inserter(packed));
    EXPECT_EQ(packed.at(0), 0x78);
    EXPECT_EQ(packed.at(1), 0x01);  // the header of the fastest level
    const std::size_t pieces[] = {1, 7, 36864, 36865, 200000};
    for (std::size_t read_piece : pieces)
        for (std::size_t write_piece : pieces) {
            Bytes deflated, inflated;
            uint32_t n = Deflate(PieceReader{&sample, read_piece}, PieceWriter{&deflated, write_piece});
            EXPECT_EQ(n, deflated.size());
            EXPECT_EQ(deflated, packed) << read_piece << "/" << write_piece;

            n = Inflate(PieceReader{&deflated, read_piece}, PieceWriter{&inflated, write_piece});
            EXPECT_EQ(n, inflated.size());
            EXPECT_TRUE(inflated == sample) << read_piece << "/" << write_piece;
        }

    // Inflating stops at the end of the stream, and a cut stream gives what it can.
    const std::size_t size = packed.size();
    packed.insert(packed.end(), 100, 0xff);
    Inflate(packed.begin(), packed.end(), std::back_inserter(out));
    EXPECT_TRUE(out == sample);

    out.clear();
    packed.resize(size / 2);
    Inflate(packed.begin(), packed.end(), std::back_inserter(out));
    ASSERT_TRUE(out.size() > 0 && out.size() < sample.size()) << out.size();
    EXPECT_TRUE(std::equal(out.begin(), out.end(), sample.begin()));
}

TEST(ZLib, Errors) {
    // A bad header, a bad block type.
    for (const Bytes& in : {Bytes{0x00, 0x00, 0x00}, Bytes{0x78, 0x01, 0xff, 0x00}}) {
        Bytes out;
        try {
            Inflate(in.begin(), in.end(), std::back_inserter(out));
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "inflate() failed: data error");
        }
    }

    const Bytes sample(1000, 'a');
    EXPECT_THROW(Deflate(PieceReader{&sample, 10}, [](Bytef* begin, Bytef*) { return begin; }), std::runtime_error);
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
        std::string coded;
        Base64Encode(r.plain.begin(), r.plain.end(), std::back_inserter(coded), true);
        EXPECT_EQ(coded, r.coded) << r.plain;
        std::size_t used;
        EXPECT_EQ(Decode(r.coded, &used), r.plain) << r.coded;
        EXPECT_EQ(used, r.coded.size()) << r.coded;
    }
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
