#include "sim/sim_quenta.h"

#include <algorithm>

namespace {

constexpr int ON = 1;  // index of "on" in an on/off choice

const char* const HEADERS = "DATAU\ts\t%\t%\t%\t%\tkPa\t-\n"
                            "DATAH\tTIME\tPUMP\tHUMIDIFIER\tDESICCANT\tINJECTOR\tPRESSURE\tCHK\n";
const char* const STATUS_HEADERS = "DATASTATH\tTIME\tDIAG\tSUPPLY\tBOARDTEMP\tCHK\n"
                                   "DATADIAGH\tLIGHTSOURCE\tHEADMISSING\tSCRUBON\n";
const char* const TEST_HEADER = "DATATESTH\tTIME\tCOUNT\tDAC1\tDAC2\tDAC3\tDAC4\tCHK\n";

}  // namespace

SimQuenta::SimQuenta(const std::string& name) : SimInstrument(1)
{
    _doc.Conf().Ver().set("1.0-sim");
    _PowerUp(name);
}

void SimQuenta::_Apply(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
    ConfigCmdQuenta& cmd = _doc.Conf().Cmd();
    _ServeLightSource(cmd.Connectlightsource().get(), cmd.Disconnectlightsource().get());
}

std::string SimQuenta::_Headers()
{
    ConfigOutputQuenta& output = _doc.Conf().Output();
    std::string headers = HEADERS;
    if (output.Status().get())
        headers += STATUS_HEADERS;
    if (output.Datatest().get())
        headers += TEST_HEADER;
    if (output.Lightsource().get())
        headers += LIGHT_SOURCE_HEADER;
    return headers;
}

void SimQuenta::_SendData(double time)
{
    ConfigCfgQuenta& cfg = _doc.Conf().Cfg();
    // A valve driven past its stop reads as fully open or closed.
    auto valve = [this](double percent) { return std::clamp(percent + _plant.Noise(0.1), 0.0, 100.0); };
    DataLine line("DATA");
    _AddClockSeconds(line, time);
    line.AddFixed(valve(cfg.Flow().Pump_percent().get()), 2)
        .AddFixed(valve(cfg.Humidifier().Percent().get()), 2)
        .AddFixed(valve(cfg.Desiccant().Percent().get()), 2)
        .AddFixed(valve(cfg.Injector().Co2_injector_percent().get()), 2)
        .AddFixed(_plant.Pressure() + 0.02 * cfg.Flow().Pump_percent().get(), 3);
    _Send(line.Checked());
}

void SimQuenta::_SendStatus(double time)
{
    ConfigOutputQuenta& output = _doc.Conf().Output();
    ConfigCfgQuenta& cfg = _doc.Conf().Cfg();
    if (output.Status().get()) {
        DataLine line("DATASTAT");
        _AddClockSeconds(line, time);
        line.AddInteger(_DiagWord({_LightSourceConnected(), cfg.Head().get().empty(),
                                   cfg.Scrub().Co2_scrub().get() == ON}))
            .AddFixed(24.0 + _plant.Noise(0.05), 2)
            .AddFixed(_plant.AirTemperature() + 7.0, 2);
        _Send(line.Checked());
    }
    if (output.Datatest().get()) {
        DataLine line("DATATEST");
        _AddClockSeconds(line, time);
        line.AddInteger(++_test_count);
        for (ConfigurableFloat* dac : {&cfg.Dacs().Dac1(), &cfg.Dacs().Dac2(), &cfg.Dacs().Dac3(), &cfg.Dacs().Dac4()})
            line.AddFixed(dac->get(), 3);
        _Send(line.Checked());
    }
    if (output.Lightsource().get())
        _Send(_LightSourceRecord(cfg.Lightsource(), time));
    if (output.Dataclock().get())
        _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
}
