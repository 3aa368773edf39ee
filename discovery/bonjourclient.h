#ifndef DISCOVERY_BONJOURCLIENT_H
#define DISCOVERY_BONJOURCLIENT_H
// Service discovery over DNS-SD for a Qt program: browse, register and reconfirm services; all
// results come back as calls on a listener, from the Qt event loop.

#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "foundation/socketaddress.h"

class BonjourClientImpl;

/// What a BonjourClient reports to. Every operation has an empty default.
class BonjourClientListener {
public:
    virtual ~BonjourClientListener() = default;

    /// One address of a service that was found: one call per address, with the service's
    /// TXT entries. `address` carries the service's port, and for an IPv6 link-local address
    /// the interface as its scope.
    virtual void AddService(std::string /*name*/, std::string /*type*/, std::string /*domain*/,
                            unsigned /*interface_index*/, std::string /*host*/, const SocketAddress& /*address*/,
                            const std::map<std::string, std::string>& /*txt*/)
    {
    }
    /// A service went away.
    virtual void RemoveService(std::string /*name*/, std::string /*type*/, std::string /*domain*/) {}
    /// A service of our own is announced, under the name the daemon settled on.
    virtual void ServiceRegistered(std::string /*name*/, std::string /*type*/, std::string /*domain*/) {}
    /// A failure, as one line of text. Answering true makes a failing Browse, Register or
    /// Confirm throw BonjourClient::Error with the same text; failures that come from the
    /// event loop never throw.
    virtual bool ServiceError(std::string /*message*/) { return false; }
};

/// A DNS-SD client. Requests run until the client is destroyed or cleared; their results
/// arrive through the Qt event loop, never from inside the call that made the request.
/// At most 100 requests (browses, registrations and the resolves and address queries behind
/// each service found) are outstanding at once; beyond that a request reports
/// "Out of resources".
class BonjourClient {
public:
    /// A failed synchronous call whose listener asked for an exception; the text is the message.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    /// `listener` may be null: then failures go nowhere and nothing is reported.
    explicit BonjourClient(BonjourClientListener* listener);
    ~BonjourClient();
    BonjourClient(const BonjourClient&) = delete;
    BonjourClient& operator=(const BonjourClient&) = delete;

    /// Browses for a service type such as "_arvex-tolvan._tcp" in the default domains; each
    /// service is resolved and reported once per address. Failures: "Unable to browse for
    /// service: " and the type, then ": Out of resources" or the error's word.
    void Browse(const std::string& type);
    /// Announces a service of our own on `port` with the TXT entries `txt` (each "key=value"
    /// must stay under 256 bytes). An empty domain means the default one. Failures: "Unable to
    /// register service: " and the name, then ": Out of resources" or the error's word.
    void Register(const std::string& name, const std::string& type, const std::string& domain, int port,
                  const std::map<std::string, std::string>& txt);
    /// Asks the daemon to check that `host` still has `address`. Failure: "Unable to confirm: "
    /// and the host, with the error's word.
    void Confirm(const std::string& host, const SocketAddress& address);
    /// Ends every request and starts afresh for the same listener; browse again to see the
    /// services again. Not from inside a listener call: that call's request would go with it.
    void Clear();
    /// Does nothing; there is no state worth showing beyond what the listener hears.
    void Debug();

private:
    BonjourClientListener* _listener;
    std::unique_ptr<BonjourClientImpl> _impl;
};

#endif
