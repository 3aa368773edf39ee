#include "service/clocktolvandialog.h"
#include "service/networktolvandialog.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QRadioButton>

#include <sstream>

#include "tests/service/wire.h"

namespace {

std::string clock(const std::string& body)
{
    return "<arvex><tolvan><cfg><clock>" + body + "</clock></cfg></tolvan></arvex>";
}

void focus(QWidget* widget)
{
    QFocusEvent event(QEvent::FocusIn, Qt::MouseFocusReason);
    QApplication::sendEvent(widget, &event);
}

TEST(ClockTolvanDialog, QueriesWhileShownAndFollowsTheAreasNotBeingEdited)
{
    std::istringstream zones("UTC|Europe/Oslo|Asia/Tokyo");
    std::ostringstream errors;
    ConfigTimezone().read_doctype(zones, errors);  // as the instrument's descriptor does

    Wire wire;
    ConfigCfgClock& section = wire.Doc().Conf().Cfg().Clock();
    ClockTolvanDialog dialog(nullptr, "bench", &section);
    wire.JoinRaw(&dialog);
    EXPECT_EQ(dialog.windowTitle(), "Clock: bench");
    auto* zone = dialog.findChild<QComboBox*>();
    auto* time = dialog.findChild<DateTimeEdit*>();
    EXPECT_EQ(zone->count(), 3);

    dialog.show();
    EXPECT_EQ(wire.WaitForText("<clock>&query;"), "<arvex><tolvan><cfg><clock>&query;</clock></cfg></tolvan></arvex>\n");
    wire.Tell(clock("<time>04:05:06</time><date>2031-02-03</date><zone>Europe/Oslo</zone><ptp>slaveonly</ptp>"));
    EXPECT_EQ(time->dateTime().toString("yyyy-MM-dd hh:mm:ss"), "2031-02-03 04:05:06");
    EXPECT_EQ(zone->currentText(), "Europe/Oslo");
    EXPECT_TRUE(dialog.findChildren<QRadioButton*>()[1]->isChecked());

    focus(time);  // the user starts typing a time
    wire.Tell(clock("<time>04:05:07</time><zone>Asia/Tokyo</zone>"));
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:06");
    EXPECT_EQ(zone->currentText(), "Asia/Tokyo");

    focus(zone);
    Click(&dialog, "Refresh");
    wire.Tell(clock("<time>04:05:09</time><zone>UTC</zone>"));
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:09");
    EXPECT_EQ(zone->currentText(), "UTC");
    wire.Tell(clock("<time>4.5</time>"));  // unreadable: the editor keeps what it shows
    EXPECT_EQ(time->dateTime().toString("hh:mm:ss"), "04:05:09");

    dialog.findChildren<QRadioButton*>()[2]->setChecked(true);
    Click(&dialog, "Apply");
    EXPECT_NE(wire.WaitForText("<ptp>").find("<ptp>preferred</ptp>"), std::string::npos);

    dialog.hide();
    auto* timer = dialog.findChild<QTimer*>();
    EXPECT_FALSE(timer->isActive());
    wire.Tell(clock("<time>05:00:00</time>"));  // an update while hidden asks nothing either
    EXPECT_FALSE(timer->isActive());
}

TEST(NetworkTolvanDialog, RebootGoesToTheModelTagAndASarnelIsReadOnly)
{
    const struct {
        const char* type;
        const char* line;
    } cases[] = {
        {"tolvan", "<arvex><tolvan><cmd><reboot>true</reboot></cmd></tolvan></arvex>\n"},
        {"morvik", "<arvex><morvik><cmd><reboot>true</reboot></cmd></morvik></arvex>\n"},
        {"sarnel", "<arvex><morvik><cmd><reboot>true</reboot></cmd></morvik></arvex>\n"},
    };
    for (const auto& c : cases) {
        Wire wire(c.type);
        ConfigCfgNetwork& section = c.type == std::string("tolvan") ? wire.Doc().Conf().Cfg().Network()
                                                                    : wire.connector->Doc_Morvik().Conf().Cfg().Network();
        NetworkTolvanDialog dialog(nullptr, "bench", &section, c.type);
        wire.JoinRaw(&dialog);
        EXPECT_EQ(dialog.windowTitle(), "Network Settings: bench");
        Click(&dialog, "Reboot");
        EXPECT_EQ(wire.WaitForText("reboot"), c.line);

        Click(&dialog, "Manual");
        const auto fields = dialog.findChildren<QLineEdit*>();  // name, address, netmask, gateway
        ASSERT_EQ(fields.size(), 4);
        EXPECT_EQ(fields[1]->isEnabled(), c.type != std::string("sarnel")) << c.type;
        Click(&dialog, "Automatic");
        EXPECT_FALSE(fields[1]->isEnabled());
    }
}

TEST(NetworkTolvanDialog, ApplySendsNameModeAndAddresses)
{
    Wire wire;
    ConfigCfgNetwork& section = wire.Doc().Conf().Cfg().Network();
    NetworkTolvanDialog dialog(nullptr, "bench", &section, "tolvan");
    wire.JoinRaw(&dialog);
    const auto fields = dialog.findChildren<QLineEdit*>();
    fields[0]->setText("ch4-0042");
    Click(&dialog, "Manual");
    fields[1]->setText("10.0.0.5");
    Click(&dialog, "Apply");
    EXPECT_EQ(wire.WaitForText("<network>"),
              "<arvex><tolvan><cfg><network><name>ch4-0042</name><configuration>manual</configuration>"
              "<ipaddress>10.0.0.5</ipaddress></network></cfg></tolvan></arvex>\n");

    fields[2]->setText("255.255.0.x");  // refused with a word; nothing goes out
    fields[0]->setText("other");
    AnswerNextMessageBox("OK");
    Click(&dialog, "Apply");
    EXPECT_EQ(section.Name().get(), "ch4-0042");
}

}  // namespace
