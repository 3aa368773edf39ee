#include "watch/plotdialog.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>
#include <sstream>

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_panner.h>

#include "watch/chartexport.h"
#include "watch/densecurve.h"
#include "watch/plotexport.h"

namespace {

// Retained whatever the axis shows.
constexpr double kKeptSeconds = 300.0;


QString number(double value)
{
    return QString::number(value, 'g', 6);
}

}  // namespace

const std::array<Qt::GlobalColor, 10> PlotDialog::_PenColors = {
    Qt::red, Qt::blue, Qt::magenta, Qt::darkYellow, Qt::black,
    Qt::darkRed, Qt::darkGreen, Qt::darkBlue, Qt::darkCyan, Qt::darkMagenta,
};

// --- _PlotData ---

PlotDialog::_PlotData::_PlotData(const std::string& text_, PlotDialog* owner_)
    : text(text_),
      min(std::numeric_limits<double>::max()),
      max(-std::numeric_limits<double>::max()),
      owner(owner_)
{
    Connector::LookupAndRegisterListener(text, this);
}

PlotDialog::_PlotData::~_PlotData()
{
    Connector::LookupAndUnRegisterListener(this);
}

void PlotDialog::_PlotData::GotConnectorData(Connector& connector, std::string /*record*/)
{
    if (!paused)
        _AddData(connector.Time(), connector.VarNumeric(text));
}

void PlotDialog::_PlotData::GotConnectorDataPostUpdate(Connector& /*connector*/, std::string /*record*/)
{
    if (owner)
        owner->_PostUpdate();
}

void PlotDialog::_PlotData::_AddData(double time, double value)
{
    times.push_back(time);
    values.push_back(value);
    if (min > value)
        min = value;
    else if (value > max)
        max = value;
    double span = times.back() - times.front();
    while (span > kKeptSeconds) {
        times.pop_front();
        values.pop_front();
        dirty = true;
        span = times.back() - times.front();
    }
    if (span > width)
        dirty = true;
    if (owner)
        owner->_Plot(time, value);
}

void PlotDialog::_PlotData::_Update()
{
    if (!dirty || times.empty() || times.size() != values.size())
        return;
    min = std::numeric_limits<double>::max();
    max = -std::numeric_limits<double>::max();
    // From the newest back to the axis's left edge.
    const double left = times.back() - width;
    for (size_t i = times.size(); i-- > 0 && times[i] >= left;) {
        min = std::min(min, values[i]);
        max = std::max(max, values[i]);
    }
    dirty = false;
}

// --- _QwtPlotData ---

size_t PlotDialog::_QwtPlotData::size() const
{
    return _data->values.size();
}

QPointF PlotDialog::_QwtPlotData::sample(size_t i) const
{
    return QPointF(_data->times[i] - _data->times.back(), _data->values[i]);
}

QRectF PlotDialog::_QwtPlotData::boundingRect() const
{
    if (_data->dirty)
        _data->_Update();
    return QRectF(-_data->width, _data->min, _data->width, _data->max - _data->min);
}

// --- PlotDialog ---

PlotDialog::PlotDialog(QWidget* parent, const std::string& text, const QString& title) : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    resize(700, 350);
    setWindowTitle(title);

    _plot = new QwtPlot(title, this);
    _plot->setCanvasBackground(Qt::white);
    _legend = new QwtLegend;
    _plot->insertLegend(_legend, QwtPlot::TopLegend, -1.0);
    _plot->setAxisTitle(QwtPlot::xBottom, "Time (Secs)");
    _panner = new QwtPlotPanner(_plot->canvas());
    _panner->setOrientations(Qt::Horizontal);

    auto* clear = new QPushButton("Clear Stats", this);
    _min_label = new QLabel(this);
    _max_label = new QLabel(this);
    _mean_label = new QLabel(this);
    _stddev_label = new QLabel(this);
    _SetStartingLabels();
    _width_combo = new QComboBox(this);
    for (int seconds : {10, 60, 300})
        _width_combo->addItem(QString("%1 secs").arg(seconds), seconds);
    _width_combo->setCurrentIndex(1);
    _pause_button = new QPushButton("Pause", this);
    auto* close = new QPushButton("Close", this);

    auto* extremes = new QVBoxLayout;
    extremes->addWidget(_max_label);
    extremes->addWidget(_min_label);
    auto* row = new QHBoxLayout;
    row->addWidget(clear);
    row->addLayout(extremes);
    row->addWidget(_mean_label);
    row->addWidget(_stddev_label);
    row->addStretch();
    row->addWidget(_width_combo);
    row->addWidget(_pause_button);
    row->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_plot);
    layout->addLayout(row);

    connect(clear, &QPushButton::clicked, this, &PlotDialog::OnClearMinMax);
    connect(_width_combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &PlotDialog::OnXaxisWidthChanged);
    connect(_pause_button, &QPushButton::clicked, this, &PlotDialog::OnPause);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    AddPlotMenu(_plot, {{"Export Visible Data...", [this] { OnExportVisibleData(); }},
                        {"Export All Data...", [this] { OnExportAllData(); }},
                        {"Save Image...", [this] { SavePlotImage(_plot, this); }}});

    _AddPlotItem(text, false);
}

