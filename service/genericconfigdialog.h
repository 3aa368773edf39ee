#pragma once
// An editor for any document, made from the tree itself: a list of pages on the left, and for
// each page a form with one row per leaf.
//
// The first page, "General", holds the leaves directly under the node given; every composite
// below it, at any depth, is a page of its own named by its path ("cfg/network"), in sorted path
// order. The label table maps a tag or a page path to the text shown, and two special values:
//
//     {"network", "Network"}          page or row label
//     {"clock", ":EXCLUDE:"}          hides a page (its leaves are shown nowhere) or a bool row
//     {"redmodon", ":BTN:Red Mod On:<arvex>...</arvex>\n"}
//                                     a button under the pages: ButtonClicked("Red Mod On"), and
//                                     SendRawXML of the text after the label, when there is one
//
// Editors: a combo box for a choice, a check box for a bool, a line edit for the rest (numbers
// right aligned, with a validator for the leaf's limits; integers cut to 32 bits); time and
// date leaves and read-only proxies get no row. A "units" attribute gives a third column.
//
// The dialog edits only the local document: Apply and OK copy the form into the leaves and emit
// SendXMLChanges(); leaves that keep their value stay unmarked, so nothing is sent for them.
// Pages and rows are fixed at construction; the nodes shown must outlive the dialog.

#include <map>
#include <memory>
#include <string>

#include "service/servicedialog.h"

class Configurable;
class QListWidget;
class QStackedLayout;

class GenericConfigDialog : public ServiceDialog {
    Q_OBJECT

public:
    using Labels = std::map<std::string, std::string>;

    GenericConfigDialog(QWidget* parent, const std::string& title, Configurable* document, Labels labels);
    ~GenericConfigDialog() override;

    /// Document to form; edits not applied are lost.
    void _UpdateFromXML();
    /// Form to document, then SendXMLChanges().
    void _ApplyToXML();

    /// The page list, "General" first (for callers that want to look at the pages).
    QListWidget* Pages() const { return _pages; }

    struct WidgetTables;

signals:
    /// A custom button was pressed; the argument is its label.
    void ButtonClicked(std::string label);
    /// The document holds changes made here, to be sent.
    void SendXMLChanges();
    /// A custom button's message, to be sent as it stands.
    void SendRawXML(std::string message);

public slots:
    void OnRefresh();
    void OnApply();
    void OnOk();
    void OnCancel();
    void OnCustomButtonPressed(QString label);
    void OnCustomButtonXMLPressed(QString message);
    /// The link has new values: the form shows them.
    void OnXMLChanged();
    /// Closing without OK (Cancel, Escape, the window's close box) drops the edits not applied.
    void reject() override;

private:
    void _AddPage(const QString& name, Configurable& node);

    Configurable* _document;
    const Labels _labels;
    std::unique_ptr<WidgetTables> _widgets;
    QListWidget* _pages;
    QStackedLayout* _stack;
};
