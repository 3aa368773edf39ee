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
    /// MAIN only: one line for each option that could not be read, with what is wrong.
    std::vector<std::string> errors;

    // The options as given, one field per option of the table in commandline.cpp.
    std::vector<std::string> instrument_entries;  ///< "--instrument", repeatable
    std::string layout;  ///< "--layout FILE", the last one given, or empty; opened at start in MAIN
    bool status = false;  ///< "--status": in MAIN, the station status window opens beside the list
};

/// Reads the arguments as QApplication leaves them, program name first: `cal NAME [ADDRESS PORT]`.
/// Anything else, "cal" alone or an empty NAME gives MAIN. An unreadable or zero PORT or an empty
/// ADDRESS gives CAL_BROWSE without a word; a single argument after NAME and any behind PORT are
/// ignored. PORT is read like `stream >> int`: leading blanks skipped, trailing text ignored.
/// The options ("--instrument ENTRY" and the rest of the table) are read by QCommandLineParser
/// wherever they stand; one it does not know is ignored, and a value missing behind the last
/// argument is an error. In MAIN, each "--instrument ENTRY" names an instrument.
CommandLine ParseCommandLine(const std::vector<std::string>& args);

/// "--help", "--help-all" and "--version": prints the answer on standard output and ends the
/// process with status 0, as Qt programs do, without needing a display. The help names the
/// description file the program reads. Returns when none of them is given. `version` is the
/// program's version.
void AnswerHelpOrVersion(int argc, char* argv[], const char* version);
