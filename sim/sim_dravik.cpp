#include "sim/sim_dravik.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

const char* const HEADERS =
    "DATAU\ts\tumol/mol\tumol/mol\tmmol/mol\tmmol/mol\tumol/s\tC\tC\tkPa\tumol/m^2/s\t-\n"
    "DATAH\tTIME\tCO2A\tCO2B\tH2OA\tH2OB\tFLOW\tTCHAMBER\tTLEAF\tPRESSURE\tPPFD\tCHK\n";
const char* const STATUS_HEADERS = "DATASTATH\tMSEC\tDIAG\tSSA\tSSB\tCHOPPERTEMP\tSUPPLY\tCHK\n"
                                   "DATADIAGH\tLIGHTSOURCE\tIRGAPOWEROFF\tPOWEROFF\tFLOWLOW\n";
const char* const TEST_HEADER = "DATATESTH\tTIME\tCOUNT\tSOURCEA\tSOURCEB\tCHOPPER\tCHK\n";

constexpr int WAVEFORM_POINTS = 100;

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

std::string hex16(int64_t value)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%04x", unsigned(std::clamp<int64_t>(value, 0, 65535)));
    return text;
}

// A step that zeroes one coefficient: the command, the coefficient, what the sensor reads with
// nothing to measure, and the name of the step.
struct ZeroStep {
    ConfigurableBool& (ConfigCmdDravik::*command)();
    ConfigurableFloat& (ConfigCalDravik::*value)();
    double reading;
    const char* type;
};

const ZeroStep ZERO_STEPS[] = {
    {&ConfigCmdDravik::Co2azero, &ConfigCalDravik::Co2azero, 1.0, "CO2A Zero"},
    {&ConfigCmdDravik::Co2bzero, &ConfigCalDravik::Co2bzero, 1.0, "CO2B Zero"},
    {&ConfigCmdDravik::H2oazero, &ConfigCalDravik::H2oazero, 1.0, "H2OA Zero"},
    {&ConfigCmdDravik::H2obzero, &ConfigCalDravik::H2obzero, 1.0, "H2OB Zero"},
    {&ConfigCmdDravik::Tazero, &ConfigCalDravik::Tazero, 0.0, "TCell A Zero"},
    {&ConfigCmdDravik::Tbzero, &ConfigCalDravik::Tbzero, 0.0, "TCell B Zero"},
    {&ConfigCmdDravik::Flowmeterzero, &ConfigCalDravik::Flowmeterzero, 1.0, "Flow Meter Zero"},
    {&ConfigCmdDravik::Flowazero, &ConfigCalDravik::Flowazero, 0.0, "Flow A Zero"},
    {&ConfigCmdDravik::Flowbzero, &ConfigCalDravik::Flowbzero, 0.0, "Flow B Zero"},
    {&ConfigCmdDravik::Chamberpressurezero, &ConfigCalDravik::Chamberpressurezero, 2.5, "Chamber Pressure Zero"},
    {&ConfigCmdDravik::Ssa_reset, &ConfigCalDravik::Ssa_ref, 48000.0, "SS A Ref"},
    {&ConfigCmdDravik::Ssb_reset, &ConfigCalDravik::Ssb_ref, 48000.0, "SS B Ref"},
};

// A step that spans one channel at the concentration that comes with the command.
struct SpanStep {
    ConfigurableBool& (ConfigCmdDravik::*command)();
    ConfigurableFloat& (ConfigCalDravik::*value)();
    ConfigurableFloat& (ConfigCalDravik::*concentration)();
    const char* type;
};

const SpanStep SPAN_STEPS[] = {
    {&ConfigCmdDravik::Co2aspan1, &ConfigCalDravik::Co2aspan1, &ConfigCalDravik::Co2aspanconc1, "CO2A Span1"},
    {&ConfigCmdDravik::Co2aspan2, &ConfigCalDravik::Co2aspan2, &ConfigCalDravik::Co2aspanconc2, "CO2A Span2"},
    {&ConfigCmdDravik::Co2bspan1, &ConfigCalDravik::Co2bspan1, &ConfigCalDravik::Co2bspanconc1, "CO2B Span1"},
    {&ConfigCmdDravik::Co2bspan2, &ConfigCalDravik::Co2bspan2, &ConfigCalDravik::Co2bspanconc2, "CO2B Span2"},
    {&ConfigCmdDravik::H2oaspan1, &ConfigCalDravik::H2oaspan1, &ConfigCalDravik::H2oaspanconc1, "H2OA Span1"},
    {&ConfigCmdDravik::H2oaspan2, &ConfigCalDravik::H2oaspan2, &ConfigCalDravik::H2oaspanconc2, "H2OA Span2"},
    {&ConfigCmdDravik::H2obspan1, &ConfigCalDravik::H2obspan1, &ConfigCalDravik::H2obspanconc1, "H2OB Span1"},
    {&ConfigCmdDravik::H2obspan2, &ConfigCalDravik::H2obspan2, &ConfigCalDravik::H2obspanconc2, "H2OB Span2"},
};

