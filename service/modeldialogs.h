#pragma once
// The configuration, factory and output dialogs of the Quenta, Dravik, Halden and Bremmel: generic
// dialogs over a section of the model's document, labelled by the label map of that model.
// "Configuration: ", "Factory Settings: " or "Output: " and the instrument's name make the title.

#include <string>

#include "service/genericconfigdialog.h"

class DocBremmel;
class DocDravik;
class DocHalden;
class DocQuenta;

/// The `cfg` section of a Quenta.
class ConfigQuentaDialog : public GenericConfigDialog {
public:
    ConfigQuentaDialog(QWidget* parent, const std::string& name, DocQuenta& doc);
};

/// The `factory` section of a Quenta.
class FactoryQuentaDialog : public GenericConfigDialog {
public:
    FactoryQuentaDialog(QWidget* parent, const std::string& name, DocQuenta& doc);
};

/// The `cfg` section of a Dravik.
class ConfigDravikDialog : public GenericConfigDialog {
public:
    ConfigDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc);
};

/// The `factory` section of a Dravik.
class FactoryDravikDialog : public GenericConfigDialog {
public:
    FactoryDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc);
};

/// The `output` section of a Dravik: rate and averaging time; the record switches stay hidden.
class OutputDravikDialog : public GenericConfigDialog {
public:
    OutputDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc);
};

/// The `cfg` section of a Halden.
class ConfigHaldenDialog : public GenericConfigDialog {
public:
    ConfigHaldenDialog(QWidget* parent, const std::string& name, DocHalden& doc);
};

/// The `factory` section of a Halden, with the light test buttons.
class FactoryHaldenDialog : public GenericConfigDialog {
public:
    FactoryHaldenDialog(QWidget* parent, const std::string& name, DocHalden& doc);
};

/// The `cfg` section of a Bremmel.
class ConfigBremmelDialog : public GenericConfigDialog {
public:
    ConfigBremmelDialog(QWidget* parent, const std::string& name, DocBremmel& doc);
};

/// The `factory` section of a Bremmel.
class FactoryBremmelDialog : public GenericConfigDialog {
public:
    FactoryBremmelDialog(QWidget* parent, const std::string& name, DocBremmel& doc);
};
