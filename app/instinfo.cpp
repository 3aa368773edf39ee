#include "app/instinfo.h"

#include "foundation/str_util.h"

bool InstInfo::operator<(const InstInfo& other) const
{
    return CaseInsensitiveStringCompare(name, other.name) < 0;
}

std::string InstInfo::SelectIPAddress(bool prefer_ipv6, int* scope, int* port) const
{
    *scope = 0;
    *port = 0;
    const SocketAddress* chosen = nullptr;
    if (prefer_ipv6) {
        for (const SocketAddress& address : addresses)
            if (address.Family() == Socket::IPv6 && address.IsLinkLocal()) {
                chosen = &address;
                break;
            }
    }
    // IPv4 addresses come first in the set.
    if (!chosen && !addresses.empty())
        chosen = &*addresses.begin();
    if (!chosen)
        return "";
    *scope = static_cast<int>(chosen->Scope());
    *port = chosen->Port();
    return chosen->Presentation();
}

std::string InstInfo::SelectIPAddress(bool prefer_ipv6) const
{
    int scope, port;
    return SelectIPAddress(prefer_ipv6, &scope, &port);
}

std::string InstInfo::SelectIPv6LL() const
{
    int scope, port;
    std::string address = SelectIPAddress(true, &scope, &port);
    if (scope > 0)
        address += "%" + std::to_string(scope);
    return address;
}
