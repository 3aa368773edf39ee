#include "sim/sim_tolvan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "sim/spectrum.h"

namespace {

constexpr double GAS_CONSTANT = 8.314;  // J/(mol K)

// Indices of the choices of the document.
constexpr int CONTROL_AUTO = 0, CONTROL_ON = 1;
constexpr int COOLER_DACCOUNT = 2;
constexpr int BLOCK_OFF = 0, BLOCK_DACCOUNT = 2;

const char* const DATA_HEADER = "DATAH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tCH4D\tCH4\tTEMP\tPRESSURE\tRSSI\tDROPRATE"
                                "\tAUX1\tAUX2\tAUX3\tAUX4\tAUX5\tAUX6\tAUX7\tAUX8\tAUXTC1\tAUXTC2\tAUXTC3\tCHK\n";
const char* const DATA_UNITS = "DATAU\tms\ts\tns\t-\tmmol/m^3\tumol/mol\tC\tkPa\t%\t%"
                               "\tV\tV\tV\tV\tV\tV\tV\tV\tC\tC\tC\t-\n";
const char* const STATUS_HEADER = "DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tLCTSET\tLCTACTUAL\tLBTSET\tLBTACTUAL"
                                  "\tBOXTEMP\tTOPHEATER\tBOTTOMHEATER\tSPINMIRROR\tCHK\n";
const char* const DIAG_HEADER = "DATADIAGH\tRSSILOW\tLASERUNLOCKED\tTOPHEATER\tBOTTOMHEATER\tSPINMIRROR\tUSBLOG"
                                "\tCALUNCOMMITTED\tLASERMANUAL\n";
const char* const CLOCKSYNC_HEADER = "DATACLOCKSYNCH\tMSEC\tSECONDS\tNANOSECONDS\tPTP\tOFFSET\tCHK\n";
const char* const TEST_HEADER = "DATATESTH\tCOUNT\tSAMPLEDC\tREFDC\tCOOLERDAC\tBLOCKDAC\tMIRRORPOS\tCHK\n";

// What the document holds is what the wire says: six significant digits.
float six_digits(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return std::strtof(text, nullptr);
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

double dac_to_celsius(int64_t count)
{
    return double(count) / 65535.0 * 50.0;
}

std::string hex16(double fraction)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%04x", unsigned(std::clamp(fraction, 0.0, 1.0) * 65535.0));
    return text;
}

// Copies every value of one calibration section to another; the history only where it differs.
void copy_cal(ConfigCal& to, ConfigCal& from)
{
    to.Ch4zero().set(from.Ch4zero().get());
    to.Ch4span().set(from.Ch4span().get());
    to.Ch4spanconc().set(from.Ch4spanconc().get());
    to.Ch4lastzero().set(from.Ch4lastzero().get());
    to.Ch4lastspan().set(from.Ch4lastspan().get());
    if (to.History()._is_composite_same(from.History()))
        return;
    to.History().clear();
    for (Configurable* child : from.History().children())
        if (auto* record = dynamic_cast<ConfigCalRecord*>(child))
            to.History().add(*new ConfigCalRecord(*record));
}

// The detector's level across a sweep: the laser's power rises with its current.
double laser_power(int point)
{
    return 0.55 + 0.35 * point / (SimSpectrum::WINDOW_POINTS - 1);
}

}  // namespace

SimTolvan::SimTolvan(const std::string& name)
{
    _doc.SetListener(this);
    _doc.Conf().Ver().set("1.0-sim");
    copy_cal(_committed_cal, _doc.Conf().Cal());
    _Steer();
    _plant.SetLaserTemperature(_plant.LaserTarget());
    _PowerUp(name);
}

int SimTolvan::Rate()
{
    return _doc.Conf().Output().Rate().get_rate();
}

bool SimTolvan::SetRate(int hz)
{
    return _SelectRate(_doc.Conf().Output().Rate(), hz);
}

