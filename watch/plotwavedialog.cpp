#include "watch/plotwavedialog.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPixmap>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <limits>
#include <sstream>

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_zoomer.h>
#include <qwt_symbol.h>

#include "watch/plotexport.h"

namespace {

// A magnifier with a minus: zoom out.
const char* const kZoomOutXpm[] = {
    "22 22 3 1",
    ". c None",
    "# c #303030",
    "o c #e8eef4",
    "......................",
    "......................",
    "......................",
    "......#######.........",
    ".....###ooo###........",
    "....##ooooooo##.......",
    "...##ooooooooo##......",
    "...##ooooooooo##......",
    "...#ooooooooooo#......",
    "...#oo#######oo#......",
    "...#ooooooooooo#......",
    "...##ooooooooo##......",
    "...##ooooooooo##......",
    "....##ooooooo##.......",
    ".....###ooo#####......",
    "......#######.###.....",
    "...............###....",
    "................###...",
    ".................###..",
    "..................###.",
    "...................##.",
    "......................"
};

// The first and the last points of a scan lie off the line; "Scale" leaves them out of the range.
constexpr size_t kScaleFirst = 30, kScaleLast = 70;

constexpr Qt::GlobalColor kFirstColor = Qt::blue, kSecondColor = Qt::red;

}  // namespace

// --- _PlotData ---

PlotWaveDialog::_PlotData::_PlotData(PlotWaveDialog* dialog_, const std::string& text_, double xMin_, double xMax_,
                                     double xOffset_, double yMin_, double yMax_, bool fixedRange_)
    : dialog(dialog_),
      text(text_),
      xMin(xMin_),
      xMax(xMax_),
      xOffset(xOffset_),
      yMin(yMin_),
      yMax(yMax_),
      fixedRange(fixedRange_)
{
    Connector::LookupAndRegisterListener(text, this);
}

PlotWaveDialog::_PlotData::~_PlotData()
{
    Connector::LookupAndUnRegisterListener(this);
}

void PlotWaveDialog::_PlotData::_Read(const std::string& line, double& lo, double& hi)
{
    // Without the checksum and the line feed, and past the record name and one more field.
    std::istringstream in(line.substr(0, line.size() < 4 ? 0 : line.size() - 4));
    in.ignore(100, '\t');
    in.ignore(100, '\t');
    values.clear();
    lo = std::numeric_limits<double>::max();
    hi = -std::numeric_limits<double>::max();
    double value;
    while (in >> value) {
        values.push_back(value);
        if (scaleMiddle && (values.size() < kScaleFirst || values.size() > kScaleLast))
            continue;
        hi = std::max(hi, value);
        lo = std::min(lo, value);
    }
}

void PlotWaveDialog::_PlotData::GotConnectorWaveform(Connector& /*connector*/, std::string /*record*/,
                                                     std::string line)
{
    double lo, hi;
    _Read(line, lo, hi);
    if (!fixedRange) {
        yMin = lo;
        yMax = hi;
    }
    if (xMax == 0 && xMin == 0 && values.size() >= 2) {
        xMax = float(values.size() - 1);
        dialog->_PlotXUpdated(text, fixedRange, xMin, xMax, lo, hi);
    } else {
        dialog->_PlotUpdated(text, fixedRange, lo, hi);
    }
}

// --- _QwtPlotData ---

size_t PlotWaveDialog::_QwtPlotData::size() const
{
    return _data->values.size();
}

QPointF PlotWaveDialog::_QwtPlotData::sample(size_t i) const
{
    const double value = _data->values[i];
    const double y = _data->normalized ? (value - _data->yMin) * 100.0 / (_data->yMax - _data->yMin) : value;
    return QPointF(double(i) + _data->xOffset, y);
}

QRectF PlotWaveDialog::_QwtPlotData::boundingRect() const
{
    const double width = _data->xMax - _data->xMin;
    if (_data->normalized)
        return QRectF(_data->xMin, 0, width, 100);
    return QRectF(_data->xMin, _data->yMin, width, _data->yMax - _data->yMin);
}

// --- PlotWaveDialog ---

