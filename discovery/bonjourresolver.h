#ifndef DISCOVERY_BONJOURRESOLVER_H
#define DISCOVERY_BONJOURRESOLVER_H
// A ready-made listener that gathers what discovery finds into one record per service name.

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "discovery/bonjourclient.h"

/// Keeps one record per service name with every address reported for it.
class BonjourResolver : public BonjourClientListener {
public:
    /// A service and all its addresses; name, type, domain, interface, host and TXT entries are
    /// those of its first report.
    struct HostInfo {
        std::string name;
        std::string type;
        std::string domain;
        unsigned interface_index = 0;
        std::string host;
        std::set<SocketAddress> addresses;
        std::map<std::string, std::string> txt;
    };

    /// Adds the address to the record of that name (case counts), or appends a new record.
    void AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                    std::string host, const SocketAddress& address,
                    const std::map<std::string, std::string>& txt) override;
    /// Erases the first record of that name.
    void RemoveService(std::string name, std::string type, std::string domain) override;

    /// The record of `name`, the case not counting, or null.
    std::shared_ptr<HostInfo> Lookup(const std::string& name) const;
    /// All records in the order they were first reported.
    const std::vector<std::shared_ptr<HostInfo>>& Hosts() const { return _hosts; }
    /// Whether a record was added, extended or erased since the flag was last cleared.
    bool Changed() const { return _changed; }
    void Changed(bool changed) { _changed = changed; }

private:
    std::vector<std::shared_ptr<HostInfo>> _hosts;
    bool _changed = false;
};

#endif
