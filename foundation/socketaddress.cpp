#include "foundation/socketaddress.h"

#include <arpa/inet.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>

static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port),
              "the port must survive a change of family");

namespace {
[[noreturn]] void UnknownFamily() { throw SocketError("SocketAddress: unknown socket family"); }
}  // namespace

SocketAddress::SocketAddress(Socket::Family family) : _addr() {
    switch (family) {
    case Socket::IPv4: _addr.ss_family = AF_INET; break;
    case Socket::IPv6: _addr.ss_family = AF_INET6; break;
    default: UnknownFamily();
    }
    Wildcard();
}

SocketAddress::SocketAddress(const std::string& name, Socket::Family) : _addr() {
    throw HostNotFound("SocketAddress: " + name + " not found");
}

SocketAddress::SocketAddress(const std::string& presentation) : _addr() {
    Presentation(presentation);
}

SocketAddress::SocketAddress(const sockaddr& address) : _addr() { Assign(address); }
SocketAddress::SocketAddress(const in_addr& address) : _addr() { Assign(address); }
SocketAddress::SocketAddress(const in6_addr& address) : _addr() { Assign(address); }

Socket::Family SocketAddress::Family() const {
    switch (_addr.ss_family) {
    case AF_INET: return Socket::IPv4;
    case AF_INET6: return Socket::IPv6;
    }
    UnknownFamily();
}

std::size_t SocketAddress::_Size() const {
    return Family() == Socket::IPv4 ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
}

void SocketAddress::_Become(sa_family_t family) {
    if (_addr.ss_family == family)
        return;
    // Zero what the old family left, so that equal addresses compare equal.
    in_port_t port = _V4().sin_port;
    _addr = sockaddr_storage();
    _addr.ss_family = family;
    _V4().sin_port = port;
}

void SocketAddress::Wildcard() {
    if (Family() == Socket::IPv4)
        _V4().sin_addr.s_addr = htonl(INADDR_ANY);
    else
        _V6().sin6_addr = in6addr_any;
}

void SocketAddress::Port(int port) {
    in_port_t p = htons(static_cast<uint16_t>(port));
    if (Family() == Socket::IPv4)
        _V4().sin_port = p;
    else
        _V6().sin6_port = p;
}

int SocketAddress::Port() const {
    return ntohs(Family() == Socket::IPv4 ? _V4().sin_port : _V6().sin6_port);
}

void SocketAddress::Scope(unsigned scope) {
    if (Family() == Socket::IPv6)
        _V6().sin6_scope_id = scope;
}

unsigned SocketAddress::Scope() const {
    return Family() == Socket::IPv6 ? _V6().sin6_scope_id : 0;
}

void SocketAddress::Presentation(const std::string& text) {
    if (text.find(':') == std::string::npos) {
        in_addr a;
        if (!inet_aton(text.c_str(), &a))
            throw SocketError("SocketAddress: illegal address " + text);
        Assign(a);
    } else {
        in6_addr a;
        if (inet_pton(AF_INET6, text.c_str(), &a) != 1)
            throw SocketError("SocketAddress: illegal address " + text);
        Assign(a);
    }
}

std::string SocketAddress::Presentation() const {
    if (Family() == Socket::IPv4)
        return inet_ntoa(_V4().sin_addr);
    char buf[52];
    if (!inet_ntop(AF_INET6, &_V6().sin6_addr, buf, sizeof buf))
        throw SocketError("SocketAddress: bad IPv6 address");
    return buf;
}

void SocketAddress::Assign(const sockaddr& address) {
    std::size_t size;
    switch (address.sa_family) {
    case AF_INET: size = sizeof(sockaddr_in); break;
    case AF_INET6: size = sizeof(sockaddr_in6); break;
    default: UnknownFamily();
    }
    _addr = sockaddr_storage();
    std::memcpy(&_addr, &address, size);
}

void SocketAddress::Assign(const in_addr& address) {
    _Become(AF_INET);
    _V4().sin_addr = address;
}

void SocketAddress::Assign(const in6_addr& address) {
    _Become(AF_INET6);
    _V6().sin6_addr = address;
}

bool SocketAddress::IsLinkLocal() const {
    if (Family() == Socket::IPv4) {
        const auto* b = reinterpret_cast<const unsigned char*>(&_V4().sin_addr);
        return b[0] == 169 && b[1] == 254;
    }
    const unsigned char* b = _V6().sin6_addr.s6_addr;
    return b[0] == 254 && b[1] == 128;
}

bool SocketAddress::operator==(const SocketAddress& other) const {
    return Family() == other.Family() && std::memcmp(&_addr, &other._addr, _Size()) == 0;
}

bool SocketAddress::operator<(const SocketAddress& other) const {
    if (Family() != other.Family())
        return Family() < other.Family();
    return std::memcmp(&_addr, &other._addr, _Size()) < 0;
}

std::ostream& operator<<(std::ostream& os, const SocketAddress& address) {
    return os << address.Presentation();
}
