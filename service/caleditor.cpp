#include "service/caleditor.h"

#include <QBoxLayout>
#include <QPushButton>

CalEditor::CalEditor(QWidget* parent, const std::string& name) : ServiceDialog(parent)
{
    setWindowTitle(QString::fromStdString("Advanced Calibration: " + name));
}

QLayout* CalEditor::_Foot()
{
    const _RefreshApply foot = _RefreshApplyCloseRow();
    connect(foot.refresh, &QPushButton::clicked, this, &CalEditor::OnRefreshClicked);
    connect(foot.apply, &QPushButton::clicked, this, &CalEditor::OnApplyClicked);
    return foot.row;
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
