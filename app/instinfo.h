#pragma once
// One instrument of the main panel's list, as discovery announced it.

#include <map>
#include <set>
#include <string>

#include "foundation/socketaddress.h"

/// An instrument: its DNS-SD service name, every address announced for it, and what its first
/// announcement said. Ordered by name without regard to case.
struct InstInfo {
    std::string name;                        ///< the service name; the key of the list
    std::set<SocketAddress> addresses;       ///< IPv4 before IPv6, then by bytes
    std::string host;                        ///< the host target
    std::string type;                        ///< the type word: "tolvan", "morvik", ... "other" or "unknown"
    std::map<std::string, std::string> txt;  ///< the TXT record of the first announcement

    bool operator<(const InstInfo& other) const;

    /// The address to dial, as presentation text: with `prefer_ipv6` the first IPv6 link-local
    /// address, else the first IPv4 address, else the first IPv6 address of any kind; empty
    /// when there is none. `scope` and `port` are set to the chosen address's, or 0.
    std::string SelectIPAddress(bool prefer_ipv6, int* scope, int* port) const;
    /// The same without the scope and port.
    std::string SelectIPAddress(bool prefer_ipv6) const;
    /// SelectIPAddress(true) with "%" and the scope behind it when the scope is above 0.
    std::string SelectIPv6LL() const;
};
