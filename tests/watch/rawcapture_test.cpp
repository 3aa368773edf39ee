#include "watch/rawdatacapture.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/watch/raw_test_util.h"

namespace {

std::string read_file(const std::string& path)
{
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
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

TEST(RawDataCapture, WritesTheInflatedBytesAsTheyComeAndStopsWhereTheDataStops)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("raw.dat").toStdString();
    const std::string sample = detector_bytes(5000);
    const std::vector<std::string> lines = raw_payloads(sample, 60);
    const struct {
        const char* what;
        std::string bytes;                    // what the instrument meant
        std::vector<std::string> lines;       // what arrives
        bool whole;                           // all of it lands, else a true beginning of it
    } cases[] = {
        {"one byte", "x", raw_payloads("x", 768), true},
        {"a group per line", detector_bytes(100000), raw_payloads(detector_bytes(100000), 3), true},
        {"lines larger than the buffers", detector_bytes(300000), raw_payloads(detector_bytes(300000), 120000), true},
        {"data after the stream's end", sample, [&] { auto l = lines; l.push_back(lines[0]); return l; }(), true},
        {"a group cut short", sample, {lines[0], lines[1].substr(0, lines[1].size() - 2)}, false},
        {"an invalid character", sample, {lines[0], "@" + lines[1]}, false},
    };
    for (const auto& c : cases) {
        {
            _RawDataCapture capture(path);
            for (const std::string& payload : c.lines)
                capture.HandleData(payload.data(), payload.data() + payload.size());
        }
        const std::string written = read_file(path);
        if (c.whole)
            EXPECT_TRUE(written == c.bytes) << c.what;
        else
            EXPECT_TRUE(written.size() < c.bytes.size() && c.bytes.compare(0, written.size(), written) == 0) << c.what;
    }
}

TEST(RawDataCapture, RunsItsCourseWithoutAFileAndThrowsOnlyForDataThatDoesNotInflate)
{
    QTemporaryDir dir;
    _RawDataCapture capture(dir.filePath("no/such/dir/raw.dat").toStdString());
    for (const std::string& payload : raw_payloads(detector_bytes(40000), 768))
        capture.HandleData(payload.data(), payload.data() + payload.size());
    EXPECT_EQ(capture.BytesWritten(), 40000u);

    _RawDataCapture broken(dir.filePath("raw.dat").toStdString());
    const std::string garbage = "AAAAAAAAAAAA";
    EXPECT_THROW(broken.HandleData(garbage.data(), garbage.data() + garbage.size()), std::runtime_error);
}

}  // namespace