void SimTolvan::_Apply(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
    _Steer();
}

std::vector<ConfigurableComposite*> SimTolvan::_Commands()
{
    return {&_doc.Conf().Cmd(), &_doc.Conf().Factory().Cmd()};
}

void SimTolvan::_Steer()
{
    ConfigLineLock& linelock = _doc.Conf().Cfg().Linelock();
    ConfigLaserCooler& cooler = linelock.Lasercooler();
    _plant.SetLaserTarget(cooler.Control().get() == COOLER_DACCOUNT ? dac_to_celsius(cooler.Daccount().get())
                                                                     : double(cooler.Temp().get()));
    ConfigLaserBlock& block = linelock.Laserblock();
    switch (block.Control().get()) {
    case BLOCK_OFF:
        _plant.SetBlockTarget(18.0);  // left to the air around it
        break;
    case BLOCK_DACCOUNT:
        _plant.SetBlockTarget(dac_to_celsius(block.Daccount().get()));
        break;
    default:
        _plant.SetBlockTarget(block.Temp().get());
    }
}

std::string SimTolvan::_Headers()
{
    ConfigOutput& output = _doc.Conf().Output();
    std::string headers = std::string(DATA_UNITS) + DATA_HEADER;
    if (output.Status().get())
        headers += std::string(STATUS_HEADER) + DIAG_HEADER;
    if (output.Dataclocksync().get())
        headers += CLOCKSYNC_HEADER;
    return headers;
}

void SimTolvan::_SendData(double time)
{
    ConfigCal& cal = _doc.Conf().Cal();
    const double methane = (_plant.Optical(_plant.Methane()) - cal.Ch4zero().get()) * cal.Ch4span().get();
    const double air = _plant.AirTemperature();
    const double pressure = _plant.Pressure();
    const double signal = _plant.SignalStrength();

    DataLine line("DATA");
    _AddStamp(line, time);
    line.AddInteger(_Diagnostics(air, signal))
        .AddFixed(methane * pressure / (GAS_CONSTANT * (air + 273.15)), 5)
        .AddFixed(methane, 4)
        .AddFixed(air, 2)
        .AddFixed(pressure, 3)
        .AddFixed(signal, 1)
        .AddFixed(_plant.DropRate(), 2);
    for (unsigned n = 1; n <= 8; ++n) {
        ConfigCfgAux& aux = _doc.Conf().Cfg().Aux(n);
        const double v = 0.25 * n + _plant.Noise(0.001);
        line.AddFixed(aux.A0().get() + v * (aux.A1().get() + v * (aux.A2().get() + v * aux.A3().get())), 4);
    }
    for (int n = 1; n <= 3; ++n)
        line.AddFixed(air + 0.5 * n + _plant.Noise(0.05), 2);
    _Send(line.Checked());
    if (_doc.Conf().Output().Waveforms().get())
        _SendWaveforms();
}

void SimTolvan::_SendWaveforms()
{
    const double centre = _plant.LaserTemperature();
    const double transmission = _plant.SignalStrength() / 100.0;
    DataLine reference("DATAR"), sample("DATAS"), reference_dc("DATARDC"), sample_dc("DATASDC");
    for (DataLine* line : {&reference, &sample, &reference_dc, &sample_dc})
        line->AddFixed(centre, 4);
    for (int i = 0; i < SimSpectrum::WINDOW_POINTS; ++i) {
        const double t = SimSpectrum::PointTemperature(centre, i);
        const double r = SimSpectrum::Reference(t);
        const double s = SimSpectrum::Sample(t);
        // The detectors' own noise, so that the waveforms live even while the laser holds still.
        reference.AddFixed(r + _plant.Noise(WAVEFORM_NOISE), 5);
        sample.AddFixed(s + _plant.Noise(WAVEFORM_NOISE), 5);
        reference_dc.AddFixed(0.9 * laser_power(i) * (1.0 - r), 5);
        sample_dc.AddFixed(transmission * laser_power(i) * (1.0 - s), 5);
    }
    _Send(reference.Checked() + sample.Checked() + reference_dc.Checked() + sample_dc.Checked());
}

