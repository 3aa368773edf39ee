#include "watch/widetolvandialog.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSplitter>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_picker.h>
#include <qwt_plot_renderer.h>
#include <qwt_series_data.h>
#include <qwt_curve_fitter.h>

#include <algorithm>
#include <sstream>

#include "link/variablestring.h"
#include "watch/chartexport.h"
#include "watch/plotexport.h"

namespace {

constexpr double START_TEMP = 2.0;
constexpr double END_TEMP = 48.0;
constexpr double STEP = 0.25;
// Fresh sample waveforms after a step before it is taken: the laser settles meanwhile.
constexpr int SETTLING = 3;
// Over the table's columns and the saved data's.
const QStringList kTableHeader = {"Temp (C)", "Sample", "Reference"};
// The raw preview: points 40 to 59 of each waveform, at a nominal 0.0165 °C apart.
constexpr int PREVIEW_FIRST = 40;
constexpr int PREVIEW_POINTS = 20;
constexpr double PREVIEW_STEP = 0.0165;

WideTolvanDialog::PrintDialogFunction& print_dialog_function()
{
    static WideTolvanDialog::PrintDialogFunction run;
    return run;
}

}  // namespace

// The y range that Qwt scales by; the x axis always spans 0 to 50 °C.
class WideTolvanDialog::_QwtPlotData : public QwtSeriesData<QPointF> {
public:
    explicit _QwtPlotData(_PlotData& data) : _data(data) {}

    size_t size() const override { return _data.y.size(); }
    QPointF sample(size_t i) const override { return QPointF(_data.x[i], _data.y[i]); }
    QRectF boundingRect() const override
    {
        if (_data.dirty) {
            if (!_data.y.empty()) {
                const auto [low, high] = std::minmax_element(_data.y.begin(), _data.y.end());
                _data.min = *low;
                _data.max = *high;
            }
            _data.dirty = false;
        }
        return QRectF(0, _data.min, 50.0, _data.max - _data.min);
    }

private:
    _PlotData& _data;
};

void WideTolvanDialog::_PlotData::AddData(double x_value, double y_value)
{
    x.push_back(x_value);
    y.push_back(y_value);
    if (min > y_value)
        min = y_value;
    else if (y_value > max)
        max = y_value;
    if (y.size() >= MAX_POINTS) {
        const size_t drop = y.size() - KEEP_POINTS;
        x.erase(x.begin(), x.begin() + std::ptrdiff_t(drop));
        y.erase(y.begin(), y.begin() + std::ptrdiff_t(drop));
        dirty = true;
    }
}

void WideTolvanDialog::_PlotData::Clear()
{
    x.clear();
    y.clear();
    min = 0;
    max = 1.0;
    dirty = true;
}

void WideTolvanDialog::SetPrintDialog(PrintDialogFunction run)
{
    print_dialog_function() = std::move(run);
}

