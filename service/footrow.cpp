#include "service/footrow.h"

#include <QBoxLayout>
#include <QDialog>
#include <QPushButton>

FootRow RefreshApplyCloseRow(QDialog* dialog)
{
    FootRow row{new QHBoxLayout, new QPushButton("Refresh"), new QPushButton("Apply"), new QPushButton("Close")};
    row.layout->addStretch();
    row.layout->addWidget(row.refresh);
    row.layout->addWidget(row.apply);
    row.layout->addWidget(row.close);
    QObject::connect(row.close, &QPushButton::clicked, dialog, &QDialog::close);
    return row;
}
