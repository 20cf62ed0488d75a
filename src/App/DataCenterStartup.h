#pragma once
// Start-up's view of the real data center: one CDataCenter per created object, opened or
// created through it, closed (pending changes saved) when the object is deleted at shutdown.
#include "App/StartupDataCenter.h"
#include "Document/DataCenter.h"

class CDataCenterStartup : public IStartupDataCenter
{
public:
    CDataCenterStartup(IFileSystem& fs, const IClock& clock, IFileTimes& times, IMessageBox* messageBox);

    bool OpenDataFile(const std::u16string& path) override { return m_DataCenter.OpenDocument(path); }
    bool CreateNewDataFile(const std::u16string& path) override { return m_DataCenter.CreateDocument(path); }

    CDataCenter& DataCenter() { return m_DataCenter; }

private:
    CDataCenter m_DataCenter;
};

class CDataCenterStartupFactory : public IStartupDataCenterFactory
{
public:
    // Without a message box the data center uses the one installed in the application connector.
    CDataCenterStartupFactory(IFileSystem& fs, const IClock& clock, IFileTimes& times,
                              IMessageBox* messageBox = nullptr);

    std::unique_ptr<IStartupDataCenter> CreateDataCenter() override;

private:
    IFileSystem& m_Fs;
    const IClock& m_Clock;
    IFileTimes& m_Times;
    IMessageBox* m_MessageBox;
};
