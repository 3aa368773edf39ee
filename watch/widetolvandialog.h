#pragma once
// The wide spectrum scan of a Tolvan: the program walks the laser from 2 °C to 48 °C, a quarter
// degree at a time, and joins the narrow waveforms it sees on the way into one spectrum.

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "link/connector.h"
#include "service/servicedialog.h"
#include "watch/stitch.h"

class DocTolvan;
class QLabel;
class QPrintDialog;
class QPrinter;
class QStandardItemModel;
class QwtPlot;
class QwtPlotItem;

/// The sweep has no timer: each "DATASTAT" record is a step. Once three fresh sample waveforms
/// have come since the last step, the latest sample and reference go to the Stitch at the laser's
/// actual temperature, their middle 20 points are added to the raw preview, and the laser is set a
/// quarter degree higher; after 48 °C the scan stops. Stopping (at the end or by "Stop") joins
/// what was scanned into the interpolated curves and the table, and sends the laser back to
/// 2 °C. The laser stays on manual control: nothing gives control back to the instrument.
/// A right click on the plot offers "Save Image..." and "Save Data..." (the table as CSV).
class WideTolvanDialog : public ServiceDialog, public Connector::Listener {
    Q_OBJECT

public:
    /// The points of one curve. The y range only widens as points come, and is taken afresh from
    /// all points when old ones are dropped.
    struct _PlotData {
        /// Points kept: past MAX_POINTS the oldest go until KEEP_POINTS are left.
        static constexpr size_t MAX_POINTS = 100101;
        static constexpr size_t KEEP_POINTS = 100000;

        void AddData(double x, double y);
        /// Empty, with the range back at 0 to 1.
        void Clear();

        std::deque<double> x, y;
        double min = 0;
        double max = 1.0;
        bool dirty = true;  ///< min and max are to be taken from the points
    };

    /// Runs the print dialog and gives its result; QDialog::exec unless replaced (tests replace
    /// it; null restores it).
    using PrintDialogFunction = std::function<int(QPrintDialog&)>;
    static void SetPrintDialog(PrintDialogFunction run);

    /// The three variables are the reference and sample waveforms ("host:DATAR:WAVEFORM",
    /// "host:DATAS:WAVEFORM") and the laser's actual temperature ("host:DATASTAT:LCTACTUAL").
    /// Listens to them on the connector of their host until destroyed.
    WideTolvanDialog(QWidget* parent, const std::string& name, DocTolvan& document, const std::string& reference,
                     const std::string& sample, const std::string& temperature);
    ~WideTolvanDialog() override;

    /// Sends the laser to the set point (2 °C until a scan moves it). Call it once SendRawXML is
    /// joined: the constructor's own sending goes nowhere.
    void SetStartLaserTemp();

    /// The table as CSV: the table's header line, then the clipboard's columns.
    std::string CsvText() const;

    void GotConnectorData(Connector& connector, std::string record) override;
    void GotConnectorWaveform(Connector& connector, std::string record, std::string line) override;

signals:
    void SendXMLChanges();
    void SendRawXML(std::string text);

public slots:
    void OnStartClicked();
    void OnStop();
    void OnPrintClicked();
    /// Puts the table on the clipboard: temperature, sample and reference, tab-separated, a line each.
    void OnCopyClicked();
    /// "Save Data..." of the plot's context menu: asks for a file and writes CsvText into it.
    void OnSaveDataClicked();
    void OnLegendClicked(QwtPlotItem* item);
    void OnLegendClicked(QwtPlotItem* item, bool on);
    /// The dialog reads nothing back from the document.
    void OnXMLChanged() {}

private:
    class _QwtPlotData;
    enum Curve { SAMPLE, INTERPOLATED_SAMPLE, REFERENCE, INTERPOLATED_REFERENCE, CURVES };

    void _SetLaserTemp(double t);

    _PlotData _plotData[CURVES];
    QStandardItemModel* _model;
    QwtPlot* _plot;
    QLabel* _temperature;
    std::unique_ptr<QPrinter> _printer;
    QPrintDialog* _printDialog = nullptr;
    DocTolvan& _document;
    std::string _referenceRecord;
    std::string _sampleRecord;
    std::string _temperatureVariable;
    int32_t _referenceCount = 0;
    int32_t _sampleCount = 0;
    double _laserTemp = 2.0;
    bool _scanning = false;
    std::vector<float> _reference;
    std::vector<float> _sample;
    Stitch _stitch;
};
