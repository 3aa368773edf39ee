#include "watch/watchdialog.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QFileDialog>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>

#include <algorithm>
#include <tuple>

#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"

namespace {

const char* const kLogStart = "Log...";
const char* const kLogStop = "Stop Log";

}  // namespace

WatchDialog::WatchDialog(QWidget* parent, const std::string& name, const std::string& type, const QString& model,
                         std::vector<std::string> records)
    : ServiceDialog(parent),
      _connector(Connector::Factory(parent, name, type)),
      _names(std::move(records)),
      _table(new MyTableWidget(this)),
      _log_button(new QPushButton(_connector->IsLogging() ? kLogStop : kLogStart, this)),
      _model(model),
      _type(type)
{
    setAttribute(Qt::WA_DeleteOnClose);
    _UpdateColumnHeader();
    connect(_table, &QTableWidget::cellDoubleClicked, this, &WatchDialog::OnCellDoubleClicked);
    connect(_table, &QTableWidget::cellPressed, this, &WatchDialog::OnCellPressed);
    connect(_table, &MyTableWidget::GotMouseMoveEvent, this, &WatchDialog::OnCellMouseMoved);
    connect(_log_button, &QPushButton::clicked, this, &WatchDialog::OnLogClicked);
    _SetTitle(name);
}

WatchDialog::~WatchDialog()
{
    _connector->UnRegisterListener(this);
}

void WatchDialog::Connect(const std::string& address, int scope, int port)
{
    _connector->Connect(address, scope, port);
    _SetTitle(_connector->Host() + ": IP=" + address);
}

void WatchDialog::Disconnect()
{
    _connector->Disconnect();
    _SetTitle(_connector->Host() + ": --Disconnected--");
}

WatchLayout WatchDialog::Layout() const
{
    WatchLayout layout;
    layout.name = _connector->Host();
    layout.model = _type;
    std::tie(layout.address, layout.port) = SplitTarget(_connector->ConnectedTo());
    layout.geometry = GeometryOf(*this);
    for (const PlotDialog* chart : findChildren<PlotDialog*>(QString(), Qt::FindDirectChildrenOnly))
        if (chart->isVisible())
            layout.charts.push_back(chart->Layout());
    return layout;
}

void WatchDialog::_SetTitle(const std::string& rest)
{
    setWindowTitle("Watching " + _model + ": " + QString::fromStdString(rest));
}

void WatchDialog::_UpdateColumnHeader()
{
    _table->setColumnCount(int(_names.size()));
    QStringList labels;
    for (size_t i = 1; i < _names.size(); i += 2)
        labels << QString::fromStdString(_names[i]) << QString();
    _table->setHorizontalHeaderLabels(labels);
}

void WatchDialog::SetItem(int row, int column, const QString& text)
{
    if (QTableWidgetItem* item = _table->item(row, column)) {
        item->setText(text);
        return;
    }
    if (_table->rowCount() <= row)
        _table->setRowCount(row + 1);
    if (_table->columnCount() <= column)
        _table->setColumnCount(column + 1);
    auto* item = new QTableWidgetItem(text);
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    _table->setItem(row, column, item);
}

void WatchDialog::ClrItem(int row, int column)
{
    if (QTableWidgetItem* item = _table->item(row, column))
        item->setText(QString());
}

void WatchDialog::_UpdateColumn(int column, const std::vector<std::string>& strings)
{
    int row = 0;
    for (const std::string& text : strings)
        SetItem(row++, column, QString::fromStdString(text));
    for (; row < _table->rowCount(); ++row)
        ClrItem(row, column);
}

std::string WatchDialog::GetVarString(int row, int column) const
{
    const int even = column & ~1, odd = column | 1;
    if (even < 0 || even >= int(_names.size()) - 1)
        return "";
    const std::vector<std::string>& header = _connector->Header(_names[even]);
    if (row < 0 || int(header.size()) <= row)
        return "";
    return VariableString(_connector->Host(), _names[odd], header[row]).str();
}

void WatchDialog::GotConnectorHeader(Connector& connector, std::string record)
{
    const auto found = std::find(_names.begin(), _names.end(), record);
    if (found == _names.end())
        return;
    _Refresh([&] { _UpdateColumn(int(found - _names.begin()), connector.Header(record)); });
}

void WatchDialog::_UpdateValueColumns()
{
    _Refresh([&] {
        for (size_t column = 1; column < _names.size(); column += 2)
            _UpdateColumn(int(column), _connector->VarStrings(_names[column]));
    });
}

void WatchDialog::_Refresh(const std::function<void()>& fill)
{
    _table->setUpdatesEnabled(false);
    fill();
    _table->setUpdatesEnabled(true);
}

void WatchDialog::OnCellDoubleClicked(int row, int column)
{
    auto* plot = new PlotDialog(this, GetVarString(row, column | 1), _model + " Data");
    plot->show();
}

void WatchDialog::OnCellPressed(int row, int column)
{
    _press_position = QCursor::pos();
    _drag_text = QString::fromStdString(GetVarString(row, column | 1));
}

void WatchDialog::OnCellMouseMoved(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPointF global = event->screenPos();
    const QPoint moved = QPoint(qRound(global.x()), qRound(global.y())) - _press_position;
    // Three drag distances: a press that shakes a little must not start a drag.
    if (moved.manhattanLength() < 3 * QApplication::startDragDistance())
        return;
    auto* drag = new QDrag(this);
    auto* mime = new QMimeData;
    mime->setText(_drag_text);
    drag->setMimeData(mime);
    drag->exec(Qt::CopyAction);
}

void WatchDialog::OnLogClicked()
{
    if (_connector->IsLogging()) {
        _connector->StopLoggingToFile();
        _log_button->setText(kLogStart);
        emit LogStatusChanged();
        return;
    }
    const QString path =
        QFileDialog::getSaveFileName(this, "Log Data To File", QString::fromStdString(_connector->LogFileName()));
    if (path.isEmpty())
        return;
    _connector->SetLogFileName(path.toUtf8().toStdString());
    _connector->StartLoggingToFile();
    // A file that cannot be had leaves the button as it was.
    if (_connector->IsLogging()) {
        _log_button->setText(kLogStop);
        emit LogStatusChanged();
    }
}
