#pragma once
// The factory values of a Tolvan or a Morvik, with their commit and rollback.

#include <string>

#include "service/servicedialog.h"
#include <utility>
#include <vector>

class ConfigFactory;
class ConfigFactoryMorvik;
class Configurable;
class QLineEdit;

/// A form of the factory section's leaves. Return in a field writes the form into the document
/// and sends what changed; a text that is no number of its leaf's type is left out. "Commit" and
/// "Rollback" first do the same, then ask the instrument to keep or discard its factory values.
///
/// Joints: SendXMLChanges() to Connector::OnSendXMLChanges(), SendRawXML to
/// Connector::OnSendRawXML, Connector::GotXMLChanges() to OnXMLChanged().
class FactoryDialog : public ServiceDialog {
    Q_OBJECT
public:
    /// A label and the leaf it edits, a string, integer or float of the document.
    using Field = std::pair<const char*, Configurable*>;

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    void OnReturnPressed();
    void OnCommitClicked();
    void OnRollbackClicked();
    void OnXMLChanged();

protected:
    /// `type` is the model tag of the commit and rollback messages.
    FactoryDialog(QWidget* parent, const std::string& name, const std::string& type, const std::vector<Field>& fields);

private:
    void _UpdateFromXML();
    void _ApplyToXML();

    std::string _type;
    std::vector<std::pair<QLineEdit*, Configurable*>> _fields;
};

/// The factory values of a Tolvan.
class FactoryTolvanDialog : public FactoryDialog {
    Q_OBJECT
public:
    /// `factory` is the connector's document's and outlives the dialog.
    FactoryTolvanDialog(QWidget* parent, const std::string& name, ConfigFactory* factory);
};

/// The factory values of a Morvik or Sarnel: its serial number.
class FactoryMorvikDialog : public FactoryDialog {
    Q_OBJECT
public:
    FactoryMorvikDialog(QWidget* parent, const std::string& name, ConfigFactoryMorvik* factory);
};
