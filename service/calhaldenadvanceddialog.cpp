#include "service/calhaldenadvanceddialog.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include <limits>

#include "libskarn/dochalden.h"
#include "service/leaftext.h"

namespace {

// Through a float, truncated: what the instrument's own tools do with counts.
void apply(const QLineEdit* field, ConfigurableInteger& zero)
{
    const std::optional<float> read = NumberOf<float>(field->text());
    if (!read)
        return;
    const float value = *read;
    // Beyond 64 bits the conversion would be undefined; the leaf clamps to its limits anyway.
    if (value >= 0x1p63f)
        zero.set(std::numeric_limits<int64_t>::max());
    else if (value <= -0x1p63f)
        zero.set(std::numeric_limits<int64_t>::min());
    else
        zero.set(int64_t(value));
}

}  // namespace

CalHaldenAdvancedDialog::CalHaldenAdvancedDialog(QWidget* parent, const std::string& name, DocHalden* doc)
    : CalEditor(parent, name), _doc(doc)
{
    auto* groups = new QHBoxLayout;
    auto group = [groups](const char* title, const char* label) {
        auto* box = new QGroupBox(title);
        auto* layout = new QHBoxLayout(box);
        auto* edit = new QLineEdit;
        layout->addWidget(new QLabel(label));
        layout->addWidget(edit);
        groups->addWidget(box);
        return edit;
    };
    _dc0 = group("DC0", "DC0:");
    _pc0 = group("Pc0", "Pc0:");

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addLayout(_Foot());

    _UpdateFromXML();
}

void CalHaldenAdvancedDialog::_UpdateFromXML()
{
    ConfigCalHalden& cal = _doc->Conf().Cal();
    _dc0->setText(QString::number(cal.DC0().get(), 10));
    _pc0->setText(QString::number(cal.Pc0().get(), 10));
}

void CalHaldenAdvancedDialog::_ApplyToXML()
{
    ConfigCalHalden& cal = _doc->Conf().Cal();
    apply(_dc0, cal.DC0());
    apply(_pc0, cal.Pc0());
}