void SimTolvan::_SendStatus(double time)
{
    ConfigOutput& output = _doc.Conf().Output();
    if (output.Status().get()) {
        ConfigHeater& heater = _doc.Conf().Cfg().Heater();
        const double signal = _plant.SignalStrength();
        const double air = _plant.AirTemperature();
        DataLine line("DATASTAT");
        _AddStamp(line, time);
        line.AddInteger(_Diagnostics(air, signal))
            .AddFixed(_plant.LaserTarget(), 3)
            .AddFixed(_plant.LaserTemperature(), 4)
            .AddFixed(_plant.BlockTarget(), 3)
            .AddFixed(_plant.BlockTemperature(), 3)
            .AddFixed(air + 6.0 + _plant.Noise(0.05), 2)
            .AddInteger(_HeaterOn(heater.Top().Control(), air < 2.0) ? heater.Top().Heaterpower().get() : 0)
            .AddInteger(_HeaterOn(heater.Bottom().Control(), signal < heater.Bottom().Signalstrengthlevel().get())
                            ? heater.Bottom().Heaterpower().get()
                            : 0);
        ConfigSpinMirror& mirror = _doc.Conf().Cfg().Spinmirror();
        line.AddInteger(_HeaterOn(mirror.Control(), signal < mirror.Signalstrengthlevel().get()) ? 1 : 0);
        _Send(line.Checked());
    }
    if (output.Dataclock().get())
        _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
    if (output.Dataclocksync().get()) {
        DataLine line("DATACLOCKSYNC");
        _AddStamp(line, time);
        line.AddInteger(_doc.Conf().Cfg().Clock().Ptp().get()).AddInteger(std::llround(_plant.Noise(200)));
        _Send(line.Checked());
    }
}

void SimTolvan::_SendTest()
{
    const double centre = _plant.LaserTemperature();
    ConfigLineLock& linelock = _doc.Conf().Cfg().Linelock();
    DataLine line("DATATEST");
    line.AddInteger(++_test_count)
        .Add(hex16(laser_power(SimSpectrum::CENTRE_POINT) * (1.0 - SimSpectrum::Sample(centre))))
        .Add(hex16(0.9 * laser_power(SimSpectrum::CENTRE_POINT) * (1.0 - SimSpectrum::Reference(centre))))
        .Add(hex16(linelock.Lasercooler().Control().get() == COOLER_DACCOUNT
                       ? double(linelock.Lasercooler().Daccount().get()) / 65535.0
                       : _plant.LaserTarget() / 50.0))
        .Add(hex16(_plant.BlockTarget() / 50.0))
        .AddInteger(_doc.Conf().Factory().Mirrorpos().get());
    _Send(TEST_HEADER + line.Checked());
}

int64_t SimTolvan::_Diagnostics(double air, double signal_strength)
{
    ConfigCfg& cfg = _doc.Conf().Cfg();
    const bool bits[] = {
        signal_strength < cfg.Spinmirror().Signalstrengthlevel().get(),
        std::abs(_plant.LaserTemperature() - _plant.LaserTarget()) > 0.05,
        _HeaterOn(cfg.Heater().Top().Control(), air < 2.0),
        _HeaterOn(cfg.Heater().Bottom().Control(), signal_strength < cfg.Heater().Bottom().Signalstrengthlevel().get()),
        _HeaterOn(cfg.Spinmirror().Control(), signal_strength < cfg.Spinmirror().Signalstrengthlevel().get()),
        _logging_usb,
        _cal_uncommitted,
        cfg.Linelock().Lasercooler().Control().get() != CONTROL_AUTO,
    };
    int64_t word = 0;
    for (size_t k = 0; k < std::size(bits); ++k)
        if (bits[k])
            word |= int64_t(1) << k;
    return word;
}

