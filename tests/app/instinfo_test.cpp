#include "app/instinfo.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/discovery/discovery_test_util.h"

namespace {

TEST(InstInfo, NamesSortWithoutRegardToCase)
{
    std::vector<InstInfo> list;
    for (const char* name : {"gamma", "Beta", "alpha", "Other...", "beta2", "ALPHA1"})
        list.push_back(InstInfo{name, {}, "", "", {}});
    std::stable_sort(list.begin(), list.end());
    std::vector<std::string> names;
    for (const InstInfo& info : list)
        names.push_back(info.name);
    EXPECT_EQ(names, (std::vector<std::string>{"alpha", "ALPHA1", "Beta", "beta2", "gamma", "Other..."}));
}

// IPv6 link-local with its scope first (when asked for), then IPv4, then any IPv6.
TEST(InstInfo, AddressSelection)
{
    const struct {
        const char* what;
        std::set<SocketAddress> addresses;
        bool prefer_ipv6;
        std::string address;
        int scope, port;
        std::string ll;  // SelectIPv6LL
    } rows[] = {
        {"none", {}, true, "", 0, 0, ""},
        {"link-local beats IPv4", {Address("10.0.0.5", 4410), Address("fe80::1", 4411, 3)}, true, "fe80::1", 3, 4411,
         "fe80::1%3"},
        {"IPv4 when not preferring IPv6", {Address("10.0.0.5", 4410), Address("fe80::1", 4411, 3)}, false,
         "10.0.0.5", 0, 4410, "fe80::1%3"},
        {"global IPv6 comes last", {Address("2001:db8::7", 4412), Address("10.0.0.5", 4410)}, true, "10.0.0.5", 0,
         4410, "10.0.0.5"},
        {"global IPv6 alone", {Address("2001:db8::7", 4412)}, true, "2001:db8::7", 0, 4412, "2001:db8::7"},
        {"IPv4 link-local is no IPv6", {Address("169.254.1.2", 4410), Address("2001:db8::7", 4412)}, true,
         "169.254.1.2", 0, 4410, "169.254.1.2"},
        {"link-local among globals", {Address("2001:db8::7", 4412), Address("fe80::9", 4413, 2)}, true, "fe80::9", 2,
         4413, "fe80::9%2"},
        {"link-local without scope", {Address("fe80::9", 4413)}, true, "fe80::9", 0, 4413, "fe80::9"},
        {"first IPv4 by set order", {Address("10.0.0.9", 4410), Address("10.0.0.5", 4410)}, false, "10.0.0.5", 0,
         4410, "10.0.0.5"},
    };
    for (const auto& row : rows) {
        const InstInfo info{"x", row.addresses, "x.local.", "tolvan", {}};
        int scope = -1, port = -1;
        EXPECT_EQ(info.SelectIPAddress(row.prefer_ipv6, &scope, &port), row.address) << row.what;
        EXPECT_EQ(scope, row.scope) << row.what;
        EXPECT_EQ(port, row.port) << row.what;
        EXPECT_EQ(info.SelectIPAddress(row.prefer_ipv6), row.address) << row.what;
        EXPECT_EQ(info.SelectIPv6LL(), row.ll) << row.what;
    }
}

}  // namespace
