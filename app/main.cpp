#include <QApplication>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "app/commandline.h"
#include "app/mycalmainwindow.h"
#include "app/mymainwindow.h"

int main(int argc, char* argv[])
{
    const std::string program_path = argc > 0 ? argv[0] : "";
    AnswerHelpOrVersion(argc, argv, SONDAR_VERSION);
    // QApplication takes its own options out of argc and argv; the rest is ours.
    QApplication application(argc, argv);
    const CommandLine command_line = ParseCommandLine(std::vector<std::string>(argv, argv + argc));
    for (const std::string& error : command_line.errors)
        std::cerr << "sondar: skipping " << error << std::endl;

    std::unique_ptr<QMainWindow> window;
    if (command_line.mode == CommandLine::MAIN) {
        auto main_window = std::make_unique<MyMainWindow>("Arvex Sondar", program_path, command_line.instruments);
        if (command_line.status)
            main_window->OnStationStatus();
        window = std::move(main_window);
    } else
        window = std::make_unique<MyCalMainWindow>("Arvex Calibration Control Panel", command_line.name,
                                                   command_line.address, command_line.port);
    window->show();
    if (command_line.mode == CommandLine::MAIN && !command_line.layout.empty())
        static_cast<MyMainWindow&>(*window).OpenLayoutFile(QString::fromStdString(command_line.layout));
    // The window goes before the application does.
    return application.exec();
}
