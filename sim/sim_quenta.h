#pragma once
// The simulated Quenta, the gas console that feeds a Dravik head.

#include <string>
#include <vector>

#include "libskarn/docquenta.h"
#include "sim/sim_instrument.h"

/// A Quenta. It sends DATA, its time in the first field, at its rate (1 per second unless told
/// otherwise): the drives of pump, valves and injector as `cfg` sets them. Once a second it sends
/// DATASTAT, DATATEST, DATALT and DATACLOCK as `output` says. The light source commands are told
/// by events and show in the DIAG word.
class SimQuenta : public SimInstrument {
public:
    explicit SimQuenta(const std::string& name);

    int DefaultPort() const override { return 4450; }

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

    DocQuenta _doc;
    int64_t _test_count = 0;
};
