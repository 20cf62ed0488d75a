// The desktop program: `quillarium [data file.ddb]`.
#include "App/CommandLine.h"
#include "Gui/MainWindow.h"
#include "Gui/QuillGuiApp.h"
#include "Gui/QuitSignals.h"
#include "Prefs/OsAutoStart.h"
#include "Shared/Base/Paths.h"

#include <QApplication>

#include <chrono>

int main(int argc, char** argv)
{
    const auto launched = std::chrono::steady_clock::now();
    QApplication qtApp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillarium Organizer"));
    // Closing the window to the tray must not end the program; Exit quits explicitly.
    QApplication::setQuitOnLastWindowClosed(false);
    CQuillGuiApp app(ProgramFolder(), CommandLineText(argc, argv));
    app.SetLaunchTime(launched);
    app.ManageOsAutoStart(ProgramPath(), COsAutoStart::DefaultFolder());
    if (!app.Start())
    {
        app.Shutdown();
        return 1;
    }
    QObject::connect(app.MainWindow(), &CMainWindow::Closed, &qtApp, &QApplication::quit);
    InstallQuitSignals(&qtApp);
    const int result = QApplication::exec();
    app.Shutdown();
    return result;
}
