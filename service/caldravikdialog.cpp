#include "service/caldravikdialog.h"

#include <QBoxLayout>
#include <QDateTime>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

#include "libskarn/docdravik.h"
#include "service/calhistory.h"
#include "service/commands.h"
#include "service/leaftext.h"

namespace {

// A field never so narrow that a concentration such as "10000.0" is cut.
QLineEdit* gas_field(const char* text)
{
    auto* field = new QLineEdit(text);
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance("000000.0"));
    return field;
}

// The four analyser channels, in the order of their groups and of the span gas fields.
const char* const CHANNELS[] = {"co2a", "co2b", "h2oa", "h2ob"};

}  // namespace

std::vector<QStringList> CalDravikHistoryRows(ConfigCalHistoryDravik& history)
{
    std::vector<QStringList> rows;
    for (Configurable* child : history.children()) {
        auto* r = dynamic_cast<ConfigCalRecordDravik*>(child);
        if (!r)
            continue;
        QStringList row{QDateTime::fromSecsSinceEpoch(r->Time().get()).toString("yyyy-MM-dd hh:mm:ss"),
                        QString::fromStdString(r->Type().get())};
        for (ConfigurableFloat* value :
             {&r->Co2azero(), &r->Co2aspan1(), &r->Co2aspan2(), &r->Co2bzero(), &r->Co2bspan1(), &r->Co2bspan2(),
              &r->H2oazero(), &r->H2oaspan1(), &r->H2oaspan2(), &r->H2obzero(), &r->H2obspan1(), &r->H2obspan2(),
              &r->Tazero(), &r->Tbzero(), &r->Ssa_ref(), &r->Ssb_ref(), &r->Flowmeterzero(), &r->Flowazero(),
              &r->Flowbzero(), &r->Chamberpressurezero(), &r->Oxygen()})
            row << QString::number(value->get(), 'g', 6);
        rows.push_back(row);
    }
    return rows;
}

