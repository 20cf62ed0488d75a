#include "Gui/QuillGuiApp.h"

#include "Document/FileTimes.h"
#include "Document/ItemRecords.h"
#include "Gui/DialogCommands.h"
#include "Gui/FirstLaunchWizard.h"
#include "Gui/MainWindow.h"
#include "Gui/QtText.h"
#include "Gui/SaveTimers.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"
#include "Shared/Log/Log.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QTimer>

namespace
{
// Tries a wrong password may be given before the file is closed again.
constexpr int PasswordAttempts = 3;

// "Name (*.ext)|*.ext||" as Qt's "Name (*.ext)".
const QString kDataFileFilter = QStringLiteral("Quillarium data file (*.ddb)");

// Logs the start-up time once the main window has painted for the first time.
class CFirstPaintWatch : public QObject
{
public:
    CFirstPaintWatch(QObject* parent, std::function<void()> painted)
        : QObject(parent), m_Painted(std::move(painted))
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_Painted)
        {
            // After this paint event has been handled: the window is on the screen.
            QTimer::singleShot(0, watched, std::exchange(m_Painted, nullptr));
        }
        return false;
    }

private:
    std::function<void()> m_Painted;
};
} // namespace

CQtAppServices::CQtAppServices()
    : m_RunningInstances(RunningCopiesFolder()),
      m_DataCenters(DiskFileSystem(), SystemClock(), DiskFileTimes())
{
}

CQuillGuiApp::CQuillGuiApp(const std::u16string& applicationFolder, const std::u16string& commandLine)
    : CQuillariumApp(SAppServices{applicationFolder, commandLine, UserDefaultLanguageId(), DiskFileSystem(),
                                  SystemClock(), m_Fonts, m_Documents, m_RunningInstances, m_DataCenters,
                                  m_NewFileDialog, m_MessageBox})
{
}

CQuillGuiApp::~CQuillGuiApp()
{
    Shutdown();
}

bool CQuillGuiApp::Start()
{
    if (!InitInstance())
        return false;
    CDataCenter* center = Center();
    if (!center || !UnlockProtectedFile(*center, DataFilePath()))
        return false;
    if (Preferences()->Startup().showFirstLaunchWizard)
    {
        RunFirstLaunchWizard();
        Preferences()->Startup().showFirstLaunchWizard = false;
    }

    m_MainWindow = std::make_unique<CMainWindow>(LanguageModule(), Preferences());
    m_MainWindow->ShowDocument(center);
    ConnectWindow();
    m_MainWindow->installEventFilter(new CFirstPaintWatch(m_MainWindow.get(), [this] { LogStartupTime(); }));

    m_Server = std::make_unique<CRunningCopyServer>(
        RunningCopiesFolder(), [this](uint32_t kind, const std::string& payload)
        { return m_MainWindow ? m_MainWindow->AnswerRunningInstanceQuery(kind, payload) : 0; });
    if (m_Server->Listen())
        m_RunningInstances.SetOwnSocket(m_Server->SocketPath());

    ApplyBackupSettings();
    m_Timers = std::make_unique<CSaveTimers>(
        *Preferences(), [this] { return m_MainWindow && m_MainWindow->SaveAll(); },
        [this] { return Backup(false); });
    m_Dialogs = new CDialogCommands(*m_MainWindow, Locations().ApplicationFolder(), SystemClock());
    // Started by the system: the window waits in the tray when the user asked for that.
    if (IsAutoStartup() && Preferences()->Startup().hideWhenRunWithOsStart && Preferences()->SysTray().show)
        m_MainWindow->showMinimized();
    else
        m_MainWindow->show();
    return true;
}

void CQuillGuiApp::LogStartupTime()
{
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_Launched);
    LogMessage(u"Info: Start-up to the painted main window took %d ms.", static_cast<int>(elapsed.count()));
}

void CQuillGuiApp::ConnectWindow()
{
    CMainWindow* window = m_MainWindow.get();
    QObject::connect(window, &CMainWindow::OpenFileRequested, window,
                     [this](const QString& requested)
                     {
                         std::u16string path = ToU16(requested);
                         if (path.empty() && !AskFilePath(false, u"FILE_OPEN_DLG_CAPTION", path))
                             return;
                         OpenFile(path);
                     });
    QObject::connect(window, &CMainWindow::NewFileRequested, window,
                     [this]
                     {
                         std::u16string path;
                         if (AskFilePath(true, u"NEW_FILE_DLG_CAPTION", path))
                             NewFile(path);
                     });
    QObject::connect(window, &CMainWindow::SaveAsRequested, window,
                     [this]
                     {
                         std::u16string path;
                         if (AskFilePath(true, u"SAVEAS_DLG_CAPTION", path))
                             SaveFileAs(path);
                     });
    QObject::connect(window, &CMainWindow::BackupRequested, window, [this] { Backup(true); });
    QObject::connect(window, &CMainWindow::PreferencesApplied, window,
                     [this]
                     {
                         if (m_Timers)
                             m_Timers->Restart();
                         ApplyBackupSettings();
                         ApplyOsAutoStart();
                     });
}

void CQuillGuiApp::Shutdown()
{
    if (m_ShutDown)
        return;
    m_ShutDown = true;
    m_Timers.reset();
    m_Server.reset();
    if (m_MainWindow)
    {
        m_MainWindow->SaveAll();
        if (Preferences() && Preferences()->Backup().backupOnExit)
            Backup(false);
        m_MainWindow->ShowDocument(nullptr);
        m_MainWindow.reset();
    }
    ExitInstance();
}

CDataCenter* CQuillGuiApp::Center() const
{
    auto* startup = dynamic_cast<CDataCenterStartup*>(DataCenter());
    return startup ? &startup->DataCenter() : nullptr;
}

