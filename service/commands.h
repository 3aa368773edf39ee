#pragma once
// The one-line messages that the service dialogs send as they stand. Texts that the user typed
// go out exactly as typed: the instrument judges them.

#include <string>

/// A command: "<arvex><model><cmd><command>true</command></cmd></model></arvex>\n".
std::string CommandLine(const std::string& model, const std::string& command);

/// A command of the factory section:
/// "<arvex><model><factory><cmd><command>true</command></cmd></factory></model></arvex>\n".
std::string FactoryCommandLine(const std::string& model, const std::string& command);

/// A setting of the `cal` section, and when `command` is given that command after it in the same
/// message, so that the instrument has the value before it acts:
/// "<arvex><model><cal><setting>text</setting></cal><cmd><command>true</command></cmd></model></arvex>\n".
std::string CalLine(const std::string& model, const std::string& setting, const std::string& text,
                    const std::string& command = "");

/// Span `n` (1 or 2) of a Dravik's channel `channel` ("co2a", "co2b", "h2oa", "h2ob"), its span
/// gas `gas` (`co2aspanconc1`, ...) ahead of the command (`co2aspan1`, ...).
std::string DravikSpanLine(const std::string& channel, int n, const std::string& gas);

/// The reboot of an instrument whose connector type is `type`; a Sarnel is addressed as "morvik".
std::string RebootLine(const std::string& type);
