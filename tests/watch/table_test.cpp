// The watch window's table: pairs of columns, charts by double click, drags, the log switch.

#include <QDrag>
#include <QFileDialog>
#include <QMimeData>
#include <QMouseEvent>
#include <QTemporaryDir>

#include "tests/watch/watch_test_util.h"
#include "watch/mytablewidget.h"
#include "watch/plotdialog.h"
#include "watch/watchtolvandialog.h"

namespace {

class WatchTable : public ::testing::Test {
protected:
    void TearDown() override { delete window; }
    QStringList Column(int column)
    {
        QStringList texts;
        for (int row = 0; row < table->rowCount(); ++row)
            texts << (table->item(row, column) ? table->item(row, column)->text() : "<none>");
        return texts;
    }
    void Feed(const std::string& line) { window->GetConnector().HandleData(line); }

    WatchTolvanDialog* window = new WatchTolvanDialog(nullptr, test_host(), "tolvan");
    MyTableWidget* table = window->findChild<MyTableWidget*>();
};

TEST_F(WatchTable, PairsFillFromHeadersKeepTheirRowsAndChartFromEitherCell)
{
    EXPECT_EQ(window->windowTitle().toStdString(), "Watching Tolvan: " + test_host());
    QStringList labels;
    for (int column = 0; column < table->columnCount(); ++column)
        labels << table->horizontalHeaderItem(column)->text();
    EXPECT_EQ(labels, (QStringList{"DATA", "", "DATASTAT", "", "DATADIAG", "", "DATACLOCKSYNC", "", "DATATEST", ""}));
    const QStringList none{"<none>", "<none>", "<none>", "<none>", "<none>", "<none>"};

    // A header before any data: the name column fills, the value column stays empty.
    Feed("DATASTATH\tMSEC\tSECONDS\tNANOSECONDS\tDIAG\tLCT\tCHK\n");
    EXPECT_EQ(Column(2), (QStringList{"MSEC", "SECONDS", "NANOSECONDS", "DIAG", "LCT", "CHK"}));
    EXPECT_EQ(Column(3), none);
    // Only "DATASTAT" repaints, and then every value column.
    Feed("DATAH\tA\tB\tC\tD\tCHK\n");
    Feed(with_sum("DATA\t1\t2\t3\t4\t"));
    EXPECT_EQ(Column(1), none);
    Feed(with_sum("DATASTAT\t0\t100\t500000000\t5\t25.125\t"));
    EXPECT_EQ(Column(1).mid(0, 4), (QStringList{"1", "2", "3", "4"}));  // then the sum, then a blank
    EXPECT_EQ(Column(1)[5], "<none>");
    EXPECT_EQ(Column(3).mid(0, 5), (QStringList{"0", "100", "500000000", "5", "25.125"}));
    // A record that shortens leaves blanks; no row goes.
    Feed("DATAH\tA\tB\n");
    EXPECT_EQ(Column(0), (QStringList{"A", "B", "", "", "", "<none>"}));
    EXPECT_EQ(table->rowCount(), 6);
    EXPECT_FALSE(table->item(0, 0)->flags() & Qt::ItemIsEditable);

    for (int column : {0, 1})
        window->OnCellDoubleClicked(1, column);
    window->OnCellDoubleClicked(7, 0);  // past the record: a chart with nothing on it
    const QList<PlotDialog*> plots = window->findChildren<PlotDialog*>();
    ASSERT_EQ(plots.size(), 3);
    for (PlotDialog* plot : plots.mid(0, 2)) {
        ASSERT_EQ(plot->Variables().size(), 1u);
        EXPECT_EQ(plot->Variables()[0]->text, test_host() + ":DATA:B");
        EXPECT_EQ(plot->windowTitle(), "Tolvan Data");
    }
    EXPECT_TRUE(plots[2]->Variables().empty());
    EXPECT_EQ(window->GetVarString(0, 9), "");  // no header for DATATEST yet
}

TEST_F(WatchTable, DragStartsAtThreeDragDistances)
{
    Feed("DATAH\tA\tB\tCHK\n");
    const int distance = 3 * QApplication::startDragDistance();
    const struct { int moved; Qt::MouseButtons buttons; bool drags; } cases[] = {
        {distance - 1, Qt::LeftButton, false}, {distance, Qt::LeftButton, true}, {distance, Qt::NoButton, false}};
    for (const auto& c : cases) {
        QCursor::setPos(200, 200);
        window->OnCellPressed(1, 0);
        // Ends the drag's own event loop where the platform has one.
        QTimer::singleShot(0, [] { QDrag::cancel(); });
        QMouseEvent move(QEvent::MouseMove, QPointF(10, 10), QPointF(200, 200 + c.moved), Qt::NoButton, c.buttons,
                         Qt::NoModifier);
        QApplication::sendEvent(table->viewport(), &move);
        QDrag* drag = window->findChild<QDrag*>();
        EXPECT_EQ(drag != nullptr, c.drags) << c.moved;
        if (drag) {
            EXPECT_EQ(drag->mimeData()->text().toStdString(), test_host() + ":DATA:B");
            delete drag;
        }
    }
}

TEST_F(WatchTable, LogSwitchIsSharedThroughTheConnector)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("watch.txt");
    QPushButton* log = find_button(*window, "Log...");
    ASSERT_TRUE(log);
    QSignalSpy changed(window, &WatchDialog::LogStatusChanged);
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->windowTitle(), "Log Data To File");
        dialog->selectFile(path);
        static_cast<QDialog*>(dialog)->accept();
    });
    log->click();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(log->text(), "Stop Log");
    EXPECT_TRUE(window->GetConnector().IsLogging());
    EXPECT_EQ(window->GetConnector().LogFileName(), path.toStdString());

    WatchTolvanDialog second(nullptr, test_host(), "tolvan");
    EXPECT_EQ(&second.GetConnector(), &window->GetConnector());
    EXPECT_TRUE(find_button(second, "Stop Log"));
    log->click();
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(log->text(), "Log...");
    EXPECT_FALSE(window->GetConnector().IsLogging());
}

}  // namespace
