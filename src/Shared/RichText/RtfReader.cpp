#include "Shared/RichText/RtfReader.h"

#include "Shared/Base/Format.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RtfReaderCodePage.h"
#include "Shared/RichText/RtfReaderKeywords.h"
#include "Shared/RichText/RtfReaderPicture.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace
{
constexpr int DefaultHalfPoints = 24;
constexpr int MaxUnicodeSkip = 64;
constexpr int32_t MaxHalfPoints = 3276;
constexpr int32_t MaxParameter = 1000000000;

// A syntax fault; caught by ReadRtf, which logs it once.
struct SRtfSyntaxError
{
    std::u16string reason;
};

enum class EDestination : uint8_t
{
    Text,
    FontTable,
    ColourTable,
    Picture
};

struct SCharFormat
{
    int font = -1; // -1: the document's default font
    int halfPoints = DefaultHalfPoints;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool hidden = false; // \v: text the reader leaves out
    int textColour = -1; // colour table index; -1: default
    int backColour = -1;
};

struct SGroupState
{
    SCharFormat format;
    int32_t alignment = CRtfTextLine::AlignLeft;
    int unicodeSkip = 1;
    int groupCodePage = 0; // from \cpg
    int fontCodePage = 0;  // from the current font's \fcharset
    EDestination destination = EDestination::Text;
};

struct SFontEntry
{
    std::u16string face;
    uint8_t charSet = 0;
    uint8_t pitchAndFamily = 0;
    int codePage = 0;
};

struct SBlockFormat
{
    SFontDescription font;
    RichTextColour textColour = DefaultRichTextColour;
    RichTextColour backColour = DefaultRichTextColour;
    bool operator==(const SBlockFormat&) const = default;
};

struct SControl
{
    bool isWord = false;
    char symbol = 0; // for control symbols
    std::string_view name;
    bool hasParameter = false;
    int32_t parameter = 0;
};

int HexValue(char16_t ch)
{
    if (ch >= u'0' && ch <= u'9')
        return ch - u'0';
    if (ch >= u'a' && ch <= u'f')
        return ch - u'a' + 10;
    if (ch >= u'A' && ch <= u'F')
        return ch - u'A' + 10;
    return -1;
}

bool IsAsciiLetter(char16_t ch)
{
    return (ch >= u'a' && ch <= u'z') || (ch >= u'A' && ch <= u'Z');
}

// Characters that start no control sequence and need no decoding: appended as they are.
template <class TChar> bool IsPlainTextUnit(TChar ch)
{
    const auto unit = static_cast<std::make_unsigned_t<TChar>>(ch);
    return unit >= 0x20 && unit < 0x80 && unit != '\\' && unit != '{' && unit != '}';
}

template <class TChar> class CRtfParser
{
public:
    using TView = std::basic_string_view<TChar>;
    static constexpr bool IsByteInput = sizeof(TChar) == 1;

    CRtfParser(TView in, const SFontDescription& defaultFont) : m_In(in), m_DefaultFont(defaultFont) {}

    CRichTextDocument Parse()
    {
        CheckHeader();
        while (!m_Done)
        {
            if (m_Pos >= m_In.size())
                throw SRtfSyntaxError{u"the text ends inside a group"};
            Step();
        }
        if (!m_LineText.empty() || m_Document.LineCount() == 0)
            FinishLine();
        return std::move(m_Document);
    }

private:
    // ---- scanning -------------------------------------------------------------------------

    void CheckHeader()
    {
        while (m_Pos < m_In.size() &&
               (m_In[m_Pos] == ' ' || m_In[m_Pos] == '\r' || m_In[m_Pos] == '\n' || m_In[m_Pos] == '\t'))
            ++m_Pos;
        static constexpr char Header[] = "{\\rtf";
        for (size_t i = 0; i < 5; ++i)
            if (m_Pos + i >= m_In.size() || m_In[m_Pos + i] != static_cast<TChar>(Header[i]))
                throw SRtfSyntaxError{u"the text does not begin with {\\rtf"};
    }

    void Step()
    {
        const TChar ch = m_In[m_Pos];
        if (ch == '{')
        {
            ++m_Pos;
            FlushPendingBytes();
            m_FallbackLeft = 0;
            PushGroup();
        }
        else if (ch == '}')
        {
            ++m_Pos;
            FlushPendingBytes();
            m_FallbackLeft = 0;
            PopGroup();
        }
        else if (ch == '\\')
            HandleControl(ReadControl());
        else if (ch == '\r' || ch == '\n')
            ++m_Pos;
        else if (m_FallbackLeft > 0)
        {
            ++m_Pos;
            --m_FallbackLeft;
        }
        else if (State().destination == EDestination::Text && IsPlainTextUnit(ch))
            AppendPlainRun();
        else
            HandleOtherUnit();
    }

    void AppendPlainRun()
    {
        FlushPendingBytes();
        size_t end = m_Pos + 1;
        while (end < m_In.size() && IsPlainTextUnit(m_In[end]))
            ++end;
        if (State().format.hidden)
        {
            m_Pos = end;
            return;
        }
        PrepareFormat();
        const size_t at = m_LineText.size();
        m_LineText.resize(at + (end - m_Pos));
        for (size_t i = m_Pos; i < end; ++i)
            m_LineText[at + (i - m_Pos)] = static_cast<char16_t>(m_In[i]);
        m_Pos = end;
    }

    void HandleOtherUnit()
    {
        const auto unit = static_cast<std::make_unsigned_t<TChar>>(m_In[m_Pos++]);
        if (State().destination == EDestination::Picture)
        {
            AddPictureHexDigit(static_cast<char16_t>(unit));
            return;
        }
        if (unit >= 0x80 && IsByteInput)
        {
            m_PendingBytes.push_back(static_cast<char>(unit));
            return;
        }
        if (unit < 0x20)
            return; // stray control characters carry nothing
        FlushPendingBytes();
        const char16_t text = static_cast<char16_t>(unit);
        PutText(std::u16string_view(&text, 1));
    }

    SControl ReadControl()
    {
        ++m_Pos; // the backslash
        SControl control;
        if (m_Pos >= m_In.size())
            return control;
        if (!IsAsciiLetter(static_cast<char16_t>(m_In[m_Pos])))
        {
            control.symbol = static_cast<char>(m_In[m_Pos] < 0x80 ? m_In[m_Pos] : '?');
            ++m_Pos;
            return control;
        }
        control.isWord = true;
        size_t length = 0;
        while (m_Pos < m_In.size() && IsAsciiLetter(static_cast<char16_t>(m_In[m_Pos])))
        {
            if (length < sizeof(m_NameBuffer))
                m_NameBuffer[length] = static_cast<char>(m_In[m_Pos]);
            ++length;
            ++m_Pos;
        }
        // Longer names are no keyword; an empty view keeps them unknown.
        control.name =
            length <= sizeof(m_NameBuffer) ? std::string_view(m_NameBuffer, length) : std::string_view();
        ReadParameter(control);
        if (m_Pos < m_In.size() && m_In[m_Pos] == ' ')
            ++m_Pos;
        return control;
    }

    void ReadParameter(SControl& control)
    {
        bool negative = false;
        if (m_Pos + 1 < m_In.size() && m_In[m_Pos] == '-' && m_In[m_Pos + 1] >= '0' && m_In[m_Pos + 1] <= '9')
        {
            negative = true;
            ++m_Pos;
        }
        int64_t value = 0;
        while (m_Pos < m_In.size() && m_In[m_Pos] >= '0' && m_In[m_Pos] <= '9')
        {
            control.hasParameter = true;
            value = std::min<int64_t>(value * 10 + (m_In[m_Pos] - '0'), MaxParameter);
            ++m_Pos;
        }
        control.parameter = static_cast<int32_t>(negative ? -value : value);
    }

    // Reads the two hex digits after \'; nothing when they are not hex digits.
    int ReadHexByte()
    {
        if (m_Pos + 2 > m_In.size())
            return -1;
        const int high = HexValue(static_cast<char16_t>(m_In[m_Pos]));
        const int low = HexValue(static_cast<char16_t>(m_In[m_Pos + 1]));
        if (high < 0 || low < 0)
            return -1;
        m_Pos += 2;
        return high * 16 + low;
    }

    // ---- control words --------------------------------------------------------------------

    void HandleControl(const SControl& control)
    {
        if (m_FallbackLeft > 0)
        {
            // A control word or symbol in a \u fallback counts as one character and is dropped.
            --m_FallbackLeft;
            if (!control.isWord && control.symbol == '\'')
                ReadHexByte();
            else if (control.isWord && control.name == "bin")
                SkipBinary(control);
            return;
        }
        if (!control.isWord)
        {
            HandleSymbol(control.symbol);
            return;
        }
        const ERtfKeyword keyword = FindRtfKeyword(control.name);
        const bool starred = m_Starred;
        m_Starred = false;
        FlushPendingBytes();
        if (starred && keyword != ERtfKeyword::ShapePicture)
        {
            SkipGroup();
            return;
        }
        HandleKeyword(keyword, control);
    }

    void HandleSymbol(char symbol)
    {
        if (symbol == '\'')
        {
            const int byte = ReadHexByte();
            if (byte >= 0 && State().destination != EDestination::Picture)
                m_PendingBytes.push_back(static_cast<char>(byte));
            return;
        }
        FlushPendingBytes();
        switch (symbol)
        {
        case '*':
            m_Starred = true;
            break;
        case '\\':
        case '{':
        case '}':
        {
            const char16_t text = static_cast<char16_t>(symbol);
            PutText(std::u16string_view(&text, 1));
            break;
        }
        case '~':
            PutText(u"\u00A0");
            break;
        case '_':
            PutText(u"\u2011");
            break;
        case '\r':
        case '\n':
            EndParagraph();
            break;
        default:
            break; // \- \: \| and unknown symbols carry no text
        }
    }

    void HandleKeyword(ERtfKeyword keyword, const SControl& control)
    {
        if (HandleTableKeyword(keyword, control) || HandleFormatKeyword(keyword, control) ||
            HandlePictureKeyword(keyword, control))
            return;
        const int32_t parameter = control.parameter;
        switch (keyword)
        {
        case ERtfKeyword::Par:
            EndParagraph();
            break;
        case ERtfKeyword::Tab:
        case ERtfKeyword::Cell:
            PutText(u"\t");
            break;
        case ERtfKeyword::EmDash:
            PutText(u"\u2014");
            break;
        case ERtfKeyword::EnDash:
            PutText(u"\u2013");
            break;
        case ERtfKeyword::Bullet:
            PutText(u"\u2022");
            break;
        case ERtfKeyword::LeftQuote:
            PutText(u"\u2018");
            break;
        case ERtfKeyword::RightQuote:
            PutText(u"\u2019");
            break;
        case ERtfKeyword::LeftDoubleQuote:
            PutText(u"\u201C");
            break;
        case ERtfKeyword::RightDoubleQuote:
            PutText(u"\u201D");
            break;
        case ERtfKeyword::Unicode:
            PutUnicode(parameter);
            break;
        case ERtfKeyword::UnicodeSkip:
            State().unicodeSkip = std::clamp(parameter, 0, MaxUnicodeSkip);
            break;
        case ERtfKeyword::Binary:
            SkipBinary(control);
            break;
        case ERtfKeyword::AnsiCodePage:
            m_DocumentCodePage = parameter;
            break;
        case ERtfKeyword::MacCodePage:
            m_DocumentCodePage = 10000;
            break;
        case ERtfKeyword::PcCodePage:
            m_DocumentCodePage = 437;
            break;
        case ERtfKeyword::PcaCodePage:
            m_DocumentCodePage = 850;
            break;
        case ERtfKeyword::GroupCodePage:
            State().groupCodePage = parameter;
            break;
        case ERtfKeyword::DefaultFont:
            m_DefaultFontNumber = parameter;
            break;
        case ERtfKeyword::SkippedDestination:
            SkipGroup();
            break;
        default:
            break;
        }
    }

    bool HandleFormatKeyword(ERtfKeyword keyword, const SControl& control)
    {
        SGroupState& state = State();
        SCharFormat& format = state.format;
        const bool on = !control.hasParameter || control.parameter != 0;
        switch (keyword)
        {
        case ERtfKeyword::ParagraphDefaults:
            state.alignment = CRtfTextLine::AlignLeft;
            return true;
        case ERtfKeyword::AlignLeft:
            state.alignment = CRtfTextLine::AlignLeft;
            return true;
        case ERtfKeyword::AlignCentre:
            state.alignment = CRtfTextLine::AlignCentre;
            return true;
        case ERtfKeyword::AlignRight:
            state.alignment = CRtfTextLine::AlignRight;
            return true;
        case ERtfKeyword::Plain:
            format = SCharFormat();
            state.fontCodePage = FontCodePage(m_DefaultFontNumber);
            break;
        case ERtfKeyword::Bold:
            format.bold = on;
            break;
        case ERtfKeyword::Italic:
            format.italic = on;
            break;
        case ERtfKeyword::Underline:
            format.underline = on;
            break;
        case ERtfKeyword::UnderlineNone:
            format.underline = false;
            break;
        case ERtfKeyword::Hidden:
            format.hidden = on;
            break;
        case ERtfKeyword::Font:
            if (state.destination != EDestination::Text)
                return false; // a font table entry's number
            format.font = control.parameter;
            state.fontCodePage = FontCodePage(control.parameter);
            break;
        case ERtfKeyword::FontSize:
            format.halfPoints = control.hasParameter
                                    ? std::min<int32_t>(std::abs(control.parameter), MaxHalfPoints)
                                    : DefaultHalfPoints;
            break;
        case ERtfKeyword::TextColour:
            format.textColour = control.parameter;
            break;
        case ERtfKeyword::BackColour:
            format.backColour = control.parameter;
            break;
        default:
            return false;
        }
        m_FormatDirty = true;
        return true;
    }

    bool HandleTableKeyword(ERtfKeyword keyword, const SControl& control)
    {
        const int32_t parameter = control.parameter;
        switch (keyword)
        {
        case ERtfKeyword::FontTable:
            State().destination = EDestination::FontTable;
            return true;
        case ERtfKeyword::ColourTable:
            State().destination = EDestination::ColourTable;
            return true;
        case ERtfKeyword::Red:
        case ERtfKeyword::Green:
        case ERtfKeyword::Blue:
            if (State().destination != EDestination::ColourTable)
                return true;
            SetColourComponent(keyword, parameter);
            return true;
        case ERtfKeyword::Font:
            if (State().destination != EDestination::FontTable)
                return false;
            FinishFontEntry();
            m_FontNumber = parameter;
            return true;
        default:
            break;
        }
        if (State().destination != EDestination::FontTable)
            return false;
        switch (keyword)
        {
        case ERtfKeyword::Charset:
            m_FontEntry.charSet = static_cast<uint8_t>(parameter);
            m_FontEntry.codePage = CRtfCodePageDecoder::CodePageOfCharset(parameter);
            return true;
        case ERtfKeyword::Pitch:
            m_FontEntry.pitchAndFamily =
                static_cast<uint8_t>((m_FontEntry.pitchAndFamily & 0xFC) | (parameter == 1   ? 0x01
                                                                            : parameter == 2 ? 0x02
                                                                                             : 0));
            return true;
        case ERtfKeyword::TrueType:
            m_FontEntry.pitchAndFamily |= 0x04;
            return true;
        case ERtfKeyword::FamilyNil:
        case ERtfKeyword::FamilyRoman:
        case ERtfKeyword::FamilySwiss:
        case ERtfKeyword::FamilyModern:
        case ERtfKeyword::FamilyScript:
        case ERtfKeyword::FamilyDecor:
        {
            const int family = static_cast<int>(keyword) - static_cast<int>(ERtfKeyword::FamilyNil);
            m_FontEntry.pitchAndFamily =
                static_cast<uint8_t>((m_FontEntry.pitchAndFamily & 0x0F) | (family << 4));
            return true;
        }
        default:
            return false;
        }
    }

    bool HandlePictureKeyword(ERtfKeyword keyword, const SControl&)
    {
        switch (keyword)
        {
        case ERtfKeyword::Picture:
            if (State().destination != EDestination::Text)
                SkipGroup();
            else
            {
                State().destination = EDestination::Picture;
                m_PictureFormat = ERtfPictureFormat::Unknown;
                m_PictureData.clear();
                m_PictureNibble = -1;
            }
            return true;
        case ERtfKeyword::ShapePicture:
            return true;
        case ERtfKeyword::PngBlip:
            m_PictureFormat = ERtfPictureFormat::Png;
            return true;
        case ERtfKeyword::JpegBlip:
            m_PictureFormat = ERtfPictureFormat::Jpeg;
            return true;
        case ERtfKeyword::DibBitmap:
            m_PictureFormat = ERtfPictureFormat::Dib;
            return true;
        case ERtfKeyword::OtherPictureFormat:
            m_PictureFormat = ERtfPictureFormat::Other;
            return true;
        default:
            return false;
        }
    }

    // ---- groups ---------------------------------------------------------------------------

    SGroupState& State() { return m_Stack.back(); }

    void PushGroup()
    {
        if (m_Stack.size() >= MaxRtfGroupDepth)
            throw SRtfSyntaxError{
                FormatText(u"groups are nested more than %d deep", static_cast<int>(MaxRtfGroupDepth))};
        if (m_Stack.empty())
            m_Stack.emplace_back();
        else
            m_Stack.push_back(m_Stack.back());
    }

    void PopGroup()
    {
        const EDestination leaving = State().destination;
        m_Stack.pop_back();
        const EDestination back = m_Stack.empty() ? EDestination::Text : State().destination;
        if (leaving == EDestination::FontTable)
            FinishFontEntry();
        else if (leaving == EDestination::Picture && back != EDestination::Picture)
            FinishPicture();
        m_FormatDirty = true;
        if (m_Stack.empty())
            m_Done = true;
    }

    // Skips the rest of the current group, nested groups included, without keeping state for
    // them, so that a deep unknown destination costs no stack.
    void SkipGroup()
    {
        size_t depth = 1;
        while (m_Pos < m_In.size())
        {
            const TChar ch = m_In[m_Pos];
            if (ch == '\\')
            {
                const SControl control = ReadControl();
                if (control.isWord && control.name == "bin")
                    SkipBinary(control);
                continue;
            }
            ++m_Pos;
            if (ch == '{')
                ++depth;
            else if (ch == '}' && --depth == 0)
            {
                m_Stack.pop_back();
                if (m_Stack.empty())
                    m_Done = true;
                return;
            }
        }
        throw SRtfSyntaxError{u"the text ends inside a group"};
    }

    void SkipBinary(const SControl& control)
    {
        if (!control.hasParameter || control.parameter <= 0)
            return;
        const size_t count = static_cast<size_t>(control.parameter);
        if (count > m_In.size() - m_Pos)
            throw SRtfSyntaxError{
                FormatText(u"binary data of %d bytes runs past the end", control.parameter)};
        if (!m_Stack.empty() && State().destination == EDestination::Picture)
            for (size_t i = 0; i < count; ++i)
                m_PictureData.push_back(static_cast<char>(m_In[m_Pos + i]));
        m_Pos += count;
    }

    // ---- text -----------------------------------------------------------------------------

    int CurrentCodePage()
    {
        const SGroupState& state = State();
        if (state.groupCodePage != 0)
            return state.groupCodePage;
        if (state.fontCodePage != 0)
            return state.fontCodePage;
        // Text before any \f is in the default font, whose character set may name a code page.
        const int defaultFontCodePage = state.format.font < 0 ? FontCodePage(m_DefaultFontNumber) : 0;
        return defaultFontCodePage != 0 ? defaultFontCodePage : m_DocumentCodePage;
    }

    void FlushPendingBytes()
    {
        if (m_PendingBytes.empty())
            return;
        m_Decoded.clear();
        m_Decoder.Decode(CurrentCodePage(), m_PendingBytes, m_Decoded);
        m_PendingBytes.clear();
        PutText(m_Decoded);
    }

    void PutUnicode(int32_t value)
    {
        if (value < 0)
            value += 65536;
        const char16_t unit = static_cast<char16_t>(value & 0xFFFF);
        PutText(std::u16string_view(&unit, 1));
        m_FallbackLeft = State().unicodeSkip;
    }

    void PutText(std::u16string_view text)
    {
        switch (State().destination)
        {
        case EDestination::Text:
            if (State().format.hidden)
                break;
            PrepareFormat();
            m_LineText += text;
            break;
        case EDestination::FontTable:
            for (const char16_t ch : text)
                if (ch == u';')
                    FinishFontEntry();
                else
                    m_FontEntry.face.push_back(ch);
            break;
        case EDestination::ColourTable:
            if (text.find(u';') != std::u16string_view::npos)
                FinishColourEntry();
            break;
        case EDestination::Picture:
            for (const char16_t ch : text)
                AddPictureHexDigit(ch);
            break;
        }
    }

    // Starts a format block before the next character when the format differs from the block
    // in force.
    void PrepareFormat()
    {
        if (!m_FormatDirty && !m_LineBlocks.empty())
            return;
        m_FormatDirty = false;
        SBlockFormat format = CurrentBlockFormat();
        if (!m_LineBlocks.empty() && format == m_LastFormat)
            return;
        CRtfTextBlockInfo block(static_cast<int32_t>(m_LineText.size()));
        block.SetFont(format.font);
        block.SetTextColour(format.textColour);
        block.SetBackColour(format.backColour);
        m_LineBlocks.push_back(std::move(block));
        m_LastFormat = std::move(format);
    }

    SBlockFormat CurrentBlockFormat()
    {
        const SCharFormat& format = State().format;
        SBlockFormat block;
        block.font = m_DefaultFont;
        const SFontEntry* entry = FindFont(format.font < 0 ? m_DefaultFontNumber : format.font);
        if (entry == nullptr)
            entry = FindFont(m_DefaultFontNumber);
        if (entry != nullptr)
        {
            block.font.SetFaceName(entry->face);
            block.font.charSet = entry->charSet;
            block.font.pitchAndFamily = entry->pitchAndFamily;
        }
        block.font.height = (format.halfPoints + 1) / 2;
        block.font.weight = format.bold ? SFontDescription::BoldWeight : 400;
        block.font.italic = format.italic ? 1 : 0;
        block.font.underline = format.underline ? 1 : 0;
        block.textColour = TableColour(format.textColour);
        block.backColour = TableColour(format.backColour);
        return block;
    }

    RichTextColour TableColour(int index) const
    {
        if (index < 0 || static_cast<size_t>(index) >= m_Colours.size())
            return DefaultRichTextColour;
        return m_Colours[static_cast<size_t>(index)];
    }

    void EndParagraph()
    {
        if (State().destination == EDestination::Text)
            FinishLine();
    }

    void FinishLine()
    {
        CRtfTextLine line(std::move(m_LineText));
        line.SetAlignment(m_Stack.empty() ? CRtfTextLine::AlignLeft : State().alignment);
        line.SetBlocks(std::move(m_LineBlocks));
        line.SetObjects(std::move(m_LineObjects));
        m_Document.AppendLine(std::move(line));
        m_LineText.clear();
        m_LineBlocks.clear();
        m_LineObjects.clear();
    }

    // ---- tables ---------------------------------------------------------------------------

    const SFontEntry* FindFont(int number)
    {
        const auto found = m_Fonts.find(number);
        return found == m_Fonts.end() ? nullptr : &found->second;
    }

    int FontCodePage(int number)
    {
        const SFontEntry* entry = FindFont(number);
        return entry == nullptr ? 0 : entry->codePage;
    }

    void FinishFontEntry()
    {
        if (m_FontNumber >= 0)
        {
            const size_t first = m_FontEntry.face.find_first_not_of(u' ');
            m_FontEntry.face.erase(0, first == std::u16string::npos ? m_FontEntry.face.size() : first);
            while (!m_FontEntry.face.empty() && m_FontEntry.face.back() == u' ')
                m_FontEntry.face.pop_back();
            m_Fonts.insert_or_assign(m_FontNumber, m_FontEntry);
        }
        m_FontNumber = -1;
        m_FontEntry = SFontEntry();
    }

    void SetColourComponent(ERtfKeyword component, int32_t value)
    {
        const uint32_t byte = static_cast<uint32_t>(std::clamp(value, 0, 255));
        const int shift = component == ERtfKeyword::Red ? 0 : component == ERtfKeyword::Green ? 8 : 16;
        m_PendingColour = (m_PendingColour & ~(0xFFu << shift)) | (byte << shift);
        m_PendingColourSet = true;
    }

    void FinishColourEntry()
    {
        m_Colours.push_back(m_PendingColourSet ? m_PendingColour : DefaultRichTextColour);
        m_PendingColour = 0;
        m_PendingColourSet = false;
    }

    // ---- pictures -------------------------------------------------------------------------

    void AddPictureHexDigit(char16_t ch)
    {
        const int value = HexValue(ch);
        if (value < 0)
            return;
        if (m_PictureNibble < 0)
            m_PictureNibble = value;
        else
        {
            m_PictureData.push_back(static_cast<char>(m_PictureNibble * 16 + value));
            m_PictureNibble = -1;
        }
    }

    void FinishPicture()
    {
        std::optional<CDIBitmap> bitmap = ConvertRtfPicture(m_PictureFormat, m_PictureData);
        m_PictureData.clear();
        if (!bitmap)
            return;
        CRtfObjectInfo object(CRtfObjectInfo::PictureType, static_cast<int32_t>(m_LineText.size()));
        object.SetPicture(std::move(bitmap));
        m_LineObjects.push_back(std::move(object));
        m_LineText.push_back(CRtfObjectInfo::ObjectCharacter);
    }

    TView m_In;
    size_t m_Pos = 0;
    const SFontDescription& m_DefaultFont;
    std::vector<SGroupState> m_Stack;
    bool m_Done = false;
    bool m_Starred = false;
    int m_FallbackLeft = 0;
    char m_NameBuffer[32] = {};

    int m_DocumentCodePage = CRtfCodePageDecoder::WesternCodePage;
    CRtfCodePageDecoder m_Decoder;
    std::string m_PendingBytes;
    std::u16string m_Decoded;

    int m_DefaultFontNumber = 0;
    std::map<int, SFontEntry> m_Fonts;
    int m_FontNumber = -1;
    SFontEntry m_FontEntry;
    std::vector<RichTextColour> m_Colours;
    uint32_t m_PendingColour = 0;
    bool m_PendingColourSet = false;

    ERtfPictureFormat m_PictureFormat = ERtfPictureFormat::Unknown;
    std::string m_PictureData;
    int m_PictureNibble = -1;

    CRichTextDocument m_Document;
    std::u16string m_LineText;
    std::vector<CRtfTextBlockInfo> m_LineBlocks;
    std::vector<CRtfObjectInfo> m_LineObjects;
    SBlockFormat m_LastFormat;
    bool m_FormatDirty = true;
};

template <class TChar>
bool ReadRtfText(std::basic_string_view<TChar> rtf, const SFontDescription& defaultFont,
                 CRichTextDocument& document, std::u16string* failure)
{
    std::u16string reason;
    try
    {
        document = CRtfParser<TChar>(rtf, defaultFont).Parse();
        return true;
    }
    catch (const SRtfSyntaxError& error)
    {
        reason = error.reason;
    }
    catch (const std::bad_alloc&)
    {
        reason = FormatText(u"out of memory (%d bytes of RTF)", static_cast<long long>(rtf.size()));
    }
    if (failure != nullptr)
        *failure = std::move(reason);
    else
        LogMessage(u"Error: Cannot read RTF text, %s", reason);
    return false;
}
} // namespace

bool ReadRtf(std::string_view rtf, const SFontDescription& defaultFont, CRichTextDocument& document,
             std::u16string* failure)
{
    return ReadRtfText(rtf, defaultFont, document, failure);
}

bool ReadRtf(std::u16string_view rtf, const SFontDescription& defaultFont, CRichTextDocument& document,
             std::u16string* failure)
{
    return ReadRtfText(rtf, defaultFont, document, failure);
}
