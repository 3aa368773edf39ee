// BonjourResolver, fed by hand: one record per service name, every address in it.

#include <gtest/gtest.h>

#include "discovery/bonjourresolver.h"
#include "discovery_test_util.h"

namespace {

TEST(Resolver, GathersAddressesPerName)
{
    BonjourResolver resolver;
    EXPECT_FALSE(resolver.Changed());
    resolver.AddService("ch4-1", "_arvex-tolvan._tcp", "local.", 2, "t1.local.", Address("10.0.0.1", 4410),
                        {{"model", "Tolvan"}});
    resolver.AddService("ch4-1", "_arvex-tolvan._tcp", "local.", 3, "other.local.", Address("fe80::1", 4410),
                        {{"model", "changed"}});
    resolver.AddService("ch4-1", "_arvex-tolvan._tcp", "local.", 2, "t1.local.", Address("10.0.0.1", 4410), {});
    resolver.AddService("CH4-1", "_arvex-tolvan._tcp", "local.", 2, "t2.local.", Address("10.0.0.2", 4410), {});
    EXPECT_TRUE(resolver.Changed());

    ASSERT_EQ(resolver.Hosts().size(), 2u) << "names differing in case are different services";
    const auto& first = *resolver.Hosts()[0];
    EXPECT_EQ(first.name, "ch4-1");
    EXPECT_EQ(first.interface_index, 2u);
    EXPECT_EQ(first.host, "t1.local.");
    EXPECT_EQ(first.txt, (std::map<std::string, std::string>{{"model", "Tolvan"}}));
    EXPECT_EQ(first.addresses, (std::set<SocketAddress>{Address("10.0.0.1", 4410), Address("fe80::1", 4410)}));
    EXPECT_EQ(resolver.Hosts()[1]->name, "CH4-1");
}

TEST(Resolver, LookupIgnoresCaseRemoveDoesNot)
{
    BonjourResolver resolver;
    resolver.AddService("Ch4-Ünit", "_t._tcp", "local.", 2, "h.local.", Address("10.0.0.1", 1), {});
    EXPECT_EQ(resolver.Lookup("ch4-ünit"), resolver.Hosts()[0]);
    EXPECT_EQ(resolver.Lookup("CH4-ÜNIT"), resolver.Hosts()[0]);
    EXPECT_EQ(resolver.Lookup("ch4"), nullptr);

    resolver.Changed(false);
    resolver.RemoveService("ch4-ünit", "_t._tcp", "local.");
    EXPECT_TRUE(resolver.Changed());
    EXPECT_EQ(resolver.Hosts().size(), 1u);
    resolver.RemoveService("Ch4-Ünit", "_t._tcp", "local.");
    EXPECT_TRUE(resolver.Hosts().empty());
    EXPECT_EQ(resolver.Lookup("Ch4-Ünit"), nullptr);
}

}  // namespace
