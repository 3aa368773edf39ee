#include "service/calpanel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "service/calhistory.h"

CalPanel::CalPanel(QWidget* parent, const std::string& name, bool standalone, QString clear_question)
    : ServiceDialog(parent), _clear_question(std::move(clear_question))
{
    if (standalone) {
        setWindowFlags(Qt::WindowFlags());
        setSizeGripEnabled(true);
    }
    setWindowTitle(QString::fromStdString("Calibration Control Panel: " + name));
}

void CalPanel::_Lay(QLayout* controls, const QStringList& columns, int history_stretch, QPushButton* first,
                    QPushButton* second)
{
    auto* history_row = new QHBoxLayout;
    history_row->addWidget(new QLabel("History:"));
    history_row->addStretch();
    auto* clear = new QPushButton("Clear Old History...");
    history_row->addWidget(clear);

    _history = new CalHistoryTree(columns, this);

    auto* advanced = new QPushButton("Advanced...");
    QPushButton* close = _CloseButton();

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls);
    layout->addLayout(history_row);
    layout->addWidget(_history, history_stretch);
    layout->addLayout(_ButtonRow({first, second, advanced, nullptr, close}));

    connect(clear, &QPushButton::clicked, this, &CalPanel::OnClearHistoryClicked);
    connect(advanced, &QPushButton::clicked, this, &CalPanel::OnAdvancedClicked);
    connect(close, &QPushButton::clicked, this, &CalPanel::OnCloseClicked);
}

QPushButton* CalPanel::_Placeholder(const char* text)
{
    auto* button = new QPushButton(text);
    button->setEnabled(false);
    return button;
}

void CalPanel::OnClearHistoryClicked()
{
    if (!ConfirmClearOldHistory(this, _clear_question))
        return;
    _history->clear();
    _ClearOldRecords();
    emit SendXMLChanges();
}

void CalPanel::OnXMLChanged()
{
    _UpdateFromXML();
}
