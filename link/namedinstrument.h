#pragma once
// Instruments named by hand, for sites whose instruments DNS-SD cannot reach (behind a router or
// a VPN): "--instrument NAME=MODEL@ADDRESS[:PORT]" on the command line, and the description
// file's <instruments> element. Every program reads them here; the panel lists them as if they
// had been announced.

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/socketaddress.h"

/// One instrument named by hand.
struct NamedInstrument {
    /// What is wrong with an entry.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    std::string name;
    /// "tolvan", "morvik", "sarnel", "halden", "dravik", "quenta", "bremmel" or "ostrel".
    std::string model;
    /// Numeric, with its port, and for IPv6 its scope.
    SocketAddress address{Socket::IPv4};

    /// From its parts. `address` is numeric IPv4 or IPv6 text; an IPv6 one may end in "%" and an
    /// interface name or index. An empty `port` is the model's usual one: 4410 Tolvan, 4420
    /// Morvik and Sarnel, 4430 Halden, 4440 Dravik, 4450 Quenta, 4460 Ostrel, 50111 Bremmel.
    static NamedInstrument Make(const std::string& name, const std::string& model, const std::string& address,
                                const std::string& port);
    /// From "NAME=MODEL@ADDRESS[:PORT]", an IPv6 address in brackets: "lab=tolvan@[fe80::1%eth0]".
    static NamedInstrument Parse(const std::string& entry);
    /// The same, or "MODEL@ADDRESS[:PORT]" without a name, which is then the address as given:
    /// "tolvan@127.0.0.1:4410" is named "127.0.0.1". For programs that take one target.
    static NamedInstrument ParseTarget(const std::string& entry);

    /// Every model word, in the order of the list above.
    static std::vector<std::string> Models();
    /// The service type an instrument of `model` announces: "_arvex-tolvan._tcp".
    static std::string ServiceTypeOf(const std::string& model);
    /// The service type of this instrument's model.
    std::string ServiceType() const { return ServiceTypeOf(model); }
    /// The TXT record an instrument of the model announces: its "model" label, which the panel's
    /// buttons look for ("Tolvan"; "Pelsen" for a Morvik or a Sarnel).
    std::map<std::string, std::string> Txt() const;
};