PlotWaveDialog::PlotWaveDialog(QWidget* parent, const std::string& first, const std::string& second,
                               const QString& title, const QString& firstName, const QString& secondName,
                               double xMin, double xMax, double xOffset, double yMin, double yMax, bool fixedRange)
    : QDialog(parent),
      _first(this, first, xMin, xMax, xOffset, yMin, yMax, fixedRange),
      _second(this, second, xMin, xMax, xOffset, yMin, yMax, fixedRange)
{
    resize(700, 350);
    setWindowTitle("Plotting Waveforms: " + QString::fromStdString(VariableString(first).host));

    _plot = new QwtPlot(title, this);
    _plot->setCanvasBackground(Qt::white);
    _legend = new QwtLegend;
    _plot->insertLegend(_legend, QwtPlot::TopLegend, -1.0);
    _grid = new QwtPlotGrid;
    _grid->enableX(true);
    _grid->enableXMin(true);
    _grid->enableY(false);
    _grid->enableYMin(false);
    _grid->setPen(Qt::lightGray);
    _grid->attach(_plot);
    _plot->enableAxis(QwtPlot::yLeft);
    _plot->enableAxis(QwtPlot::yRight, !fixedRange);

    _second_curve = new QwtPlotCurve(secondName);
    _second_curve->setStyle(QwtPlotCurve::Lines);
    _second_curve->setPaintAttribute(QwtPlotCurve::FilterPoints, true);
    _second_curve->setPen(kSecondColor);
    _second_curve->setYAxis(QwtPlot::yLeft);
    _second_curve->setData(new _QwtPlotData(&_second));
    _second_curve->attach(_plot);

    _first_curve = new QwtPlotCurve(firstName);
    _first_curve->setStyle(QwtPlotCurve::Lines);
    _first_curve->setPaintAttribute(QwtPlotCurve::FilterPoints, true);
    _first_curve->setPen(kFirstColor);
    _first_curve->setYAxis(fixedRange ? QwtPlot::yLeft : QwtPlot::yRight);
    _first_curve->setData(new _QwtPlotData(&_first));
    _first_curve->attach(_plot);

    if (fixedRange) {
        _plot->setAxisTitle(QwtPlot::yLeft, secondName + " & " + firstName);
    } else {
        _plot->setAxisTitle(QwtPlot::yLeft, secondName);
        _plot->setAxisTitle(QwtPlot::yRight, firstName);
    }

    // The zoomer's base takes in what the axes show: they start on it.
    _plot->setAxisScale(QwtPlot::xBottom, xMin, xMax);
    _plot->setAxisScale(QwtPlot::yLeft, yMin, yMax);
    _zoomer = new QwtPlotZoomer(_plot->canvas());
    _zoomer->setTrackerMode(QwtPicker::AlwaysOn);
    _zoomer->setZoomBase(QRectF(xMin, yMin, xMax - xMin, yMax - yMin));
    connect(_zoomer, &QwtPlotZoomer::zoomed, this, &PlotWaveDialog::OnZoomed);

    auto* scale = new QCheckBox("Scale", this);
    auto* normalize = new QCheckBox("Normalize", this);
    auto* points = new QCheckBox("Show Points", this);
    auto* zoom_out = new QToolButton(this);
    zoom_out->setAutoRaise(true);
    zoom_out->setIcon(QPixmap(kZoomOutXpm));
    zoom_out->setIconSize(QSize(22, 22));
    zoom_out->setToolTip("Zoom Out");
    auto* close = new QPushButton("Close", this);
    auto* row = new QHBoxLayout;
    row->addWidget(scale);
    row->addWidget(normalize);
    row->addWidget(points);
    row->addWidget(zoom_out);
    row->addStretch();
    row->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_plot);
    layout->addLayout(row);

    connect(scale, &QCheckBox::stateChanged, this, &PlotWaveDialog::OnCheckboxStateChanged);
    connect(normalize, &QCheckBox::stateChanged, this, &PlotWaveDialog::OnNormalizedChanged);
    connect(points, &QCheckBox::stateChanged, this, &PlotWaveDialog::OnShowPointsChanged);
    connect(zoom_out, &QToolButton::clicked, this, &PlotWaveDialog::OnZoomOut);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    AddPlotMenu(_plot, {{"Save Image...", [this] { SavePlotImage(_plot, this); }}});
}

PlotWaveDialog::~PlotWaveDialog()
{
    // The curves read the variables: they go first.
    _plot->detachItems(QwtPlotItem::Rtti_PlotCurve, true);
}

void PlotWaveDialog::_PlotUpdated(const std::string& variable, bool fixedRange, double lo, double hi)
{
    if (!fixedRange && variable == _second.text) {
        QRectF base = _zoomer->zoomBase();
        base.setTop(hi);
        base.setBottom(lo);
        _zoomer->setZoomBase(base);
    }
    _plot->replot();
}

void PlotWaveDialog::_PlotXUpdated(const std::string& variable, bool fixedRange, double xMin, double xMax,
                                   double lo, double hi)
{
    if (variable == _second.text) {
        QRectF base = _zoomer->zoomBase();
        if (!fixedRange) {
            base.setTop(hi);
            base.setBottom(lo);
        }
        base.setLeft(xMin);
        base.setRight(xMax);
        _zoomer->setZoomBase(base);
        _zoomer->zoom(base);
    }
    _plot->replot();
}

void PlotWaveDialog::OnCheckboxStateChanged(int state)
{
    _first.scaleMiddle = state != 0;
    _second.scaleMiddle = state != 0;
}

void PlotWaveDialog::OnNormalizedChanged(int state)
{
    _first.normalized = state != 0;
    _second.normalized = state != 0;
}

void PlotWaveDialog::OnShowPointsChanged(int state)
{
    const QwtSymbol::Style style = state != 0 ? QwtSymbol::XCross : QwtSymbol::NoSymbol;
    _first_curve->setSymbol(new QwtSymbol(style, QBrush(), QPen(kFirstColor), QSize(4, 4)));
    _second_curve->setSymbol(new QwtSymbol(style, QBrush(), QPen(kSecondColor), QSize(4, 4)));
}

void PlotWaveDialog::OnZoomed(const QRectF& /*rect*/)
{
    _plot->replot();
}

void PlotWaveDialog::OnZoomOut()
{
    const double width = _second.xMax - _second.xMin;
    const QRectF base = _second.normalized ? QRectF(_second.xMin, 0, width, 100)
                                           : QRectF(_second.xMin, _second.yMin, width, _second.yMax - _second.yMin);
    _zoomer->setZoomBase(base);
    _zoomer->zoom(base);
}
