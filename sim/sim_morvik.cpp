#include "sim/sim_morvik.h"

namespace {

constexpr double GAS_CONSTANT = 8.314;  // J/(mol K)
constexpr double SUPPLY_LOW = 11.0;     // V

const char* const HEADERS = "DATAU\tms\ts\tns\t-\tmmol/m^3\tumol/mol\tC\tkPa\t%\t-\n"
                            "DATAH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tCH4D\tCH4\tTEMP\tPRESSURE\tRSSI\tCHK\n"
                            "DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tSUPPLY\tBOARDTEMP\tCHK\n"
                            "DATADIAGH\tHEADMISSING\tSUPPLYLOW\n";

}  // namespace

SimMorvik::SimMorvik(const std::string& name) : SimInstrument(10)
{
    _doc.Conf().Ver().set("1.0-sim");
    _PowerUp(name);
}

std::vector<ConfigurableComposite*> SimMorvik::_Commands()
{
    return {&_doc.Conf().Cmd(), &_doc.Conf().Factory().Cmd()};
}

std::string SimMorvik::_Headers()
{
    return HEADERS;
}

void SimMorvik::_SendData(double time)
{
    const double methane = _plant.Methane();
    const double air = _plant.AirTemperature();
    const double pressure = _plant.Pressure();
    DataLine line("DATA");
    _AddStamp(line, time);
    line.AddInteger(_Diagnostics())
        .AddFixed(methane * pressure / (GAS_CONSTANT * (air + 273.15)), 5)
        .AddFixed(methane, 4)
        .AddFixed(air, 2)
        .AddFixed(pressure, 3)
        .AddFixed(_plant.SignalStrength(), 1);
    _Send(line.Checked());
}

void SimMorvik::_SendStatus(double time)
{
    _supply = 12.0 + _plant.Noise(0.05);
    DataLine line("DATASTAT");
    _AddStamp(line, time);
    line.AddInteger(_Diagnostics()).AddFixed(_supply, 2).AddFixed(_plant.AirTemperature() + 9.0, 2);
    _Send(line.Checked());
    _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
}

int64_t SimMorvik::_Diagnostics()
{
    // No head is connected until the unit is told its name.
    const bool head_missing = _doc.Conf().Cfg().Head().get().empty();
    return (head_missing ? 1 : 0) | (_supply < SUPPLY_LOW ? 2 : 0);
}
