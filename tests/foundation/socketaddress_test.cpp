#include "foundation/socketaddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <functional>
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

// Ports keep their low 16 bits. Wildcard, text and a raw address of the same family keep port and
// scope; a new family leaves nothing of the old one; scope is IPv6 only.
TEST(SocketAddress, PortFamilyAndAssign) {
    SocketAddress a = Make("FE80:0::1", 65536 + 80, 7);
    EXPECT_EQ(a.Presentation(), "fe80::1");
    EXPECT_EQ(a.Family(), Socket::IPv6);
    EXPECT_EQ(a.Port(), 80);
    EXPECT_EQ(a.Scope(), 7u);
    a.Port(-1);
    EXPECT_EQ(a.Port(), 65535);
    a.Presentation("10.0.0.1");
    EXPECT_EQ(a.Family(), Socket::IPv4);
    EXPECT_EQ(a, Make("10.0.0.1", 65535));
    a.Scope(5);
    EXPECT_EQ(a.Scope(), 0u);
    a.Wildcard();
    EXPECT_EQ(a, Make("0.0.0.0", 65535));
    EXPECT_EQ(SocketAddress(Socket::IPv6), Make("::"));

    in_addr v4;
    ASSERT_EQ(inet_pton(AF_INET, "192.168.1.2", &v4), 1);
    in6_addr v6;
    ASSERT_EQ(inet_pton(AF_INET6, "2001:db8::5", &v6), 1);
    EXPECT_EQ(SocketAddress(v4), Make("192.168.1.2"));
    SocketAddress b = Make("2001:db8::1", 80, 4);
    b.Assign(v6);
    EXPECT_EQ(b, Make("2001:db8::5", 80, 4));
    b.Assign(v4);
    EXPECT_EQ(b, Make("192.168.1.2", 80));

    sockaddr_in6 s6{AF_INET6, htons(4410), 0, v6, 9};
    SocketAddress c(reinterpret_cast<const sockaddr&>(s6));
    EXPECT_EQ(c, Make("2001:db8::5", 4410, 9));
    sockaddr_in s4{AF_INET, htons(21), v4, {}};
    c.Assign(reinterpret_cast<const sockaddr&>(s4));
    EXPECT_EQ(c, Make("192.168.1.2", 21));
}

TEST(SocketAddress, IsLinkLocal) {
    const struct {
        const char* text;
        bool link_local;
    } rows[] = {
        {"169.254.9.9", true}, {"169.254.0.0", true}, {"169.253.9.9", false}, {"170.254.9.9", false},
        {"127.0.0.1", false},  {"fe80::1", true},     {"fe80:1::", true},     {"fe81::1", false},
        {"febf::1", false},    {"ff80::1", false},    {"::1", false},         {"::ffff:169.254.1.1", false},
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
    EXPECT_EQ(Thrown<std::runtime_error>([] { SocketAddress b("x", Socket::IPv6); }), "SocketAddress: x not found");

    const std::string unknown = "SocketAddress: unknown socket family";
    EXPECT_EQ(Thrown<SocketError>([] { SocketAddress b(static_cast<Socket::Family>(2)); }), unknown);
    sockaddr other{};
    other.sa_family = AF_UNIX;
    EXPECT_EQ(Thrown<SocketError>([&] { SocketAddress b(other); }), unknown);
    EXPECT_EQ(Thrown<SocketError>([&] { a.Assign(other); }), unknown);
    EXPECT_EQ(a, Make("1.2.3.4", 5));
}

}  // namespace