// The event of a step: its type in capitals without blanks, "CO2A Zero" giving CO2AZERO.
std::string event_name(const std::string& type)
{
    std::string name;
    for (char c : type)
        if (c != ' ')
            name += char(std::toupper(static_cast<unsigned char>(c)));
    return name;
}

}  // namespace

SimDravik::SimDravik(const std::string& name) : SimInstrument()
{
    _doc.Conf().Ver().set("1.0-sim");
    _PowerUp(name);
}

void SimDravik::_Apply(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
    ConfigCmdDravik& cmd = _doc.Conf().Cmd();
    _Calibrate();
    _ServeLightSource(cmd.Connectlightsource().get(), cmd.Disconnectlightsource().get());
    if (cmd.Irgapoweroff().get()) {
        _irga_off = true;
        _SendEvent("IRGAPOWEROFF", "analysers off");
    }
    if (cmd.Poweroff().get()) {
        _power_off = true;
        _SendEvent("POWEROFF", "power off");
    }
    if (cmd.Poweron().get()) {
        _power_off = _irga_off = false;
        _SendEvent("POWERON", "power on");
    }
    if (cmd.Poll().get())
        _SendData(_Now());
    if (cmd.Polltest().get())
        _SendTest(_Now());
}

void SimDravik::_Calibrate()
{
    ConfigCmdDravik& cmd = _doc.Conf().Cmd();
    ConfigCalDravik& cal = _doc.Conf().Cal();
    for (const ZeroStep& step : ZERO_STEPS) {
        if (!(cmd.*step.command)().get())
            continue;
        const float value = six_digits(step.reading + _plant.Noise(0.002 * std::max(1.0, step.reading)));
        (cal.*step.value)().set(value);
        _AddHistoryRecord(step.type);
        _SendEvent(event_name(step.type), "zero " + number(value));
    }
    for (const SpanStep& step : SPAN_STEPS) {
        if (!(cmd.*step.command)().get())
            continue;
        const double concentration = (cal.*step.concentration)().get();
        if (concentration <= 0) {
            _SendEvent(event_name(step.type), "failed: no span concentration");
            continue;
        }
        // The analyser reads a little high; the span takes that out.
        const double reading = concentration * (1.012 + _plant.Noise(0.001));
        const float value = six_digits(concentration / reading);
        (cal.*step.value)().set(value);
        _AddHistoryRecord(std::string(step.type) + ": " + number(concentration));
        _SendEvent(event_name(step.type), "span " + number(value) + " at " + number(concentration));
    }
}

void SimDravik::_AddHistoryRecord(const std::string& type)
{
    ConfigCalDravik& c = _doc.Conf().Cal();
    const long time = long(std::floor(_ClockAt(_Now())));
    _doc.Conf().History().add(*new ConfigCalRecordDravik(
        time, type, c.Oxygen().get(), c.Co2azero().get(), c.Co2aspan1().get(), c.Co2aspan2().get(),
        c.Co2bzero().get(), c.Co2bspan1().get(), c.Co2bspan2().get(), c.H2oazero().get(), c.H2oaspan1().get(),
        c.H2oaspan2().get(), c.H2obzero().get(), c.H2obspan1().get(), c.H2obspan2().get(), c.Tazero().get(),
        c.Tbzero().get(), c.Flowmeterzero().get(), c.Flowazero().get(), c.Flowbzero().get(),
        c.Chamberpressurezero().get(), c.Ssa_ref().get(), c.Ssb_ref().get()));
}

std::string SimDravik::_Headers()
{
    ConfigOutputDravik& output = _doc.Conf().Output();
    std::string headers = HEADERS;
    if (output.Status().get())
        headers += STATUS_HEADERS;
    if (output.Datatest().get())
        headers += TEST_HEADER;
    if (output.Lightsource().get())
        headers += LIGHT_SOURCE_HEADER;
    return headers;
}

