#include "App/DataCenterStartup.h"

CDataCenterStartup::CDataCenterStartup(IFileSystem& fs, const IClock& clock, IFileTimes& times,
                                       IMessageBox* messageBox)
    : m_DataCenter(fs, clock, times, messageBox)
{
}

CDataCenterStartupFactory::CDataCenterStartupFactory(IFileSystem& fs, const IClock& clock, IFileTimes& times,
                                                     IMessageBox* messageBox)
    : m_Fs(fs), m_Clock(clock), m_Times(times), m_MessageBox(messageBox)
{
}

std::unique_ptr<IStartupDataCenter> CDataCenterStartupFactory::CreateDataCenter()
{
    return std::make_unique<CDataCenterStartup>(m_Fs, m_Clock, m_Times, m_MessageBox);
}
