#include "link/connectortype.h"

std::unique_ptr<ConnectorType> ConnectorType::Make(const std::string& type_word)
{
    if (type_word == "morvik")
        return std::make_unique<TypeMorvik>();
    if (type_word == "sarnel")
        return std::make_unique<TypeSarnel>();
    if (type_word == "halden")
        return std::make_unique<TypeHalden>();
    if (type_word == "dravik")
        return std::make_unique<TypeDravik>();
    if (type_word == "quenta")
        return std::make_unique<TypeQuenta>();
    if (type_word == "bremmel")
        return std::make_unique<TypeBremmel>();
    if (type_word == "ostrel")
        return std::make_unique<TypeOstrel>();
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

std::string TypeHalden::OutputSelection() const
{
    return "<arvex><halden><output><status>true</status><datatest>true</datatest>"
           "<datarawcapture>false</datarawcapture></output></halden></arvex>\n";
}

std::string TypeQuenta::OutputSelection() const
{
    return "<arvex><quenta><output><status>true</status><waveforms>true</waveforms><dataclock>true</dataclock>"
           "<datatest>true</datatest><lightsource>true</lightsource></output></quenta></arvex>\n";
}

std::string TypeDravik::OutputSelection() const
{
    return "<arvex><dravik><output><status>true</status><waveforms>true</waveforms><dataclock>true</dataclock>"
           "<datatest>true</datatest><lightsource>true</lightsource></output></dravik></arvex>\n";
}

double TypeDravik::RecordTime(const std::string& record, const Cells& cells)
{
    if (record == "DATA")
        _data_time = Cell(cells, 0);
    return _data_time;
}

std::string TypeBremmel::OutputSelection() const
{
    return "<arvex><bremmel><output><status>true</status></output></bremmel></arvex>\n";
}

double TypeBremmel::RecordTime(const std::string& record, const Cells& cells)
{
    return record == "DATA" ? Cell(cells, 2) + Cell(cells, 3) / 1e9 : Cell(cells, 0) + Cell(cells, 1) / 1e9;
}
