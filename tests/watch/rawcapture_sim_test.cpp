// Raw captures from a real sondar-sim, through the link and the dialog into a file.

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <fstream>
#include <string>

#include "libskarn/dochalden.h"
#include "sim/raw_capture.h"
#include "tests/sim/sim_process.h"
#include "watch/rawdatadialog.h"

namespace {

// Where the file first differs from the simulator's bytes; -1 when equal in length and content.
int64_t first_difference(const std::string& path, int64_t size)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<char> chunk(1 << 16);
    int64_t at = 0;
    while (in) {
        in.read(chunk.data(), std::streamsize(chunk.size()));
        for (std::streamsize i = 0; i < in.gcount(); ++i, ++at)
            if (at >= size || chunk[size_t(i)] != char(SimRawCapture::Byte(at)))
                return at;
    }
    return at == size ? -1 : at;
}

TEST(RawCaptureFromSim, ArrivesByteForByte)
{
    SimProcess sim({"--model", "halden", "--name", "rawsim"});
    ASSERT_TRUE(sim.WaitListening());
    QTemporaryDir dir;
    for (int64_t size : {int64_t(1), int64_t(100000), int64_t(20000000)}) {
        // A link of its own for each: settings sent within the link's send period would go late.
        const std::string host = "rawsim" + std::to_string(size);
        auto connector = Connector::Factory(nullptr, host, "halden");
        connector->Connect("127.0.0.1", 0, sim.port);
        // Mirrored: the link is up and has the instrument's document.
        ASSERT_TRUE(QTest::qWaitFor([&] { return connector->Doc_Halden().Conf().Ver().get() != ""; }, TIMEOUT_MS));
        RawDataDialog dialog(nullptr, host, &connector->Doc_Halden().Conf().Cfg().Rawdatacapture());
        QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
        QObject::connect(&dialog, &RawDataDialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
        const QString path = dir.filePath("raw.dat");
        dialog.findChildren<QLineEdit*>()[0]->setText(QString::number(size));
        dialog.findChildren<QLineEdit*>()[1]->setText(path);
        QPushButton* capture = nullptr;
        for (QPushButton* button : dialog.findChildren<QPushButton*>())
            if (button->text() == "Capture")
                capture = button;
        capture->click();
        ASSERT_FALSE(capture->isEnabled());
        EXPECT_TRUE(QTest::qWaitFor([&] { return capture->isEnabled(); }, 20 * TIMEOUT_MS)) << size;
        EXPECT_EQ(first_difference(path.toStdString(), size), -1) << size;
        connector->Disconnect();
    }
    EXPECT_FALSE(sim.Log().contains("dropped")) << sim.Log().toStdString();
}

}  // namespace
