#ifndef FOUNDATION_SOCKETADDRESS_H
#define FOUNDATION_SOCKETADDRESS_H

#include <netinet/in.h>
#include <sys/socket.h>

#include <iosfwd>
#include <stdexcept>
#include <string>

namespace Socket {
/// The address families that a SocketAddress can hold; any other is an error.
enum Family { IPv4, IPv6 };
}  // namespace Socket

/// A failed operation on a SocketAddress.
class SocketError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A host name that could not be resolved.
class HostNotFound : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An IPv4 or IPv6 socket address with port and, for IPv6, scope. A plain value, ordered
/// so that it can stand in sets: IPv4 before IPv6, then by the bytes of the socket address,
/// which puts the port (network order) before the address, and for IPv6 the scope after it.
class SocketAddress {
public:
    /// The wildcard address of `family`, port 0.
    explicit SocketAddress(Socket::Family family);
    /// By host name. Names are not resolved here: always throws HostNotFound.
    SocketAddress(const std::string& name, Socket::Family family);
    /// From the text of an address, as Presentation(text); port 0.
    explicit SocketAddress(const std::string& presentation);
    /// Copies an IPv4 or IPv6 socket address.
    explicit SocketAddress(const sockaddr& address);
    /// The address, port 0.
    explicit SocketAddress(const in_addr& address);
    explicit SocketAddress(const in6_addr& address);

    Socket::Family Family() const;

    /// Sets the any-address of the current family.
    void Wildcard();

    /// Port in host order; the setter keeps the low 16 bits.
    void Port(int port);
    int Port() const;

    /// IPv6 scope id. Setting it on an IPv4 address does nothing; reading it there gives 0.
    void Scope(unsigned scope);
    unsigned Scope() const;

    /// Parses dotted IPv4 text (anything without ":") or IPv6 text; the text decides the
    /// family. The port stays. Throws SocketError for text that does not parse.
    void Presentation(const std::string& text);
    /// The address alone as text, without port or scope.
    std::string Presentation() const;

    /// Copies a whole IPv4 or IPv6 socket address.
    void Assign(const sockaddr& address);
    /// Sets family and address. Within the same family the port, flow information and scope
    /// stay; a change of family keeps only the port.
    void Assign(const in_addr& address);
    void Assign(const in6_addr& address);

    /// 169.254.0.0/16, or IPv6 beginning with the bytes fe 80.
    bool IsLinkLocal() const;

    bool operator==(const SocketAddress& other) const;
    bool operator!=(const SocketAddress& other) const { return !(*this == other); }
    bool operator<(const SocketAddress& other) const;

private:
    void _Become(sa_family_t family);
    std::size_t _Size() const;
    sockaddr_in& _V4() { return reinterpret_cast<sockaddr_in&>(_addr); }
    const sockaddr_in& _V4() const { return reinterpret_cast<const sockaddr_in&>(_addr); }
    sockaddr_in6& _V6() { return reinterpret_cast<sockaddr_in6&>(_addr); }
    const sockaddr_in6& _V6() const { return reinterpret_cast<const sockaddr_in6&>(_addr); }

    sockaddr_storage _addr;
};

/// Writes Presentation().
std::ostream& operator<<(std::ostream& os, const SocketAddress& address);

#endif
