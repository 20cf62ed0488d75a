#include "Shared/RichText/RtfWriter.h"

#include "Shared/Base/Format.h"
#include "Shared/RichText/ResolvedSegments.h"
#include "Shared/RichText/RichTextPlatform.h"
#include "Shared/RichText/TextAppend.h"

#include <algorithm>
#include <unordered_set>

namespace
{
using ESegmentList = CRtfTextLine::ESegmentList;
constexpr int CodePage = IRichTextPlatform::WesternCodePage;
constexpr int Language = IRichTextPlatform::WesternLanguage;

const char16_t* FamilyKeyword(uint8_t pitchAndFamily)
{
    switch (pitchAndFamily & 0xF0)
    {
    case 0x10:
        return u"froman";
    case 0x20:
        return u"fswiss";
    case 0x30:
        return u"fmodern";
    case 0x40:
        return u"fscript";
    case 0x50:
        return u"fdecor";
    default:
        return u"fnil";
    }
}

bool IsWrittenAsItIs(char16_t ch)
{
    return ch >= u' ' && ch <= u'z' && ch != u'\\';
}

const char16_t* AlignmentKeyword(int32_t alignment)
{
    if (alignment == CRtfTextLine::AlignLeft)
        return u"ql";
    if (alignment == CRtfTextLine::AlignRight)
        return u"qr";
    return u"qc";
}

// The colour table: every distinct colour once, sorted by value, a colour's RTF number being its
// position. A document uses a handful of colours, kept sorted as they come; should one use
// thousands, the rest are gathered unsorted and sorted once at the end.
class CRtfColourTable
{
public:
    void Add(RichTextColour colour)
    {
        if (m_HasLast && colour == m_Last)
            return;
        m_Last = colour;
        m_HasLast = true;
        const auto at = std::lower_bound(m_Sorted.begin(), m_Sorted.end(), colour);
        if (at != m_Sorted.end() && *at == colour)
            return;
        if (m_Sorted.size() < SortedAsTheyCome)
            m_Sorted.insert(at, colour);
        else
            m_More.insert(colour);
    }

    void Finish()
    {
        m_Sorted.insert(m_Sorted.end(), m_More.begin(), m_More.end());
        m_More.clear();
        std::sort(m_Sorted.begin(), m_Sorted.end());
    }

    const std::vector<RichTextColour>& Colours() const { return m_Sorted; }
    int Index(RichTextColour colour) const
    {
        return static_cast<int>(std::lower_bound(m_Sorted.begin(), m_Sorted.end(), colour) -
                                m_Sorted.begin());
    }

private:
    static constexpr size_t SortedAsTheyCome = 64;

    std::vector<RichTextColour> m_Sorted;
    std::unordered_set<RichTextColour> m_More;
    RichTextColour m_Last = 0;
    bool m_HasLast = false;
};

class CRtfWriter
{
public:
    CRtfWriter(const CRichTextDocument& document, const SFontDescription& defaultFont)
        : m_Document(document), m_Fonts(defaultFont), m_Platform(RichTextPlatform())
    {
    }

    std::u16string Write()
    {
        CollectTables();
        m_Out.reserve(3 * EstimatedTextSize(m_Document) + 1024);
        WriteHeader();
        if (m_Document.IsEmpty())
        {
            m_Out += u"}";
            return std::move(m_Out);
        }
        m_Out += u"\\kerning0\\cf0\\ftnbj\\fet0\\deftab720\\viewkind0\\sectd\\sbknone\\pgncont\\ltrsect\r\n";
        size_t next = 0;
        for (const CRtfTextLine& line : m_Document.Lines())
            WriteLine(line, next);
        m_Out += u"}";
        return std::move(m_Out);
    }

private:
    // Fonts are listed in order of first use, the default font first; the two default colours
    // (both the sentinel) start the colour table.
    void CollectTables()
    {
        ResolveSegmentFormats(m_Document, m_Fonts, m_Formats);
        m_Colours.Add(DefaultRichTextColour);
        for (const SResolvedSegment& format : m_Formats)
        {
            m_Colours.Add(format.textColour);
            m_Colours.Add(format.backColour);
        }
        m_Colours.Finish();
    }

    void WriteHeader()
    {
        m_Out += u"{\\rtf1\\ansi\\ansicpg1252\\deff0\r\n{\\fonttbl\r\n";
        for (size_t i = 0; i < m_Fonts.Count(); ++i)
            WriteFontEntry(static_cast<int>(i), m_Fonts.Font(i));
        m_Out += u"}\r\n{\\colortbl\r\n";
        for (const RichTextColour colour : m_Colours.Colours())
            m_Out += FormatText(u"\\red%d\\green%d\\blue%d;\r\n", colour & 0xFF, (colour >> 8) & 0xFF,
                                (colour >> 16) & 0xFF);
        m_Out += u"}\r\n";
    }

