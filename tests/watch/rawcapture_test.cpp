#include "watch/rawdatacapture.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/base64.h"

namespace {

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

// Counts that compress somewhat, with noise that doesn't.
std::string detector_bytes(size_t size)
{
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i % 2 ? (i / 512) % 7 : random() % 64);
    return bytes;
}

// The capture as an instrument sends it: deflated, cut into lines of `line_bytes` compressed
// bytes, each line Base64 on its own.
std::vector<std::string> payloads(const std::string& bytes, size_t line_bytes)
{
    std::string compressed;
    Deflate(bytes.begin(), bytes.end(), std::back_inserter(compressed));
    std::vector<std::string> lines;
    for (size_t at = 0; at < compressed.size(); at += line_bytes) {
        std::string line;
        Base64Encode(compressed.begin() + long(at), compressed.begin() + long(std::min(at + line_bytes, compressed.size())),
                     std::back_inserter(line), true);
        lines.push_back(line);
    }
    return lines;
}

void feed(_RawDataCapture& capture, const std::string& payload)
{
    capture.HandleData(payload.data(), payload.data() + payload.size());
}

TEST(RawDataCapture, WritesTheInflatedBytesWhateverTheLineLength)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("raw.dat").toStdString();
    const struct {
        size_t size, line_bytes;
    } cases[] = {
        {1, 768},
        {100000, 3},         // a group per line
        {100000, 768},
        {300000, 120000},    // lines larger than the inflater's buffers
    };
    for (const auto& c : cases) {
        const std::string bytes = detector_bytes(c.size);
        {
            _RawDataCapture capture(path);
            for (const std::string& payload : payloads(bytes, c.line_bytes))
                feed(capture, payload);
            EXPECT_EQ(capture.BytesWritten(), c.size);
        }
        EXPECT_TRUE(read_file(path) == bytes) << c.size << " in lines of " << c.line_bytes;
    }
}

TEST(RawDataCapture, StopsWhereTheDataStops)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("raw.dat").toStdString();
    const std::string bytes = detector_bytes(5000);
    std::vector<std::string> lines = payloads(bytes, 60);
    const std::string cut_group = lines[1].substr(0, lines[1].size() - 2);
    const struct {
        const char* what;
        std::vector<std::string> lines;
        std::string expected;
    } cases[] = {
        {"data after the stream's end", [&] { auto l = lines; l.push_back(lines[0]); return l; }(), bytes},
        {"a group cut short drops it and nothing else", {lines[0], cut_group}, ""},
        {"an invalid character ends the line", {lines[0], "@" + lines[1]}, ""},
    };
    for (const auto& c : cases) {
        {
            _RawDataCapture capture(path);
            for (const std::string& payload : c.lines)
                feed(capture, payload);
        }
        const std::string written = read_file(path);
        if (!c.expected.empty())
            EXPECT_TRUE(written == c.expected) << c.what;
        else  // what came before is there, in order
            EXPECT_TRUE(written.size() < bytes.size() && bytes.compare(0, written.size(), written) == 0) << c.what;
    }
}

TEST(RawDataCapture, AFileThatCannotBeOpenedLetsTheCaptureRunItsCourse)
{
    QTemporaryDir dir;
    _RawDataCapture capture(dir.filePath("no/such/dir/raw.dat").toStdString());
    for (const std::string& payload : payloads(detector_bytes(40000), 768))
        feed(capture, payload);
    EXPECT_EQ(capture.BytesWritten(), 40000u);
}

TEST(RawDataCapture, DataThatDoesNotInflateThrows)
{
    QTemporaryDir dir;
    _RawDataCapture capture(dir.filePath("raw.dat").toStdString());
    EXPECT_THROW(feed(capture, "AAAAAAAAAAAA"), std::runtime_error);
}

}  // namespace
