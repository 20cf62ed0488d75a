#pragma once
// The desktop program's application: the core start-up (log, preferences, language module, data
// file) with Qt answering its questions, then the main window; at exit the window's note is
// saved and closed before the core shuts down in its designed order.
#include "App/DataCenterStartup.h"
#include "App/QuillariumApp.h"
#include "Gui/QtPlatformServices.h"

#include <memory>

class CMainWindow;

// The platform services live in a base class so that they exist before CQuillariumApp, which
// keeps references to them, is built.
class CQtAppServices
{
protected:
    CQtAppServices();

    CQtMessageBox m_MessageBox;
    CQtDocumentsFolder m_Documents;
    CQtFontQuery m_Fonts;
    CQtNewDataFileDialog m_NewFileDialog;
    CUnconnectedRunningInstances m_RunningInstances;
    CDataCenterStartupFactory m_DataCenters;
};

class CQuillGuiApp : private CQtAppServices, public CQuillariumApp
{
public:
    // `applicationFolder` ends with '/'; `commandLine` is the text after the program name.
    CQuillGuiApp(const std::u16string& applicationFolder, const std::u16string& commandLine);
    ~CQuillGuiApp() override;

    // Runs the start-up and shows the main window; false when the program is to end at once.
    bool Start();
    // Saves the note being edited, closes the window and shuts the core down; safe to repeat.
    void Shutdown();

    CMainWindow* MainWindow() const { return m_MainWindow.get(); }
    CDataCenter* Center() const;

private:
    std::unique_ptr<CMainWindow> m_MainWindow;
};
