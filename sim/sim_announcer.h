#pragma once
// sondar-sim --announce: the simulated instrument announces itself through DNS-SD, as a real
// one does, so that the program finds it by browsing.

#include <map>
#include <string>

#include "discovery/bonjourclient.h"

/// Announces one simulated instrument for as long as it lives. A failure (above all, no daemon
/// running) is one line on standard error; the simulator goes on serving without it.
class SimAnnouncer : public BonjourClientListener {
public:
    /// Registers the service `name` of type "_arvex-<model>._tcp" on `port` in the default
    /// domain, with the TXT entries of Txt(model).
    SimAnnouncer(const std::string& model, const std::string& name, int port);

    /// "model" (the label the program matches its buttons against: a Tolvan's contains
    /// "Tolvan", a Morvik and a Sarnel say "Pelsen"), "ver" and "company" "Arvex".
    static std::map<std::string, std::string> Txt(const std::string& model);

    void ServiceRegistered(std::string name, std::string type, std::string domain) override;
    bool ServiceError(std::string message) override;

private:
    BonjourClient _client;
};
