#include "link/connectortype.h"

std::unique_ptr<ConnectorType> ConnectorType::Make(const std::string& type_word)
{
    if (type_word == "morvik")
        return std::make_unique<TypeMorvik>();
    if (type_word == "sarnel")
        return std::make_unique<TypeSarnel>();
    return std::make_unique<TypeTolvan>();
}

std::string ConnectorType::ClockSyncSelection(bool) const
{
    return "";
}

std::string TypeTolvan::OutputSelection() const
{
    return "<arvex><tolvan><output><status>true</status><waveforms>true</waveforms><dataclock>true</dataclock>"
           "<dataclocksync>false</dataclocksync></output></tolvan></arvex>\n";
}

std::string TypeTolvan::ClockSyncSelection(bool on) const
{
    return std::string("<arvex><tolvan><output><dataclocksync>") + (on ? "true" : "false") +
           "</dataclocksync></output></tolvan></arvex>\n";
}
