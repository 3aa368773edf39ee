// Dialogs against a real simulated Tolvan, joined to a Connector as a watch window joins them.

#include "service/clocktolvandialog.h"
#include "service/ratedialog.h"

#include <QComboBox>

#include <map>

#include "tests/service/wire.h"
#include "tests/sim/sim_process.h"

namespace {

// A Connector on the simulator, and the Tolvan document it mirrors.
struct SimLink {
    SimLink() : sim({"--model", "tolvan", "--name", "sim-service"})
    {
        EXPECT_TRUE(sim.WaitListening());
        connector = std::make_shared<Connector>(nullptr, "sim-service", "tolvan");
        connector->Connect("127.0.0.1", 0, sim.port);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Doc().Conf().Name().get() == "sim-service"; }, TIMEOUT_MS));
    }
    DocTolvan& Doc() { return connector->Doc_Tolvan(); }
    template <class Dialog>
    void Join(Dialog* dialog)
    {
        QObject::connect(dialog, &Dialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
        QObject::connect(dialog, &Dialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
        QObject::connect(connector.get(), &Connector::GotXMLChanges, dialog, &Dialog::OnXMLChanged);
    }

    SimProcess sim;
    std::shared_ptr<Connector> connector;
};

TEST(ServiceAgainstSimulator, TenHertzGivesTenDataRecordsInEverySecond)
{
    SimLink link;
    RateDialog dialog(nullptr, "sim-service", &link.Doc().Conf().Output().Rate(), "tolvan");
    link.Join(&dialog);
    RawClient counter;
    ASSERT_TRUE(counter.Connect(link.sim.port));
    auto* rates = dialog.findChild<QComboBox*>();
    rates->setCurrentIndex(rates->findText("10 Hz"));
    ASSERT_FALSE(counter.WaitFor([](const std::string& line) { return line.find("<rate>10</rate>") != std::string::npos; })
                     .empty());

    // DATA records by the whole second of the instrument's clock (field SECONDS), from the change
    // on; the first and the last second seen may be cut short.
    std::map<long long, int> per_second;
    counter.WaitFor([&](const std::string& line) {
        if (line.rfind("DATA\t", 0) != 0)
            return false;
        const long long second = std::stoll(QString::fromStdString(line).split('\t')[2].toStdString());
        ++per_second[second];
        return per_second.size() >= 4;
    });
    ASSERT_GE(per_second.size(), 4u);
    auto second = per_second.begin();
    EXPECT_EQ((++second)->second, 10);
    EXPECT_EQ((++second)->second, 10);
}

TEST(ServiceAgainstSimulator, TheClockDialogShowsTheRunningClockAndTheZonesOffered)
{
    SimLink link;
    ClockTolvanDialog dialog(nullptr, "sim-service", &link.Doc().Conf().Cfg().Clock());
    link.Join(&dialog);
    dialog.show();
    auto* time = dialog.findChild<DateTimeEdit*>();
    const QDateTime first = time->dateTime();
    EXPECT_TRUE(QTest::qWaitFor([&] { return time->dateTime() > first; }, TIMEOUT_MS));
    EXPECT_TRUE(QTest::qWaitFor([&] { return time->dateTime() > first.addSecs(1); }, TIMEOUT_MS));
    EXPECT_LE(std::abs(time->dateTime().secsTo(QDateTime::currentDateTime())), 5);
    EXPECT_GT(dialog.findChild<QComboBox*>()->findText("Asia/Tokyo"), 0);
}

}  // namespace
