// The desktop program: `quillarium [data file.ddb]`.
#include "App/CommandLine.h"
#include "Gui/QuillGuiApp.h"
#include "Prefs/OsAutoStart.h"
#include "Shared/Base/Paths.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication qtApp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillarium Organizer"));
    CQuillGuiApp app(ProgramFolder(), CommandLineText(argc, argv));
    app.ManageOsAutoStart(ProgramPath(), COsAutoStart::DefaultFolder());
    if (!app.Start())
    {
        app.Shutdown();
        return 1;
    }
    const int result = QApplication::exec();
    app.Shutdown();
    return result;
}
