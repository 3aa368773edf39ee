// The raw capture: its decoder, and its window fed by hand.

#include "watch/rawdatacapture.h"
#include "watch/rawdatadialog.h"

#include <QComboBox>
#include <QProgressBar>
#include <QTemporaryDir>

#include <iterator>
#include <random>
#include <stdexcept>

#include "foundation/base64.h"
#include "foundation/zlib.h"
#include "libskarn/dochalden.h"
#include "tests/watch/watch_test_util.h"

namespace {

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

struct RawDataDialogTest : testing::Test {
    RawDataDialogTest()
    {
        QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, [this] { sent.push_back("changes"); });
        QObject::connect(&dialog, &RawDataDialog::SendRawXML, [this](std::string text) { sent.push_back(text); });
        file->setText(dir.filePath("raw.dat"));
    }
    QString Status() const
    {
        for (QLabel* label : dialog.findChildren<QLabel*>())
            if (label->text().startsWith("Status: "))
                return label->text();
        return "";
    }
    void Feed(const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines)
            connector->HandleData(line);
    }
    std::string File() const { return read_file(file->text().toStdString()); }

    QTemporaryDir dir;
    std::shared_ptr<Connector> connector = Connector::Factory(nullptr, "fluor", "halden");
    ConfigCfgRawDataCapture& section = connector->Doc_Halden().Conf().Cfg().Rawdatacapture();
    RawDataDialog dialog{nullptr, "fluor", &section};
    std::vector<std::string> sent;
    QLineEdit* size = dialog.findChildren<QLineEdit*>()[0];
    QLineEdit* file = dialog.findChildren<QLineEdit*>()[1];
    QPushButton* capture = find_button(dialog, "Capture");
};

TEST_F(RawDataDialogTest, NeedsASizeAndAFileSendsTheSettingsFirstAndOverwritesTheFileNextTime)
{
    EXPECT_EQ(dialog.windowTitle(), "Raw Data Capture: fluor");
    EXPECT_EQ(Status(), "Status: Idle");
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
    Feed(raw_lines("not in a capture"));
    EXPECT_FALSE(QFile::exists(file->text()));

    size->setText("50000");
    dialog.findChild<QComboBox*>()->setCurrentIndex(2);
    capture->click();
    capture->click();  // one capture at a time
    EXPECT_EQ(sent, (std::vector<std::string>{"changes", "<arvex><halden><output><datarawcapture>true</datarawcapture>"
                                                         "</output><cmd><rawcapture>true</rawcapture></cmd></halden></arvex>\n"}));
    EXPECT_EQ(section.Size().get(), 50000);
    EXPECT_EQ(section.When().get_string(), "flash");
    EXPECT_EQ(Status(), "Status: Recording raw data...");

    std::vector<std::string> lines = raw_lines(bytes);
    Feed({lines.begin(), lines.end() - 1});
    EXPECT_EQ(Status(), "Status: Transfering raw data...");
    EXPECT_EQ(dialog.findChild<QProgressBar*>()->value(), 50000);
    EXPECT_FALSE(capture->isEnabled());
    Feed({lines.back()});
    EXPECT_EQ(Status(), "Status: Idle");
    EXPECT_TRUE(capture->isEnabled() && File() == bytes);
    Feed(raw_lines("after the end"));
    EXPECT_TRUE(File() == bytes);

    size->setText("5");
    capture->click();
    Feed(raw_lines("short"));
    EXPECT_EQ(File(), "short");

    // Data that does not inflate ends the capture, and says so.
    capture->click();
    Feed({"DATAFLRAW\tAAAAAAAA\n"});
    EXPECT_TRUE(Status().startsWith("Status: Capture failed: inflate() failed")) << Status().toStdString();
    EXPECT_TRUE(capture->isEnabled());
}

}  // namespace
