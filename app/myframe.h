#pragma once
// The main panel: the instruments found on the network, what the selected one announced, and
// the buttons that open windows on it or run the description file's commands.

#include <QPushButton>
#include <QWidget>

#include <map>
#include <string>
#include <vector>

#include "link/configdoc.h"
#include "app/instinfo.h"
#include "link/namedinstrument.h"
#include "discovery/bonjourclient.h"
#include "watch/windowlayout.h"

class QDialog;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

/// A button of the panel's column that knows its place in the description file's list.
class MyPushButton : public QPushButton {
    Q_OBJECT
public:
    MyPushButton(const QString& text, unsigned index, const std::string& service, QWidget* parent);

    unsigned Index() const { return _index; }
    /// The type words the button applies to; empty for every instrument.
    const std::string& Service() const { return _service; }

signals:
    /// Emitted on every click, with the index.
    void clicked(unsigned index);

private slots:
    void OnClicked(bool checked);

private:
    unsigned _index;
    std::string _service;
};

/// The central widget of the main window and the discovery client's listener. At construction
/// it reads the description file (application directory, application name, ".xml"; its replies go
/// to standard output), builds the button column from it, browses for its service types and adds
/// the "Other..." row, which reaches an instrument by address, and lists the instruments named by
/// hand. Discovery failures are printed to standard output as "ERROR: " lines; the panel shows
/// none.
class MyFrame : public QWidget, public BonjourClientListener {
    Q_OBJECT
public:
    using InstInfo = ::InstInfo;

    /// Caption and service of one button of the description file.
    struct ButtonMarkup {
        std::string caption;
        std::string service;
    };

    /// The watch and configuration windows that the panel opens on an instrument.
    enum class InstrumentWindow { WatchTolvan, WatchQuenta, WatchDravik, WatchHalden, WatchBremmel, ConfigMorvik };

    /// What a window is opened on.
    struct WindowRequest {
        InstrumentWindow window;
        std::string name;     ///< the instrument's name, or the address typed under "Other..."
        std::string type;     ///< the type word
        std::string address;  ///< empty when the instrument has none
        int scope;
        int port;
        /// Opened from the list: a watch window takes its connector off any other address first.
        bool from_list;

        bool operator==(const WindowRequest& other) const;
    };

    /// Where "Other..." goes for a typed text "ADDRESS[:PORT]".
    struct OtherTarget {
        std::string address;
        int port;
        InstrumentWindow window;
        std::string type;
    };

    /// `title` is not used: the window's title comes from the description file. `program_path`
    /// (argument 0) gives the program directory (the installed files' directory when the
    /// description file is the installed one), and a path with "update" in it, case not
    /// counting, blanks the fourth column's header. The description file's instruments and then
    /// `instruments` join the list; a malformed file entry is reported on standard error.
    MyFrame(QWidget* parent, const std::string& title, const std::string& program_path,
            const std::vector<NamedInstrument>& instruments = {});

    /// The description file's path: application directory, separator, application name, ".xml";
    /// when there is none there, the installed one (app/datafiles.h).
    static std::string DescriptionFilePath();

    /// "Other..." text split at its first ":": no ":" or a port that is not a number from 1 to
    /// 65535 gives port 4410. The port picks the window: 50111 Bremmel, 4430 Halden, 4440 Dravik,
    /// 4450 Quenta, 4420 the Morvik configuration, any other the Tolvan watch.
    static OtherTarget ParseOtherTarget(const std::string& text);

    // BonjourClientListener
    /// Adds the address to the entry of that name (case counts), or makes a new entry with the
    /// type word (the first of tolvan, morvik, sarnel, quenta, dravik, halden, bremmel, other in
    /// `type`, else "unknown"); then rebuilds the list.
    void AddService(std::string name, std::string type, std::string domain, unsigned interface_index,
                    std::string host, const SocketAddress& address,
                    const std::map<std::string, std::string>& txt) override;
    /// Takes out the first entry of that name, whatever the type; rebuilds the list.
    void RemoveService(std::string name, std::string type, std::string domain) override;
    /// Prints "ERROR: " and the message on standard output; never asks for an exception.
    bool ServiceError(std::string message) override;

    /// Browses for each service type of the description file, in order.
    void Browse();
    /// Adds the "Other..." row: 127.0.0.1 port 4410, type "_arvex-other._tcp".
    void AddOtherHost();
    /// Adds an instrument named by hand through AddService, as its model would announce itself;
    /// its host is the address.
    void AddNamedInstrument(const NamedInstrument& instrument);
    /// Caption and service of each button of the description file, defines applied.
    void GetButtonList(std::vector<ButtonMarkup>& buttons) const;
    /// Rebuilds the tree from the list: the selection is lost, the buttons are reset and the
    /// information is cleared.
    void InfoChanged();
    /// The entry of the first selected row, or null.
    const InstInfo* _GetSelectedInstInfo() const;
    /// Connections prefer an IPv6 link-local address.
    static bool _UseIPV6() { return true; }
    /// Runs the commands of button `index` for `info` in an ExternalDialog, with the file's
    /// defines and, where the file does not define them, "ip", "ipv4", "name", "host",
    /// "program_dir" and one define per TXT entry.
    void ExecuteExternalCommand(unsigned index, const InstInfo& info);

    /// The open watch windows in the order they were opened, with their charts.
    WindowLayout CurrentLayout() const;
    /// Opens a watch window for each of the layout's, as the list opens one, at its place, and
    /// then their charts. An instrument that cannot be reached still gets its window.
    void OpenLayout(const WindowLayout& layout);
    /// The watch window for a type word: Quenta, Dravik, Halden and Bremmel their own, any other
    /// the Tolvan's.
    static InstrumentWindow WatchWindowFor(const std::string& type);

    /// The instruments in list order.
    const std::vector<InstInfo>& Instruments() const { return _instruments; }

public slots:
    /// Rebuilds the list, as after an announcement.
    void OnRefresh();
    void OnSelectionChanged();
    /// Opens the window that the row's type word calls for, or asks for an "Other..." address.
    void OnItemDoubleClicked(QTreeWidgetItem* item, int column);
    /// Adds and removes a pretend Tolvan "ch4-testhost" at 127.0.0.1 port 4420.
    void OnAddTestHost();
    void OnRemoveTestHost();
    void OnWatchTolvanButtonClicked();
    void OnWatchQuentaButtonClicked();
    void OnWatchDravikButtonClicked();
    void OnWatchHaldenButtonClicked();
    void OnWatchBremmelButtonClicked();
    void OnConfigMorvikButtonClicked();
    /// Asks for an address ("ADDRESS[:PORT]", see ParseOtherTarget) and opens a window on it.
    void OnOtherButtonClicked();
    /// Runs the commands of button `index` for the selected instrument.
    void OnButtonClicked(unsigned index);

protected:
    /// The one way to a watch or configuration window: makes it, joins a watch window's log state
    /// to the list's log column, shows it and dials. A watch window opened from the list first
    /// takes its connector off any other address; the Morvik configuration only dials. Gives the
    /// window.
    virtual QDialog* OpenInstrumentWindow(const WindowRequest& request);

private:
    /// Dials the selected instrument in `window`.
    void _OpenSelected(InstrumentWindow window);

    ConfigDoc _doc;
    std::string _program_dir;
    QTreeWidget* _tree;
    QLabel* _info;
    std::vector<MyPushButton*> _buttons;
    QString _last_address;
    std::vector<InstInfo> _instruments;
    // Last: its requests end before the rest of the panel goes.
    BonjourClient _client;
};
