#include "service/modeldialogs.h"

#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docquenta.h"

namespace {

std::string config_title(const std::string& name)
{
    return "Configuration: " + name;
}

std::string factory_title(const std::string& name)
{
    return "Factory Settings: " + name;
}

const GenericConfigDialog::Labels& output_dravik_labels()
{
    static const GenericConfigDialog::Labels labels = [] {
        GenericConfigDialog::Labels map = ConfigDravik::Labels();
        for (const char* tag : {"waveforms", "status", "dataclock", "datatest", "lightsource"})
            map[tag] = ":EXCLUDE:";
        return map;
    }();
    return labels;
}

}  // namespace

ConfigQuentaDialog::ConfigQuentaDialog(QWidget* parent, const std::string& name, DocQuenta& doc)
    : GenericConfigDialog(parent, config_title(name), &doc.Conf().Cfg(), ConfigQuenta::Labels())
{
}

FactoryQuentaDialog::FactoryQuentaDialog(QWidget* parent, const std::string& name, DocQuenta& doc)
    : GenericConfigDialog(parent, factory_title(name), &doc.Conf().Factory(), ConfigQuenta::Labels())
{
}

ConfigDravikDialog::ConfigDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc)
    : GenericConfigDialog(parent, config_title(name), &doc.Conf().Cfg(), ConfigDravik::Labels())
{
}

FactoryDravikDialog::FactoryDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc)
    : GenericConfigDialog(parent, factory_title(name), &doc.Conf().Factory(), ConfigDravik::Labels())
{
}

OutputDravikDialog::OutputDravikDialog(QWidget* parent, const std::string& name, DocDravik& doc)
    : GenericConfigDialog(parent, "Output: " + name, &doc.Conf().Output(), output_dravik_labels())
{
}

ConfigHaldenDialog::ConfigHaldenDialog(QWidget* parent, const std::string& name, DocHalden& doc)
    : GenericConfigDialog(parent, config_title(name), &doc.Conf().Cfg(), ConfigHalden::Labels())
{
}

FactoryHaldenDialog::FactoryHaldenDialog(QWidget* parent, const std::string& name, DocHalden& doc)
    : GenericConfigDialog(parent, factory_title(name), &doc.Conf().Factory(), ConfigHalden::FactoryLabels())
{
}

ConfigBremmelDialog::ConfigBremmelDialog(QWidget* parent, const std::string& name, DocBremmel& doc)
    : GenericConfigDialog(parent, config_title(name), &doc.Conf().Cfg(), ConfigBremmel::Labels())
{
}

FactoryBremmelDialog::FactoryBremmelDialog(QWidget* parent, const std::string& name, DocBremmel& doc)
    : GenericConfigDialog(parent, factory_title(name), &doc.Conf().Factory(), ConfigBremmel::Labels())
{
}
