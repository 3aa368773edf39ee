// The tool windows of the watch windows against real simulated instruments, and the raw capture's decoder
// and window fed by hand.

#include <cmath>
#include <iterator>
#include <map>
#include <random>

#include "foundation/base64.h"
#include "foundation/zlib.h"
#include "libskarn/dochalden.h"
#include "link/rawdatacapture.h"
#include "sim/raw_capture.h"
#include "tests/sim/sim_process.h"
#include "tests/watch/watch_test_util.h"
#include "watch/rawdatadialog.h"
#include "watch/watchdravikdialog.h"
#include "watch/watchhaldendialog.h"
#include "watch/watchtolvandialog.h"

namespace {

// A watch window of type W on the simulator `sim`, connected and shown.
template <class W>
QPointer<W> open_window(const SimProcess& sim, const char* name, const char* model)
{
    QPointer<W> window = new W(nullptr, name, model);
    window->Connect("127.0.0.1", 0, sim.port);
    window->show();
    return window;
}

TEST(WatchTools, EveryToolButtonOpensItsOneWorkingWindow)
{
    SimProcess sim({"--model", "tolvan", "--name", "tools-sim"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchTolvanDialog> window = open_window<WatchTolvanDialog>(sim, "tools-sim", "tolvan");
    Connector& connector = window->GetConnector();
    ASSERT_TRUE(QTest::qWaitFor([&] { return connector.Doc_Tolvan().Conf().Name().get() == "tools-sim"; }, TIMEOUT_MS));
    const std::pair<const char*, const char*> tools[] = {
        {"Laser Temp...", "Laser Temperature Control: "}, {"Cal...", "Calibration Control Panel: "},
        {"Factory...", "Factory Settings: "},             {"Mirrors...", "Mirror Control Panel: "},
        {"Clock...", "Clock: "},                          {"Network...", "Network Settings: "},
        {"Rate...", "Output Rate: "}};
    for (const auto& [button, title] : tools) {
        find_button(*window, button)->click();
        QDialog* first = shown_dialog(*window, QString(title) + "tools-sim");
        first->close();
        find_button(*window, button)->click();  // the same window again
        EXPECT_EQ(shown_dialog(*window, QString(title) + "tools-sim"), first);
    }
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: tools-sim");
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: tools-sim");
    // The laser follows a set point given in its window: the instrument reports the new target.
    QDialog* temp = shown_dialog(*window, "Laser Temperature Control: tools-sim");
    group(temp, "Cooler Temperature Control")->findChild<QDoubleSpinBox*>()->setValue(31.25);
    EXPECT_TRUE(QTest::qWaitFor([&] { return connector.VarNumeric("tools-sim:DATASTAT:LCTSET") == 31.25; }, TIMEOUT_MS));
    // 10 Hz in the rate window: ten DATA records in every whole second of the instrument's clock
    // (field SECONDS) after the change; the first and the last second seen may be cut short.
    RawClient counter;
    ASSERT_TRUE(counter.Connect(sim.port));
    auto* rates = shown_dialog(*window, "Output Rate: tools-sim")->findChild<QComboBox*>();
    rates->setCurrentIndex(rates->findText("10 Hz"));
    counter.WaitFor([](const std::string& line) { return line.find("<rate>10</rate>") != std::string::npos; });
    std::map<long long, int> per_second;
    counter.WaitFor([&](const std::string& line) {
        if (line.rfind("DATA\t", 0) == 0)
            ++per_second[QString::fromStdString(line).split('\t')[2].toLongLong()];
        return per_second.size() >= 4;
    });
    ASSERT_EQ(per_second.size(), 4u);
    EXPECT_EQ(std::next(per_second.begin(), 1)->second, 10);
    EXPECT_EQ(std::next(per_second.begin(), 2)->second, 10);
    window->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, TIMEOUT_MS));
}

bool rows_become(QTreeWidget* tree, int rows)
{
    return QTest::qWaitFor([&] { return tree->topLevelItemCount() == rows; }, TIMEOUT_MS);
}

TEST(WatchCalibration, DravikZerosAddHistoryRowsAndOldOnesClearOnTheInstrument)
{
    SimProcess sim({"--model", "dravik", "--name", "cal-head"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchDravikDialog> window = open_window<WatchDravikDialog>(sim, "cal-head", "dravik");
    Connector& link = window->GetConnector();
    ASSERT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric("cal-head:DATA:TIME") > 0; }, TIMEOUT_MS));
    find_button(*window, "Cal...")->click();
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: cal-head");
    auto* tree = cal->findChild<QTreeWidget*>();
    for (int rows = 1; rows <= 2; ++rows) {
        Click(group(cal, "CO2A"), "Zero");
        EXPECT_TRUE(rows_become(tree, rows)) << rows;
        // The history tells its records apart by the second.
        const double next = std::floor(link.VarNumeric("cal-head:DATA:TIME")) + 1;
        EXPECT_TRUE(QTest::qWaitFor([&] { return link.VarNumeric("cal-head:DATA:TIME") >= next; }, TIMEOUT_MS));
    }
    AnswerNextMessageBox("Clear");
    find_button(*cal, "Clear Old History...")->click();
    EXPECT_TRUE(rows_become(tree, 1));
    Click(group(cal, "CO2B"), "Zero");  // the instrument kept only the newest: one more makes two
    EXPECT_TRUE(rows_become(tree, 2));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-head");
    delete window.data();
}

