#include "service/servicedialog.h"

#include <QBoxLayout>
#include <QPushButton>

void ServiceDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    for (QPushButton* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
}

QHBoxLayout* ServiceDialog::_ButtonRow(std::initializer_list<QPushButton*> buttons)
{
    auto* row = new QHBoxLayout;
    for (QPushButton* button : buttons)
        button ? row->addWidget(button) : row->addStretch();
    return row;
}

QPushButton* ServiceDialog::_CloseButton()
{
    auto* close = new QPushButton("Close");
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    return close;
}

ServiceDialog::_RefreshApply ServiceDialog::_RefreshApplyCloseRow()
{
    auto* refresh = new QPushButton("Refresh");
    auto* apply = new QPushButton("Apply");
    return {_ButtonRow({nullptr, refresh, apply, _CloseButton()}), refresh, apply};
}