CalDravikDialog::CalDravikDialog(QWidget* parent, const std::string& name, DocDravik* doc, bool standalone)
    : CalPanel(parent, name, standalone,
               "This will keep the latest and erase old calibration history records. OK to clear?"),
      _doc(doc)
{
    auto* grid = new QGridLayout;
    auto button = [this](const char* text, QGridLayout* layout, int row, void (CalDravikDialog::*slot)()) {
        auto* b = new QPushButton(text);
        layout->addWidget(b, row, 2);
        connect(b, &QPushButton::clicked, this, slot);
    };

    using Slot = void (CalDravikDialog::*)();
    const struct {
        const char* title;
        const char* span1_gas;
        const char* span2_gas;
        Leaf zero, span1, span2, conc1, conc2;
        Slot zero_clicked, span1_clicked, span2_clicked;
    } channels[] = {
        {"CO2A", "300", "1000", &ConfigCalDravik::Co2azero, &ConfigCalDravik::Co2aspan1, &ConfigCalDravik::Co2aspan2,
         &ConfigCalDravik::Co2aspanconc1, &ConfigCalDravik::Co2aspanconc2, &CalDravikDialog::OnCO2AZeroClicked,
         &CalDravikDialog::OnCO2ASpan1Clicked, &CalDravikDialog::OnCO2ASpan2Clicked},
        {"CO2B", "300", "1000", &ConfigCalDravik::Co2bzero, &ConfigCalDravik::Co2bspan1, &ConfigCalDravik::Co2bspan2,
         &ConfigCalDravik::Co2bspanconc1, &ConfigCalDravik::Co2bspanconc2, &CalDravikDialog::OnCO2BZeroClicked,
         &CalDravikDialog::OnCO2BSpan1Clicked, &CalDravikDialog::OnCO2BSpan2Clicked},
        {"H2OA", "30", "100", &ConfigCalDravik::H2oazero, &ConfigCalDravik::H2oaspan1, &ConfigCalDravik::H2oaspan2,
         &ConfigCalDravik::H2oaspanconc1, &ConfigCalDravik::H2oaspanconc2, &CalDravikDialog::OnH2OAZeroClicked,
         &CalDravikDialog::OnH2OASpan1Clicked, &CalDravikDialog::OnH2OASpan2Clicked},
        {"H2OB", "30", "100", &ConfigCalDravik::H2obzero, &ConfigCalDravik::H2obspan1, &ConfigCalDravik::H2obspan2,
         &ConfigCalDravik::H2obspanconc1, &ConfigCalDravik::H2obspanconc2, &CalDravikDialog::OnH2OBZeroClicked,
         &CalDravikDialog::OnH2OBSpan1Clicked, &CalDravikDialog::OnH2OBSpan2Clicked},
    };
    int column = 0;
    for (const auto& c : channels) {
        auto* group = new QGroupBox(c.title);
        auto* layout = new QGridLayout(group);
        const struct {
            const char* label;
            Leaf leaf;
            const char* gas;
            Leaf conc;
            const char* button;
            Slot clicked;
        } rows[] = {
            {"Zero:", c.zero, nullptr, nullptr, "Zero", c.zero_clicked},
            {"Span1:", c.span1, c.span1_gas, c.conc1, "Span1", c.span1_clicked},
            {"Span2:", c.span2, c.span2_gas, c.conc2, "Span2", c.span2_clicked},
        };
        for (int row = 0; row < 3; ++row) {
            auto* label = new QLabel(rows[row].label);
            layout->addWidget(label, row, 0);
            _values.push_back({label, QString(rows[row].label) + " ", rows[row].leaf});
            if (rows[row].gas) {
                auto* gas = gas_field(rows[row].gas);
                layout->addWidget(gas, row, 1);
                _fields.push_back({gas, rows[row].conc});
            }
            button(rows[row].button, layout, row, rows[row].clicked);
        }
        layout->setColumnStretch(1, 1);  // the gas fields take the room, not the labels
        grid->addWidget(group, 0, column++);
    }

    auto* oxygen = new QGroupBox("Oxygen %");
    auto* oxygen_layout = new QGridLayout(oxygen);
    auto* oxygen_field = gas_field("21");
    oxygen_layout->addWidget(oxygen_field, 0, 1);
    _fields.push_back({oxygen_field, &ConfigCalDravik::Oxygen});
    button("Apply", oxygen_layout, 0, &CalDravikDialog::OnOxygenApplyClicked);
    grid->addWidget(oxygen, 0, 4);

    const struct {
        int row, column;
        const char* title;
        const char* label;
        Leaf leaf;
        const char* button;
        Slot clicked;
    } sensors[] = {
        {1, 0, "Chamber Pressure", "Zero:", &ConfigCalDravik::Chamberpressurezero, "Zero", &CalDravikDialog::OnChamberPZeroClicked},
        {1, 1, "TCell A", "Zero:", &ConfigCalDravik::Tazero, "Zero", &CalDravikDialog::OnTCellAZeroClicked},
        {1, 2, "TCell B", "Zero:", &ConfigCalDravik::Tbzero, "Zero", &CalDravikDialog::OnTCellBZeroClicked},
        {1, 3, "SS A", "Ref:", &ConfigCalDravik::Ssa_ref, "Reset", &CalDravikDialog::OnSSAResetClicked},
        {1, 4, "SS B", "Ref:", &ConfigCalDravik::Ssb_ref, "Reset", &CalDravikDialog::OnSSBResetClicked},
        {2, 0, "Flow Meter", "Zero:", &ConfigCalDravik::Flowmeterzero, "Zero", &CalDravikDialog::OnFlowZeroClicked},
        {2, 1, "Flow A", "Zero:", &ConfigCalDravik::Flowazero, "Zero", &CalDravikDialog::OnFlowAZeroClicked},
        {2, 2, "Flow B", "Zero:", &ConfigCalDravik::Flowbzero, "Zero", &CalDravikDialog::OnFlowBZeroClicked},
    };
    for (const auto& s : sensors) {
        auto* group = new QGroupBox(s.title);
        auto* layout = new QGridLayout(group);
        auto* label = new QLabel(s.label);
        layout->addWidget(label, 0, 0);
        layout->setColumnStretch(1, 1);
        _values.push_back({label, QString(s.label) + " ", s.leaf});
        button(s.button, layout, 0, s.clicked);
        grid->addWidget(group, s.row, s.column);
    }

    auto* undo = _Placeholder("Undo");
    auto* redo = _Placeholder("Redo");
    connect(undo, &QPushButton::clicked, this, &CalDravikDialog::OnUndoClicked);
    connect(redo, &QPushButton::clicked, this, &CalDravikDialog::OnRedoClicked);
    _Lay(grid,
         {"Timestamp", "Type", "CO2A Zero", "CO2A Span1", "CO2A Span2", "CO2B Zero", "CO2B Span1", "CO2B Span2",
          "H2OA Zero", "H2OA Span1", "H2OA Span2", "H2OB Zero", "H2OB Span1", "H2OB Span2", "TCell A Zero",
          "TCell B Zero", "SS A Ref", "SS B Ref", "FlowMeter Zero", "Flow A Zero", "Flow B Zero", "Chamber P Zero",
          "Oxygen"},
         0, undo, redo);

    _UpdateFromXML();
    // At least 900 wide, and wider where the groups need it for their fields.
    resize(std::max(900, minimumSizeHint().width()), sizeHint().height());
}

