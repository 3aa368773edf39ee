#include "foundation/zlib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
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

Bytes DeflateRange(const Bytes& in) {
    Bytes out;
    Deflate(in.begin(), in.end(), std::back_inserter(out));
    return out;
}

TEST(ZLib, ReaderAndWriterPieces) {
    const Bytes sample = Sample();
    ASSERT_GT(sample.size(), 300000u);
    const Bytes packed = DeflateRange(sample);
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
}

// Inflating stops at the end of the stream, and a cut stream gives what it can.
TEST(ZLib, InflateEnds) {
    const Bytes sample = Sample();
    Bytes packed = DeflateRange(sample), out;
    const std::size_t size = packed.size();
    packed.insert(packed.end(), 100, 0xff);
    Inflate(packed.begin(), packed.end(), std::back_inserter(out));
    EXPECT_TRUE(out == sample);

    out.clear();
    packed.resize(size / 2);
    Inflate(packed.begin(), packed.end(), std::back_inserter(out));
    ASSERT_GT(out.size(), 0u);
    ASSERT_LT(out.size(), sample.size());
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
    EXPECT_THROW(Deflate(PieceReader{&sample, 10}, [](Bytef* begin, Bytef*) { return begin; }),
                 std::runtime_error);
}

// Driving the policy by hand, as a caller that fills the input buffer itself does.
TEST(ZLib, InflatePolicyByHandAndReset) {
    const Bytes sample = Sample();
    const Bytes packed = DeflateRange(sample);
    ZLibInflatePolicy z;

    auto feed = [&z](const Bytes& in, std::size_t limit) {
        Bytes out;
        std::size_t at = 0;
        while (!z.Ended() && (at < limit || z.InBufPending() > 0)) {
            std::size_t n = std::min<std::size_t>(limit - at, z.InBufEnd() - z.InBufFilled());
            std::memcpy(z.InBufFilled(), in.data() + at, n);
            at += n;
            z.InBufFilledTo(z.InBufFilled() + n);
            z._Inflate();
            out.insert(out.end(), z.OutBufEmptied(), z.OutBufFilled());
            z.OutBufEmptiedTo(z.OutBufFilled());
        }
        return out;
    };

    feed(packed, 1000);  // half way through, then start afresh
    EXPECT_FALSE(z.Ended());
    z.Reset();
    EXPECT_TRUE(feed(packed, packed.size()) == sample);
    EXPECT_TRUE(z.Ended());
}

}  // namespace
