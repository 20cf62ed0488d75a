#include "Shared/RichText/RtfWriter.h"

#include "Shared/Base/Format.h"
#include "Shared/RichText/RichTextPlatform.h"
#include "Shared/RichText/SegmentFormatCursor.h"
#include "Shared/RichText/TextAppend.h"

#include <algorithm>
#include <map>
#include <unordered_map>

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

class CRtfWriter
{
public:
    CRtfWriter(const CRichTextDocument& document, const SFontDescription& defaultFont)
        : m_Document(document), m_DefaultFont(defaultFont), m_Platform(RichTextPlatform())
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
        for (const CRtfTextLine& line : m_Document.Lines())
            WriteLine(line);
        m_Out += u"}";
        return std::move(m_Out);
    }

private:
    // Fonts are listed in order of first use, the default font first; colours sorted by value.
    void CollectTables()
    {
        FontIndex(m_DefaultFont);
        AddColour(DefaultRichTextColour);
        for (const CRtfTextLine& line : m_Document.Lines())
        {
            CSegmentFormatCursor cursor(line, m_DefaultFont);
            for (const SRtfTextSegment& segment : line.Segments(ESegmentList::AllChanges))
            {
                const SSegmentFormat& format = cursor.At(segment.start);
                FontIndex(*format.font);
                AddColour(format.textColour);
                AddColour(format.backColour);
            }
        }
    }

    // Keeps the table sorted and free of repeats as it grows; documents use few colours.
    void AddColour(RichTextColour colour)
    {
        const auto at = std::lower_bound(m_Colours.begin(), m_Colours.end(), colour);
        if (at == m_Colours.end() || *at != colour)
            m_Colours.insert(at, colour);
    }

    // Fonts are told apart by their bytes; the address of a block's font is remembered so that
    // each block's font is compared once.
    int FontIndex(const SFontDescription& font)
    {
        if (&font == m_LastFont)
            return m_LastFontIndex;
        const auto known = m_FontIndexByAddress.find(&font);
        int index = 0;
        if (known != m_FontIndexByAddress.end())
            index = known->second;
        else
        {
            const auto [at, added] = m_FontIndexes.try_emplace(font, static_cast<int>(m_Fonts.size()));
            if (added)
                m_Fonts.push_back(&at->first);
            index = at->second;
            m_FontIndexByAddress.emplace(&font, index);
        }
        m_LastFont = &font;
        m_LastFontIndex = index;
        return index;
    }

    int ColourIndex(RichTextColour colour) const
    {
        return static_cast<int>(std::lower_bound(m_Colours.begin(), m_Colours.end(), colour) -
                                m_Colours.begin());
    }

    void WriteHeader()
    {
        m_Out += FormatText(u"{\\rtf1\\ansi\\ansicpg1252\\deff%d\r\n", FontIndex(m_DefaultFont));
        m_Out += u"{\\fonttbl\r\n";
        for (size_t i = 0; i < m_Fonts.size(); ++i)
            WriteFontEntry(static_cast<int>(i), *m_Fonts[i]);
        m_Out += u"}\r\n{\\colortbl\r\n";
        for (const RichTextColour colour : m_Colours)
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

    void WriteLine(const CRtfTextLine& line)
    {
        m_Out += u"\\pard\\plain\\ltrpar\\";
        m_Out += AlignmentKeyword(line.Alignment());
        m_Out += u"\\itap0\\deflangfe";
        AppendDecimal(m_Out, Language);
        CSegmentFormatCursor cursor(line, m_DefaultFont);
        for (const SRtfTextSegment& segment : line.Segments(ESegmentList::AllChanges))
        {
            const SSegmentFormat& format = cursor.At(segment.start);
            if (!segment.IsObjectSegment())
                WriteSegment(line.Text(), segment, format);
        }
        m_Out += u"{\\par}";
    }

    void WriteSegment(const std::u16string& text, const SRtfTextSegment& segment,
                      const SSegmentFormat& format)
    {
        m_Out += u"{\\f";
        AppendDecimal(m_Out, FontIndex(*format.font));
        m_Out += u"\\fs";
        AppendDecimal(m_Out, 2 * format.font->PointSize());
        if (format.font->IsBold())
            m_Out += u"\\b";
        if (format.font->IsItalic())
            m_Out += u"\\i";
        if (format.font->IsUnderlined())
            m_Out += u"\\ul";
        if (format.textColour != DefaultRichTextColour)
        {
            m_Out += u"\\cf";
            AppendDecimal(m_Out, ColourIndex(format.textColour));
        }
        if (format.backColour != DefaultRichTextColour)
        {
            m_Out += u"\\highlight";
            AppendDecimal(m_Out, ColourIndex(format.backColour));
        }
        m_Out += u"\\cpg1252\\lang1033\\ltrch ";
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
    const SFontDescription& m_DefaultFont;
    const IRichTextPlatform& m_Platform;
    std::map<SFontDescription, int> m_FontIndexes;
    std::unordered_map<const SFontDescription*, int> m_FontIndexByAddress;
    std::vector<const SFontDescription*> m_Fonts;
    const SFontDescription* m_LastFont = nullptr;
    int m_LastFontIndex = 0;
    std::vector<RichTextColour> m_Colours;
    int m_CodePage = CodePage;
    std::u16string m_Out;
};
} // namespace

std::u16string ToRtf(const CRichTextDocument& document, const SFontDescription& defaultFont)
{
    return CRtfWriter(document, defaultFont).Write();
}
