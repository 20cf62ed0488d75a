#pragma once
// Chooses the data file this run shows and opens it: the file named on the command line, or
// else the most recently opened one. A missing recent file is created anew in its place; a
// missing or unreadable command-line file ends start-up with a message; a file that another
// running copy shows ends start-up quietly.
#include "App/StartupDataCenter.h"

#include <memory>
#include <string>

class CAppLocations;
class IMessageBox;
class IRunningInstanceQuery;

struct SDataFileChoiceServices
{
    CAppLocations& locations;
    IRunningInstanceQuery& runningInstances;
    IStartupDataCenterFactory& dataCenters;
    INewDataFileDialog& newFileDialog;
    IMessageBox& messageBox;
};

class CDataFileChooser
{
public:
    explicit CDataFileChooser(const SDataFileChoiceServices& services);

    // True when a data file is open in the data center that TakeDataCenter() hands over.
    bool ChooseAndOpen(const std::u16string& commandLine, const std::u16string& recentFilePath);

    // The data center created on the way (also after a failure), or null.
    std::unique_ptr<IStartupDataCenter> TakeDataCenter() { return std::move(m_DataCenter); }
    // The path that was opened or created.
    const std::u16string& OpenedPath() const { return m_OpenedPath; }

private:
    bool ReportMissingCommandLineFile(const std::u16string& path);
    bool CreateInPlaceOfMissingFile(const std::u16string& path);
    bool CreateWhereTheUserChooses();
    bool OpenExisting(const std::u16string& path, bool fromCommandLine);
    void ShowFileError(const char16_t* key, const std::u16string& path);

    SDataFileChoiceServices m_Services;
    std::unique_ptr<IStartupDataCenter> m_DataCenter;
    std::u16string m_OpenedPath;
};
