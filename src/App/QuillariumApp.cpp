#include "App/QuillariumApp.h"

#include "App/AppIdentity.h"
#include "App/CommandLine.h"
#include "App/DataFileChooser.h"
#include "App/EnglishStrings.h"
#include "Prefs/OsAutoStart.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/File.h"
#include "Shared/Base/Format.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/AppFolders.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/LanguagesMgr/LanguagesMgr.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"
#include "Shared/Log/Log.h"

CQuillariumApp::CQuillariumApp(const SAppServices& services)
    : m_Services(services), m_Locations(services.applicationFolder, services.fileSystem, services.documents),
      m_PreviousConnector(CAppConnector::Get())
{
    m_Connector.SetMessageBox(&m_Services.messageBox);
    CAppConnector::Install(&m_Connector);
}

CQuillariumApp::~CQuillariumApp()
{
    ExitInstance();
    CAppConnector::Install(m_PreviousConnector);
}

bool CQuillariumApp::InitInstance()
{
    OpenLog();
    LoadPreferences();
    if (!LoadLanguageModule() || !ChooseAndOpenDataFile())
        return false;
    m_AutoStartup = CommandLineHasAutoStartup(m_Services.commandLine);
    return true;
}

void CQuillariumApp::OpenLog()
{
    m_Log = std::make_unique<CLog>(m_Locations.LogFilePath(), &m_Services.fileSystem, &m_Services.clock);
    m_Connector.SetLog(m_Log.get());
    LogMessage(u"Application version: %s (build %d)", kAppVersionNumber, kAppBuildNumber);
    LogMessage(u"Application version: %s", AppVersionText());
}

void CQuillariumApp::LoadPreferences()
{
    const SPreferencesEnvironment env{m_Services.fileSystem, m_Services.clock, m_Services.fonts,
                                      m_Locations.IsPortable(), m_Locations.DocumentsFolder()};
    m_Preferences = std::make_unique<CPreferences>(env);
    m_Preferences->Load(m_Locations.PreferencesFilePath());
}

bool CQuillariumApp::LoadLanguageModule()
{
    m_Language = std::make_unique<CLanguageModule>(&m_Services.fileSystem);
    const std::u16string modulePath = LanguageModuleToLoad();
    if (modulePath.empty())
        m_Language->LoadBuiltIn(std::u16string(kDefaultLanguageModuleName), EnglishStrings());
    else if (!m_Language->LoadModule(modulePath, AppCompatibility(), EnglishStrings()))
    {
        // The module's loader has logged why; the message itself is only shown.
        m_Services.messageBox.Show(
            FormatText(u"Error. Cannot load default language module %s. Unable to proceed.", modulePath),
            EMsgIcon::Error);
        return false;
    }
    m_Connector.SetLanguageModule(m_Language.get());
    return true;
}

// The module the user chose, by its path in the languages folder; while there is none, the
// shipped module for the user's language, or the built-in English one (an empty path).
std::u16string CQuillariumApp::LanguageModuleToLoad()
{
    const std::u16string languagesFolder =
        AppFolderPath(m_Locations.ApplicationFolder(), EAppFolder::Languages);
    const std::u16string& chosen = m_Preferences->Paths().languagePath;
    if (!chosen.empty())
        return chosen.front() == u'/' ? chosen : languagesFolder + chosen;
    const CLanguagesMgr modules(languagesFolder, AppCompatibility(),
                                std::u16string(kDefaultLanguageModuleName), &m_Services.fileSystem);
    const int index = modules.FindByDescription(DefaultModuleDescription(m_Services.userLanguageId));
    if (index < 0 || modules.Modules()[static_cast<size_t>(index)].fileName.empty())
        return {};
    return languagesFolder + modules.Modules()[static_cast<size_t>(index)].fileName;
}

bool CQuillariumApp::ChooseAndOpenDataFile()
{
    CDataFileChooser chooser({m_Locations, m_Services.runningInstances, m_Services.dataCenters,
                              m_Services.newFileDialog, m_Services.messageBox});
    const bool opened =
        chooser.ChooseAndOpen(m_Services.commandLine, m_Preferences->DocumentState().recentFilePath);
    m_DataCenter = chooser.TakeDataCenter();
    if (!opened)
        return false;
    m_DataFilePath = chooser.OpenedPath();
    RememberOpenedFile();
    return true;
}

void CQuillariumApp::ReplaceDataCenter(std::unique_ptr<IStartupDataCenter> center, const std::u16string& path)
{
    m_DataCenter = std::move(center);
    m_DataFilePath = path;
    RememberOpenedFile();
}

// The file shown now is the one the next start opens when no file is named.
void CQuillariumApp::RememberOpenedFile()
{
    m_Preferences->DocumentState().recentFilePath = m_DataFilePath;
    m_Preferences->ShellState().recentFiles.Add(m_DataFilePath);
}

void CQuillariumApp::ExitInstance()
{
    m_DataCenter.reset();
    m_Connector.SetLanguageModule(nullptr);
    m_Language.reset();
    if (m_Preferences && m_SavePreferences)
    {
        m_Preferences->Save(m_Locations.PreferencesFilePath());
        ApplyOsAutoStart();
    }
    m_Preferences.reset();
}

void CQuillariumApp::ManageOsAutoStart(std::u16string programPath, std::u16string autostartFolder)
{
    m_ProgramPath = std::move(programPath);
    m_AutostartFolder = std::move(autostartFolder);
}

bool CQuillariumApp::ApplyOsAutoStart()
{
    if (!m_Preferences || m_ProgramPath.empty())
        return true;
    COsAutoStart autoStart(m_Services.fileSystem, m_AutostartFolder);
    return autoStart.Apply(m_Preferences->Startup().runWithOsStart, m_ProgramPath);
}
