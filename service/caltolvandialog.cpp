#include "service/caltolvandialog.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <sstream>

#include "libskarn/doctolvan.h"
#include "service/calhistory.h"

namespace {

template <class T>
QString stream_text(const T& value)
{
    std::ostringstream out;
    out << value;
    return QString::fromStdString(out.str());
}

}  // namespace

std::vector<QStringList> CalTolvanHistoryRows(ConfigCalHistory& history)
{
    std::vector<QStringList> rows;
    for (Configurable* child : history.children()) {
        auto* record = dynamic_cast<ConfigCalRecord*>(child);
        if (!record)
            continue;
        rows.push_back({stream_text(record->Time().get()), QString::fromStdString(record->Type().get()),
                        QString::number(record->Ch4zero().get(), 'g', 6),
                        QString::number(record->Ch4span().get(), 'g', 6)});
    }
    return rows;
}

CalTolvanDialog::CalTolvanDialog(QWidget* parent, const std::string& name, DocTolvan* doc, bool standalone)
    : QDialog(parent), _doc(doc), _standalone(standalone)
{
    if (standalone) {
        setWindowFlags(Qt::WindowFlags());
        setSizeGripEnabled(true);
    }
    setWindowTitle(QString::fromStdString("Calibration Control Panel: " + name));

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

    auto* history_row = new QHBoxLayout;
    history_row->addWidget(new QLabel("History:"));
    history_row->addStretch();
    auto* clear = new QPushButton("Clear Old History...");
    history_row->addWidget(clear);

    _history = new CalHistoryTree({"Timestamp", "Type", "CH4 Zero", "CH4 Span"}, this);

    auto* button_row = new QHBoxLayout;
    auto* commit = new QPushButton("Commit");
    auto* rollback = new QPushButton("Rollback");
    auto* advanced = new QPushButton("Advanced...");
    auto* close = new QPushButton("Close");
    button_row->addWidget(commit);
    button_row->addWidget(rollback);
    button_row->addWidget(advanced);
    button_row->addStretch();
    button_row->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(group_row);
    layout->addLayout(history_row);
    layout->addWidget(_history);
    layout->addLayout(button_row);

    connect(zero, &QPushButton::clicked, this, &CalTolvanDialog::OnCH4ZeroClicked);
    connect(span, &QPushButton::clicked, this, &CalTolvanDialog::OnCH4SpanClicked);
    connect(commit, &QPushButton::clicked, this, &CalTolvanDialog::OnCommitClicked);
    connect(rollback, &QPushButton::clicked, this, &CalTolvanDialog::OnRollbackClicked);
    connect(clear, &QPushButton::clicked, this, &CalTolvanDialog::OnClearHistoryClicked);
    connect(advanced, &QPushButton::clicked, this, &CalTolvanDialog::OnAdvancedClicked);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(close, &QPushButton::clicked, this, &CalTolvanDialog::OnCloseClicked);

    _UpdateFromXML();
    resize(600, sizeHint().height());
}

void CalTolvanDialog::OnCH4ZeroClicked()
{
    emit SendRawXML("<arvex><tolvan><cmd><ch4zero>true</ch4zero></cmd></tolvan></arvex>\n");
}

void CalTolvanDialog::OnCH4SpanClicked()
{
    emit SendRawXML("<arvex><tolvan><cal><ch4spanconc>" + _span_gas->text().toStdString() +
                    "</ch4spanconc></cal><cmd><ch4span>true</ch4span></cmd></tolvan></arvex>\n");
}

void CalTolvanDialog::OnCommitClicked()
{
    emit SendRawXML("<arvex><tolvan><cmd><calcommit>true</calcommit></cmd></tolvan></arvex>\n");
}

void CalTolvanDialog::OnRollbackClicked()
{
    emit SendRawXML("<arvex><tolvan><cmd><calrollback>true</calrollback></cmd></tolvan></arvex>\n");
}

void CalTolvanDialog::OnClearHistoryClicked()
{
    if (!ConfirmClearOldHistory(this, "This will keep the latest and erase old calibration history records. You "
                                      "will still need to press 'Commit' to make the change permanent and can "
                                      "always undo the change with the 'Rollback' button before committing. OK "
                                      "to clear?"))
        return;
    _history->clear();
    _doc->Conf().Cal().ClearOldHistoryRecords();
    emit SendXMLChanges();
}

void CalTolvanDialog::OnXMLChanged()
{
    _UpdateFromXML();
}

void CalTolvanDialog::reject()
{
    if (_standalone)
        emit OnCloseClicked();
    else
        QDialog::reject();
}

void CalTolvanDialog::_UpdateFromXML()
{
    ConfigCal& cal = _doc->Conf().Cal();
    _last_zero->setText("Last Zero: " + stream_text(cal.Ch4zero().get()) + "; " + stream_text(cal.Ch4lastzero().get()));
    _last_span->setText("Last Span: " + stream_text(cal.Ch4span().get()) + "; " + stream_text(cal.Ch4lastspan().get()));
    _history->SetRows(CalTolvanHistoryRows(cal.History()));
    _span_gas->setText(QString::number(cal.Ch4spanconc().get(), 'f', 1));
}
