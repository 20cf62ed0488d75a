#pragma once
// Installs a connector whose log writes into memory, so tests can check the exact log lines.
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <algorithm>
#include <string>
#include <vector>

class CCapturedLog
{
public:
    CCapturedLog() : m_Previous(CAppConnector::Get())
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
        m_Skip = AllLines().size();
    }
    ~CCapturedLog() { CAppConnector::Install(m_Previous); }
    CCapturedLog(const CCapturedLog&) = delete;
    CCapturedLog& operator=(const CCapturedLog&) = delete;

    CAppConnector& Connector() { return m_Connector; }

    // Lines logged since construction or the last Clear().
    std::vector<std::u16string> Lines() const
    {
        std::vector<std::u16string> all = AllLines();
        return std::vector<std::u16string>(all.begin() + static_cast<long>(std::min(m_Skip, all.size())),
                                           all.end());
    }
    void Clear() { m_Skip = AllLines().size(); }
    size_t CountContaining(std::u16string_view part) const
    {
        size_t count = 0;
        for (const std::u16string& line : Lines())
            count += line.find(part) != std::u16string::npos;
        return count;
    }

private:
    std::vector<std::u16string> AllLines() const
    {
        std::u16string text = Utf16LeBytesToText(const_cast<CMemFileSystem&>(m_Fs).Bytes(u"/test.log"));
        std::vector<std::u16string> lines;
        size_t start = 0;
        while (start < text.size())
        {
            size_t end = text.find(u"\r\n", start);
            if (end == std::u16string::npos)
                end = text.size();
            if (end > start)
                lines.push_back(text.substr(start, end - start));
            start = end + 2;
        }
        return lines;
    }

    CMemFileSystem m_Fs;
    CLog m_Log{u"/test.log", &m_Fs};
    CAppConnector m_Connector;
    CAppConnector* m_Previous;
    size_t m_Skip = 0;
};
