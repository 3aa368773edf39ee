#pragma once
// The document of an Ostrel link, a customer profile of the connection types. It holds a single
// value: <arvex><ost><flow>0</flow></ost></arvex>.

#include <ostream>
#include <string>

#include "libskarn/configcommon.h"
#include "libskarn/document.h"

/// The model node, tag "ost". Unlike the other models it has no identity nodes, no ack and no error.
class ConfigOstrel : public ConfigurableComposite {
public:
    ConfigOstrel();

    /// A fraction from 0 to 1.
    ConfigurableFloat& Flow() { return _flow; }
    /// One-shot commands. The model keeps the object but never adds it: a `cmd` on the wire is
    /// skipped, and only the reset before each message touches it.
    ConfigCmdReboot& Cmd() { return _cmd; }

    /// Sets the commands back to false.
    void ResetCommands() { _cmd.set_to_default(); }

private:
    ConfigurableFloat _flow{"flow", 0, 0, 1, false};
    ConfigCmdReboot _cmd;
};

/// The Ostrel document, root `arvex`. It has no ack and no error node to print.
class DocOstrel : public ListenedDocument<ConfigOstrel> {
public:
    void Ack(std::ostream&) const = delete;
    void Error(std::ostream&, const std::string&) = delete;
};