// File commands

bool CQuillGuiApp::UnlockProtectedFile(CDataCenter& center, const std::u16string& path)
{
    if (!center.GetRecords().IsPasswordSet())
        return true;
    for (int attempt = 0; attempt < PasswordAttempts; ++attempt)
    {
        std::u16string password;
        if (!AskPassword(path, password))
            return false;
        // An empty text passes the record check, so it never opens a protected file.
        if (!password.empty() && center.GetRecords().CheckPassword(password))
            return true;
        LogMessage(u"Warning: Wrong password given for the data file %s.", path);
        m_MessageBox.Show(LanguageModule()->GetString(u"ERR_WRONG_PASSWORD"), EMsgIcon::Error,
                          EMsgButtons::Ok);
    }
    return false;
}

void CQuillGuiApp::ShowDataCenter(std::unique_ptr<IStartupDataCenter> center, const std::u16string& path)
{
    // The window lets go of the old document (writing its note) before the old one closes.
    m_MainWindow->ShowDocument(nullptr);
    ReplaceDataCenter(std::move(center), path);
    ApplyBackupSettings();
    m_MainWindow->ShowDocument(Center());
}

bool CQuillGuiApp::OpenFile(const std::u16string& path)
{
    if (!m_MainWindow || path.empty())
        return false;
    if (path == DataFilePath())
        return true;
    m_MainWindow->SaveAll();
    // Another copy showing the file comes to the front and keeps it.
    if (m_RunningInstances.FindRunningInstance(path))
        return false;
    std::unique_ptr<IStartupDataCenter> center = m_DataCenters.CreateDataCenter();
    if (!center->OpenDataFile(path))
        return false;
    auto& opened = static_cast<CDataCenterStartup&>(*center).DataCenter();
    if (!UnlockProtectedFile(opened, path))
        return false;
    ShowDataCenter(std::move(center), path);
    return true;
}

bool CQuillGuiApp::NewFile(const std::u16string& path)
{
    if (!m_MainWindow || path.empty() || path == DataFilePath())
        return false;
    std::unique_ptr<IStartupDataCenter> center = m_DataCenters.CreateDataCenter();
    if (!center->CreateNewDataFile(path))
        return false;
    ShowDataCenter(std::move(center), path);
    return true;
}

bool CQuillGuiApp::SaveFileAs(const std::u16string& path)
{
    CDataCenter* center = Center();
    if (!m_MainWindow || !center || path.empty())
        return false;
    m_MainWindow->SaveAll();
    m_MainWindow->ShowDocument(nullptr);
    const bool saved = center->SaveAs(path);
    // On success the data center goes on with the new file; on failure with the old one.
    const std::u16string shown = center->GetFilePath();
    if (saved)
        DataFileRenamed(shown);
    m_MainWindow->ShowDocument(center);
    return saved;
}

void CQuillGuiApp::ApplyBackupSettings()
{
    CDataCenter* center = Center();
    if (!center || !Preferences())
        return;
    SBackupSettings& settings = center->BackupSettings();
    settings.folder = Preferences()->Backup().backupFolder;
    settings.lastBackupDate = Preferences()->Backup().lastBackupDate;
    settings.deleteOldBackupDays = Preferences()->Backup().delOldBackupDays;
}

void CQuillGuiApp::TakeBackupDate()
{
    if (CDataCenter* center = Center(); center && Preferences())
        Preferences()->Backup().lastBackupDate = center->BackupSettings().lastBackupDate;
}

bool CQuillGuiApp::Backup(bool forced)
{
    CDataCenter* center = Center();
    if (!center || !m_MainWindow)
        return false;
    m_MainWindow->SaveAll();
    ApplyBackupSettings();
    const bool done = center->Backup(forced);
    TakeBackupDate();
    return done;
}

// Questions to the user

bool CQuillGuiApp::AskPassword(const std::u16string& path, std::u16string& password)
{
    QString label = ToQString(LanguageModule()->GetString(u"PWDDLG_ENTER_LABEL"));
    label.replace(QStringLiteral("^filename"), ToQString(path));
    bool accepted = false;
    const QString text =
        QInputDialog::getText(nullptr, ToQString(LanguageModule()->GetString(u"PWDDLG_ENTER_CAPTION")), label,
                              QLineEdit::Password, QString(), &accepted);
    password = ToU16(text);
    return accepted;
}

void CQuillGuiApp::RunFirstLaunchWizard()
{
    CFirstLaunchWizard wizard(*Preferences(), *LanguageModule(), Locations().ApplicationFolder(), *Center());
    wizard.exec();
}

bool CQuillGuiApp::AskFilePath(bool save, const char16_t* captionKey, std::u16string& path)
{
    const QString caption = ToQString(LanguageModule()->GetString(captionKey));
    std::u16string& lastFolder = save ? Preferences()->Paths().lastAccessedFileSavePath
                                      : Preferences()->Paths().lastAccessedFileOpenPath;
    const QString start =
        lastFolder.empty() ? ToQString(Locations().DocumentsFolder()) : ToQString(lastFolder);
    QString chosen = save ? QFileDialog::getSaveFileName(m_MainWindow.get(), caption, start, kDataFileFilter)
                          : QFileDialog::getOpenFileName(m_MainWindow.get(), caption, start, kDataFileFilter);
    if (chosen.isEmpty())
        return false;
    if (save && !chosen.endsWith(QStringLiteral(".ddb"), Qt::CaseInsensitive))
        chosen += QStringLiteral(".ddb");
    lastFolder = ToU16(QFileInfo(chosen).absolutePath() + QLatin1Char('/'));
    path = ToU16(chosen);
    return true;
}
