#pragma once
// Helpers of the discovery tests: addresses, and a listener that writes down what it hears.

#include <net/if.h>

#include <map>
#include <string>
#include <vector>

#include "discovery/bonjourclient.h"

/// `text` with its port and scope.
inline SocketAddress Address(const std::string& text, int port, unsigned scope = 0)
{
    SocketAddress address(text);
    address.Port(port);
    address.Scope(scope);
    return address;
}

/// The names of this namespace's network interfaces.
inline std::vector<std::string> InterfaceNames()
{
    std::vector<std::string> names;
    if (struct if_nameindex* interfaces = if_nameindex()) {
        for (struct if_nameindex* i = interfaces; i->if_index != 0; ++i)
            names.push_back(i->if_name);
        if_freenameindex(interfaces);
    }
    return names;
}

/// One AddService call.
struct FoundAddress {
    std::string name, type, domain;
    unsigned interface_index;
    std::string host;
    SocketAddress address;
    std::map<std::string, std::string> txt;
};

/// Keeps every call; removals and registrations as "name|type|domain". ServiceError answers
/// `throw_on_error`.
class RecordingListener : public BonjourClientListener {
public:
    void AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                    std::string host, const SocketAddress& address,
                    const std::map<std::string, std::string>& txt) override
    {
        added.push_back({name, type, domain, interface_index, host, address, txt});
    }
    void RemoveService(std::string n, std::string t, std::string d) override
    {
        removed.push_back(n + "|" + t + "|" + d);
    }
    void ServiceRegistered(std::string n, std::string t, std::string d) override
    {
        registered.push_back(n + "|" + t + "|" + d);
    }
    bool ServiceError(std::string message) override
    {
        errors.push_back(message);
        return throw_on_error;
    }

    std::vector<FoundAddress> added;
    std::vector<std::string> removed, registered, errors;
    bool throw_on_error = false;
};
