#pragma once
// Helpers for the rich text tests: a log over an in-memory file whose error lines can be read
// back, and a generator of random documents that use every stored feature.
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/Archive.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RichTextDocument.h"

#include <random>
#include <string>
#include <vector>

class CRichTextLogCapture
{
public:
    CRichTextLogCapture()
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CRichTextLogCapture() { CAppConnector::Install(nullptr); }
    CRichTextLogCapture(const CRichTextLogCapture&) = delete;
    CRichTextLogCapture& operator=(const CRichTextLogCapture&) = delete;

    // The lines written since the last call that start with a level word.
    std::vector<std::u16string> TakeMessages()
    {
        const std::string& bytes = m_Fs.Bytes(Path);
        const std::u16string text = Utf16LeBytesToText(std::string_view(bytes).substr(m_ConsumedBytes));
        std::vector<std::u16string> lines;
        size_t start = 0;
        for (size_t end; (end = text.find(u"\r\n", start)) != std::u16string::npos; start = end + 2)
        {
            const std::u16string line = text.substr(start, end - start);
            if (line.starts_with(u"Error: ") || line.starts_with(u"Warning: ") || line.starts_with(u"Info: "))
                lines.push_back(line);
        }
        m_ConsumedBytes += 2 * start;
        return lines;
    }

private:
    static constexpr const char16_t* Path = u"/logs/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
    size_t m_ConsumedBytes = 0;
};

inline std::vector<uint8_t> SaveDocument(const CRichTextDocument& document)
{
    CArchiveWriter out;
    if (document.Serialize(out) != 0)
        return {};
    return out.Take();
}

inline int LoadDocument(const std::vector<uint8_t>& bytes, CRichTextDocument& document)
{
    CArchiveReader in(bytes);
    return document.Serialize(in);
}

// A packed bitmap of the given size, with every colour table and pixel byte drawn at random.
CDIBitmap MakeRandomBitmap(std::mt19937& random, int32_t width, int32_t height, uint16_t bitCount);

struct SRandomDocumentOptions
{
    size_t maxLines = 8;
    size_t maxLineChars = 40;
    bool withObjects = true;
    bool withAngleBracket = true;
    size_t hugeAttachmentBytes = 0; // when not 0, one attachment of this size is added
};

// Text with surrogate pairs and characters from many scripts; objects stand on U+0014. Fonts
// carry quality 4, the value a headless load gives them, so that loaded copies compare equal.
CRichTextDocument MakeRandomDocument(std::mt19937& random, const SRandomDocumentOptions& options = {});
