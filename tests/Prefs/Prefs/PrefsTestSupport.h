#pragma once
// Fakes for the preferences tests: installed fonts, a settable clock, a captured log and an
// in-memory program folder holding "Quillarium.ini".
#include "Prefs/FontQuery.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

class CFakeFonts : public IFontQuery
{
public:
    std::set<std::u16string> faces;
    std::u16string systemSans;
    bool throws = false;
    mutable int queries = 0;

    bool HasFace(std::u16string_view face) const override
    {
        ++queries;
        if (throws)
            throw std::runtime_error("font database unavailable");
        return faces.count(std::u16string(face)) != 0;
    }
    std::u16string SystemSansFace() const override
    {
        ++queries;
        return systemSans;
    }
};

class CFixedClock : public IClock
{
public:
    OleDate now = 44000.5; // 19 June 2020, noon
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return 0; }
};

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

    // The lines that carry a level word ("Error: ", "Warrning: ", ...), without header and banners.
    std::vector<std::u16string> Messages()
    {
        const std::u16string text = Utf16LeBytesToText(m_Fs.Bytes(Path));
        std::vector<std::u16string> lines;
        size_t start = 0;
        while (start < text.size())
        {
            size_t end = text.find(u"\r\n", start);
            if (end == std::u16string::npos)
                end = text.size();
            std::u16string line = text.substr(start, end - start);
            if (!line.empty() && line.find(u"Application started") == std::u16string::npos &&
                line.find(u"***") != 0 && line.find(u'\uFEFF') != 0)
                lines.push_back(std::move(line));
            start = end + 2;
        }
        return lines;
    }

private:
    static constexpr const char16_t* Path = u"/logs/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
};

// Everything a CPreferences needs, with an in-memory program folder.
struct SPrefsFixture
{
    static constexpr const char16_t* IniPath = u"/prog/Quillarium.ini";

    CMemFileSystem fs;
    CFixedClock clock;
    CFakeFonts fonts;
    bool portable = false;

    SPrefsFixture() { fonts.faces = {u"Tahoma", u"Arial"}; }

    SPreferencesEnvironment Env()
    {
        return SPreferencesEnvironment{fs, clock, fonts, portable, u"/home/user/Documents/"};
    }
    // Stores `lines` as a UTF-16LE file with byte-order mark, each line ended by CR LF.
    void WriteIni(const std::vector<std::u16string>& lines)
    {
        std::u16string text = u"\uFEFF";
        for (const std::u16string& line : lines)
            text += line + u"\r\n";
        fs.Bytes(IniPath) = TextToUtf16LeBytes(text);
    }
    std::u16string IniText() { return Utf16LeBytesToText(fs.Bytes(IniPath)); }
};
