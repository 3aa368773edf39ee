// Stitch on constructed scans. Slopes and temperatures are powers of two apart, so that keys are
// exact and the results can be worked out by hand.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "watch/stitch.h"

namespace {

struct Scan {
    float temp;
    std::vector<int> spikes;  // points of the sample at 1.0; the rest is 0
    float reference = 0;      // the reference is this plus the point number
    size_t points = Stitch::POINTS;
};

void add(Stitch& stitch, const Scan& scan)
{
    std::vector<float> sample(scan.points, 0.0f), reference(scan.points);
    for (int spike : scan.spikes)
        sample[size_t(spike)] = 1.0f;
    for (size_t i = 0; i < scan.points; ++i)
        reference[i] = scan.reference + float(i);
    stitch.AddWaveform(scan.temp, sample, reference);
}

Stitch stitched(const std::vector<Scan>& scans)
{
    Stitch stitch;
    for (const Scan& scan : scans)
        add(stitch, scan);
    return stitch;
}

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

TEST(Stitch, NoEstimateGivesNothing)
{
    struct Case {
        const char* what;
        std::vector<Scan> scans;
    } cases[] = {
        {"no scan", {}},
        {"stopped before the second scan", {{2, {70}}}},
        {"flat samples score 0 everywhere", {{2, {}}, {3, {}}}},
        {"the laser went down: negative lag", {{2, {38}}, {3, {70}}}},
        {"equal scores at -10 and +10: the first wins", {{2, {40, 60}}, {3, {50}}}},
        {"a first scan at 0.0 is no scan", {{0, {70}}, {1, {38}}}},
        {"99 points are dropped", {{2, {70}}, {3, {38}, 0, 99}}},
        {"101 points are dropped", {{2, {70}}, {3, {38}, 0, 101}}},
        {"a temperature that is no number is dropped", {{2, {70}}, {NaN, {38}}}},
        {"one temperature twice: zero slope, all on one key", {{2, {70}}, {2, {38}}}},
    };
    for (const Case& c : cases) {
        const Stitch stitch = stitched(c.scans);
        EXPECT_TRUE(stitch.Temperatures().empty()) << c.what;
        EXPECT_TRUE(stitch.Samples().empty()) << c.what;
        EXPECT_TRUE(stitch.References().empty()) << c.what;
    }
}

// Scans one degree apart whose spikes are 32 points apart: 1/32 °C per point. The first keys are
// 0.75, 0.78125, 0.8125, ... with reference 10, 11, 12, ...; the grid starts at 0.8.
TEST(Stitch, HandWorkedJoin)
{
    Stitch stitch = stitched({{2, {70}}, {3, {38}, 100}});
    const std::vector<float>& t = stitch.Temperatures();
    const std::vector<float>& r = stitch.References();
    ASSERT_EQ(t.size(), stitch.Samples().size());
    ASSERT_EQ(t.size(), r.size());
    ASSERT_GE(t.size(), 3u);
    // The first window holds 0.8125 twice; each result sits midway between the two middle keys.
    EXPECT_EQ(t[0], 0.796875f);
    EXPECT_EQ(r[0], (10 + 11 + 12 + 12) / 4.0f);
    EXPECT_EQ(t[1], 0.859375f);
    EXPECT_EQ(r[1], 13.5f);
    EXPECT_EQ(t[2], 0.890625f);
    EXPECT_EQ(r[2], 14.5f);
    for (size_t i = 1; i < t.size(); ++i)
        ASSERT_NEAR(t[i] - t[i - 1], 0.05, 0.0315) << i;
    // Where both scans have points, the later one's (reference from 100) win.
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i] > 1.85f && t[i] < 3.1f) {
            EXPECT_GT(r[i], 100.0f) << t[i];
        }
    // Both spikes land on 2.625.
    size_t peak = 0;
    for (size_t i = 0; i < t.size(); ++i)
        if (stitch.Samples()[i] > stitch.Samples()[peak])
            peak = i;
    EXPECT_NEAR(t[peak], 2.625, 0.05);
    EXPECT_EQ(stitch.Samples()[peak], 0.25f);
    const float end = t.back();
    const size_t count = t.size();
    EXPECT_GT(end, 4.1f);
    EXPECT_LT(end, 4.22f);

    // A scan that gives no estimate, half a degree past the last key. The grid point 4.2 is made
    // once a fourth entry comes; the next one, 4.25, spans the gap, and the walk ends there.
    add(stitch, {6, {38}});
    ASSERT_EQ(stitch.Temperatures().size(), count + 2);
    EXPECT_EQ(t[t.size() - 3], end);
    EXPECT_EQ(t[t.size() - 2], 4.203125f);
    EXPECT_EQ(t.back(), (4.21875f + 4.75f) / 2);

    // Clear leaves the references of the last result until the next join.
    stitch.Clear();
    EXPECT_TRUE(stitch.Temperatures().empty());
    EXPECT_TRUE(stitch.Samples().empty());
    EXPECT_FALSE(stitch.References().empty());
    add(stitch, {2, {70}});
    add(stitch, {3, {38}});
    EXPECT_EQ(stitch.References().size(), stitch.Temperatures().size());
}

// The first result tells the slope that was used: the lowest scan's key 10 is at 5 - 40 s.
TEST(Stitch, ScanSets)
{
    struct Case {
        const char* what;
        std::vector<Scan> scans;
        float first_temp;
        float first_reference;
    } cases[] = {
        {"two estimates, 1/64 and 1/16: the upper middle", {{5, {90}}, {6, {26}}, {7, {10}}}, 2.59375f, 11.25f},
        {"three estimates: the middle, 1/32", {{5, {90}}, {6, {26}}, {7, {10}}, {7.25f, {2}}}, 3.796875f, 11.25f},
        {"a first scan at 0.0 gives no estimate: 1/16 and 1/32, not 1/64 too",
         {{0, {90}}, {1, {26}}, {2, {10}}, {2.25f, {2}, 7}},
         -0.03125f,
         7 + 13.5f},
        {"the later of two equal temperatures replaces the earlier",
         {{5, {70}, 1000}, {5, {38}, 7}, {6, {6}}},
         3.796875f,
         7 + 11.25f},
    };
    for (const Case& c : cases) {
        const Stitch stitch = stitched(c.scans);
        ASSERT_FALSE(stitch.Temperatures().empty()) << c.what;
        EXPECT_EQ(stitch.Temperatures().front(), c.first_temp) << c.what;
        EXPECT_EQ(stitch.References().front(), c.first_reference) << c.what;
    }
}

}  // namespace
