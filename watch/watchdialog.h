#pragma once
// What every watch window has: the live table of an instrument's records in pairs of columns,
// charts by double click or drag from it, the log switch, and the link's Connect/Disconnect.

#include <QPoint>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "link/connector.h"
#include "service/servicedialog.h"
#include "watch/windowlayout.h"

class MyTableWidget;
class QMouseEvent;
class QPushButton;

/// The base of the watch windows. The table's columns come in pairs, a name column filled from a
/// header record ("DATAH", labelled "DATA") and a value column filled from its data record
/// ("DATA", unlabelled); row r of a pair is the r-th field of the record, in the instrument's
/// order. A cell's variable is host:record:field of the pair's value column: a double click on
/// either cell of a pair charts it in a PlotDialog, and pressing and moving the mouse by three
/// drag distances drags its text to any chart.
///
/// The window deletes itself on closing and leaves its instrument connected: the Connector lives
/// on in the registry and in every other window on the instrument, with its log file.
class WatchDialog : public ServiceDialog, public Connector::Listener {
    Q_OBJECT
public:
    ~WatchDialog() override;

    /// Dials the instrument; the title shows the address.
    void Connect(const std::string& address, int scope, int port);
    /// Leaves the instrument; the title says so and the table keeps its last values.
    void Disconnect();
    /// The connector this window shares with every other window on the instrument.
    Connector& GetConnector() const { return *_connector; }

    /// The window in a layout: the instrument's name and type word, the target its connector was
    /// last dialled on, the window's place, and its charts that are open.
    WatchLayout Layout() const;

    /// Sets the text of a cell. A missing cell is made, not editable, and the table grows to hold it.
    void SetItem(int row, int column, const QString& text);
    /// Empties the text of a cell; a missing cell stays missing.
    void ClrItem(int row, int column);
    /// Fills the column from row 0 and empties every row below: rows are never removed, so a
    /// record that shortens leaves blanks.
    void _UpdateColumn(int column, const std::vector<std::string>& strings);
    /// The variable of a cell as host:record:field text; empty when the cell is outside its
    /// pair's header.
    std::string GetVarString(int row, int column) const;

    /// A header of one of the table's records refills its name column; others are ignored.
    void GotConnectorHeader(Connector& connector, std::string record) override;

signals:
    /// The connector started or stopped logging to a file.
    void LogStatusChanged();

public slots:
    void OnCellDoubleClicked(int row, int column);
    void OnCellPressed(int row, int column);
    void OnCellMouseMoved(QMouseEvent* event);
    /// Stops logging, or asks for a file and starts; the button names what a press will do.
    virtual void OnLogClicked();

protected:
    /// `model` is the window's word in titles ("Tolvan": "Watching Tolvan: ", "Tolvan Data");
    /// `records` are the table's record names in column order, header first in each pair.
    WatchDialog(QWidget* parent, const std::string& name, const std::string& type, const QString& model,
                std::vector<std::string> records);

    /// Sets the column count and the labels from the record names.
    void _UpdateColumnHeader();
    /// Refills every value column from the connector's latest texts, with one repaint.
    void _UpdateValueColumns();
    /// Runs `fill` (_UpdateColumn as often as it takes) with the table's repaints held: the table
    /// paints once for the whole change.
    void _Refresh(const std::function<void()>& fill);
    /// "Watching Tolvan: " and the rest.
    void _SetTitle(const std::string& rest);

    std::shared_ptr<Connector> _connector;
    std::vector<std::string> _names;
    MyTableWidget* _table;
    QPushButton* _log_button;

private:
    QString _model;
    std::string _type;       ///< the type word the window was opened with
    QPoint _press_position;  ///< of the last press in the table, on the screen
    QString _drag_text;      ///< the variable of that press
};
