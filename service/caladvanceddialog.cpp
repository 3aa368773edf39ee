#include "service/caladvanceddialog.h"

#include <QBoxLayout>
#include <QDateTimeEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "libskarn/doctolvan.h"
#include "service/leaftext.h"

namespace {

QDateTimeEdit* date_time_edit()
{
    return StampEdit("yyyy-MM-dd hh:mm:ss");
}

// An editor left as it was drawn leaves the stamp as it is, fraction of a second and all.
void apply_stamp(const QDateTimeEdit* edit, ConfigurableTimestamp& stamp)
{
    if (edit->dateTime() != DateTimeOf(stamp.get()))
        stamp.set(TimestampOf(edit->dateTime()));
}

}  // namespace

CalAdvancedDialog::CalAdvancedDialog(QWidget* parent, const std::string& name, DocTolvan* doc)
    : CalEditor(parent, name), _doc(doc)
{
    _zero = new QLineEdit;
    _zero_time = date_time_edit();
    _span = new QLineEdit;
    _span_gas = new QLineEdit;
    _span_time = date_time_edit();
    auto* zero_now = new QPushButton("Now");
    auto* span_now = new QPushButton("Now");

    auto* group = new QGroupBox("CH4 Calibration");
    auto* grid = new QGridLayout(group);
    grid->addWidget(new QLabel("Zero:"), 0, 0);
    grid->addWidget(_zero, 0, 1);
    grid->addWidget(new QLabel("Zero Time:"), 1, 0);
    grid->addWidget(_zero_time, 1, 1);
    grid->addWidget(zero_now, 1, 2);
    grid->addWidget(new QLabel("Span:"), 2, 0);
    grid->addWidget(_span, 2, 1);
    grid->addWidget(new QLabel("Span Gas:"), 3, 0);
    grid->addWidget(_span_gas, 3, 1);
    grid->addWidget(new QLabel("ppm"), 3, 2);
    grid->addWidget(new QLabel("Span Time:"), 4, 0);
    grid->addWidget(_span_time, 4, 1);
    grid->addWidget(span_now, 4, 2);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addLayout(_Foot());

    connect(zero_now, &QPushButton::clicked, this, &CalAdvancedDialog::OnCH4ZeroNow);
    connect(span_now, &QPushButton::clicked, this, &CalAdvancedDialog::OnCH4SpanNow);

    _UpdateFromXML();
}

void CalAdvancedDialog::OnCH4ZeroNow()
{
    _zero_time->setDateTime(QDateTime::currentDateTimeUtc());
}

void CalAdvancedDialog::OnCH4SpanNow()
{
    _span_time->setDateTime(QDateTime::currentDateTimeUtc());
}

void CalAdvancedDialog::_UpdateFromXML()
{
    ConfigCal& cal = _doc->Conf().Cal();
    _zero->setText(LeafText(cal.Ch4zero()));
    _span->setText(LeafText(cal.Ch4span()));
    _span_gas->setText(LeafText(cal.Ch4spanconc()));
    _zero_time->setDateTime(DateTimeOf(cal.Ch4lastzero().get()));
    _span_time->setDateTime(DateTimeOf(cal.Ch4lastspan().get()));
}

void CalAdvancedDialog::_ApplyToXML()
{
    ConfigCal& cal = _doc->Conf().Cal();
    SetLeafFromText(cal.Ch4zero(), _zero->text());
    SetLeafFromText(cal.Ch4span(), _span->text());
    SetLeafFromText(cal.Ch4spanconc(), _span_gas->text());
    apply_stamp(_zero_time, cal.Ch4lastzero());
    apply_stamp(_span_time, cal.Ch4lastspan());
}
