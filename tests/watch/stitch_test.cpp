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

void add(Stitch& stitch, const std::vector<Scan>& scans)
{
    for (const Scan& scan : scans) {
        std::vector<float> sample(scan.points, 0.0f), reference(scan.points);
        for (int spike : scan.spikes)
            sample[size_t(spike)] = 1.0f;
        for (size_t i = 0; i < scan.points; ++i)
            reference[i] = scan.reference + float(i);
        stitch.AddWaveform(scan.temp, sample, reference);
    }
}

// The first result tells the slope that was used: the lowest scan's key 10 is at 5 - 40 s.
TEST(Stitch, ScanSets)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const struct {
        std::vector<Scan> scans;
        float first_temp, first_reference;  // none: no estimate, no results
    } cases[] = {
        {{}, none, 0},
        {{{2, {70}}}, none, 0},                    // stopped before the second scan
        {{{2, {}}, {3, {}}}, none, 0},             // flat samples score 0 at every lag
        {{{2, {38}}, {3, {70}}}, none, 0},         // the laser went down: negative lag
        {{{2, {40, 60}}, {3, {50}}}, none, 0},     // equal scores at -10 and +10: the first wins
        {{{0, {70}}, {1, {38}}}, none, 0},         // a first scan at 0.0 is no scan
        {{{2, {70}}, {3, {38}, 0, 99}}, none, 0},  // 99 and 101 points are dropped
        {{{2, {70}}, {3, {38}, 0, 101}}, none, 0},
        {{{2, {70}}, {none, {38}}}, none, 0},
        {{{2, {70}}, {2, {38}}}, none, 0},  // one temperature twice: zero slope, all points on one key
        {{{5, {90}}, {6, {26}}, {7, {10}}}, 2.59375f, 11.25f},  // 1/64 and 1/16: the upper middle
        {{{5, {90}}, {6, {26}}, {7, {10}}, {7.25f, {2}}}, 3.796875f, 11.25f},  // and 1/32: the middle
        {{{0, {90}}, {1, {26}}, {2, {10}}, {2.25f, {2}, 7}}, -0.03125f, 7 + 13.5f},  // 0.0 gives no 1/64
        {{{5, {70}, 1000}, {5, {38}, 7}, {6, {6}}}, 3.796875f, 7 + 11.25f},  // the later equal one wins
    };
    for (const auto& c : cases) {
        Stitch stitch;
        add(stitch, c.scans);
        const bool empty = std::isnan(c.first_temp);
        ASSERT_EQ(stitch.Temperatures().empty() && stitch.Samples().empty() && stitch.References().empty(), empty)
            << "case " << &c - cases;
        if (!empty) {
            EXPECT_EQ(stitch.Temperatures().front(), c.first_temp);
            EXPECT_EQ(stitch.References().front(), c.first_reference) << c.first_temp;
        }
    }
}

// Spikes 32 points apart on scans one degree apart: 1/32 °C per point. The first keys are 0.75,
// 0.78125, 0.8125 with references 10, 11, 12; the grid starts at 0.8.
TEST(Stitch, HandWorkedJoin)
{
    Stitch stitch;
    add(stitch, {{2, {70}}, {3, {38}, 100}});
    const std::vector<float>& t = stitch.Temperatures();
    const std::vector<float>& r = stitch.References();
    ASSERT_EQ(t.size(), r.size());
    // The first window holds 0.8125 twice; results sit midway between the two middle keys.
    EXPECT_EQ(std::vector<float>(t.begin(), t.begin() + 3), (std::vector<float>{0.796875f, 0.859375f, 0.890625f}));
    EXPECT_EQ(std::vector<float>(r.begin(), r.begin() + 3), (std::vector<float>{11.25f, 13.5f, 14.5f}));
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i] > 1.85f && t[i] < 3.1f) {
            EXPECT_GT(r[i], 100.0f) << t[i];  // the later scan's points win
        }
    const size_t count = t.size();
    EXPECT_EQ(t.back(), 4.140625f);

    // A scan with no estimate, half a degree past the last key: the grid point 4.2 is made once a
    // fourth entry comes, the next one spans the gap, and the walk ends there.
    add(stitch, {{6, {38}}});
    ASSERT_EQ(stitch.Temperatures().size(), count + 2);
    EXPECT_EQ(t[count], 4.203125f);
    EXPECT_EQ(t.back(), (4.21875f + 4.75f) / 2);

    // Clear leaves the references of the last result until the next join.
    stitch.Clear();
    EXPECT_TRUE(stitch.Temperatures().empty() && stitch.Samples().empty());
    EXPECT_EQ(stitch.References().size(), count + 2);
}

}  // namespace
