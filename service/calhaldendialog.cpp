#include "service/calhaldendialog.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include "libskarn/dochalden.h"
#include "service/calhistory.h"
#include "service/commands.h"
#include "service/leaftext.h"

std::vector<QStringList> CalHaldenHistoryRows(ConfigCalHistoryHalden& history)
{
    std::vector<QStringList> rows;
    for (Configurable* child : history.children()) {
        auto* record = dynamic_cast<ConfigCalRecordHalden*>(child);
        if (!record)
            continue;
        rows.push_back({StreamText(record->Time().get()), QString::fromStdString(record->Type().get()),
                        QString::number(record->DC0().get(), 10), QString::number(record->Pc0().get(), 10)});
    }
    return rows;
}

CalHaldenDialog::CalHaldenDialog(QWidget* parent, const std::string& name, DocHalden* doc, bool standalone)
    : CalPanel(parent, name, standalone,
               "This will keep the latest and erase old calibration history records. OK to clear?"),
      _doc(doc)
{
    auto* groups = new QHBoxLayout;
    auto group = [this, groups](const char* title, QLabel* label, void (CalHaldenDialog::*slot)()) {
        auto* box = new QGroupBox(title);
        auto* layout = new QVBoxLayout(box);
        layout->addWidget(label);
        auto* row = new QHBoxLayout;
        auto* zero = new QPushButton("Zero");
        row->addWidget(zero);
        row->addStretch();
        layout->addLayout(row);
        groups->addWidget(box);
        connect(zero, &QPushButton::clicked, this, slot);
    };
    _dc0 = new QLabel("DC0:");
    _pc0 = new QLabel("Pc0:");
    group("DC0", _dc0, &CalHaldenDialog::OnDCZeroClicked);
    group("Pc0", _pc0, &CalHaldenDialog::OnPcZeroClicked);

    auto* undo = _Placeholder("Undo");
    auto* redo = _Placeholder("Redo");
    connect(undo, &QPushButton::clicked, this, &CalHaldenDialog::OnUndoClicked);
    connect(redo, &QPushButton::clicked, this, &CalHaldenDialog::OnRedoClicked);
    _Lay(groups, {"Timestamp", "Type", "DC Zero", "Pc Zero"}, 10, undo, redo);

    _UpdateFromXML();
    resize(500, sizeHint().height());
}

void CalHaldenDialog::OnDCZeroClicked()
{
    emit SendRawXML(CommandLine("halden", "zero_dc0"));
}

void CalHaldenDialog::OnPcZeroClicked()
{
    emit SendRawXML(CommandLine("halden", "zero_pc0"));
}

void CalHaldenDialog::OnUndoClicked() {}
void CalHaldenDialog::OnRedoClicked() {}

void CalHaldenDialog::_ClearOldRecords()
{
    _doc->Conf().History().ClearOldRecords();
}

void CalHaldenDialog::_UpdateFromXML()
{
    ConfigCalHalden& cal = _doc->Conf().Cal();
    _dc0->setText("Zero: " + QString::number(cal.DC0().get(), 10));
    _pc0->setText("Zero: " + QString::number(cal.Pc0().get(), 10));
    _history->SetRows(CalHaldenHistoryRows(_doc->Conf().History()));
}