    void WriteFontEntry(int index, const SFontDescription& font)
    {
        const uint8_t metrics = m_Platform.FontPitchAndFamily(font);
        const int pitch = (metrics & 0x01) ? 1 : (metrics & 0x02);
        const char16_t* trueType = (metrics & 0x04) ? u"fttruetype" : u"ftnil";
        m_Out += FormatText(u"{\\f%d\\%s\\fcharset%d\\fprq%d\\%s %s;}\r\n", index, FamilyKeyword(metrics),
                            static_cast<int>(font.charSet), pitch, trueType, font.FaceName());
    }

    void WriteLine(const CRtfTextLine& line, size_t& nextFormat)
    {
        m_Out += u"\\pard\\plain\\ltrpar\\";
        m_Out += AlignmentKeyword(line.Alignment());
        m_Out += u"\\itap0\\deflangfe";
        AppendDecimal(m_Out, Language);
        for (const SRtfTextSegment& segment : line.Segments(ESegmentList::AllChanges))
        {
            const SResolvedSegment& format = m_Formats[nextFormat++];
            if (!segment.IsObjectSegment())
                WriteSegment(line.Text(), segment, format);
        }
        m_Out += u"{\\par}";
    }

    void WriteSegment(const std::u16string& text, const SRtfTextSegment& segment,
                      const SResolvedSegment& format)
    {
        m_Out += m_Openings.Get(format, [this](const SResolvedSegment& f, std::u16string& markup)
                                { BuildOpening(f, markup); });
        m_CodePage = CodePage;
        const size_t end = std::min(static_cast<size_t>(segment.end) + 1, text.size());
        size_t at = static_cast<size_t>(segment.start);
        while (at < end)
        {
            // Runs of characters written as they are go out in one append.
            size_t runEnd = at;
            while (runEnd < end && IsWrittenAsItIs(text[runEnd]))
                ++runEnd;
            m_Out.append(text, at, runEnd - at);
            if (runEnd < end)
                WriteCharacter(text[runEnd]);
            at = runEnd + 1;
        }
        m_Out += u"}";
        m_CodePage = CodePage;
    }

    // "{\f<font>\fs<half points>" and the style, colour and language words of one format.
    void BuildOpening(const SResolvedSegment& format, std::u16string& markup) const
    {
        const SFontDescription& font = m_Fonts.Font(static_cast<size_t>(format.font));
        markup = u"{\\f";
        AppendDecimal(markup, format.font);
        markup += u"\\fs";
        AppendDecimal(markup, 2 * font.PointSize());
        if (font.IsBold())
            markup += u"\\b";
        if (font.IsItalic())
            markup += u"\\i";
        if (font.IsUnderlined())
            markup += u"\\ul";
        if (format.textColour != DefaultRichTextColour)
        {
            markup += u"\\cf";
            AppendDecimal(markup, m_Colours.Index(format.textColour));
        }
        if (format.backColour != DefaultRichTextColour)
        {
            markup += u"\\highlight";
            AppendDecimal(markup, m_Colours.Index(format.backColour));
        }
        markup += u"\\cpg1252\\lang1033\\ltrch ";
    }

    void WriteCharacter(char16_t ch)
    {
        if (ch == u'\t')
            m_Out += u"\\tab ";
        else if (ch == u'\\' || ch == u'{' || ch == u'}')
        {
            m_Out.push_back(u'\\');
            m_Out.push_back(ch);
        }
        else if (ch >= u' ' && ch <= u'z')
            m_Out.push_back(ch);
        else
            WriteUnicodeCharacter(ch);
    }

    void WriteUnicodeCharacter(char16_t ch)
    {
        const int codePage = m_Platform.CodePageOfCharacter(ch);
        if (codePage != m_CodePage)
        {
            m_Out += FormatText(u"\\cpg%d\\lang%d\\langfe%d\\langnp%d\\langfenp%d", codePage, Language,
                                Language, Language, Language);
            m_CodePage = codePage;
        }
        m_Out += u"\\u";
        AppendDecimal(m_Out, static_cast<int16_t>(ch));
        m_Out.push_back(ch > 255 ? u'?' : ch);
    }

    const CRichTextDocument& m_Document;
    CFontNumbering m_Fonts;
    const IRichTextPlatform& m_Platform;
    std::vector<SResolvedSegment> m_Formats;
    CRtfColourTable m_Colours;
    CSegmentMarkupCache<std::u16string> m_Openings;
    int m_CodePage = CodePage;
    std::u16string m_Out;
};
} // namespace

std::u16string ToRtf(const CRichTextDocument& document, const SFontDescription& defaultFont)
{
    return CRtfWriter(document, defaultFont).Write();
}

std::string RtfTextToBytes(std::u16string_view rtf)
{
    std::string bytes;
    bytes.reserve(rtf.size());
    for (const char16_t unit : rtf)
    {
        if (unit < 0x100)
        {
            bytes.push_back(static_cast<char>(unit));
            continue;
        }
        bytes += "\\u";
        bytes += std::to_string(static_cast<int16_t>(unit));
        bytes.push_back('?');
    }
    return bytes;
}