PlotDialog::~PlotDialog()
{
    // The curves read the variables: they go first.
    _plot->detachItems(QwtPlotItem::Rtti_PlotCurve, true);
}

void PlotDialog::_SetStartingLabels()
{
    // The blanks keep room for a number.
    _min_label->setText(" Min:      ");
    _max_label->setText(" Max:      ");
    _mean_label->setText(" Mean:      ");
    _stddev_label->setText(" StdDev:      ");
}

void PlotDialog::_AddPlotItem(const std::string& text, bool right)
{
    if (!Connector::LookupConnector(text))
        return;
    const QColor color(_PenColors[_variables.size() % _PenColors.size()]);
    _variables.push_back(std::make_unique<_PlotData>(text, _variables.empty() ? this : nullptr));
    _variables.back()->width = _width_combo->currentData().toDouble();  // a late curve keeps to the axis shown

    auto* curve = new DenseCurve(QwtText(QString::fromStdString(text)));
    curve->setStyle(QwtPlotCurve::Lines);
    curve->setPaintAttribute(QwtPlotCurve::FilterPoints, true);
    curve->setPen(color);
    QwtText title = curve->title();
    title.setColor(color);
    curve->setTitle(title);
    if (right) {
        curve->setYAxis(QwtPlot::yRight);
        _plot->enableAxis(QwtPlot::yRight);
    }
    curve->setData(new _QwtPlotData(_variables.back().get()));
    curve->attach(_plot);
}

void PlotDialog::_PostUpdate()
{
    _plot->replot();
}

void PlotDialog::_Plot(double time, double value)
{
    const ChartStatistics::Changes changes = _statistics.Add(time, value);
    if (changes.min)
        _min_label->setText(" Min: " + number(_statistics.Min()));
    if (changes.max)
        _max_label->setText(" Max: " + number(_statistics.Max()));
    if (changes.mean) {
        _mean_label->setText(" Mean: " + number(_statistics.Mean()));
        _stddev_label->setText(" StdDev: " + number(_statistics.StdDev()));
    }
}

void PlotDialog::OnClearMinMax()
{
    _statistics.Clear();
    _SetStartingLabels();
}

void PlotDialog::OnXaxisWidthChanged(int index)
{
    bool ok = false;
    const double width = _width_combo->itemData(index).toDouble(&ok);
    if (!ok)
        return;
    for (const auto& variable : _variables) {
        variable->width = width;
        variable->dirty = true;
    }
}

void PlotDialog::OnPause()
{
    if (_variables.empty())
        return;
    const bool resume = _variables.front()->paused;
    _pause_button->setText(resume ? "Pause" : "Resume");
    for (const auto& variable : _variables)
        variable->paused = !resume;
}

void PlotDialog::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasFormat("text/plain"))
        event->acceptProposedAction();
}

void PlotDialog::dropEvent(QDropEvent* event)
{
    if (event->dropAction() != Qt::CopyAction)
        return;
    std::istringstream text(event->mimeData()->text().toUtf8().toStdString());
    std::string word;
    if (!(text >> word))
        return;
    const bool right = qRound(event->posF().x()) > width() / 2;
    _AddPlotItem(word, right);
    event->acceptProposedAction();
}

PlotDialog* PlotDialog::Open(QWidget* parent, const ChartLayout& layout)
{
    auto* chart = new PlotDialog(parent, "", QString::fromStdString(layout.title));
    for (const ChartVariable& variable : layout.variables)
        chart->_AddPlotItem(variable.text, variable.right);
    for (int i = 0; i < chart->_width_combo->count(); ++i)
        if (chart->_width_combo->itemData(i).toDouble() == layout.width)
            chart->_width_combo->setCurrentIndex(i);
    PlaceWindow(*chart, layout.geometry);
    chart->show();
    return chart;
}

ChartLayout PlotDialog::Layout() const
{
    ChartLayout layout;
    layout.title = windowTitle().toStdString();
    layout.width = _width_combo->currentData().toDouble();
    layout.geometry = GeometryOf(*this);
    // The curves stand in the order of the variables.
    for (const QwtPlotItem* curve : _plot->itemList(QwtPlotItem::Rtti_PlotCurve))
        layout.variables.push_back({curve->title().text().toStdString(), curve->yAxis() == QwtPlot::yRight});
    return layout;
}

std::string PlotDialog::CsvText(bool visible_only) const
{
    std::vector<ChartSeries> series;
    for (const auto& variable : _variables)
        series.push_back({variable->text, {variable->times.begin(), variable->times.end()},
                          {variable->values.begin(), variable->values.end()}});
    if (!visible_only)
        return ChartCsv(series, -std::numeric_limits<double>::infinity(), 0);
    const QwtInterval shown = _plot->axisInterval(QwtPlot::xBottom);
    return ChartCsv(series, shown.minValue(), shown.maxValue());
}

void PlotDialog::OnExportVisibleData()
{
    SaveCsvFile(this, "Export Visible Data", CsvText(true));
}

void PlotDialog::OnExportAllData()
{
    SaveCsvFile(this, "Export All Data", CsvText(false));
}
