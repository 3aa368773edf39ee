#pragma once
// The simulated Dravik, the photosynthesis head with two gas analysers and a leaf chamber.

#include <string>
#include <vector>

#include "libskarn/docdravik.h"
#include "sim/sim_instrument.h"

/// A Dravik. At `output`/`rate` it sends DATA, its time in the first field, with the chopper
/// waveforms DATACELLA and DATACELLB (0 to 65535 counts) when `waveforms` is set; once a second
/// DATASTAT, DATATEST, DATALT and DATACLOCK as `status`, `datatest`, `lightsource` and
/// `dataclock` say. A zero or span command sets its coefficient in `cal` and appends a record of
/// all coefficients to the history, typed "CO2A Zero", "CO2A Span1: 400" and so on. The light
/// source and the power commands are told by events and show in the DIAG word. The factory
/// section keeps what it is sent.
class SimDravik : public SimInstrument {
public:
    explicit SimDravik(const std::string& name);

    int DefaultPort() const override { return 4440; }
    int Rate() override { return _doc.Conf().Output().Rate().get_rate(); }
    /// One of the rates of `output`/`rate`: 0, 1, 2, 5 or 10.
    bool SetRate(int hz) override { return _SelectRate(_doc.Conf().Output().Rate(), hz); }

private:
    Configurable& _Doc() override { return _doc; }
    void _Apply(std::istream& in, std::ostream& out) override;
    std::vector<ConfigurableComposite*> _Commands() override { return {&_doc.Conf().Cmd()}; }
    ConfigModel* _Model() override { return &_doc.Conf(); }
    ConfigCfgClock* _Clock() override { return &_doc.Conf().Cfg().Clock(); }
    ConfigCfgNetwork* _Network() override { return &_doc.Conf().Cfg().Network(); }
    ConfigurableComposite* _Factory() override { return nullptr; }
    ConfigFactoryCmd* _FactoryCmd() override { return nullptr; }
    ConfigurableBool* _RebootCmd() override { return &_doc.Conf().Cmd().Reboot(); }
    std::string _Headers() override;
    void _SendData(double time) override;
    void _SendStatus(double time) override;
    void _Restart() override;

    void _SendTest(double time);
    /// Acts on the zero and span commands of a message.
    void _Calibrate();
    /// Appends a record of every coefficient, as they now are, to the history.
    void _AddHistoryRecord(const std::string& type);
    int64_t _Diagnostics() const;

    DocDravik _doc;
    bool _irga_off = false;
    bool _power_off = false;
    int64_t _test_count = 0;
};
