#include "link/namedinstrument.h"

#include <net/if.h>

#include <charconv>

namespace {

struct Model {
    const char* word;
    const char* label;
    int port;
};

const Model kModels[] = {
    {"tolvan", "Tolvan", 4410},   {"morvik", "Pelsen", 4420}, {"sarnel", "Pelsen", 4420},
    {"halden", "Halden", 4430},   {"dravik", "Dravik", 4440}, {"quenta", "Quenta", 4450},
    {"bremmel", "Bremmel", 50111}, {"ostrel", "Ostrel", 4460},
};

const Model& find_model(const std::string& word)
{
    for (const Model& model : kModels)
        if (word == model.word)
            return model;
    std::string words;
    for (const Model& model : kModels)
        words += std::string(words.empty() ? "" : ", ") + model.word;
    throw NamedInstrument::Error("unknown model \"" + word + "\" (one of " + words + ")");
}

// A whole decimal number, or -1.
long whole_number(const std::string& text)
{
    long value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : -1;
}

}  // namespace

NamedInstrument NamedInstrument::Make(const std::string& name, const std::string& model, const std::string& address,
                                      const std::string& port)
{
    if (name.empty())
        throw Error("no name");
    const Model& kind = find_model(model);
    NamedInstrument instrument{name, kind.word};
    if (address.empty())
        throw Error("no address");
    const std::string::size_type percent = address.find('%');
    try {
        instrument.address.Presentation(address.substr(0, percent));
    } catch (const SocketError&) {
        throw Error("\"" + address + "\" is not a numeric IPv4 or IPv6 address");
    }
    if (percent != std::string::npos) {
        const std::string scope = address.substr(percent + 1);
        const long index = whole_number(scope);
        const unsigned by_name = index < 0 ? if_nametoindex(scope.c_str()) : 0;
        if (instrument.address.Family() != Socket::IPv6 || (index < 0 && by_name == 0))
            throw Error("\"" + scope + "\" after \"%\" is no network interface of an IPv6 address");
        instrument.address.Scope(index < 0 ? by_name : unsigned(index));
    }
    const long number = port.empty() ? kind.port : whole_number(port);
    if (number < 1 || number > 65535)
        throw Error("port \"" + port + "\" is not a number from 1 to 65535");
    instrument.address.Port(int(number));
    return instrument;
}

namespace {

NamedInstrument parse(const std::string& entry, bool name_required)
{
    using Error = NamedInstrument::Error;
    const std::string::size_type equals = entry.find('=');
    const std::string::size_type at = entry.find('@', equals == std::string::npos ? 0 : equals);
    if (name_required && (equals == std::string::npos || at == std::string::npos))
        throw Error("the form is NAME=MODEL@ADDRESS[:PORT]");
    if (at == std::string::npos)
        throw Error("the form is [NAME=]MODEL@ADDRESS[:PORT]");
    const std::string location = entry.substr(at + 1);
    std::string address, rest;  // rest: ":PORT" or nothing
    if (!location.empty() && location[0] == '[') {
        const std::string::size_type close = location.find(']');
        if (close == std::string::npos)
            throw Error("no \"]\" after the IPv6 address");
        address = location.substr(1, close - 1);
        rest = location.substr(close + 1);
    } else {
        const std::string::size_type colon = location.find(':');
        if (colon != location.rfind(':'))
            throw Error("an IPv6 address goes in brackets: [ADDRESS]:PORT");
        address = location.substr(0, colon);
        rest = colon == std::string::npos ? "" : location.substr(colon);
    }
    if (!rest.empty() && (rest[0] != ':' || rest.size() == 1))
        throw Error("\":PORT\" or nothing must follow the address");
    const bool named = equals != std::string::npos;
    const std::string::size_type model = named ? equals + 1 : 0;
    return NamedInstrument::Make(named ? entry.substr(0, equals) : address, entry.substr(model, at - model), address,
                                 rest.empty() ? "" : rest.substr(1));
}

}  // namespace

NamedInstrument NamedInstrument::Parse(const std::string& entry)
{
    return parse(entry, true);
}

NamedInstrument NamedInstrument::ParseTarget(const std::string& entry)
{
    return parse(entry, false);
}

std::vector<std::string> NamedInstrument::Models()
{
    std::vector<std::string> words;
    for (const Model& model : kModels)
        words.push_back(model.word);
    return words;
}

std::string NamedInstrument::ServiceTypeOf(const std::string& model)
{
    return "_arvex-" + model + "._tcp";
}

std::map<std::string, std::string> NamedInstrument::Txt() const
{
    return {{"model", find_model(model).label}};
}
