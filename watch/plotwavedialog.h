#pragma once
// Two live waveforms, arrays of numbers that an instrument sends whole in one record.

#include <QDialog>

#include <string>
#include <vector>

#include <qwt_series_data.h>

#include "link/connector.h"

class QwtLegend;
class QwtPlot;
class QwtPlotCurve;
class QwtPlotGrid;
class QwtPlotZoomer;

/// Draws a first and a second waveform variable ("host:DATAR:WAVEFORM") and redraws at each of
/// their records. The second decides the zoom base. Without a fixed range each curve has its own
/// axis that follows its data, the first on the right; with one both share the left axis. An x
/// range of 0 to 0 is taken from the first waveform of at least two points. Closing hides the
/// window; it goes on receiving.
class PlotWaveDialog : public QDialog {
    Q_OBJECT
public:
    /// The latest waveform of one variable.
    class _PlotData : public Connector::Listener {
    public:
        /// Listens to the variable's record on its instrument's connector, if there is one.
        _PlotData(PlotWaveDialog* dialog, const std::string& text, double xMin, double xMax, double xOffset,
                  double yMin, double yMax, bool fixedRange);
        ~_PlotData() override;
        _PlotData(const _PlotData&) = delete;
        _PlotData& operator=(const _PlotData&) = delete;

        /// Reads the waveform and has the dialog rescale and repaint.
        void GotConnectorWaveform(Connector& connector, std::string record, std::string line) override;

        /// Reads the numbers of a waveform line into `values` (the record name, one further field
        /// and the checksum are not numbers of it) and gives their range in `lo` and `hi`; with
        /// `scaleMiddle` only the 30th to 70th point count. Without numbers the range is the
        /// largest finite double to its negative.
        void _Read(const std::string& line, double& lo, double& hi);

        PlotWaveDialog* const dialog;
        const std::string text;
        std::vector<double> values;
        double xMin, xMax, xOffset, yMin, yMax;
        const bool fixedRange;
        bool normalized = false;  ///< y runs 0 to 100 across yMin to yMax
        bool scaleMiddle = false;
    };

    /// One waveform as a curve: x is the index plus `xOffset`. Reads `values` in place.
    class _QwtPlotData : public QwtSeriesData<QPointF> {
    public:
        explicit _QwtPlotData(const _PlotData* data) : _data(data) {}
        size_t size() const override;
        QPointF sample(size_t i) const override;
        QRectF boundingRect() const override;

    private:
        const _PlotData* _data;
    };

    /// `first` and `second` are the variables, `title` the plot's; the names label the curves
    /// and their axes. Both variables get the same ranges and the fixed-range flag.
    PlotWaveDialog(QWidget* parent, const std::string& first, const std::string& second, const QString& title,
                   const QString& firstName, const QString& secondName, double xMin, double xMax, double xOffset,
                   double yMin, double yMax, bool fixedRange);
    ~PlotWaveDialog() override;

    /// A waveform arrived: the second variable's range becomes the zoom base's height.
    void _PlotUpdated(const std::string& variable, bool fixedRange, double lo, double hi);
    /// The first waveform set the x range: the second variable's takes it into the zoom base and
    /// zooms there.
    void _PlotXUpdated(const std::string& variable, bool fixedRange, double xMin, double xMax, double lo, double hi);

    QwtPlot* Plot() const { return _plot; }
    QwtPlotZoomer* Zoomer() const { return _zoomer; }
    const _PlotData& First() const { return _first; }
    const _PlotData& Second() const { return _second; }

public slots:
    /// "Scale": only the middle points set the range, from the next record on.
    void OnCheckboxStateChanged(int state);
    void OnNormalizedChanged(int state);
    void OnShowPointsChanged(int state);
    void OnZoomed(const QRectF& rect);
    /// Back to the second variable's whole range.
    void OnZoomOut();

private:
    QwtPlot* _plot;
    QwtPlotZoomer* _zoomer;
    QwtPlotGrid* _grid;
    QwtPlotCurve* _first_curve;
    QwtPlotCurve* _second_curve;
    QwtLegend* _legend;
    _PlotData _first, _second;
};
