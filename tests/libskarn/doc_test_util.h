#pragma once
// Helpers shared by the document tests: sending a message, building one, reading a golden reply.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "libskarn/configcommon.h"

/// Sends one message to `node` and returns the compact reply.
inline std::string reply(Configurable& node, const std::string& message)
{
    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    node.configure(in, out);
    return out.str();
}

/// Serves one message as the instrument does (commands reset, events sent) and returns the reply.
template <class Doc>
std::string serve(Doc& doc, const std::string& message)
{
    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc.configure_and_send_events(in, out);
    return out.str();
}

/// A message to the model tagged `model`: <arvex><model>body</model></arvex>.
inline std::string envelope(const std::string& model, const std::string& body)
{
    return "<arvex><" + model + ">" + body + "</" + model + "></arvex>";
}

/// The path "cfg/flow/pump_percent" around `text`: <cfg><flow><pump_percent>text</pump_percent>...
inline std::string wrap(const std::string& path, const std::string& text)
{
    const size_t slash = path.find('/');
    const std::string tag = path.substr(0, slash);
    const std::string inner = slash == std::string::npos ? text : wrap(path.substr(slash + 1), text);
    return "<" + tag + ">" + inner + "</" + tag + ">";
}

/// A golden reply: one line; the line end at the end of the file is not part of it.
inline std::string golden(const std::string& file)
{
    std::ifstream in(std::string(SONDAR_TEST_DATA) + "/" + file);
    EXPECT_TRUE(in) << file;
    std::string line;
    std::getline(in, line);
    return line;
}

/// Puts the process-wide zone list back as it starts: another test may have left its
/// instrument's zones in it.
inline void reset_zones()
{
    ConfigTimezone zone;
    std::istringstream in("UTC");
    std::ostringstream err;
    zone.read_doctype(in, err);
}

/// A fresh document with every changed flag cleared, as after a first exchange.
template <class Doc>
struct Clean : Doc {
    Clean() { this->_set_changed(false); }
};
