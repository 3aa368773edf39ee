#include "service/factorydialog.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

#include "libskarn/docmorvik.h"
#include "libskarn/doctolvan.h"
#include "service/commands.h"
#include "service/leaftext.h"

FactoryDialog::FactoryDialog(QWidget* parent, const std::string& name, const std::string& type,
                             const std::vector<Field>& fields)
    : ServiceDialog(parent), _type(type)
{
    setWindowTitle(QString::fromStdString("Factory Settings: " + name));
    auto* form = new QFormLayout;
    for (const auto& [label, leaf] : fields) {
        auto* edit = new QLineEdit;
        form->addRow(label, edit);
        _fields.emplace_back(edit, leaf);
        connect(edit, &QLineEdit::returnPressed, this, &FactoryDialog::OnReturnPressed);
    }

    auto* commit = new QPushButton("Commit");
    auto* rollback = new QPushButton("Rollback");

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(_ButtonRow({commit, rollback, nullptr, _CloseButton()}));

    connect(commit, &QPushButton::clicked, this, &FactoryDialog::OnCommitClicked);
    connect(rollback, &QPushButton::clicked, this, &FactoryDialog::OnRollbackClicked);

    _UpdateFromXML();
}

void FactoryDialog::OnReturnPressed()
{
    _ApplyToXML();
}

void FactoryDialog::OnCommitClicked()
{
    _ApplyToXML();
    emit SendRawXML(FactoryCommandLine(_type, "commit"));
}

void FactoryDialog::OnRollbackClicked()
{
    _ApplyToXML();
    emit SendRawXML(FactoryCommandLine(_type, "rollback"));
}

void FactoryDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void FactoryDialog::_UpdateFromXML()
{
    for (auto& [edit, leaf] : _fields)
        edit->setText(LeafText(*leaf));
}

void FactoryDialog::_ApplyToXML()
{
    for (auto& [edit, leaf] : _fields)
        SetLeafFromText(*leaf, edit->text());
    emit SendXMLChanges();
}

FactoryTolvanDialog::FactoryTolvanDialog(QWidget* parent, const std::string& name, ConfigFactory* f)
    : FactoryDialog(parent, name, "tolvan",
                    {{"Serial Number:", &f->Serialnumber()},
                     {"Laser Start Temp:", &f->Laserstarttemp()},
                     {"Block Start Temp (0...50C):", &f->Blockstarttemp()},
                     {"Block Start Temp (-25...25C):", &f->Blockstarttemplowrange()},
                     {"Laser Mod Depth:", &f->Lasermoddepth()},
                     {"RSSI Drop Thresh:", &f->Rssidropthresh()},
                     {"P Zero:", &f->Pzero()},
                     {"P Span:", &f->Pspan()},
                     {"Sample Gain:", &f->Samplegain()},
                     {"Ref Gain:", &f->Refgain()},
                     {"Mirror Pos:", &f->Mirrorpos()},
                     {"Offset1:", &f->Offset1()},
                     {"Delta1:", &f->Delta1()},
                     {"Offset2:", &f->Offset2()},
                     {"Delta2:", &f->Delta2()},
                     {"Dither:", &f->Dither()},
                     {"Sample AC Offset:", &f->Sampleacoffset()},
                     {"Sample DC Offset:", &f->Sampledcoffset()},
                     {"Sample Optical Offset:", &f->Sampleopticaloffset()}})
{
}

FactoryMorvikDialog::FactoryMorvikDialog(QWidget* parent, const std::string& name, ConfigFactoryMorvik* factory)
    : FactoryDialog(parent, name, "morvik", {{"Serial Number:", &factory->Serialnumber()}})
{
}