// The simulator's raw bytes: a capture's file must hold exactly these.
std::string sim_bytes(int64_t size)
{
    std::string bytes(size_t(size), '\0');
    for (int64_t at = 0; at < size; ++at)
        bytes[size_t(at)] = char(SimRawCapture::Byte(at));
    return bytes;
}

TEST(HaldenFromSim, ZeroAddsAHistoryRowAndRawCapturesArriveByteForByte)
{
    SimProcess sim({"--model", "halden", "--name", "cal-fluor"});
    ASSERT_TRUE(sim.WaitListening());
    QPointer<WatchHaldenDialog> window = open_window<WatchHaldenDialog>(sim, "cal-fluor", "halden");
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->GetConnector().VarNumeric("cal-fluor:DATA:TIME") > 0; }, TIMEOUT_MS));
    find_button(*window, "Cal...")->click();
    QDialog* cal = shown_dialog(*window, "Calibration Control Panel: cal-fluor");
    Click(group(cal, "DC0"), "Zero");
    EXPECT_TRUE(rows_become(cal->findChild<QTreeWidget*>(), 1));
    find_button(*cal, "Advanced...")->click();
    shown_dialog(*window, "Advanced Calibration: cal-fluor");
    find_button(*window, "Raw Capture...")->click();
    shown_dialog(*window, "Raw Data Capture: cal-fluor");
    delete window.data();
    QTemporaryDir dir;
    const QString path = dir.filePath("raw.dat");
    for (int64_t size : {int64_t(1), int64_t(100000), int64_t(20000000)}) {
        // A link of its own for each: settings sent within the link's send period would go late.
        const std::string host = "rawsim" + std::to_string(size);
        auto connector = Connector::Factory(nullptr, host, "halden");
        connector->Connect("127.0.0.1", 0, sim.port);
        ASSERT_TRUE(QTest::qWaitFor([&] { return connector->Doc_Halden().Conf().Ver().get() != ""; }, TIMEOUT_MS));
        RawDataDialog dialog(nullptr, host, &connector->Doc_Halden().Conf().Cfg().Rawdatacapture());
        QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
        QObject::connect(&dialog, &RawDataDialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
        dialog.findChildren<QLineEdit*>()[0]->setText(QString::number(size));
        dialog.findChildren<QLineEdit*>()[1]->setText(path);
        QPushButton* capture = find_button(dialog, "Capture");
        capture->click();
        ASSERT_FALSE(capture->isEnabled());
        EXPECT_TRUE(QTest::qWaitFor([&] { return capture->isEnabled(); }, 20 * TIMEOUT_MS)) << size;
        EXPECT_TRUE(read_file(path.toStdString()) == sim_bytes(size)) << size;
        connector->Disconnect();
    }
    EXPECT_FALSE(sim.Log().contains("dropped")) << sim.Log().toStdString();
}

