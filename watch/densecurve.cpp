#include "watch/densecurve.h"

#include <cmath>

#include <qwt_painter.h>
#include <qwt_scale_map.h>

void PixelColumnFilter::Add(const QPointF& point)
{
    const int column = int(std::floor(point.x()));
    if (_open && column == _column) {
        if (point.y() < _low.y())
            _low = point;
        if (point.y() > _high.y())
            _high = point;
        _last = point;
        return;
    }
    _Flush();
    _open = true;
    _column = column;
    _first = _low = _high = _last = point;
}

const QPolygonF& PixelColumnFilter::Points()
{
    _Flush();
    return _points;
}

void PixelColumnFilter::_Flush()
{
    if (!_open)
        return;
    for (const QPointF& point : {_first, _low, _high, _last})
        _Keep(point);
    _open = false;
}

void PixelColumnFilter::_Keep(const QPointF& point)
{
    if (_points.isEmpty() || _points.last() != point)
        _points.append(point);
}

void DenseCurve::drawLines(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                           const QRectF& canvasRect, int from, int to) const
{
    if (!testPaintAttribute(FilterPoints)) {
        QwtPlotCurve::drawLines(painter, xMap, yMap, canvasRect, from, to);
        return;
    }
    PixelColumnFilter filter;
    const QwtSeriesData<QPointF>& series = *data();
    for (int i = from; i <= to; ++i) {
        const QPointF sample = series.sample(size_t(i));
        filter.Add(QPointF(xMap.transform(sample.x()), yMap.transform(sample.y())));
    }
    QwtPainter::drawPolyline(painter, filter.Points());
}
