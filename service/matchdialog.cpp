#include "service/matchdialog.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QPushButton>

#include "configurable/configbuiltin.h"

MatchDialog::MatchDialog(QWidget* parent, const std::string& name, ConfigurableFloat* valve)
    : ServiceDialog(parent), _valve(valve)
{
    setWindowTitle(QString::fromStdString("Match Valve: " + name));
    auto* group = new QGroupBox("Match Valve");
    auto* row = new QHBoxLayout(group);
    auto* straight = new QPushButton("&Straight");
    auto* cross = new QPushButton("&Cross");
    auto* toggle = new QPushButton("&Toggle");
    row->addWidget(straight);
    row->addWidget(cross);
    row->addWidget(toggle);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addLayout(_ButtonRow({nullptr, _CloseButton()}));

    connect(straight, &QPushButton::clicked, this, &MatchDialog::OnStraightClicked);
    connect(cross, &QPushButton::clicked, this, &MatchDialog::OnCrossClicked);
    connect(toggle, &QPushButton::clicked, this, &MatchDialog::OnToggleClicked);
}

void MatchDialog::OnStraightClicked()
{
    _Set(100);
}

void MatchDialog::OnCrossClicked()
{
    _Set(-100);
}

void MatchDialog::OnToggleClicked()
{
    _Set(_valve->get() < 0 ? 100 : -100);
}

void MatchDialog::_Set(float value)
{
    _valve->set(value);
    emit SendXMLChanges();
}