// The instrument goes away in the middle of a capture: the capture ends and says so, and the window
// lives on. Back, the instrument fills the window's table again, and a capture from a second window
// lands in its own file only.
TEST(HaldenFromSim, ALostLinkCutsTheCaptureAndTheWindowWorksAgainOnceTheInstrumentIsBack)
{
    QTemporaryDir dir;
    const QString first = dir.filePath("first.dat"), second = dir.filePath("second.dat");
    auto sim = std::make_unique<SimProcess>(QStringList{"--model", "halden", "--name", "cut-fluor"});
    ASSERT_TRUE(sim->WaitListening());
    QPointer<WatchHaldenDialog> window = open_window<WatchHaldenDialog>(*sim, "cut-fluor", "halden");
    Connector& link = window->GetConnector();
    auto* table = window->findChild<QTableWidget*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return cell(*table, 0, 1) != ""; }, TIMEOUT_MS));
    const auto capture = [](QWidget& watch, int64_t size, const QString& path) {
        find_button(watch, "Raw Capture...")->click();
        auto* dialog = shown_dialog(watch, "Raw Data Capture: cut-fluor");
        dialog->findChildren<QLineEdit*>()[0]->setText(QString::number(size));
        dialog->findChildren<QLineEdit*>()[1]->setText(path);
        find_button(*dialog, "Capture")->click();
        return dialog;
    };
    const auto status = [](QDialog* dialog) { return label_texts(dialog).filter("Status: ").value(0); };
    QDialog* cut = capture(*window, 67000000, first);
    ASSERT_TRUE(QTest::qWaitFor([&] { return status(cut) == "Status: Transfering raw data..."; }, TIMEOUT_MS));
    sim.reset();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return status(cut) == "Status: Transfer cut: the link to the instrument was lost"; }, TIMEOUT_MS));
    EXPECT_FALSE(link.IsConnected());
    EXPECT_TRUE(find_button(*cut, "Capture")->isEnabled());
    const std::string kept = read_file(first.toStdString());
    EXPECT_TRUE(kept.size() < 67000000 && kept == sim_bytes(int64_t(kept.size()))) << kept.size();

    table->item(0, 1)->setText("");
    SimProcess back({"--model", "halden", "--name", "cut-fluor"});
    ASSERT_TRUE(back.WaitListening());
    std::unique_ptr<WatchHaldenDialog> other(open_window<WatchHaldenDialog>(back, "cut-fluor", "halden").data());
    ASSERT_TRUE(QTest::qWaitFor([&] { return cell(*table, 0, 1) != ""; }, TIMEOUT_MS));
    // A second on by the instrument's clock, the first capture's settings are out of the link's
    // send period: the next ones go at once.
    const double back_at = cell(*table, 0, 1).toDouble();
    ASSERT_TRUE(QTest::qWaitFor([&] { return cell(*table, 0, 1).toDouble() >= back_at + 1; }, TIMEOUT_MS));
    QDialog* next = capture(*other, 100000, second);
    EXPECT_TRUE(QTest::qWaitFor([&] { return status(next) == "Status: Idle"; }, 20 * TIMEOUT_MS));
    EXPECT_TRUE(read_file(second.toStdString()) == sim_bytes(100000));
    EXPECT_TRUE(read_file(first.toStdString()) == kept);
    delete window.data();
}

// `bytes` deflated, `line_bytes` compressed bytes to a Base64 line that decodes on its own.
std::vector<std::string> raw_payloads(const std::string& bytes, size_t line_bytes)
{
    std::string compressed;
    Deflate(bytes.begin(), bytes.end(), std::back_inserter(compressed));
    std::vector<std::string> payloads;
    for (size_t at = 0; at < compressed.size(); at += line_bytes) {
        std::string payload;
        const auto from = compressed.begin() + long(at);
        Base64Encode(from, from + long(std::min(line_bytes, compressed.size() - at)), std::back_inserter(payload), true);
        payloads.push_back(payload);
    }
    return payloads;
}

// Counts that compress somewhat, with noise that doesn't.
std::string detector_bytes(size_t size)
{
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i % 2 ? (i / 512) % 7 : random() % 64);
    return bytes;
}

TEST(RawDataCapture, WritesTheInflatedBytesAsTheyComeStopsWhereTheDataStopsAndRunsItsCourseWithoutAFile)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("raw.dat").toStdString();
    const std::string sample = detector_bytes(5000);
    const std::vector<std::string> lines = raw_payloads(sample, 60);
    // What the instrument meant, what arrives, and whether all of it lands or only a true beginning of it.
    const struct { const char* what; std::string bytes; std::vector<std::string> lines; bool whole; } cases[] = {
        {"one byte", "x", raw_payloads("x", 768), true},
        {"a group per line", detector_bytes(100000), raw_payloads(detector_bytes(100000), 3), true},
        {"lines larger than the buffers", detector_bytes(300000), raw_payloads(detector_bytes(300000), 120000), true},
        {"data after the stream's end", sample, [&] { auto l = lines; l.push_back(lines[0]); return l; }(), true},
        {"a group cut short", sample, {lines[0], lines[1].substr(0, lines[1].size() - 2)}, false},
        {"an invalid character", sample, {lines[0], "@" + lines[1]}, false},
    };
    for (const auto& c : cases) {
        {
            _RawDataCapture capture(path);
            for (const std::string& payload : c.lines)
                capture.HandleData(payload.data(), payload.data() + payload.size());
        }
        const std::string written = read_file(path);
        if (c.whole)
            EXPECT_TRUE(written == c.bytes) << c.what;
        else
            EXPECT_TRUE(written.size() < c.bytes.size() && c.bytes.compare(0, written.size(), written) == 0) << c.what;
    }
    _RawDataCapture nowhere(dir.filePath("no/such/dir/raw.dat").toStdString());
    for (const std::string& payload : raw_payloads(detector_bytes(40000), 768))
        nowhere.HandleData(payload.data(), payload.data() + payload.size());
    EXPECT_EQ(nowhere.BytesWritten(), 40000u);
}

