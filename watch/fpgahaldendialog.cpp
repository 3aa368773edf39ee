#include "watch/fpgahaldendialog.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

#include "watch/watchrules.h"

namespace {

const struct {
    const char* label;
    int interval_ms;
} kTimings[] = {{"run once", 0}, {"1 Hz", 1000}, {"10 Hz", 100}, {"100 Hz", 10}};

}  // namespace

FPGAHaldenDialog::FPGAHaldenDialog(QWidget* parent, const std::string& name)
    : ServiceDialog(parent), _text(new QTextEdit(this)), _timing(new QComboBox(this)), _run(new QPushButton("Run", this)),
      _timer(new QTimer(this))
{
    setWindowTitle("Halden FPGA Test: " + QString::fromStdString(name));
    for (const auto& timing : kTimings)
        _timing->addItem(timing.label);
    auto* clear = new QPushButton("Clear", this);
    auto* close = new QPushButton("Close", this);

    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Timing", this));
    row->addWidget(_timing);
    row->addWidget(_run);
    row->addWidget(clear);
    row->addStretch();
    row->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("FPGA I/O Test", this));
    layout->addWidget(_text, 1);
    layout->addLayout(row);

    connect(_timing, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &FPGAHaldenDialog::OnTimingChanged);
    connect(_run, &QPushButton::clicked, this, &FPGAHaldenDialog::OnRunStopClicked);
    connect(clear, &QPushButton::clicked, this, &FPGAHaldenDialog::OnClear);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    connect(_timer, &QTimer::timeout, this, &FPGAHaldenDialog::OnTimeout);
    OnTimingChanged(0);
}

void FPGAHaldenDialog::OnTimingChanged(int index)
{
    const bool known = index >= 0 && index < int(std::size(kTimings));
    _timer->setInterval(known ? kTimings[index].interval_ms : 0);
}

void FPGAHaldenDialog::OnRunStopClicked()
{
    if (_timer->isActive())
        _DoStop();
    else
        _DoRun();
}

void FPGAHaldenDialog::OnTimeout()
{
    emit SendRawText(ConsoleMessage(_text->toPlainText()));
    if (_timer->interval() == 0)
        _DoStop();
}

void FPGAHaldenDialog::OnClear()
{
    emit SendRawText("\nclr\n");
}

void FPGAHaldenDialog::_DoRun()
{
    _run->setText("Stop");
    _timer->start();
}

void FPGAHaldenDialog::_DoStop()
{
    _timer->stop();
    _run->setText("Run");
}
