#include "Gui/QuillGuiApp.h"

#include "Document/FileTimes.h"
#include "Gui/MainWindow.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"

CQtAppServices::CQtAppServices() : m_DataCenters(DiskFileSystem(), SystemClock(), DiskFileTimes()) {}

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
    if (!center)
        return false;
    m_MainWindow = std::make_unique<CMainWindow>(*center, LanguageModule());
    m_MainWindow->show();
    return true;
}

void CQuillGuiApp::Shutdown()
{
    if (m_MainWindow)
    {
        m_MainWindow->SaveCurrentNote();
        m_MainWindow.reset();
    }
    ExitInstance();
}

CDataCenter* CQuillGuiApp::Center() const
{
    auto* startup = dynamic_cast<CDataCenterStartup*>(DataCenter());
    return startup ? &startup->DataCenter() : nullptr;
}