// DATAFLRAW lines of `bytes` and the end mark.
std::vector<std::string> raw_lines(const std::string& bytes)
{
    std::vector<std::string> lines;
    for (const std::string& payload : raw_payloads(bytes, 300))
        lines.push_back("DATAFLRAW\t" + payload + "\n");
    lines.push_back("DATAFLRAW\t\n");
    return lines;
}

TEST(RawDataDialog, NeedsASizeAndAFileSendsTheSettingsFirstAndOverwritesTheFileNextTime)
{
    QTemporaryDir dir;
    auto connector = Connector::Factory(nullptr, "fluor", "halden");
    ConfigCfgRawDataCapture& section = connector->Doc_Halden().Conf().Cfg().Rawdatacapture();
    RawDataDialog dialog(nullptr, "fluor", &section);
    std::vector<std::string> sent;
    QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, [&] { sent.push_back("changes"); });
    QObject::connect(&dialog, &RawDataDialog::SendRawXML, [&](std::string text) { sent.push_back(text); });
    QLineEdit* size = dialog.findChildren<QLineEdit*>()[0];
    QLineEdit* file = dialog.findChildren<QLineEdit*>()[1];
    QPushButton* capture = find_button(dialog, "Capture");
    const auto status = [&] { return label_texts(&dialog).filter("Status: ").value(0); };
    const auto feed = [&](const std::vector<std::string>& lines) {
        for (const std::string& line : lines)
            connector->HandleData(line);
    };
    const auto written = [&] { return read_file(file->text().toStdString()); };
    EXPECT_EQ(dialog.windowTitle(), "Raw Data Capture: fluor");
    EXPECT_EQ(status(), "Status: Idle");
    EXPECT_FALSE(find_button(dialog, "Close")->autoDefault());  // Return in a field must not close it
    for (const auto& [bytes, name] : {std::pair{"0", "raw.dat"}, std::pair{"", "raw.dat"}, std::pair{"12", ""}}) {
        size->setText(bytes);
        file->setText(name);
        capture->click();
        EXPECT_TRUE(sent.empty() && capture->isEnabled()) << bytes << " " << name;
    }
    file->setText(dir.filePath("raw.dat"));
    std::string bytes;
    for (int i = 0; i < 50000; ++i)
        bytes += char(i * 7 % 251);
    feed(raw_lines("not in a capture"));
    EXPECT_FALSE(QFile::exists(file->text()));
    size->setText("50000");
    dialog.findChild<QComboBox*>()->setCurrentIndex(2);
    capture->click();
    capture->click();  // one capture at a time
    EXPECT_EQ(sent, (std::vector<std::string>{"changes", "<arvex><halden><output><datarawcapture>true</datarawcapture>"
                                                         "</output><cmd><rawcapture>true</rawcapture></cmd></halden></arvex>\n"}));
    EXPECT_EQ(section.Size().get(), 50000);
    EXPECT_EQ(section.When().get_string(), "flash");
    EXPECT_EQ(status(), "Status: Recording raw data...");
    std::vector<std::string> lines = raw_lines(bytes);
    feed({lines.begin(), lines.end() - 1});
    EXPECT_EQ(status(), "Status: Transfering raw data...");
    EXPECT_EQ(dialog.findChild<QProgressBar*>()->value(), 50000);
    EXPECT_FALSE(capture->isEnabled());
    feed({lines.back()});
    EXPECT_EQ(status(), "Status: Idle");
    EXPECT_TRUE(capture->isEnabled() && written() == bytes);
    feed(raw_lines("after the end"));
    EXPECT_TRUE(written() == bytes);
    size->setText("5");
    capture->click();
    feed(raw_lines("short"));
    EXPECT_EQ(written(), "short");
    // Data that does not inflate ends the capture, and says so.
    capture->click();
    feed({"DATAFLRAW\tAAAAAAAA\n"});
    EXPECT_TRUE(status().startsWith("Status: Capture failed: inflate() failed")) << status().toStdString();
    EXPECT_TRUE(capture->isEnabled());
}

}  // namespace
