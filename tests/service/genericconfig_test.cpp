#include <QCheckBox>
#include <QDoubleValidator>
#include <QGridLayout>
#include <QIntValidator>
#include <QListWidget>

#include <climits>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"
#include "libskarn/configcommon.h"
#include "service/modeldialogs.h"
#include "tests/service/wire.h"

Q_DECLARE_METATYPE(std::string)

namespace {

// Root "R" with no leaves of its own: zeta{z}, alpha{n, flag, inner{s}}.
struct SmallTree : ConfigurableComposite {
    ConfigurableComposite zeta{"zeta"}, alpha{"alpha"}, inner{"inner"};
    ConfigurableFloat z{"z", 1.5f};
    ConfigurableInteger n{"n", 7, 0, 1000000000000};
    ConfigurableBool flag{"flag", true};
    ConfigurableString s{"s", "text"};
    SmallTree() : ConfigurableComposite("R")
    {
        AttachUnitsAttribute(z, "Hz");
        zeta.add(z);
        alpha.add(n);
        alpha.add(flag);
        inner.add(s);
        alpha.add(inner);
        add(zeta);
        add(alpha);
    }
};

QStringList page_names(const GenericConfigDialog& dialog)
{
    QStringList names;
    for (int i = 0; i < dialog.Pages()->count(); ++i)
        names << dialog.Pages()->item(i)->text();
    return names;
}

TEST(GenericConfig, PagesInPathOrderWithLabelsAndExclusions)
{
    const struct { GenericConfigDialog::Labels labels; QStringList pages, absent_rows; } cases[] = {
        {{}, {"General", "alpha", "alpha/inner", "zeta"}, {}},
        {{{"zeta", "A Zeta"}, {"alpha", "Z Alpha"}}, {"General", "Z Alpha", "alpha/inner", "A Zeta"}, {}},
        {{{"alpha", ":EXCLUDE:"}}, {"General", "alpha/inner", "zeta"}, {"n", "flag"}},
        {{{"flag", ":EXCLUDE:"}, {"n", ":EXCLUDE:"}}, {"General", "alpha", "alpha/inner", "zeta"}, {"flag"}},
    };
    for (const auto& c : cases) {
        SmallTree tree;
        GenericConfigDialog dialog(nullptr, "Small", &tree, c.labels);
        EXPECT_EQ(page_names(dialog), c.pages);
        EXPECT_EQ(group(&dialog, "General")->layout()->count(), 0);  // the root has no leaves
        for (const QString& row : c.absent_rows)
            EXPECT_FALSE(label_texts(&dialog).contains(row)) << row.toStdString();
    }
}

TEST(GenericConfig, EditorsCarryLimitsUnitsAndValuesAndButtonsTheirMessages)
{
    qRegisterMetaType<std::string>();
    SmallTree tree;
    GenericConfigDialog dialog(nullptr, "Small", &tree,
                               {{"Hz", "hertz"}, {"a", "ignored:BTN:Red Mod On:<arvex><x>1</x></arvex>\n"}, {"b", ":BTN:Plain"}});
    ASSERT_EQ(dialog.findChildren<QLineEdit*>().size(), 3);
    auto* n = group(&dialog, "alpha")->findChild<QLineEdit*>();
    auto* s = group(&dialog, "alpha/inner")->findChild<QLineEdit*>();
    auto* z = group(&dialog, "zeta")->findChild<QLineEdit*>();
    auto* integer = qobject_cast<const QIntValidator*>(n->validator());
    ASSERT_TRUE(qobject_cast<const QDoubleValidator*>(z->validator()) && integer);
    EXPECT_EQ(integer->bottom(), 0);
    EXPECT_EQ(integer->top(), INT_MAX);
    EXPECT_EQ(s->validator(), nullptr);
    EXPECT_EQ(z->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);
    EXPECT_EQ(s->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
    EXPECT_EQ(z->text(), "1.5");
    EXPECT_TRUE(label_texts(&dialog).contains("hertz"));
    EXPECT_TRUE(dialog.findChildren<QCheckBox*>().at(0)->isChecked());
    // A text that does not convert leaves its leaf alone; the others go in.
    n->setText("x");
    z->setText("2.25");
    s->setText("other");
    dialog.findChildren<QCheckBox*>().at(0)->setChecked(false);
    dialog._ApplyToXML();
    EXPECT_EQ(tree.n.get(), 7);
    EXPECT_EQ(tree.z.get(), 2.25f);
    EXPECT_EQ(tree.s.get(), "other");
    EXPECT_FALSE(tree.flag.get());
    QSignalSpy clicked(&dialog, &GenericConfigDialog::ButtonClicked);
    QSignalSpy raw(&dialog, &GenericConfigDialog::SendRawXML);
    Click(&dialog, "Red Mod On");
    Click(&dialog, "Plain");
    ASSERT_EQ(clicked.count(), 2);
    EXPECT_EQ(clicked[0][0].value<std::string>(), "Red Mod On");
    EXPECT_EQ(clicked[1][0].value<std::string>(), "Plain");
    ASSERT_EQ(raw.count(), 1);
    EXPECT_EQ(raw[0][0].value<std::string>(), "<arvex><x>1</x></arvex>\n");
}

TEST(GenericConfig, ModelDialogsShowTheirSectionsAsLabelledPages)
{
    DocQuenta quenta;
    DocHalden halden;
    DocDravik dravik;
    ConfigQuentaDialog config(nullptr, "q1", quenta);
    EXPECT_EQ(config.windowTitle(), "Configuration: q1");
    EXPECT_TRUE(page_names(config).contains("Light Source"));
    FactoryQuentaDialog factory(nullptr, "q1", quenta);
    EXPECT_TRUE(page_names(factory).contains("Pump - High"));
    EXPECT_FALSE(page_names(factory).contains("pump"));
    FactoryHaldenDialog halden_factory(nullptr, "h1", halden);
    for (const char* b : {"Red Mod On", "Red Mod Off", "Test Vect On", "Test Vect Off"})
        EXPECT_TRUE(find_button(halden_factory, b)) << b;
    OutputDravikDialog output(nullptr, "d1", dravik);
    EXPECT_EQ(output.windowTitle(), "Output: d1");
    EXPECT_EQ(output.findChildren<QCheckBox*>().size(), 0);
    EXPECT_TRUE(label_texts(&output).contains("Avg Time"));
}

TEST(GenericConfig, ApplyWithoutEditsSendsNothing)
{
    Wire wire("quenta");
    wire.WaitForText("&query_doctype;");  // connected
    ConfigQuentaDialog dialog(nullptr, "q1", wire.connector->Doc_Quenta());
    wire.JoinRaw(&dialog);
    dialog.OnApply();
    // Whatever the empty Apply had sent would come ahead of this edit.
    group(&dialog, "General")->findChild<QLineEdit*>()->setText("head-2");
    dialog.OnApply();
    EXPECT_EQ(wire.WaitForText("<quenta><cfg>"), "<arvex><quenta><cfg><head>head-2</head></cfg></quenta></arvex>\n");
}

}  // namespace
