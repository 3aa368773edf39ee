#include "service/caleditor.h"

#include <QBoxLayout>
#include <QPushButton>

#include "service/footrow.h"

CalEditor::CalEditor(QWidget* parent, const std::string& name) : QDialog(parent)
{
    setWindowTitle(QString::fromStdString("Advanced Calibration: " + name));
}

QLayout* CalEditor::_Foot()
{
    const FootRow row = RefreshApplyCloseRow(this);
    connect(row.refresh, &QPushButton::clicked, this, &CalEditor::OnRefreshClicked);
    connect(row.apply, &QPushButton::clicked, this, &CalEditor::OnApplyClicked);
    return row.layout;
}

void CalEditor::OnApplyClicked()
{
    _ApplyToXML();
    emit SendXMLChanges();
    emit CalUpdated();
}

void CalEditor::OnRefreshClicked()
{
    _UpdateFromXML();
}

void CalEditor::OnXMLChanged()
{
    _UpdateFromXML();
}
