#pragma once
// The application's start-up and shutdown without its windows: the log, the preferences, the
// language module and the data file, brought up in that order, and torn down in reverse with
// the preferences written back. The GUI derives its application from this class and adds the
// skin and shared fonts (after the language module), the first-launch wizard and the main
// window (after the data file).
#include "App/AppLocations.h"
#include "App/StartupDataCenter.h"
#include "Shared/Base/AppConnector.h"

#include <memory>
#include <string>

class CLanguageModule;
class CLog;
class CPreferences;
class IClock;
class IFileSystem;
class IFontQuery;
class IMessageBox;
class IRunningInstanceQuery;

// Everything start-up reaches the platform and the user through.
struct SAppServices
{
    std::u16string applicationFolder; // ends with '/'; ProgramFolder() for the real program
    std::u16string commandLine;       // the text after the program name (CommandLineText)
    int userLanguageId = 0;           // picks the module while the user has chosen none
    IFileSystem& fileSystem;
    const IClock& clock;
    const IFontQuery& fonts;
    const IDocumentsFolder& documents;
    IRunningInstanceQuery& runningInstances;
    IStartupDataCenterFactory& dataCenters;
    INewDataFileDialog& newFileDialog;
    IMessageBox& messageBox;
};

class CQuillariumApp
{
public:
    explicit CQuillariumApp(const SAppServices& services);
    virtual ~CQuillariumApp();
    CQuillariumApp(const CQuillariumApp&) = delete;
    CQuillariumApp& operator=(const CQuillariumApp&) = delete;

    // Runs every step in order and stops at the first that fails. False means the program
    // exits: a message has been shown, or another copy now shows the file.
    bool InitInstance();
    // Deletes the data center and the language module, then writes and deletes the
    // preferences. The log stays until the object is destroyed, which writes its finish banner.
    void ExitInstance();

    // The single steps, for a shell that puts its own steps between them.
    void OpenLog();
    void LoadPreferences();
    bool LoadLanguageModule();
    bool ChooseAndOpenDataFile();
    // For a shell that only reads the preferences (the command-line tool): they are not written
    // back at exit, so changes a running copy of the program saves meanwhile are kept.
    void KeepPreferencesFileUnchanged() { m_SavePreferences = false; }
    // For the desktop program: keeps the autostart entry in `autostartFolder` in step with the
    // preference "StartupRunWithOSStart", starting `programPath`. Applied when the preferences
    // are written at shutdown; a shell that never calls this leaves the entry alone.
    void ManageOsAutoStart(std::u16string programPath, std::u16string autostartFolder);
    // Writes or removes the entry after the preference now (a preferences dialog calls it when
    // the user changes the setting); true when it is in step or not managed by this run.
    bool ApplyOsAutoStart();

    // Shows another data file from now on: `center` has `path` open. The previous data center
    // is deleted (its file saved and closed) and the file becomes the most recent one.
    void ReplaceDataCenter(std::unique_ptr<IStartupDataCenter> center, const std::u16string& path);

    // The open data center now shows `path` (after "save as").
    void DataFileRenamed(const std::u16string& path)
    {
        m_DataFilePath = path;
        RememberOpenedFile();
    }

    CAppLocations& Locations() { return m_Locations; }
    CPreferences* Preferences() const { return m_Preferences.get(); }
    CLanguageModule* LanguageModule() const { return m_Language.get(); }
    IStartupDataCenter* DataCenter() const { return m_DataCenter.get(); }
    const std::u16string& DataFilePath() const { return m_DataFilePath; }
    // Set when the command line carries "-autostartup": the system started the program.
    bool IsAutoStartup() const { return m_AutoStartup; }

private:
    std::u16string LanguageModuleToLoad();
    void RememberOpenedFile();

    SAppServices m_Services;
    CAppLocations m_Locations;
    CAppConnector m_Connector;
    CAppConnector* m_PreviousConnector = nullptr;
    std::unique_ptr<CLog> m_Log;
    std::unique_ptr<CPreferences> m_Preferences;
    std::unique_ptr<CLanguageModule> m_Language;
    std::unique_ptr<IStartupDataCenter> m_DataCenter;
    std::u16string m_DataFilePath;
    bool m_AutoStartup = false;
    bool m_SavePreferences = true;
    std::u16string m_ProgramPath;
    std::u16string m_AutostartFolder;
};
