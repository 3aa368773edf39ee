// The raw capture: the pipe of Base64 decoding, inflating and writing beside decoding and
// inflating in memory, and a 20 MB capture from a real sondar-sim with the program's peak memory.

#include <benchmark/benchmark.h>

#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "bench/application.h"
#include "bench/ratio.h"
#include "foundation/base64.h"
#include "libskarn/dochalden.h"
#include "link/rawdatacapture.h"
#include "sim/raw_capture.h"
#include "sim/sim_halden.h"
#include "watch/rawdatadialog.h"

namespace {

constexpr int64_t PIPE_BYTES = 8000000;
constexpr int64_t SIM_BYTES = 20000000;

// The payloads of a capture as the simulator sends them, line by line.
const std::vector<std::string>& payloads()
{
    static const std::vector<std::string> lines = [] {
        std::vector<std::string> out;
        SimRawCapture capture(PIPE_BYTES);
        while (!capture.Done()) {
            const std::string text = capture.Lines(SimHalden::RAW_BYTES_PER_STEP);
            for (size_t at = 0; at < text.size();) {
                const size_t end = text.find('\n', at);
                out.push_back(text.substr(at + 10, end - at - 10));  // behind "DATAFLRAW\t"
                at = end + 1;
            }
        }
        out.pop_back();  // the end mark
        return out;
    }();
    return lines;
}

void BM_RawCapturePipe(benchmark::State& state)
{
    for (auto _ : state) {
        _RawDataCapture capture("/dev/null");
        for (const std::string& payload : payloads())
            capture.HandleData(payload.data(), payload.data() + payload.size());
        if (capture.BytesWritten() != uint64_t(PIPE_BYTES))
            state.SkipWithError("the capture came out short");
    }
    state.SetBytesProcessed(state.iterations() * PIPE_BYTES);
}
BENCHMARK(BM_RawCapturePipe)->Unit(benchmark::kMillisecond);

// The same work with everything in memory: all lines decoded, then inflated in one go.
void BM_DecodeInflateInMemory(benchmark::State& state)
{
    for (auto _ : state) {
        std::string compressed, bytes;
        for (const std::string& payload : payloads())
            Base64Decode(payload.begin(), payload.end(), std::back_inserter(compressed));
        bytes.reserve(size_t(PIPE_BYTES));
        Inflate(compressed.begin(), compressed.end(), std::back_inserter(bytes));
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetBytesProcessed(state.iterations() * PIPE_BYTES);
}
BENCHMARK(BM_DecodeInflateInMemory)->Unit(benchmark::kMillisecond);

const bool pipe_ratio = RegisterRatio("raw capture pipe / decode+inflate in memory", "BM_RawCapturePipe",
                                      "BM_DecodeInflateInMemory");

// Kilobytes of a field of /proc/self/status ("VmRSS", "VmHWM").
double status_kb(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, field.size() + 1, field + ":") == 0)
            return std::stod(line.substr(field.size() + 1));
    return 0;
}

// A 20 MB capture through the link and the raw data window into a file. The peak is the
// process's high-water mark, reset before the capture, over what it holds when idle.
void BM_RawCaptureFromSim(benchmark::State& state)
{
    ensure_application();
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close();
    QProcess sim;
    sim.start(SONDAR_SIM, {"--model", "halden", "--name", "bench-raw", "--port", QString::number(port)});
    QByteArray output;
    if (!QTest::qWaitFor([&] { return (output += sim.readAllStandardOutput()).contains("listening"); }, 30000)) {
        state.SkipWithError("sondar-sim did not start");
        return;
    }
    auto connector = Connector::Factory(nullptr, "bench-raw", "halden");
    connector->Connect("127.0.0.1", 0, port);
    if (!QTest::qWaitFor([&] { return connector->Doc_Halden().Conf().Ver().get() != ""; }, 30000)) {
        state.SkipWithError("no link to sondar-sim");
        return;
    }
    QTemporaryDir dir;
    RawDataDialog dialog(nullptr, "bench-raw", &connector->Doc_Halden().Conf().Cfg().Rawdatacapture());
    QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
    QObject::connect(&dialog, &RawDataDialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
    dialog.findChildren<QLineEdit*>()[0]->setText(QString::number(SIM_BYTES));
    dialog.findChildren<QLineEdit*>()[1]->setText(dir.filePath("raw.dat"));
    QPushButton* capture = nullptr;
    for (QPushButton* button : dialog.findChildren<QPushButton*>())
        if (button->text() == "Capture")
            capture = button;

    double idle_kb = 0, peak_kb = 0;
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << "5";  // resets the high-water mark
        idle_kb = status_kb("VmRSS");
        capture->click();
        if (!QTest::qWaitFor([&] { return capture->isEnabled(); }, 600000))
            state.SkipWithError("the capture did not end");
        peak_kb = status_kb("VmHWM");
    }
    state.SetBytesProcessed(state.iterations() * SIM_BYTES);
    state.counters["idle_MB"] = idle_kb / 1024;
    state.counters["peak_over_idle_MB"] = (peak_kb - idle_kb) / 1024;
    connector->Disconnect();
    sim.kill();
    sim.waitForFinished();
}
BENCHMARK(BM_RawCaptureFromSim)->Iterations(3)->Unit(benchmark::kSecond)->UseRealTime();

}  // namespace
