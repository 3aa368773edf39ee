#pragma once
// The simulated Ostrel link.

#include <string>
#include <vector>

#include "libskarn/docostrel.h"
#include "sim/sim_instrument.h"

/// An Ostrel. Its document is one fraction, `flow`; it has no name, clock, network or commands.
/// At its rate (1 per second unless told otherwise) it sends DATA, its time in the first field,
/// with the flow that it measures and the flow it is set to.
class SimOstrel : public SimInstrument {
public:
    SimOstrel();

    int DefaultPort() const override { return 4460; }

private:
    Configurable& _Doc() override { return _doc; }
    void _Apply(std::istream& in, std::ostream& out) override { _doc.configure_and_send_events(in, out); }
    std::vector<ConfigurableComposite*> _Commands() override { return {}; }
    ConfigModel* _Model() override { return nullptr; }
    ConfigCfgClock* _Clock() override { return nullptr; }
    ConfigCfgNetwork* _Network() override { return nullptr; }
    ConfigurableComposite* _Factory() override { return nullptr; }
    ConfigFactoryCmd* _FactoryCmd() override { return nullptr; }
    ConfigurableBool* _RebootCmd() override { return nullptr; }
    std::string _Headers() override;
    void _SendData(double time) override;
    void _SendStatus(double) override {}

    DocOstrel _doc;
};
