#include "service/caldravikadvanceddialog.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include "libskarn/docdravik.h"
#include "service/leaftext.h"

CalDravikAdvancedDialog::CalDravikAdvancedDialog(QWidget* parent, const std::string& name, DocDravik* doc)
    : CalEditor(parent, name), _doc(doc)
{
    struct Row {
        const char* label;
        Leaf leaf;
        const char* unit;
    };
    const struct {
        const char* title;
        std::vector<Row> rows;
    } groups[] = {
        {"CO2A", {{"Zero:", &ConfigCalDravik::Co2azero, nullptr}, {"Span1:", &ConfigCalDravik::Co2aspan1, nullptr},
                  {"Span1 Gas:", &ConfigCalDravik::Co2aspanconc1, "µmol/mol"}, {"Span2:", &ConfigCalDravik::Co2aspan2, nullptr},
                  {"Span2 Gas:", &ConfigCalDravik::Co2aspanconc2, "µmol/mol"}}},
        {"CO2B", {{"Zero:", &ConfigCalDravik::Co2bzero, nullptr}, {"Span1:", &ConfigCalDravik::Co2bspan1, nullptr},
                  {"Span1 Gas:", &ConfigCalDravik::Co2bspanconc1, "µmol/mol"}, {"Span2:", &ConfigCalDravik::Co2bspan2, nullptr},
                  {"Span2 Gas:", &ConfigCalDravik::Co2bspanconc2, "µmol/mol"}}},
        {"H2OA", {{"Zero:", &ConfigCalDravik::H2oazero, nullptr}, {"Span1:", &ConfigCalDravik::H2oaspan1, nullptr},
                  {"Span1 Gas:", &ConfigCalDravik::H2oaspanconc1, "mmol/mol"}, {"Span2:", &ConfigCalDravik::H2oaspan2, nullptr},
                  {"Span2 Gas:", &ConfigCalDravik::H2oaspanconc2, "mmol/mol"}}},
        {"H2OB", {{"Zero:", &ConfigCalDravik::H2obzero, nullptr}, {"Span1:", &ConfigCalDravik::H2obspan1, nullptr},
                  {"Span1 Gas:", &ConfigCalDravik::H2obspanconc1, "mmol/mol"}, {"Span2:", &ConfigCalDravik::H2obspan2, nullptr},
                  {"Span2 Gas:", &ConfigCalDravik::H2obspanconc2, "mmol/mol"}}},
        {"TCell A", {{"Zero:", &ConfigCalDravik::Tazero, nullptr}}},
        {"TCell B", {{"Zero:", &ConfigCalDravik::Tbzero, nullptr}}},
        {"Flow Meter", {{"Zero:", &ConfigCalDravik::Flowmeterzero, nullptr}}},
        {"Flow A", {{"Zero:", &ConfigCalDravik::Flowazero, nullptr}}},
        {"Flow B", {{"Zero:", &ConfigCalDravik::Flowbzero, nullptr}}},
        {"Chamber Pressure", {{"Zero:", &ConfigCalDravik::Chamberpressurezero, nullptr}}},
        {"SS A", {{"Ref:", &ConfigCalDravik::Ssa_ref, nullptr}}},
        {"SS B", {{"Ref:", &ConfigCalDravik::Ssb_ref, nullptr}}},
    };
    // The four channels in the first row, the sensors four to a row below them.
    auto* grid = new QGridLayout;
    int index = 0;
    for (const auto& g : groups) {
        auto* group = new QGroupBox(g.title);
        auto* layout = new QGridLayout(group);
        int row = 0;
        for (const Row& r : g.rows) {
            auto* edit = new QLineEdit;
            layout->addWidget(new QLabel(r.label), row, 0);
            layout->addWidget(edit, row, 1);
            if (r.unit)
                layout->addWidget(new QLabel(QString::fromUtf8(r.unit)), row, 2);
            _fields.push_back({edit, r.leaf});
            ++row;
        }
        layout->setRowStretch(row, 1);
        grid->addWidget(group, index / 4, index % 4);
        ++index;
    }

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(_Foot());

    _UpdateFromXML();
}

void CalDravikAdvancedDialog::_UpdateFromXML()
{
    ConfigCalDravik& cal = _doc->Conf().Cal();
    for (const _Field& field : _fields)
        field.edit->setText(LeafText((cal.*field.leaf)()));
}

void CalDravikAdvancedDialog::_ApplyToXML()
{
    ConfigCalDravik& cal = _doc->Conf().Cal();
    for (const _Field& field : _fields)
        SetLeafFromText((cal.*field.leaf)(), field.edit->text());
}
