#include "Shared/RichText/RichTextDocument.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RichTextArchiveError.h"

#include <algorithm>
#include <stdexcept>

namespace
{
std::u16string_view ChooseSeparator(std::u16string_view text)
{
    if (text.find(u"\r\n") != std::u16string_view::npos)
        return u"\r\n";
    if (text.find(u'\r') != std::u16string_view::npos)
        return u"\r";
    return u"\n";
}

void LogShortDocument()
{
    LogMessage(u"Error: Cannot load Rich Text object, object size is too small in storage file/location");
}
} // namespace

const CRtfTextLine& CRichTextDocument::Line(size_t index) const
{
    if (index >= m_Lines.size())
        throw std::invalid_argument("CRichTextDocument::Line: index out of range");
    return m_Lines[index];
}

CRtfTextLine& CRichTextDocument::Line(size_t index)
{
    if (index >= m_Lines.size())
        throw std::invalid_argument("CRichTextDocument::Line: index out of range");
    return m_Lines[index];
}

void CRichTextDocument::InsertLine(size_t index, const CRtfTextLine& line)
{
    if (index > m_Lines.size())
        throw std::invalid_argument("CRichTextDocument::InsertLine: index out of range");
    m_Lines.insert(m_Lines.begin() + static_cast<std::ptrdiff_t>(index), line);
}

void CRichTextDocument::RemoveLine(size_t index)
{
    if (index >= m_Lines.size())
        throw std::invalid_argument("CRichTextDocument::RemoveLine: index out of range");
    m_Lines.erase(m_Lines.begin() + static_cast<std::ptrdiff_t>(index));
}

bool CRichTextDocument::IsEmpty() const
{
    return m_Lines.empty() || (m_Lines.size() == 1 && m_Lines.front().Text().empty());
}

void CRichTextDocument::BuildFromPlainText(std::u16string_view input)
{
    m_Lines.clear();
    std::u16string text(input);
    const std::u16string_view view(text);
    for (char16_t& ch : text)
    {
        if (ch == CRtfObjectInfo::ObjectCharacter)
            ch = u' ';
    }
    const std::u16string_view separator = ChooseSeparator(text);
    size_t from = 0;
    for (;;)
    {
        const size_t cut = view.find_first_of(separator, from);
        if (cut == std::u16string::npos)
            break;
        AppendTextLine(view.substr(from, cut - from));
        from = std::min(cut + separator.size(), text.size());
    }
    AppendTextLine(view.substr(from));
}

void CRichTextDocument::AppendTextLine(std::u16string_view text)
{
    m_Lines.emplace_back();
    m_Lines.back().SetText(std::u16string(text));
}

int CRichTextDocument::Serialize(CArchiveWriter& out) const
{
    out.WriteU16(Version);
    out.WriteU32(static_cast<uint32_t>(m_Lines.size()));
    for (const CRtfTextLine& line : m_Lines)
    {
        if (const int result = line.Serialize(out))
            return result;
    }
    return 0;
}

int CRichTextDocument::Serialize(CArchiveReader& in)
{
    try
    {
        return Load(in);
    }
    catch (const CRichTextArchiveError& error)
    {
        if (!error.Logged())
            LogShortDocument();
    }
    catch (const std::exception&)
    {
        LogShortDocument();
    }
    return 2;
}

int CRichTextDocument::Load(CArchiveReader& in)
{
    m_Lines.clear();
    const uint16_t version = ReadU16OrThrow(in);
    if (version != Version)
    {
        LogMessage(u"Error: Cannot load Rich Text object, version number is unsupported - %d", version);
        return 1;
    }
    const uint32_t count = ReadU32OrThrow(in);
    // Lines are appended as they are read, so a hostile count allocates nothing in advance.
    for (uint32_t i = 0; i < count; ++i)
    {
        CRtfTextLine line;
        if (const int result = line.Serialize(in, version))
            return result;
        m_Lines.push_back(std::move(line));
    }
    return 0;
}
