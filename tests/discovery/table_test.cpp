// The table of request slots, driven directly: a browse made into a slot by hand stands for any
// request.

#include <gtest/gtest.h>

#include "discovery/bonjourserviceref.h"
#include "tests/discovery/dnssd_double.h"

namespace {

void DNSSD_API IgnoreBrowse(DNSServiceRef, DNSServiceFlags, uint32_t, DNSServiceErrorType, const char*, const char*,
                            const char*, void*)
{
}

// Starts a browse in slot `index`; the double answers nothing, so no event ever reaches the
// (absent) implementation.
void Occupy(BonjourClientCallbackWindow& table, int index)
{
    ASSERT_EQ(DNSServiceBrowse(table.GetDNSServiceRef(index), 0, 0, "_x._tcp", nullptr, &IgnoreBrowse, nullptr),
              kDNSServiceErr_NoError);
}

TEST(CallbackWindow, IndexOutOfRangeGivesTheSpare)
{
    BonjourClientCallbackWindow table(nullptr);
    DNSServiceRef* spare = table.GetDNSServiceRef(-1);
    EXPECT_EQ(table.GetDNSServiceRef(100), spare);
    EXPECT_EQ(table.GetDNSServiceRef(1000), spare);
    for (int i = 0; i < 100; ++i)
        EXPECT_NE(table.GetDNSServiceRef(i), spare) << i;
    EXPECT_NE(table.GetDNSServiceRef(0), table.GetDNSServiceRef(99));
    EXPECT_FALSE(table.SelectDNSServiceRef(100));
}

TEST(CallbackWindow, SlotsAreTakenAndFreed)
{
    DnsSdDouble::Reset();
    {
        BonjourClientCallbackWindow table(nullptr);
        EXPECT_EQ(table.GetFreeDNSServiceRef(), 0);
        EXPECT_FALSE(table.SelectDNSServiceRef(0)) << "a free slot has nothing to watch";

        Occupy(table, 0);
        Occupy(table, 2);
        EXPECT_TRUE(table.SelectDNSServiceRef(2));
        EXPECT_EQ(table.GetFreeDNSServiceRef(), 1);
        const DNSServiceRef second = *table.GetDNSServiceRef(2);
        EXPECT_EQ(table.FindDNSServiceRefIndex(second), 2);
        EXPECT_EQ(table.FindDNSServiceRefIndex(nullptr), -1);

        table.FreeDNSServiceRef(second);
        EXPECT_EQ(*table.GetDNSServiceRef(2), nullptr);
        EXPECT_EQ(table.FindDNSServiceRefIndex(second), -1);
        table.FreeDNSServiceRef(second);  // gone already: nothing happens
        table.FreeDNSServiceRef(2);
        EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 1u);

        for (int i = 1; i < 100; ++i)
            Occupy(table, i);
        EXPECT_EQ(table.GetFreeDNSServiceRef(), -1);
        EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 100u);
    }
    // The table ends what it holds.
    EXPECT_TRUE(DnsSdDouble::LiveRefs().empty());
}

}  // namespace
