#include "watch/mytablewidget.h"

void MyTableWidget::mouseMoveEvent(QMouseEvent* event)
{
    emit GotMouseMoveEvent(event);
}