void CalDravikDialog::OnCO2AZeroClicked() { _Command("co2azero"); }
void CalDravikDialog::OnCO2ASpan1Clicked() { _Span(0, 1); }
void CalDravikDialog::OnCO2ASpan2Clicked() { _Span(0, 2); }
void CalDravikDialog::OnCO2BZeroClicked() { _Command("co2bzero"); }
void CalDravikDialog::OnCO2BSpan1Clicked() { _Span(1, 1); }
void CalDravikDialog::OnCO2BSpan2Clicked() { _Span(1, 2); }
void CalDravikDialog::OnH2OAZeroClicked() { _Command("h2oazero"); }
void CalDravikDialog::OnH2OASpan1Clicked() { _Span(2, 1); }
void CalDravikDialog::OnH2OASpan2Clicked() { _Span(2, 2); }
void CalDravikDialog::OnH2OBZeroClicked() { _Command("h2obzero"); }
void CalDravikDialog::OnH2OBSpan1Clicked() { _Span(3, 1); }
void CalDravikDialog::OnH2OBSpan2Clicked() { _Span(3, 2); }
void CalDravikDialog::OnChamberPZeroClicked() { _Command("chamberpressurezero"); }
void CalDravikDialog::OnTCellAZeroClicked() { _Command("tazero"); }
void CalDravikDialog::OnTCellBZeroClicked() { _Command("tbzero"); }
void CalDravikDialog::OnSSAResetClicked() { _Command("ssa_reset"); }
void CalDravikDialog::OnSSBResetClicked() { _Command("ssb_reset"); }
void CalDravikDialog::OnFlowZeroClicked() { _Command("flowmeterzero"); }
void CalDravikDialog::OnFlowAZeroClicked() { _Command("flowazero"); }
void CalDravikDialog::OnFlowBZeroClicked() { _Command("flowbzero"); }
void CalDravikDialog::OnUndoClicked() {}
void CalDravikDialog::OnRedoClicked() {}

void CalDravikDialog::OnOxygenApplyClicked()
{
    emit SendRawXML(CalLine("dravik", "oxygen", _fields.back().edit->text().toStdString()));
}

void CalDravikDialog::_ClearOldRecords()
{
    _doc->Conf().History().ClearOldRecords();
}

void CalDravikDialog::_Command(const std::string& element)
{
    emit SendRawXML(CommandLine("dravik", element));
}

void CalDravikDialog::_Span(int channel, int n)
{
    const std::string gas = _fields[size_t(channel * 2 + n - 1)].edit->text().toStdString();
    emit SendRawXML(DravikSpanLine(CHANNELS[channel], n, gas));
}

void CalDravikDialog::_UpdateFromXML()
{
    ConfigCalDravik& cal = _doc->Conf().Cal();
    for (const _Value& value : _values)
        value.label->setText(value.prefix + StreamText((cal.*value.leaf)().get()));
    for (const _Field& field : _fields)
        field.edit->setText(QString::number((cal.*field.leaf)().get(), 'f', 1));
    _history->SetRows(CalDravikHistoryRows(_doc->Conf().History()));
}
