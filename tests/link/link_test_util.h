#pragma once
// Helpers of the link tests: lines with good sums, and a listener that writes down what it hears.

#include <string>

#include "link/connector.h"
#include "sim/data_line.h"  // with_sum: lines with good sums

/// Writes every call as one word into a shared log: "name:Data:DATA".
class RecordingListener : public Connector::Listener {
public:
    RecordingListener(std::string name, std::string& log) : _name(std::move(name)), _log(log) {}

    void GotConnectorEvent(Connector&, std::string r, std::string e, std::string rest) override
    {
        note("Event:" + r + ":" + e + ":" + rest);
    }
    void GotConnectorHeader(Connector&, std::string r) override { note("Header:" + r); }
    void GotConnectorUnit(Connector&, std::string r) override { note("Unit:" + r); }
    void GotConnectorHeaderMatch(Connector&, std::string r) override { note("HeaderMatch:" + r); }
    void GotConnectorData(Connector&, std::string r) override { note("Data:" + r); }
    void GotConnectorDataPostUpdate(Connector&, std::string r) override { note("Post:" + r); }
    void GotConnectorTime(Connector&, std::string r, std::string t) override { note("Time:" + r + ":" + t); }
    void GotConnectorWaveform(Connector&, std::string r, std::string) override { note("Waveform:" + r); }
    void GotConnectorRawData(Connector&, std::string r, std::string) override { note("Raw:" + r); }

private:
    void note(const std::string& what) { _log += _name + ":" + what + " "; }
    std::string _name;
    std::string& _log;
};
