#include "watch/watchtolvandialog.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "watch/mytablewidget.h"
#include "watch/plotwavedialog.h"

namespace {

// The table's pairs: a header record, then its data record.
const char* const kRecords[] = {"DATAH",    "DATA",           "DATASTATH",     "DATASTAT",  "DATADIAGH",
                                "DATADIAG", "DATACLOCKSYNCH", "DATACLOCKSYNC", "DATATESTH", "DATATEST"};

// "DATASTAT" is the window's clock; the other data records are read when it comes.
const char* const kListenedTo[] = {"DATAH", "DATASTATH", "DATADIAGH", "DATACLOCKSYNCH", "DATATESTH", "DATASTAT"};

}  // namespace

WatchTolvanDialog::WatchTolvanDialog(QWidget* parent, const std::string& name, const std::string& type)
    : WatchDialog(parent, name, type, "Tolvan", std::vector<std::string>(std::begin(kRecords), std::end(kRecords)))
{
    resize(750, 800);

    auto* wave = new QPushButton("Wave", this);
    auto* dc = new QPushButton("DC", this);
    auto* wide = new QPushButton("Wide Scan", this);
    auto* rate = new QPushButton("Rate...", this);
    auto* clock_sync = new QCheckBox("Show Clock Sync", this);
    auto* temp = new QPushButton("Laser Temp...", this);
    auto* cal = new QPushButton("Cal...", this);
    auto* factory = new QPushButton("Factory...", this);
    auto* mirrors = new QPushButton("Mirrors...", this);
    auto* clock = new QPushButton("Clock...", this);
    auto* network = new QPushButton("Network...", this);
    auto* close = new QPushButton("Close", this);
    // The windows behind these are not there yet.
    for (QPushButton* button : {wide, rate, temp, cal, factory, mirrors, clock, network})
        button->setEnabled(false);

    auto* grid = new QGridLayout;
    grid->addWidget(wave, 0, 0);
    grid->addWidget(dc, 0, 1);
    grid->addWidget(wide, 0, 2);
    grid->addWidget(rate, 0, 3);
    grid->addWidget(_log_button, 0, 4);
    grid->addWidget(clock_sync, 0, 5, 1, 3);
    grid->addWidget(temp, 1, 0);
    grid->addWidget(cal, 1, 1);
    grid->addWidget(factory, 1, 2);
    grid->addWidget(mirrors, 1, 3);
    grid->addWidget(clock, 1, 4);
    grid->addWidget(network, 1, 5);
    grid->setColumnStretch(6, 1);
    grid->addWidget(close, 1, 7);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_table);
    layout->addLayout(grid);

    connect(wave, &QPushButton::clicked, this, &WatchTolvanDialog::OnWaveClicked);
    connect(dc, &QPushButton::clicked, this, &WatchTolvanDialog::OnDCClicked);
    connect(clock_sync, &QCheckBox::stateChanged, this, &WatchTolvanDialog::OnDataClockSyncChanged);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    _table->setFocus(Qt::OtherFocusReason);
    for (const char* record : kListenedTo)
        _connector->RegisterListener(record, this);
}

void WatchTolvanDialog::GotConnectorData(Connector& /*connector*/, std::string /*record*/)
{
    _UpdateValueColumns();
}

PlotWaveDialog* WatchTolvanDialog::_OpenWaveforms(PlotWaveDialog* dialog, const char* reference, const char* sample,
                                                  const QString& title)
{
    if (!dialog) {
        const std::string& host = _connector->Host();
        dialog = new PlotWaveDialog(this, VariableString(host, reference, "WAVEFORM").str(),
                                    VariableString(host, sample, "WAVEFORM").str(), title, "Reference", "Sample", -50,
                                    50, -49.5, 0, 1, false);
    }
    dialog->show();
    dialog->activateWindow();
    dialog->raise();
    return dialog;
}

void WatchTolvanDialog::OnWaveClicked()
{
    _wave = _OpenWaveforms(_wave, "DATAR", "DATAS", "Waveforms");
}

void WatchTolvanDialog::OnDCClicked()
{
    _dc = _OpenWaveforms(_dc, "DATARDC", "DATASDC", "DC Waveforms");
}

void WatchTolvanDialog::OnDataClockSyncChanged(int state)
{
    _connector->SendClockSyncMessages(state == Qt::Checked);
}