bool SimTolvan::_HeaterOn(const ConfigControl& control, bool automatic)
{
    return control.get() == CONTROL_AUTO ? automatic : control.get() == CONTROL_ON;
}

void SimTolvan::_Restart()
{
    copy_cal(_doc.Conf().Cal(), _committed_cal);
    _cal_uncommitted = false;
    _logging_usb = false;
    // The laser starts from the factory's temperature and heads for its set point again.
    _plant.SetLaserTemperature(_doc.Conf().Factory().Laserstarttemp().get());
    _Steer();
}

// --- What a message asks for ---

void SimTolvan::OnTempRange(int index)
{
    _SendEvent("TEMPRANGE", _doc.Conf().Cfg().Temprange().choices()[size_t(index)]);
}

void SimTolvan::OnRate(int hz)
{
    _SendEvent("RATE", hz == 0 ? "poll" : std::to_string(hz) + " Hz");
}

void SimTolvan::OnCH4Zero()
{
    // With zero gas in the path the optics read their own offset.
    ConfigCal& cal = _doc.Conf().Cal();
    const float zero = six_digits(_plant.Optical(0.0));
    const Timestamp now = _ClockStamp();
    cal.Ch4zero().set(zero);
    cal.Ch4lastzero().set(now);
    cal.History().add(*new ConfigCalRecord(now, "CH4 Zero", zero, cal.Ch4span().get()));
    _cal_uncommitted = true;
    _SendEvent("CH4ZERO", "zero " + number(zero));
}

void SimTolvan::OnCH4Span(float concentration)
{
    ConfigCal& cal = _doc.Conf().Cal();
    const double reading = _plant.Optical(concentration) - cal.Ch4zero().get();
    if (concentration <= 0 || reading <= 0) {
        _SendEvent("CH4SPAN", "failed: no signal at " + number(concentration) + " umol/mol");
        return;
    }
    const float span = six_digits(concentration / reading);
    const Timestamp now = _ClockStamp();
    cal.Ch4span().set(span);
    cal.Ch4lastspan().set(now);
    cal.History().add(*new ConfigCalRecord(now, "CH4 Span", cal.Ch4zero().get(), span));
    _cal_uncommitted = true;
    _SendEvent("CH4SPAN", "span " + number(span) + " at " + number(concentration) + " umol/mol");
}

void SimTolvan::OnCalCommit()
{
    copy_cal(_committed_cal, _doc.Conf().Cal());
    _cal_uncommitted = false;
    _SendEvent("CALCOMMIT", "calibration kept");
}

void SimTolvan::OnCalRollback()
{
    copy_cal(_doc.Conf().Cal(), _committed_cal);
    _cal_uncommitted = false;
    _SendEvent("CALROLLBACK", "calibration restored");
}

void SimTolvan::OnCalAbort()
{
    _SendEvent("CALABORT", "no calibration in progress");
}

void SimTolvan::OnLineLock()
{
    // The firmware finds the reference line and holds the laser on it.
    ConfigLaserCooler& cooler = _doc.Conf().Cfg().Linelock().Lasercooler();
    cooler.Control().set(CONTROL_AUTO);
    cooler.Temp().set(float(SimSpectrum::LockTemperature()));
    _Steer();
    _SendEvent("LINELOCK", "locked at " + number(SimSpectrum::LockTemperature()) + " C");
}

void SimTolvan::OnLogUSBStart()
{
    _logging_usb = true;
    _SendEvent("LOGUSBSTART", "logging to USB");
}

void SimTolvan::OnLogUSBStop()
{
    _logging_usb = false;
    _SendEvent("LOGUSBSTOP", "USB log closed");
}

void SimTolvan::OnConfigChanged()
{
    _SendEvent("CONFIG", "settings saved");
}
