#pragma once
// The table of every watch window.

#include <QTableWidget>

class QMouseEvent;

/// A QTableWidget whose mouse movements belong to its owner: pressing and moving never
/// rubber-bands a selection, it only reports the movement, so that the owner can start a drag.
class MyTableWidget : public QTableWidget {
    Q_OBJECT
public:
    using QTableWidget::QTableWidget;

signals:
    void GotMouseMoveEvent(QMouseEvent* event);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
};
