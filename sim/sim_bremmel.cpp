#include "sim/sim_bremmel.h"

#include <cmath>

namespace {

constexpr double GAS_CONSTANT = 8.314;  // J/(mol K)

const char* const HEADERS =
    "DATAU\tms\t-\ts\tns\tm/s\tm/s\tm/s\tC\tmmol/m^3\t-\n"
    "DATAH\tMSEC\tDIAG\tSECONDS\tNANOSECONDS\tU\tV\tW\tTS\tCH4D\tCHK\n"
    "DATASONICH\tSECONDS\tNANOSECONDS\tU\tV\tW\tTS\tCHK\n"
    "DATACH4H\tSECONDS\tNANOSECONDS\tCH4\tRSSI\tCHK\n"
    "DATAGPSH\tSECONDS\tNANOSECONDS\tLATITUDE\tLONGITUDE\tALTITUDE\tSATELLITES\tCHK\n";
const char* const STATUS_HEADERS = "DATASTATH\tSECONDS\tNANOSECONDS\tDIAG\tSUPPLY\tUSBFREE\tCHK\n"
                                   "DATADIAGH\tUSBLOGGING\tHEADMISSING\tSONICMISSING\n";

}  // namespace

SimBremmel::SimBremmel(const std::string& name) : SimInstrument(10)
{
    _doc.Conf().Ver().set("1.0-sim");
    _PowerUp(name);
}

void SimBremmel::_Apply(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
    ConfigCmdBremmel& cmd = _doc.Conf().Cmd();
    if (cmd.Logusbstart().get()) {
        _logging_usb = true;
        _SendEvent("LOGUSBSTART", "logging to USB");
    }
    if (cmd.Logusbstop().get()) {
        _logging_usb = false;
        _SendEvent("LOGUSBSTOP", "USB log closed");
    }
    if (cmd.Ejectusb().get()) {
        _logging_usb = false;
        _SendEvent("EJECTUSB", "USB drive may be removed");
    }
}

std::string SimBremmel::_Headers()
{
    return _doc.Conf().Output().Status().get() ? std::string(HEADERS) + STATUS_HEADERS : HEADERS;
}

void SimBremmel::_SendData(double time)
{
    const double u = 2.1 + _plant.Noise(0.3), v = -0.8 + _plant.Noise(0.3), w = _plant.Noise(0.15);
    const double sonic_temperature = _plant.AirTemperature() + 0.4;
    const double methane = _plant.Methane();
    const double density = methane * _plant.Pressure() / (GAS_CONSTANT * (_plant.AirTemperature() + 273.15));

    DataLine line("DATA");
    line.AddInteger(int64_t(std::llround(time * 1000))).AddInteger(_Diagnostics());
    _AddClockStamp(line, time);
    line.AddFixed(u, 3).AddFixed(v, 3).AddFixed(w, 3).AddFixed(sonic_temperature, 2).AddFixed(density, 5);
    DataLine sonic("DATASONIC");
    _AddClockStamp(sonic, time);
    sonic.AddFixed(u, 3).AddFixed(v, 3).AddFixed(w, 3).AddFixed(sonic_temperature, 2);
    DataLine head("DATACH4");
    _AddClockStamp(head, time);
    head.AddFixed(methane, 4).AddFixed(_plant.SignalStrength(), 1);
    DataLine gps("DATAGPS");
    _AddClockStamp(gps, time);
    gps.AddFixed(59.9139 + _plant.Noise(0.00001), 6)
        .AddFixed(10.7522 + _plant.Noise(0.00001), 6)
        .AddFixed(23.0 + _plant.Noise(0.5), 1)
        .AddInteger(9);
    _Send(line.Checked() + sonic.Checked() + head.Checked() + gps.Checked());
    if (_doc.Conf().Output().Status().get()) {
        DataLine status("DATASTAT");
        _AddClockStamp(status, time);
        status.AddInteger(_Diagnostics()).AddFixed(12.2 + _plant.Noise(0.03), 2).AddInteger(_logging_usb ? 7340 : 7400);
        _Send(status.Checked());
    }
}

void SimBremmel::_SendStatus(double time)
{
    if (_doc.Conf().Output().Dataclock().get())
        _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
}

int64_t SimBremmel::_Diagnostics() const
{
    auto& doc = const_cast<DocBremmel&>(_doc);
    return _DiagWord({_logging_usb, doc.Conf().Cfg().Head().get().empty(), doc.Conf().Cfg().Sonicbaud().get() == 0});
}
