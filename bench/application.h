#pragma once
// Widgets need the application; benchmarks run headless.

#include <QApplication>

inline void ensure_application()
{
    static QApplication* application = [] {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "sondar_bench";
        static char* argv[] = {name, nullptr};
        return new QApplication(argc, argv);
    }();
    (void)application;
}