WideTolvanDialog::WideTolvanDialog(QWidget* parent, const std::string& name, DocTolvan& document,
                                   const std::string& reference, const std::string& sample,
                                   const std::string& temperature)
    : ServiceDialog(parent),
      _model(new QStandardItemModel(8, 3, this)),
      _plot(new QwtPlot(this)),
      _temperature(new QLabel(this)),
      _document(document),
      _referenceRecord(VariableString(reference).record),
      _sampleRecord(VariableString(sample).record),
      _temperatureVariable(temperature)
{
    const QString title = "Wide Spectrum Scan: " + QString::fromStdString(name);
    resize(700, 350);
    setWindowTitle(title);

    _plot->setTitle(title);
    _plot->setCanvasBackground(Qt::white);
    _plot->insertLegend(new QwtLegend, QwtPlot::TopLegend, -1.0);
    _plot->enableAxis(QwtPlot::yRight);
    _plot->setAxisTitle(QwtPlot::xBottom, "Temperature (C)");
    _plot->setAxisTitle(QwtPlot::yLeft, "Sample");
    _plot->setAxisTitle(QwtPlot::yRight, "Reference");
    auto* grid = new QwtPlotGrid;
    grid->enableX(true);
    grid->enableXMin(true);
    grid->enableY(false);
    grid->enableYMin(false);
    grid->setPen(QPen(Qt::lightGray));
    grid->attach(_plot);
    new QwtPlotPicker(QwtPlot::xBottom, QwtPlot::yLeft, QwtPicker::NoRubberBand, QwtPicker::AlwaysOn, _plot->canvas());

    const struct {
        const char* title;
        Qt::GlobalColor colour;
        bool interpolated;
        int axis;
    } curves[CURVES] = {
        {"Sample", Qt::red, false, QwtPlot::yLeft},
        {"Interpolated Sample", Qt::red, true, QwtPlot::yLeft},
        {"Reference", Qt::blue, false, QwtPlot::yRight},
        {"Interpolated Reference", Qt::blue, true, QwtPlot::yRight},
    };
    for (int i = 0; i < CURVES; ++i) {
        auto* curve = new QwtPlotCurve(curves[i].title);
        curve->setPen(QPen(curves[i].colour));
        curve->setPaintAttribute(QwtPlotCurve::FilterPoints);
        if (curves[i].interpolated) {
            curve->setStyle(QwtPlotCurve::Lines);
            curve->setCurveAttribute(QwtPlotCurve::Fitted);
            curve->setCurveFitter(new QwtSplineCurveFitter);
        } else {
            curve->setStyle(QwtPlotCurve::Dots);
        }
        curve->setYAxis(curves[i].axis);
        curve->setData(new _QwtPlotData(_plotData[i]));
        curve->attach(_plot);
    }
    // Joined by name: a plot that emits these signals gets a legend that switches curves; Qwt 6.1
    // has none, and its legend stays passive.
    connect(_plot, SIGNAL(legendClicked(QwtPlotItem*)), this, SLOT(OnLegendClicked(QwtPlotItem*)));
    connect(_plot, SIGNAL(legendChecked(QwtPlotItem*, bool)), this, SLOT(OnLegendClicked(QwtPlotItem*, bool)));

    auto* start = new QPushButton("Start", this);
    auto* stop = new QPushButton("Stop", this);
    auto* print = new QPushButton("Print...", this);
    auto* copy = new QPushButton("Copy To Clipboard", this);
    auto* close = new QPushButton("Close", this);
    connect(start, &QPushButton::clicked, this, &WideTolvanDialog::OnStartClicked);
    connect(stop, &QPushButton::clicked, this, &WideTolvanDialog::OnStop);
    connect(print, &QPushButton::clicked, this, &WideTolvanDialog::OnPrintClicked);
    connect(copy, &QPushButton::clicked, this, &WideTolvanDialog::OnCopyClicked);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    AddPlotMenu(_plot, {{"Save Image...", [this] { SavePlotImage(_plot, this); }},
                        {"Save Data...", [this] { OnSaveDataClicked(); }}});

    _model->setHorizontalHeaderLabels(kTableHeader);
    auto* table = new QTableView(this);
    table->setModel(_model);

    auto* top = new QWidget(this);
    auto* topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 0, 0, 0);
    topLayout->addWidget(_plot);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(start);
    buttons->addWidget(stop);
    buttons->addWidget(print);
    buttons->addWidget(_temperature);
    buttons->addStretch();
    topLayout->addLayout(buttons);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(top);
    splitter->addWidget(table);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(copy);
    bottom->addStretch();
    bottom->addWidget(close);
    layout->addLayout(bottom);

    for (const std::string& spec : {reference, sample, temperature})
        Connector::LookupAndRegisterListener(spec, this);
    SetStartLaserTemp();
}

WideTolvanDialog::~WideTolvanDialog()
{
    delete _printDialog;  // before the printer it works on
    Connector::LookupAndUnRegisterListener(this);
}

void WideTolvanDialog::SetStartLaserTemp()
{
    _SetLaserTemp(_laserTemp);
}

void WideTolvanDialog::_SetLaserTemp(double t)
{
    // Each step also repeats delta1 and manual control of the cooler.
    std::ostringstream message;
    message << "<arvex><tolvan><factory><delta1>100</delta1></factory><cfg><linelock><lasercooler>"
               "<control>manual</control><temp>"
            << t << "</temp></lasercooler></linelock></cfg></tolvan></arvex>\n";
    emit SendRawXML(message.str());
}

void WideTolvanDialog::GotConnectorWaveform(Connector&, std::string record, std::string line)
{
    // The line ends in its check sum; before the points come the record name and one more field.
    line.resize(line.size() >= 4 ? line.size() - 4 : 0);
    std::istringstream in(line);
    in.ignore(100, '\t');
    in.ignore(100, '\t');
    std::vector<float> points;
    points.reserve(Stitch::POINTS);
    float value;
    while (points.size() < Stitch::POINTS && in >> value)
        points.push_back(value);
    if (points.size() != Stitch::POINTS)
        return;
    if (record == _sampleRecord) {
        _sample = std::move(points);
        ++_sampleCount;
    } else if (record == _referenceRecord) {
        _reference = std::move(points);
        ++_referenceCount;
    }
}

