#include "service/genericconfigdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleValidator>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "service/leaftext.h"

namespace {

const char* const kExclude = ":EXCLUDE:";
const char* const kButton = ":BTN:";

}  // namespace

struct GenericConfigDialog::WidgetTables {
    std::map<ConfigurableMultipleChoice*, QComboBox*> choices;
    std::map<Configurable*, QLineEdit*> edits;
    std::map<ConfigurableBool*, QCheckBox*> bools;

    template <class Map>
    static typename Map::mapped_type find(const Map& map, typename Map::key_type leaf)
    {
        auto it = map.find(leaf);
        return it == map.end() ? nullptr : it->second;
    }
};

namespace {

using WidgetTables = GenericConfigDialog::WidgetTables;

// The composites under the root, by their path from the root's first child: "cfg/network".
class _TopLevelNameVisitor : public ConfigurableVisitor {
public:
    void VisitConfigurableCompositeBegin(ConfigurableComposite& composite) override
    {
        _names.push_back(composite.name());
        if (_names.size() < 2)
            return;
        std::string path = _names[1];
        for (size_t i = 2; i < _names.size(); ++i)
            path += "/" + _names[i];
        pages.emplace(path, &composite);
    }
    void VisitConfigurableCompositeEnd(ConfigurableComposite&) override { _names.pop_back(); }

    std::map<std::string, ConfigurableComposite*> pages;

private:
    std::vector<std::string> _names;
};

// The "units" attribute of a leaf.
class _UnitsVisitor : public ConfigurableVisitor {
public:
    bool VisitAttributesBegin() override { return true; }
    void VisitConfigurableString(ConfigurableString& s) override
    {
        if (s.name() == "units")
            units = s.get();
    }

    std::string units;
};

// One row per leaf directly in the composite it is accepted by; deeper ones have pages of their own.
class _NodeViewCreator : public ConfigurableVisitor {
public:
    _NodeViewCreator(QDialog* dialog, QGridLayout* grid, const GenericConfigDialog::Labels& labels,
                     WidgetTables& widgets)
        : _dialog(dialog), _grid(grid), _labels(labels), _widgets(widgets)
    {
    }

    void VisitConfigurableCompositeBegin(ConfigurableComposite&) override { ++_depth; }
    void VisitConfigurableCompositeEnd(ConfigurableComposite&) override { --_depth; }

