#pragma once
// A document seen from the command line: nodes named by paths, the messages that set values, the
// instrument's refusals, and the backup of its settings.

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

class Configurable;

/// What is wrong with a path, a value or a backup file; the text says it to the user.
class SettingsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The model node of a document: "tolvan" in <arvex><tolvan>...</tolvan></arvex>.
Configurable& ModelOf(Configurable& doc);

/// The node at `path` below the model node, such as "cfg/clock/zone"; "" is the model node itself.
/// Throws SettingsError for a path that names no node of the document.
Configurable& NodeAt(Configurable& doc, const std::string& path);

/// The path of `node` below the model node.
std::string PathOf(const Configurable& node);

/// A leaf's value as the instrument writes it.
std::string TextOf(const Configurable& leaf);

/// The message that sets each leaf of `values` (path, text) to its text, in one line with its line
/// feed: <arvex><tolvan><cfg><temprange>low</temprange></cfg></tolvan></arvex>. The texts go out as
/// given, for the instrument to judge. Throws SettingsError for a path that names no leaf.
std::string SetMessage(Configurable& doc, const std::vector<std::pair<std::string, std::string>>& values);

/// The instrument's refusals in one reply line: "temprange: invalid option: bogus" for each
/// <Error Param="temprange">invalid option: bogus</Error>.
std::vector<std::string> Refusals(const std::string& line);

/// While it lives, the document shows only the settings that a backup carries: what the user sets
/// and the instrument keeps. Versions, names and addresses that the instrument reports, read-only
/// views, commands, calibration results and their history, lists, factory values and the clock's
/// running time and date are disabled, so that writing skips them and reading ignores them.
class SettingsOnly {
public:
    explicit SettingsOnly(Configurable& doc);
    ~SettingsOnly();
    SettingsOnly(const SettingsOnly&) = delete;
    SettingsOnly& operator=(const SettingsOnly&) = delete;

private:
    std::vector<Configurable*> _hidden;
};

/// A node in its full path as indented XML, one element a line, as "&query;" answers it.
std::string DocumentText(const Configurable& node);

/// The backup of a document's settings: XML that names the model by its tag, one element a line.
std::string BackupText(Configurable& doc);

/// One setting that a restore changes.
struct Change {
    std::string path, from, to;
};

/// Reads a backup into the document, which holds the instrument's present values: afterwards
/// exactly the settings that differ are marked changed, and are returned in document order.
/// Throws SettingsError, with the document's values then undefined, for a file that is not a
/// backup of the document's model or holds a value the document refuses.
std::vector<Change> ApplyBackup(Configurable& doc, const std::string& text);

/// The model tag of a backup: "tolvan" for <arvex><tolvan>...</tolvan></arvex>. Throws
/// SettingsError for text that is not one well-formed document of that shape.
std::string BackupModel(const std::string& text);