void WideTolvanDialog::GotConnectorData(Connector& connector, std::string)
{
    const double t = connector.VarNumeric(_temperatureVariable);
    _temperature->setText(QString::number(t, 'f', 2) + " C");
    if (!_scanning || _sampleCount < SETTLING)
        return;

    _stitch.AddWaveform(float(t), _sample, _reference);
    for (int i = 0; i < PREVIEW_POINTS; ++i) {
        const double x = (i - PREVIEW_POINTS / 2) * PREVIEW_STEP + t;
        const size_t point = size_t(i + PREVIEW_FIRST);
        _plotData[SAMPLE].AddData(x, _sample[point]);
        if (_referenceCount >= SETTLING)
            _plotData[REFERENCE].AddData(x, _reference[point]);
        _plot->replot();
    }
    _referenceCount = 0;
    _sampleCount = 0;

    if (_laserTemp >= END_TEMP) {
        OnStop();
    } else {
        _laserTemp += STEP;
        _SetLaserTemp(_laserTemp);
    }
}

void WideTolvanDialog::OnStartClicked()
{
    _stitch.Clear();
    for (_PlotData& data : _plotData)
        data.Clear();
    _laserTemp = START_TEMP;
    _SetLaserTemp(_laserTemp);
    _scanning = true;
}

void WideTolvanDialog::OnStop()
{
    _scanning = false;
    _plotData[INTERPOLATED_SAMPLE].Clear();
    _plotData[INTERPOLATED_REFERENCE].Clear();
    _model->removeRows(0, _model->rowCount());

    const std::vector<float>& temps = _stitch.Temperatures();
    const std::vector<float>& samples = _stitch.Samples();
    const std::vector<float>& references = _stitch.References();
    // The references outlive a Clear until the next join: the shortest length is the result's.
    const size_t rows = std::min({temps.size(), samples.size(), references.size()});
    for (size_t r = 0; r < rows; ++r) {
        _plotData[INTERPOLATED_SAMPLE].AddData(temps[r], samples[r]);
        _plotData[INTERPOLATED_REFERENCE].AddData(temps[r], references[r]);
        const int row = int(r);
        _model->insertRow(row);
        _model->setData(_model->index(row, 0), temps[r], Qt::EditRole);
        _model->setData(_model->index(row, 1), samples[r], Qt::EditRole);
        _model->setData(_model->index(row, 2), references[r], Qt::EditRole);
    }
    _plot->replot();

    _laserTemp = START_TEMP;
    _SetLaserTemp(_laserTemp);
}

void WideTolvanDialog::OnPrintClicked()
{
    // Made once and kept, so that the user's choices last from one print to the next.
    if (!_printer) {
        _printer = std::make_unique<QPrinter>(QPrinter::ScreenResolution);
        _printer->setColorMode(QPrinter::Color);
        _printer->setPageOrientation(QPageLayout::Landscape);
        _printer->setPageSize(QPageSize(QPageSize::Letter));
        _printDialog = new QPrintDialog(_printer.get(), this);
    }
    const PrintDialogFunction& run = print_dialog_function();
    const int result = run ? run(*_printDialog) : _printDialog->exec();
    if (result == QDialog::Accepted)
        QwtPlotRenderer().renderTo(_plot, *_printer);
}

void WideTolvanDialog::OnCopyClicked()
{
    const std::vector<float>& temps = _stitch.Temperatures();
    const std::vector<float>& samples = _stitch.Samples();
    const std::vector<float>& references = _stitch.References();
    const size_t lines = std::min({temps.size(), samples.size(), references.size()});
    std::ostringstream text;
    for (size_t r = 0; r < lines; ++r)
        text << temps[r] << '\t' << samples[r] << '\t' << references[r] << '\n';
    QApplication::clipboard()->setText(QString::fromStdString(text.str()), QClipboard::Clipboard);
}

std::string WideTolvanDialog::CsvText() const
{
    std::vector<std::string> header;
    for (const QString& label : kTableHeader)
        header.push_back(label.toStdString());
    return ColumnsCsv(header, {_stitch.Temperatures(), _stitch.Samples(), _stitch.References()});
}

void WideTolvanDialog::OnSaveDataClicked()
{
    SaveCsvFile(this, "Save Data", CsvText());
}

void WideTolvanDialog::OnLegendClicked(QwtPlotItem*)
{
}

void WideTolvanDialog::OnLegendClicked(QwtPlotItem* item, bool on)
{
    item->setVisible(on);
    _plot->replot();
}