    void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice& leaf) override
    {
        if (!_Shown(leaf))
            return;
        auto* combo = new QComboBox(_dialog);
        for (const std::string& choice : leaf.choices())
            combo->addItem(QString::fromStdString(choice));
        combo->setCurrentIndex(leaf.get());
        _widgets.choices[&leaf] = combo;
        _AddRow(leaf, combo);
    }
    void VisitConfigurableFloat(ConfigurableFloat& leaf) override { _AddReal(leaf, leaf.get_min(), leaf.get_max()); }
    void VisitConfigurableDouble(ConfigurableDouble& leaf) override { _AddReal(leaf, leaf.get_min(), leaf.get_max()); }
    void VisitConfigurableInteger(ConfigurableInteger& leaf) override
    {
        if (!_Shown(leaf))
            return;
        auto cut = [](int64_t v) {
            return int(std::clamp<int64_t>(v, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
        };
        auto* edit = _AddEdit(leaf, Qt::AlignRight);
        edit->setValidator(new QIntValidator(cut(leaf.get_min()), cut(leaf.get_max()), edit));
    }
    void VisitConfigurableBool(ConfigurableBool& leaf) override
    {
        if (!_Shown(leaf) || _LookupLabel(leaf.name()) == kExclude)
            return;
        auto* box = new QCheckBox(_dialog);
        _widgets.bools[&leaf] = box;
        _AddRow(leaf, box);
    }
    void VisitConfigurableString(ConfigurableString& leaf) override
    {
        if (_Shown(leaf))
            _AddEdit(leaf, Qt::AlignLeft);
    }

    /// The label of a tag or path, or the name itself.
    std::string _LookupLabel(const std::string& name) const
    {
        auto it = _labels.find(name);
        return it == _labels.end() ? name : it->second;
    }

private:
    // A disabled leaf is absent from the wire, so it has nothing to edit.
    bool _Shown(const Configurable& leaf) const { return _depth == 1 && leaf.is_enabled(); }

    template <class Leaf>
    void _AddReal(Leaf& leaf, double min, double max)
    {
        if (_Shown(leaf))
            _AddEdit(leaf, Qt::AlignRight)->setValidator(new QDoubleValidator(min, max, 20, _dialog));
    }

    QLineEdit* _AddEdit(Configurable& leaf, Qt::Alignment alignment)
    {
        auto* edit = new QLineEdit(_dialog);
        edit->setAlignment(alignment);
        _widgets.edits[&leaf] = edit;
        _AddRow(leaf, edit);
        return edit;
    }

    void _AddRow(Configurable& leaf, QWidget* editor)
    {
        _grid->addWidget(new QLabel(QString::fromStdString(_LookupLabel(leaf.name())), _dialog), _row, 0);
        _grid->addWidget(editor, _row, 1);
        _UnitsVisitor units;
        leaf.do_accept_attributes(units);
        if (!units.units.empty())
            _grid->addWidget(new QLabel(QString::fromStdString(_LookupLabel(units.units)), _dialog), _row, 2);
        ++_row;
    }

    QDialog* _dialog;
    QGridLayout* _grid;
    const GenericConfigDialog::Labels& _labels;
    WidgetTables& _widgets;
    int _row = 0;
    int _depth = 0;
};

// Document to widgets.
class _WidgetUpdater : public ConfigurableVisitor {
public:
    explicit _WidgetUpdater(WidgetTables& widgets) : _widgets(widgets) {}

    void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice& leaf) override
    {
        if (auto* combo = WidgetTables::find(_widgets.choices, &leaf))
            combo->setCurrentIndex(leaf.get());
    }
    void VisitConfigurableFloat(ConfigurableFloat& leaf) override { _SetText(leaf); }
    void VisitConfigurableDouble(ConfigurableDouble& leaf) override { _SetText(leaf); }
    void VisitConfigurableInteger(ConfigurableInteger& leaf) override { _SetText(leaf); }
    void VisitConfigurableBool(ConfigurableBool& leaf) override
    {
        if (auto* box = WidgetTables::find(_widgets.bools, &leaf))
            box->setCheckState(leaf.get() ? Qt::Checked : Qt::Unchecked);
    }
    void VisitConfigurableString(ConfigurableString& leaf) override { _SetText(leaf); }

private:
    void _SetText(Configurable& leaf)
    {
        if (auto* edit = WidgetTables::find(_widgets.edits, &leaf))
            edit->setText(LeafText(leaf));
    }

    WidgetTables& _widgets;
};

// Widgets to document; a text that does not convert leaves its leaf as it was.
class _ConfigUpdater : public ConfigurableVisitor {
public:
    explicit _ConfigUpdater(WidgetTables& widgets) : _widgets(widgets) {}

    void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice& leaf) override
    {
        if (auto* combo = WidgetTables::find(_widgets.choices, &leaf))
            leaf.set(combo->currentIndex());
    }
    void VisitConfigurableFloat(ConfigurableFloat& leaf) override { _SetFromText(leaf); }
    void VisitConfigurableDouble(ConfigurableDouble& leaf) override { _SetFromText(leaf); }
    void VisitConfigurableInteger(ConfigurableInteger& leaf) override { _SetFromText(leaf); }
    void VisitConfigurableBool(ConfigurableBool& leaf) override
    {
        if (auto* box = WidgetTables::find(_widgets.bools, &leaf))
            leaf.set(box->checkState() == Qt::Checked);
    }
    void VisitConfigurableString(ConfigurableString& leaf) override { _SetFromText(leaf); }

private:
    void _SetFromText(Configurable& leaf)
    {
        if (auto* edit = WidgetTables::find(_widgets.edits, &leaf))
            SetLeafFromText(leaf, edit->text());
    }

    WidgetTables& _widgets;
};

}  // namespace

