#include "watch/watchtolvandialog.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "service/caladvanceddialog.h"
#include "service/caltolvandialog.h"
#include "service/factorydialog.h"
#include "service/heaterstolvandialog.h"
#include "service/ratedialog.h"
#include "service/temptolvandialog.h"
#include "watch/mytablewidget.h"
#include "watch/plotwavedialog.h"
#include "watch/toolwindow.h"
#include "watch/widetolvandialog.h"

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
    // A Morvik's document has no sections for the Tolvan's tools.
    for (QPushButton* button : {wide, rate, temp, cal, factory, mirrors})
        button->setEnabled(!_IsMorvik());

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
    connect(wide, &QPushButton::clicked, this, &WatchTolvanDialog::OnWideClicked);
    connect(clock_sync, &QCheckBox::stateChanged, this, &WatchTolvanDialog::OnDataClockSyncChanged);
    connect(rate, &QPushButton::clicked, this, &WatchTolvanDialog::OnRateClicked);
    connect(temp, &QPushButton::clicked, this, &WatchTolvanDialog::OnTClicked);
    connect(cal, &QPushButton::clicked, this, &WatchTolvanDialog::OnCalClicked);
    connect(factory, &QPushButton::clicked, this, &WatchTolvanDialog::OnFactoryClicked);
    connect(mirrors, &QPushButton::clicked, this, &WatchTolvanDialog::OnHeatersClicked);
    connect(clock, &QPushButton::clicked, this, &WatchTolvanDialog::OnClockClicked);
    connect(network, &QPushButton::clicked, this, &WatchTolvanDialog::OnNetworkClicked);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    _table->setFocus(Qt::OtherFocusReason);
    for (const char* record : kListenedTo)
        _connector->RegisterListener(record, this);
}

void WatchTolvanDialog::GotConnectorData(Connector& /*connector*/, std::string /*record*/)
{
    _UpdateValueColumns();
}

void WatchTolvanDialog::_OpenWaveforms(PlotWaveDialog*& dialog, const char* reference, const char* sample,
                                       const QString& title)
{
    ShowToolWindow(dialog, [&] {
        const std::string& host = _connector->Host();
        return new PlotWaveDialog(this, VariableString(host, reference, "WAVEFORM").str(),
                                  VariableString(host, sample, "WAVEFORM").str(), title, "Reference", "Sample", -50, 50,
                                  -49.5, 0, 1, false);
    });
}

void WatchTolvanDialog::OnWaveClicked()
{
    _OpenWaveforms(_wave, "DATAR", "DATAS", "Waveforms");
}

void WatchTolvanDialog::OnDCClicked()
{
    _OpenWaveforms(_dc, "DATARDC", "DATASDC", "DC Waveforms");
}

void WatchTolvanDialog::OnDataClockSyncChanged(int state)
{
    _connector->SendClockSyncMessages(state == Qt::Checked);
}

bool WatchTolvanDialog::_IsMorvik() const
{
    return _connector->Type() == "morvik" || _connector->Type() == "sarnel";
}

void WatchTolvanDialog::OnTClicked()
{
    ShowToolWindow(_temp, [this] {
        auto* dialog = new TempTolvanDialog(this, _connector->Host(), &_connector->Doc_Tolvan());
        JoinChangesToConnector(dialog, *_connector);
        return dialog;
    });
}

void WatchTolvanDialog::OnCalClicked()
{
    ShowCalPanel(_cal, this, &WatchTolvanDialog::OnCalAdvancedClicked, *_connector, _connector->Doc_Tolvan());
}

void WatchTolvanDialog::OnCalAdvancedClicked()
{
    ShowCalEditor(_cal_advanced, this, *_connector, _connector->Doc_Tolvan());
}

void WatchTolvanDialog::OnFactoryClicked()
{
    ShowToolWindow(_factory, [this] {
        auto* dialog = new FactoryTolvanDialog(this, _connector->Host(), &_connector->Doc_Tolvan().Conf().Factory());
        JoinToConnector(dialog, *_connector);
        return dialog;
    });
}

void WatchTolvanDialog::OnHeatersClicked()
{
    ShowToolWindow(_heaters, [this] {
        auto* dialog = new HeatersTolvanDialog(this, _connector->Host(), &_connector->Doc_Tolvan());
        JoinToConnector(dialog, *_connector);
        return dialog;
    });
}

void WatchTolvanDialog::OnClockClicked()
{
    ShowClockWindow(_clock, this, *_connector,
                    _IsMorvik() ? _connector->Doc_Morvik().Conf().Cfg().Clock()
                                : _connector->Doc_Tolvan().Conf().Cfg().Clock());
}

void WatchTolvanDialog::OnNetworkClicked()
{
    ShowNetworkWindow(_network, this, *_connector,
                      _IsMorvik() ? _connector->Doc_Morvik().Conf().Cfg().Network()
                                  : _connector->Doc_Tolvan().Conf().Cfg().Network());
}

void WatchTolvanDialog::OnRateClicked()
{
    ShowToolWindow(_rate, [this] {
        auto* dialog =
            new RateDialog(this, _connector->Host(), &_connector->Doc_Tolvan().Conf().Output().Rate(), "tolvan");
        JoinToConnector(dialog, *_connector);
        return dialog;
    });
}

void WatchTolvanDialog::OnWideClicked()
{
    ShowToolWindow(_wide, [this] {
        const std::string& host = _connector->Host();
        auto* dialog = new WideTolvanDialog(this, host, _connector->Doc_Tolvan(),
                                            VariableString(host, "DATAR", "WAVEFORM").str(),
                                            VariableString(host, "DATAS", "WAVEFORM").str(),
                                            VariableString(host, "DATASTAT", "LCTACTUAL").str());
        JoinToConnector(dialog, *_connector);
        // Opening the scan moves the laser to its start, now that the message has somewhere to go.
        dialog->SetStartLaserTemp();
        return dialog;
    });
}
