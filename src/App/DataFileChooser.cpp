#include "App/DataFileChooser.h"

#include "App/AppLocations.h"
#include "App/CommandLine.h"
#include "App/RunningInstance.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/StringTemplate.h"
#include "Shared/Log/Log.h"

CDataFileChooser::CDataFileChooser(const SDataFileChoiceServices& services) : m_Services(services) {}

bool CDataFileChooser::ChooseAndOpen(const std::u16string& commandLine, const std::u16string& recentFilePath)
{
    const bool fromCommandLine = CommandLineNamesDataFile(commandLine);
    std::u16string path = fromCommandLine ? commandLine : recentFilePath;
    if (!m_Services.locations.FileExists(path))
        path = m_Services.locations.CorrectMovedPath(path);
    if (!m_Services.locations.FileExists(path))
        return fromCommandLine ? ReportMissingCommandLineFile(path) : CreateInPlaceOfMissingFile(path);
    if (m_Services.runningInstances.FindRunningInstance(path))
        return false;
    return OpenExisting(path, fromCommandLine);
}

bool CDataFileChooser::ReportMissingCommandLineFile(const std::u16string& path)
{
    LogMessage(u"Error: File %s not found.", path);
    ShowFileError(u"ERR_FILE_DOES_NOT_EXISTS", path);
    return false;
}

bool CDataFileChooser::CreateInPlaceOfMissingFile(const std::u16string& path)
{
    LogMessage(u"Warning: File %s not found. Attempting to create new file on its place...", path);
    m_DataCenter = m_Services.dataCenters.CreateDataCenter();
    if (m_DataCenter->CreateNewDataFile(path))
    {
        m_OpenedPath = path;
        return true;
    }
    return CreateWhereTheUserChooses();
}

bool CDataFileChooser::CreateWhereTheUserChooses()
{
    std::u16string chosen;
    if (!m_Services.newFileDialog.AskNewDataFilePath(kNewDataFileFilter, kNewDataFileProposedName, chosen))
        return false;
    if (!m_DataCenter->CreateNewDataFile(chosen))
        return false;
    m_OpenedPath = chosen;
    return true;
}

bool CDataFileChooser::OpenExisting(const std::u16string& path, bool fromCommandLine)
{
    m_DataCenter = m_Services.dataCenters.CreateDataCenter();
    if (m_DataCenter->OpenDataFile(path))
    {
        m_OpenedPath = path;
        return true;
    }
    if (fromCommandLine)
    {
        LogMessage(u"Error: Cannot open file %s - file is inaccessible or corrupted.", path);
        ShowFileError(u"ERR_CORRUPTED_OR_LOCKED_FILE", path);
    }
    return false;
}

void CDataFileChooser::ShowFileError(const char16_t* key, const std::u16string& path)
{
    m_Services.messageBox.Show(LoadLanguageStringWithTag(key, u"^filename", path), EMsgIcon::Error);
}
