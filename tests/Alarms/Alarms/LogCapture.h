#pragma once
// Installs a log over an in-memory file for the life of a test and lets the test count lines.
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <string>
#include <string_view>

class CLogCapture
{
public:
    CLogCapture()
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CLogCapture() { CAppConnector::Install(nullptr); }
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    // Number of whole log lines equal to `line`.
    size_t CountLines(std::u16string_view line)
    {
        const std::u16string text = Utf16LeBytesToText(m_Fs.Bytes(Path));
        size_t count = 0;
        size_t start = 0;
        while (start <= text.size())
        {
            size_t end = text.find(u"\r\n", start);
            if (end == std::u16string::npos)
                end = text.size();
            if (std::u16string_view(text).substr(start, end - start) == line)
                ++count;
            start = end + 2;
        }
        return count;
    }

    // Number of lines that start with a level word, so banners and the header do not count.
    size_t CountMessages()
    {
        return CountPrefixed(u"Error: ") + CountPrefixed(u"Warning: ") + CountPrefixed(u"Info: ");
    }

private:
    size_t CountPrefixed(std::u16string_view prefix)
    {
        const std::u16string text = u"\n" + Utf16LeBytesToText(m_Fs.Bytes(Path));
        const std::u16string needle = u"\n" + std::u16string(prefix);
        size_t count = 0;
        for (size_t pos = text.find(needle); pos != std::u16string::npos; pos = text.find(needle, pos + 1))
            ++count;
        return count;
    }

    static constexpr const char16_t* Path = u"/logs/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
};
