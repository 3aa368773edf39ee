#include "service/calhistory.h"

#include <QMessageBox>
#include <QPushButton>

CalHistoryTree::CalHistoryTree(const QStringList& columns, QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(columns.size());
    setHeaderLabels(columns);
    setRootIsDecorated(false);
}

void CalHistoryTree::SetRows(const std::vector<QStringList>& rows)
{
    clear();
    for (const QStringList& texts : rows) {
        auto* item = new QTreeWidgetItem(texts);
        for (int column = 2; column < texts.size(); ++column)
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
        addTopLevelItem(item);
    }
    sortItems(0, Qt::AscendingOrder);
    for (int column = 0; column < columnCount(); ++column)
        resizeColumnToContents(column);
}

bool ConfirmClearOldHistory(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::Question, "Confirm Clear Old History", text, QMessageBox::NoButton, parent);
    QPushButton* clear = box.addButton("Clear", QMessageBox::YesRole);
    box.addButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == clear;
}