void SimDravik::_SendData(double time)
{
    ConfigCalDravik& cal = _doc.Conf().Cal();
    const bool measuring = !_power_off && !_irga_off;
    // The leaf takes up CO2 and gives off water, more so in light.
    const double uptake = _LightSourceConnected() ? 9.0 : -1.5;
    const double co2_ref = 410.0 + _plant.Noise(0.2);
    const double h2o_ref = 12.0 + _plant.Noise(0.02);
    const double air = _plant.AirTemperature();
    const double flow = _power_off ? 0.0 : 500.0 + _plant.Noise(1.0);

    DataLine line("DATA");
    _AddClockSeconds(line, time);
    line.AddFixed(measuring ? co2_ref * cal.Co2azero().get() * cal.Co2aspan1().get() : 0.0, 3)
        .AddFixed(measuring ? (co2_ref - uptake) * cal.Co2bzero().get() * cal.Co2bspan1().get() : 0.0, 3)
        .AddFixed(measuring ? h2o_ref * cal.H2oazero().get() * cal.H2oaspan1().get() : 0.0, 4)
        .AddFixed(measuring ? (h2o_ref + 0.2 * std::abs(uptake)) * cal.H2obzero().get() * cal.H2obspan1().get() : 0.0,
                  4)
        .AddFixed(flow, 2)
        .AddFixed(air + 1.5 + _plant.Noise(0.02), 3)
        .AddFixed(air + 1.2 + _plant.Noise(0.05), 3)
        .AddFixed(_plant.Pressure(), 3)
        .AddFixed(_LightSourceConnected() ? double(_doc.Conf().Cfg().Lightsource().Q_setpoint().get()) : 0.0, 1);
    _Send(line.Checked());

    if (!_doc.Conf().Output().Waveforms().get())
        return;
    // The chopper's view of each cell: dark, then the source through the gas, with noise.
    for (const char* name : {"DATACELLA", "DATACELLB"}) {
        const double light = measuring ? 52000.0 - (name[8] == 'B' ? 600.0 : 0.0) : 0.0;
        DataLine wave(name);
        wave.AddInteger(WAVEFORM_POINTS);
        for (int i = 0; i < WAVEFORM_POINTS; ++i) {
            const double shape = std::clamp(std::sin(6.283185307179586 * i / WAVEFORM_POINTS) * 1.6, -1.0, 1.0);
            const double counts = 2000.0 + light * (0.5 + 0.5 * shape) + _plant.Noise(40.0);
            wave.AddInteger(std::clamp<int64_t>(std::llround(counts), 0, 65535));
        }
        _Send(wave.Checked());
    }
}

void SimDravik::_SendStatus(double time)
{
    ConfigOutputDravik& output = _doc.Conf().Output();
    if (output.Status().get()) {
        DataLine line("DATASTAT");
        line.AddInteger(int64_t(std::llround(time * 1000)))
            .AddInteger(_Diagnostics())
            .AddFixed(_irga_off || _power_off ? 0.0 : 97.0 + _plant.Noise(0.2), 2)
            .AddFixed(_irga_off || _power_off ? 0.0 : 96.0 + _plant.Noise(0.2), 2)
            .AddFixed(_doc.Conf().Factory().Chopper_temp().Setpoint().get() + _plant.Noise(0.01), 3)
            .AddFixed(12.1 + _plant.Noise(0.02), 2);
        _Send(line.Checked());
    }
    if (output.Datatest().get())
        _SendTest(time);
    if (output.Lightsource().get())
        _Send(_LightSourceRecord(_doc.Conf().Cfg().Lightsource(), time));
    if (output.Dataclock().get())
        _Send(DataLine("DATACLOCK").Add(_ClockText(time)).Plain());
}

void SimDravik::_SendTest(double time)
{
    ConfigFactoryDravik& factory = _doc.Conf().Factory();
    DataLine line("DATATEST");
    _AddClockSeconds(line, time);
    line.AddInteger(++_test_count)
        .Add(hex16(factory.Source_a().get() * 36))
        .Add(hex16(factory.Source_b().get() * 36))
        .Add(hex16(std::llround(32768 + _plant.Noise(30))));
    _Send(line.Checked());
}

int64_t SimDravik::_Diagnostics() const
{
    return _DiagWord({_LightSourceConnected(), _irga_off, _power_off, _power_off});
}

void SimDravik::_Restart()
{
    _irga_off = _power_off = false;
}
