// The line format with its sum, and the spectrum that the waveforms show.

#include <gtest/gtest.h>

#include "link/connector.h"
#include "sim/data_line.h"
#include "sim/spectrum.h"
#include "sim_test_util.h"

namespace {

TEST(SimDataLine, SumsCheckAsTheLinkChecksThem)
{
    // Small sums need their leading zeros, high bytes count unsigned, and the sum wraps at 256.
    const struct {
        const char* record;
        std::vector<std::string> values;
    } cases[] = {
        {"DATA", {"1", "2", "3"}},
        {"D", {}},
        {"DATA", {"\xff\xfe\xfd"}},
        {"DATASTAT", {std::string(300, '9')}},
        {"DATA", {"-0.001", "1e+06", "nan"}},
    };
    for (const auto& c : cases) {
        DataLine line(c.record);
        for (const std::string& value : c.values)
            line.Add(value);
        const std::string checked = line.Checked();
        EXPECT_TRUE(Connector::VerifyCheckSum(checked)) << checked;
        std::string spoiled = checked;
        spoiled[0] = char(spoiled[0] + 1);
        EXPECT_FALSE(Connector::VerifyCheckSum(spoiled)) << spoiled;
    }
    EXPECT_EQ(DataLine("DATA").Add("1").Add("2").Add("3").Checked(), "DATA\t1\t2\t3\t212\n");
    EXPECT_EQ(DataLine("DATAH").Add("A").Plain(), "DATAH\tA\n");
}

TEST(SimSpectrum, LinesStandOutOfAZeroBaseline)
{
    // The lock line is a peak of the reference.
    const double lock = SimSpectrum::LockTemperature();
    EXPECT_GT(SimSpectrum::Reference(lock), 0.9);
    EXPECT_GT(SimSpectrum::Reference(lock), SimSpectrum::Reference(lock - 0.0165));
    EXPECT_GT(SimSpectrum::Reference(lock), SimSpectrum::Reference(lock + 0.0165));
    EXPECT_LT(SimSpectrum::Sample(SimSpectrum::LOWEST), 0.01);
    EXPECT_LT(SimSpectrum::Reference(SimSpectrum::HIGHEST), 0.02);
    // The sample has lines the reference lacks.
    int own_lines = 0;
    for (double t = SimSpectrum::LOWEST; t <= SimSpectrum::HIGHEST; t += 0.01)
        if (SimSpectrum::Sample(t) > 0.1 && SimSpectrum::Reference(t) < 0.05)
            ++own_lines;
    EXPECT_GT(own_lines, 0);
}

}  // namespace
