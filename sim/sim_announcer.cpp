#include "sim/sim_announcer.h"

#include <iostream>

SimAnnouncer::SimAnnouncer(const std::string& model, const std::string& name, int port) : _client(this)
{
    _client.Register(name, "_arvex-" + model + "._tcp", "", port, Txt(model));
}

std::map<std::string, std::string> SimAnnouncer::Txt(const std::string& model)
{
    // Morvik and Sarnel are base units of one family and announce its name.
    static const std::map<std::string, std::string> labels{
        {"tolvan", "Tolvan"}, {"morvik", "Pelsen"}, {"sarnel", "Pelsen"},   {"dravik", "Dravik"},
        {"quenta", "Quenta"}, {"halden", "Halden"}, {"bremmel", "Bremmel"}, {"ostrel", "Ostrel"},
    };
    const auto label = labels.find(model);
    return {{"model", label == labels.end() ? model : label->second}, {"ver", SONDAR_VERSION "-sim"},
            {"company", "Arvex"}};
}

void SimAnnouncer::ServiceRegistered(std::string name, std::string type, std::string)
{
    std::cout << "announced " << name << " as " << type << std::endl;
}

bool SimAnnouncer::ServiceError(std::string message)
{
    std::cerr << "sondar-sim: not announced (is avahi-daemon running?): " << message << std::endl;
    return false;
}
