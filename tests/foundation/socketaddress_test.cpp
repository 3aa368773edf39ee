#include "foundation/socketaddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

SocketAddress Make(const std::string& text, int port = 0, unsigned scope = 0) {
    SocketAddress a(text);
    a.Port(port);
    a.Scope(scope);
    return a;
}

// The text of the exception E that f throws.
template <class E>
std::string Thrown(const std::function<void()>& f) {
    try {
        f();
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

TEST(SocketAddress, PresentationAndPort) {
    SocketAddress a = Make("127.0.0.1", 4410);
    EXPECT_EQ(a.Presentation(), "127.0.0.1");
    EXPECT_EQ(a.Port(), 4410);
    EXPECT_EQ(a.Family(), Socket::IPv4);

    SocketAddress b = Make("FE80:0::1", 65535, 3);
    EXPECT_EQ(b.Presentation(), "fe80::1");
    EXPECT_EQ(b.Port(), 65535);
    EXPECT_EQ(b.Scope(), 3u);
    EXPECT_EQ(b.Family(), Socket::IPv6);

    std::ostringstream os;
    os << b;
    EXPECT_EQ(os.str(), "fe80::1");

    a.Port(65536 + 80);  // low 16 bits
    EXPECT_EQ(a.Port(), 80);
    a.Port(-1);
    EXPECT_EQ(a.Port(), 65535);
}

// Wildcard and text keep the port; a new family leaves nothing of the old one; scope is IPv6 only.
TEST(SocketAddress, FamilyChangesKeepThePort) {
    EXPECT_EQ(SocketAddress(Socket::IPv4).Presentation(), "0.0.0.0");
    EXPECT_EQ(SocketAddress(Socket::IPv6).Presentation(), "::");
    EXPECT_EQ(SocketAddress(Socket::IPv6).Port(), 0);
    SocketAddress a = Make("fe80::1", 4410, 7);
    a.Presentation("10.0.0.1");
    EXPECT_EQ(a, Make("10.0.0.1", 4410));
    a.Scope(5);
    EXPECT_EQ(a.Scope(), 0u);
    a.Wildcard();
    EXPECT_EQ(a, Make("0.0.0.0", 4410));
    a.Presentation("fe80::1");
    EXPECT_EQ(a, Make("fe80::1", 4410));
}

TEST(SocketAddress, Assign) {
    in_addr v4;
    ASSERT_EQ(inet_pton(AF_INET, "192.168.1.2", &v4), 1);
    in6_addr v6;
    ASSERT_EQ(inet_pton(AF_INET6, "2001:db8::5", &v6), 1);

    EXPECT_EQ(SocketAddress(v4), Make("192.168.1.2"));
    EXPECT_EQ(SocketAddress(v6), Make("2001:db8::5"));

    SocketAddress a = Make("2001:db8::1", 80, 4);
    a.Assign(v6);  // same family: port and scope stay
    EXPECT_EQ(a, Make("2001:db8::5", 80, 4));
    a.Assign(v4);
    EXPECT_EQ(a, Make("192.168.1.2", 80));

    sockaddr_in6 s6{AF_INET6, htons(4410), 0, v6, 9};
    SocketAddress b(reinterpret_cast<const sockaddr&>(s6));
    EXPECT_EQ(b, Make("2001:db8::5", 4410, 9));

    sockaddr_in s4{AF_INET, htons(21), v4, {}};
    b.Assign(reinterpret_cast<const sockaddr&>(s4));
    EXPECT_EQ(b, Make("192.168.1.2", 21));
}

TEST(SocketAddress, IsLinkLocal) {
    const struct {
        const char* text;
        bool link_local;
    } rows[] = {
        {"169.254.9.9", true}, {"169.254.0.0", true},  {"169.253.9.9", false},
        {"170.254.9.9", false}, {"127.0.0.1", false},  {"fe80::1", true},
        {"fe80:1::", true},     {"fe81::1", false},    {"febf::1", false},
        {"ff80::1", false},     {"::1", false},        {"::ffff:169.254.1.1", false},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Make(r.text).IsLinkLocal(), r.link_local) << r.text;
}

TEST(SocketAddress, Order) {
    // In ascending order: family, then port, then address, then scope.
    const std::vector<SocketAddress> ordered = {
        Make("255.255.255.255", 0), Make("0.0.0.1", 1),   Make("10.0.0.2", 1),    Make("0.0.0.0", 2),
        Make("255.255.255.255", 65535), Make("::", 0),    Make("ff02::1", 0),     Make("::1", 80),
        Make("fe80::1", 80, 1),     Make("fe80::1", 80, 2), Make("fe80::2", 80, 1),
    };
    for (std::size_t i = 0; i < ordered.size(); ++i)
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << " < " << j;
            EXPECT_EQ(ordered[i] == ordered[j], i == j) << i << " == " << j;
            EXPECT_EQ(ordered[i] != ordered[j], i != j) << i << " != " << j;
        }

    std::set<SocketAddress> set(ordered.rbegin(), ordered.rend());
    set.insert(Make("10.0.0.2", 1));
    EXPECT_EQ(std::vector<SocketAddress>(set.begin(), set.end()), ordered);
}

TEST(SocketAddress, Errors) {
    for (const char* text : {"", "hello", "300.1.1.1", "1.2.3.4.5", "fe80::zz", ":::", "1:2"})
        EXPECT_EQ(Thrown<SocketError>([&] { SocketAddress a(text); }),
                  std::string("SocketAddress: illegal address ") + text);

    SocketAddress a = Make("1.2.3.4", 5);
    EXPECT_THROW(a.Presentation("nonsense"), SocketError);
    EXPECT_EQ(a, Make("1.2.3.4", 5));  // a failed parse changes nothing

    EXPECT_EQ(Thrown<HostNotFound>([] { SocketAddress b("localhost", Socket::IPv4); }),
              "SocketAddress: localhost not found");
    EXPECT_EQ(Thrown<std::runtime_error>([] { SocketAddress b("x", Socket::IPv6); }),
              "SocketAddress: x not found");

    const std::string unknown = "SocketAddress: unknown socket family";
    EXPECT_EQ(Thrown<SocketError>([] { SocketAddress b(static_cast<Socket::Family>(2)); }),
              unknown);
    sockaddr other{};
    other.sa_family = AF_UNIX;
    EXPECT_EQ(Thrown<SocketError>([&] { SocketAddress b(other); }), unknown);
    EXPECT_EQ(Thrown<SocketError>([&] { a.Assign(other); }), unknown);
    EXPECT_EQ(a, Make("1.2.3.4", 5));
}

}  // namespace
