#pragma once
// The desktop program's application: the core start-up (log, preferences, language module, data
// file) with Qt answering its questions; then the file password, the first-launch wizard, the
// main window, this copy's running-copy socket and the save timers. At exit the window's note is
// saved, a backup made when the preferences ask for one, and the core shuts down in its designed
// order. The file commands of the window (open, new, save as, backup) run here, as the
// application owns the data center.
#include "App/DataCenterStartup.h"
#include "App/QuillariumApp.h"
#include "Gui/QtPlatformServices.h"
#include "Gui/RunningCopies.h"

#include <chrono>
#include <memory>

class CDialogCommands;
class CMainWindow;
class CSaveTimers;
class QString;

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
    CLocalSocketRunningInstances m_RunningInstances;
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
    // The moment the process started, for the start-up timing line of the log.
    void SetLaunchTime(std::chrono::steady_clock::time_point launched) { m_Launched = launched; }

    CMainWindow* MainWindow() const { return m_MainWindow.get(); }
    CDialogCommands* Dialogs() const { return m_Dialogs; }
    CDataCenter* Center() const;

    // File commands. Each keeps the shown file when it fails (and says why).
    bool OpenFile(const std::u16string& path);
    bool NewFile(const std::u16string& path);
    bool SaveFileAs(const std::u16string& path);
    // A forced backup copies now; otherwise only when the file changed since the last one.
    bool Backup(bool forced);

protected:
    // Asks for the password of a protected file; false when the user cancels.
    virtual bool AskPassword(const std::u16string& path, std::u16string& password);
    // Runs the first-launch wizard (modal) with the preferences and the open document.
    virtual void RunFirstLaunchWizard();
    // Asks for a data file path: to open (`save` false) or to create or save as.
    virtual bool AskFilePath(bool save, const char16_t* captionKey, std::u16string& path);

private:
    bool UnlockProtectedFile(CDataCenter& center, const std::u16string& path);
    void ShowDataCenter(std::unique_ptr<IStartupDataCenter> center, const std::u16string& path);
    void ConnectWindow();
    void ApplyBackupSettings();
    void TakeBackupDate();
    void LogStartupTime();

    std::unique_ptr<CMainWindow> m_MainWindow;
    std::unique_ptr<CRunningCopyServer> m_Server;
    std::unique_ptr<CSaveTimers> m_Timers;
    CDialogCommands* m_Dialogs = nullptr; // a child of the main window
    std::chrono::steady_clock::time_point m_Launched = std::chrono::steady_clock::now();
    bool m_ShutDown = false;
};
