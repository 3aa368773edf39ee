#pragma once
// Which face the program shows, decided from its command line.

#include <string>
#include <vector>

#include "link/namedinstrument.h"

/// The outcome of reading the command line.
struct CommandLine {
    enum Mode {
        MAIN,        ///< the instrument list
        CAL_BROWSE,  ///< the calibration panel, waiting for its instrument to be announced
        CAL_DIAL,    ///< the calibration panel, dialling `address` on `port` at once
    };

    Mode mode = MAIN;
    std::string name;     ///< the instrument's service name; set in both calibration modes
    std::string address;  ///< set only in CAL_DIAL
    int port = 0;         ///< set only in CAL_DIAL; never 0 there, not yet cut to 16 bits

    /// MAIN only: the instruments named by "--instrument NAME=MODEL@ADDRESS[:PORT]", in order.
    std::vector<NamedInstrument> instruments;
    /// MAIN only: the layout file named by "--layout FILE" (the last one given), or empty.
    std::string layout;
    /// MAIN only: one line for each "--instrument" or "--layout" that could not be read.
    std::vector<std::string> errors;
    /// MAIN only: "--status" opens the station status window beside the list.
    bool status = false;
};

/// Reads the arguments as QApplication leaves them, program name first: `cal NAME [ADDRESS PORT]`.
/// Anything else, "cal" alone or an empty NAME gives MAIN. An unreadable or zero PORT or an empty
/// ADDRESS gives CAL_BROWSE without a word; a single argument after NAME and any behind PORT are
/// ignored. PORT is read like `stream >> int`: leading blanks skipped, trailing text ignored.
/// In MAIN, whose arguments are otherwise ignored, each "--instrument ENTRY" names an instrument,
/// "--layout FILE" a layout to open at start, and "--status" asks for the station status window.
CommandLine ParseCommandLine(const std::vector<std::string>& args);