GenericConfigDialog::GenericConfigDialog(QWidget* parent, const std::string& title, Configurable* document,
                                         Labels labels)
    : ServiceDialog(parent), _document(document), _labels(std::move(labels)), _widgets(std::make_unique<WidgetTables>())
{
    setWindowTitle(QString::fromStdString(title));

    auto* outer = new QVBoxLayout(this);
    auto* body = new QHBoxLayout;
    outer->addLayout(body);
    _pages = new QListWidget(this);
    _stack = new QStackedLayout;
    body->addWidget(_pages);
    body->addLayout(_stack, 1);
    connect(_pages, &QListWidget::currentRowChanged, _stack, &QStackedLayout::setCurrentIndex);

    _AddPage("General", *_document);
    _TopLevelNameVisitor top;
    _document->do_accept(top);
    for (const auto& [path, composite] : top.pages) {
        auto label = _labels.find(path);
        const std::string name = label == _labels.end() ? path : label->second;
        if (name != kExclude)
            _AddPage(QString::fromStdString(name), *composite);
    }

    // The list is as wide as its longest page name, so that no name is cut.
    _pages->setFixedWidth(_pages->sizeHintForColumn(0) + 2 * _pages->frameWidth() +
                          _pages->verticalScrollBar()->sizeHint().width());

    auto* custom = new QHBoxLayout;
    outer->addLayout(custom);
    for (const auto& [key, value] : _labels) {
        const size_t at = value.find(kButton);
        if (at == std::string::npos)
            continue;
        const std::string rest = value.substr(at + std::string(kButton).size());
        const size_t colon = rest.find(':');
        const QString label = QString::fromStdString(rest.substr(0, colon));
        auto* button = new QPushButton(label, this);
        custom->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, label] { OnCustomButtonPressed(label); });
        if (colon != std::string::npos) {
            const QString message = QString::fromStdString(rest.substr(colon + 1));
            connect(button, &QPushButton::clicked, this, [this, message] { OnCustomButtonXMLPressed(message); });
        }
    }
    custom->addStretch();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Apply | QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* refresh = buttons->addButton("Refresh", QDialogButtonBox::ActionRole);
    outer->addWidget(buttons);
    connect(refresh, &QPushButton::clicked, this, &GenericConfigDialog::OnRefresh);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &GenericConfigDialog::OnApply);
    connect(buttons, &QDialogButtonBox::accepted, this, &GenericConfigDialog::OnOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &GenericConfigDialog::OnCancel);

    _pages->setCurrentRow(0);
    _UpdateFromXML();
}

GenericConfigDialog::~GenericConfigDialog() = default;

void GenericConfigDialog::_AddPage(const QString& name, Configurable& node)
{
    _pages->addItem(name);
    auto* page = new QWidget(this);
    auto* column = new QVBoxLayout(page);
    auto* group = new QGroupBox(name, page);
    column->addWidget(group);
    column->addStretch();
    auto* grid = new QGridLayout(group);
    _stack->addWidget(page);
    _NodeViewCreator creator(this, grid, _labels, *_widgets);
    node.do_accept(creator);
}

void GenericConfigDialog::_UpdateFromXML()
{
    _WidgetUpdater updater(*_widgets);
    _document->do_accept(updater);
}

void GenericConfigDialog::_ApplyToXML()
{
    _ConfigUpdater updater(*_widgets);
    _document->do_accept(updater);
    emit SendXMLChanges();
}

void GenericConfigDialog::OnRefresh()
{
    _UpdateFromXML();
}

void GenericConfigDialog::OnApply()
{
    _ApplyToXML();
}

void GenericConfigDialog::OnOk()
{
    _ApplyToXML();
    close();
}

void GenericConfigDialog::OnCancel()
{
    reject();
}

void GenericConfigDialog::reject()
{
    _UpdateFromXML();
    ServiceDialog::reject();
}

void GenericConfigDialog::OnCustomButtonPressed(QString label)
{
    emit ButtonClicked(label.toStdString());
}

void GenericConfigDialog::OnCustomButtonXMLPressed(QString message)
{
    emit SendRawXML(message.toStdString());
}

void GenericConfigDialog::OnXMLChanged()
{
    _UpdateFromXML();
}
