#include "service/caltolvandialog.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "libskarn/doctolvan.h"
#include "service/calhistory.h"
#include "service/commands.h"
#include "service/leaftext.h"

std::vector<QStringList> CalTolvanHistoryRows(ConfigCalHistory& history)
{
    std::vector<QStringList> rows;
    for (Configurable* child : history.children()) {
        auto* record = dynamic_cast<ConfigCalRecord*>(child);
        if (!record)
            continue;
        rows.push_back({StreamText(record->Time().get()), QString::fromStdString(record->Type().get()),
                        QString::number(record->Ch4zero().get(), 'g', 6),
                        QString::number(record->Ch4span().get(), 'g', 6)});
    }
    return rows;
}

CalTolvanDialog::CalTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc, bool standalone)
    : CalPanel(parent, name, standalone,
               "This will keep the latest and erase old calibration history records. You will still need to "
               "press 'Commit' to make the change permanent and can always undo the change with the "
               "'Rollback' button before committing. OK to clear?"),
      _doc(doc),
      _standalone(standalone)
{
    auto* group = new QGroupBox("CH4 Calibration");
    auto* group_layout = new QVBoxLayout(group);
    _last_zero = new QLabel("Last Zero:");
    group_layout->addWidget(_last_zero);
    auto* zero_row = new QHBoxLayout;
    auto* zero = new QPushButton("Zero");
    zero_row->addWidget(zero);
    zero_row->addStretch();
    group_layout->addLayout(zero_row);
    _last_span = new QLabel("Last Span:");
    group_layout->addWidget(_last_span);
    auto* span_row = new QHBoxLayout;
    auto* span = new QPushButton("Span");
    _span_gas = new QLineEdit("2.0");
    span_row->addWidget(span);
    span_row->addWidget(_span_gas);
    span_row->addWidget(new QLabel("ppm"));
    span_row->addStretch();
    group_layout->addLayout(span_row);
    auto* group_row = new QHBoxLayout;
    group_row->addWidget(group);
    group_row->addStretch();

    auto* commit = new QPushButton("Commit");
    auto* rollback = new QPushButton("Rollback");
    _Lay(group_row, {"Timestamp", "Type", "CH4 Zero", "CH4 Span"}, 0, commit, rollback);

    connect(zero, &QPushButton::clicked, this, &CalTolvanDialog::OnCH4ZeroClicked);
    connect(span, &QPushButton::clicked, this, &CalTolvanDialog::OnCH4SpanClicked);
    connect(commit, &QPushButton::clicked, this, &CalTolvanDialog::OnCommitClicked);
    connect(rollback, &QPushButton::clicked, this, &CalTolvanDialog::OnRollbackClicked);

    _UpdateFromXML();
    resize(600, sizeHint().height());
}

void CalTolvanDialog::OnCH4ZeroClicked()
{
    emit SendRawXML(CommandLine("tolvan", "ch4zero"));
}

void CalTolvanDialog::OnCH4SpanClicked()
{
    emit SendRawXML(CalLine("tolvan", "ch4spanconc", _span_gas->text().toStdString(), "ch4span"));
}

void CalTolvanDialog::OnCommitClicked()
{
    emit SendRawXML(CommandLine("tolvan", "calcommit"));
}

void CalTolvanDialog::OnRollbackClicked()
{
    emit SendRawXML(CommandLine("tolvan", "calrollback"));
}

void CalTolvanDialog::_ClearOldRecords()
{
    _doc->Conf().Cal().ClearOldHistoryRecords();
}

void CalTolvanDialog::reject()
{
    if (_standalone)
        emit OnCloseClicked();
    else
        ServiceDialog::reject();
}

void CalTolvanDialog::_UpdateFromXML()
{
    ConfigCal& cal = _doc->Conf().Cal();
    _last_zero->setText("Last Zero: " + StreamText(cal.Ch4zero().get()) + "; " + StreamText(cal.Ch4lastzero().get()));
    _last_span->setText("Last Span: " + StreamText(cal.Ch4span().get()) + "; " + StreamText(cal.Ch4lastspan().get()));
    _history->SetRows(CalTolvanHistoryRows(cal.History()));
    _span_gas->setText(QString::number(cal.Ch4spanconc().get(), 'f', 1));
}
