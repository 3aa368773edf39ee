#pragma once
// The strip chart: variables of one or more instruments against time, newest at the right edge.

#include <QDialog>

#include <array>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <qwt_series_data.h>

#include "link/connector.h"
#include "watch/chartstatistics.h"
#include "watch/windowlayout.h"

class QComboBox;
class QLabel;
class QPushButton;
class QwtLegend;
class QwtPlot;
class QwtPlotPanner;

/// A chart of variables ("host:DATA:CH4"), each fed by its instrument's connector as a listener
/// of its own: no timer, no poll; the first variable's records repaint the chart and give the
/// running statistics. More variables come by dropping a variable's text onto the chart, on the
/// left axis or, dropped on the right half, on the right one; they may belong to other
/// instruments. Every variable keeps its last 300 seconds whatever the axis shows, so widening
/// the axis shows history at once. The dialog deletes itself on closing.
///
/// A right click on the plot offers "Export Visible Data..." (CSV of the stretch of the time
/// axis that shows), "Export All Data..." (the whole 300 seconds) and "Save Image...".
class PlotDialog : public QDialog {
    Q_OBJECT
public:
    /// The samples of one variable.
    class _PlotData : public Connector::Listener {
    public:
        /// Listens to the variable's record on its instrument's connector, if there is one.
        /// `owner` is the chart, for its first variable only; null for the others.
        _PlotData(const std::string& text, PlotDialog* owner);
        ~_PlotData() override;
        _PlotData(const _PlotData&) = delete;
        _PlotData& operator=(const _PlotData&) = delete;

        /// Takes the record's time and the variable's value, unless paused (samples are dropped).
        void GotConnectorData(Connector& connector, std::string record) override;
        /// After every listener had the record: the first variable repaints the chart.
        void GotConnectorDataPostUpdate(Connector& connector, std::string record) override;

        /// Appends a sample and drops what is more than 300 seconds older than it. `min` and
        /// `max` follow it as one chain, so a first sample sets only `min`.
        void _AddData(double time, double value);
        /// When `dirty`: `min` and `max` of the samples within `width` of the newest.
        void _Update();

        const std::string text;
        std::deque<double> times, values;
        double min, max;
        double width = 60;   ///< of the time axis, in seconds
        bool dirty = false;  ///< `min` and `max` need computing again
        bool paused = false;
        PlotDialog* const owner;
    };

    /// One variable as a curve: x is the time before the newest sample, so 0 at the right edge.
    /// Reads the queues in place.
    class _QwtPlotData : public QwtSeriesData<QPointF> {
    public:
        explicit _QwtPlotData(_PlotData* data) : _data(data) {}
        size_t size() const override;
        QPointF sample(size_t i) const override;
        /// From -width to 0 across, `min` to `max` up.
        QRectF boundingRect() const override;

    private:
        _PlotData* _data;
    };

    /// A chart of `text`; with an empty text, or a host without a connector, a chart with no
    /// variable that waits for one to be dropped.
    PlotDialog(QWidget* parent, const std::string& text, const QString& title);
    ~PlotDialog() override;

    /// Adds a variable whose host has a connector; otherwise does nothing, silently.
    void _AddPlotItem(const std::string& text, bool right);
    /// Repaints.
    void _PostUpdate();
    /// Statistics of the first variable, and their labels.
    void _Plot(double time, double value);

    /// Opens a chart as a layout describes it; a variable whose host has no connector is left out,
    /// as when dropped, and a width that the chart does not offer leaves it at 60 s.
    static PlotDialog* Open(QWidget* parent, const ChartLayout& layout);
    /// Title, time width, place and variables with their axes.
    ChartLayout Layout() const;
    /// The samples as CSV (ChartCsv), all that are kept or only those the time axis shows.
    std::string CsvText(bool visible_only) const;

    /// The variables in order of arrival.
    const std::vector<std::unique_ptr<_PlotData>>& Variables() const { return _variables; }
    QwtPlot* Plot() const { return _plot; }

    /// The colours of the curves in order of arrival, starting over with the eleventh.
    static const std::array<Qt::GlobalColor, 10> _PenColors;

public slots:
    void OnClearMinMax();
    void OnXaxisWidthChanged(int index);
    /// Pauses or resumes every variable, as the first one decides.
    void OnPause();
    void OnExportVisibleData();
    void OnExportAllData();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void _SetStartingLabels();

    ChartStatistics _statistics;
    std::vector<std::unique_ptr<_PlotData>> _variables;
    QwtPlot* _plot;
    QwtLegend* _legend;
    QwtPlotPanner* _panner;
    QLabel *_min_label, *_max_label, *_mean_label, *_stddev_label;
    QComboBox* _width_combo;
    QPushButton* _pause_button;
};
