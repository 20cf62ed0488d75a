#include "Gui/GuiClipboard.h"

#include "Gui/QtText.h"
#include "Shared/Base/Archive.h"
#include "Shared/Clipboard/HtmlClipboardBlock.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextReader.h"
#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfWriter.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>

namespace
{
QString FormatName(EClipboardFormat format)
{
    return ToQString(ClipboardFormatName(format));
}

QByteArray ToByteArray(std::span<const uint8_t> bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

RichTextColour ToColourRef(const QColor& colour)
{
    return static_cast<RichTextColour>(colour.red()) | (static_cast<RichTextColour>(colour.green()) << 8) |
           (static_cast<RichTextColour>(colour.blue()) << 16);
}

// One fragment's character format as the block that starts its run, against the document's
// default font; fields equal to what the run before already set are left out.
CRtfTextBlockInfo BlockOf(const QTextCharFormat& format, const SFontDescription& defaultFont, int32_t start)
{
    SFontDescription font = defaultFont;
    const QStringList families = format.fontFamilies().toStringList();
    if (!families.isEmpty() && !families.first().isEmpty())
        font.SetFaceName(ToU16(families.first()).substr(0, SFontDescription::FaceNameChars - 1));
    if (format.fontPointSize() > 0)
        font.height = static_cast<int32_t>(std::clamp(format.fontPointSize() + 0.5, 1.0, 1000.0));
    // Anything the web calls bold is bold here, whose own bold starts at a heavier weight.
    font.weight = format.fontWeight() >= QFont::DemiBold ? SFontDescription::BoldWeight : 400;
    font.italic = format.fontItalic() ? 1 : 0;
    font.underline = format.fontUnderline() || format.isAnchor() ? 1 : 0;
    font.strikeOut = format.fontStrikeOut() ? 1 : 0;

    CRtfTextBlockInfo block(start);
    block.SetFont(font);
    block.SetTextColour(format.foreground().style() != Qt::NoBrush ? ToColourRef(format.foreground().color())
                                                                   : DefaultRichTextColour);
    block.SetBackColour(format.background().style() != Qt::NoBrush ? ToColourRef(format.background().color())
                                                                   : DefaultRichTextColour);
    return block;
}

bool SameFormat(const CRtfTextBlockInfo& a, const CRtfTextBlockInfo& b)
{
    return a.Font() == b.Font() && a.TextColour() == b.TextColour() && a.BackColour() == b.BackColour();
}

int32_t AlignmentOf(Qt::Alignment alignment)
{
    if (alignment & Qt::AlignHCenter)
        return CRtfTextLine::AlignCentre;
    if (alignment & Qt::AlignRight)
        return CRtfTextLine::AlignRight;
    return CRtfTextLine::AlignLeft;
}

// HTML through Qt's own reader: paragraphs become lines, a line break inside one starts a new
// line with the same alignment, character formats become format blocks. Images and other
// embedded objects are left out, as the HTML writer leaves ours out.
CRichTextDocument HtmlToDocument(const QString& html, const SFontDescription& defaultFont)
{
    QTextDocument source;
    source.setDefaultFont(
        QFont(ToQString(defaultFont.FaceNameView()), static_cast<int>(defaultFont.PointSize())));
    source.setHtml(html);
    CRichTextDocument document;
    // Each line starts in the default font and colours; a block is needed only where the format
    // differs from what is in force.
    CRtfTextBlockInfo defaults(0);
    defaults.SetFont(defaultFont);
    defaults.SetTextColour(DefaultRichTextColour);
    defaults.SetBackColour(DefaultRichTextColour);
    for (QTextBlock block = source.begin(); block.isValid(); block = block.next())
    {
        const int32_t alignment = AlignmentOf(block.blockFormat().alignment());
        CRtfTextLine line;
        std::u16string text;
        std::vector<CRtfTextBlockInfo> blocks;
        const auto finishLine = [&]
        {
            line.SetText(std::move(text));
            line.SetAlignment(alignment);
            line.SetBlocks(std::move(blocks));
            document.AppendLine(std::move(line));
            line = CRtfTextLine();
            text.clear();
            blocks.clear();
        };
        // A break as the paragraph's last character ends it, as it does on screen; it does
        // not start an empty line.
        const int lastPosition = block.position() + block.length() - 2;
        for (auto it = block.begin(); !it.atEnd(); ++it)
        {
            const QTextFragment fragment = it.fragment();
            const QString fragmentText = fragment.text();
            for (qsizetype i = 0; i < fragmentText.size(); ++i)
            {
                const QChar c = fragmentText[i];
                if (c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
                {
                    if (fragment.position() + i == lastPosition)
                        continue;
                    finishLine();
                    continue;
                }
                if (c == QChar::ObjectReplacementCharacter || (c.unicode() < 0x20 && c != u'\t'))
                    continue;
                CRtfTextBlockInfo format =
                    BlockOf(fragment.charFormat(), defaultFont, static_cast<int32_t>(text.size()));
                if (!SameFormat(blocks.empty() ? defaults : blocks.back(), format))
                    blocks.push_back(std::move(format));
                text.push_back(c.unicode());
            }
        }
        finishLine();
    }
    // Qt's reader ends a document with an empty paragraph that the HTML did not hold.
    if (document.LineCount() > 1 && document.Lines().back().Text().empty())
        document.RemoveLine(document.LineCount() - 1);
    return document;
}

bool ReadOwnRichText(const QByteArray& bytes, CRichTextDocument& document)
{
    if (bytes.isEmpty())
        return false;
    CRichTextDocument read;
    CArchiveReader reader(reinterpret_cast<const uint8_t*>(bytes.constData()),
                          static_cast<size_t>(bytes.size()));
    if (read.Serialize(reader) != 0 || read.LineCount() == 0)
        return false;
    document = std::move(read);
    return true;
}

std::u16string WithoutCarriageReturns(std::u16string_view text)
{
    std::u16string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == u'\r')
        {
            result.push_back(u'\n');
            if (i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
            continue;
        }
        result.push_back(text[i]);
    }
    return result;
}
} // namespace

// ---- format registration

uint32_t CQtClipboardFormatRegistrar::RegisterFormat(std::u16string_view name, int& errorCode)
{
    errorCode = 0;
    const QString wanted = ToQString(name);
    const auto found = std::find(m_Names.begin(), m_Names.end(), wanted);
    if (found != m_Names.end())
        return static_cast<uint32_t>(found - m_Names.begin()) + 1;
    m_Names.push_back(wanted);
    return static_cast<uint32_t>(m_Names.size());
}

QString CQtClipboardFormatRegistrar::NameOf(uint32_t id) const
{
    return id >= 1 && id <= m_Names.size() ? m_Names[id - 1] : QString();
}

CQtClipboardFormatRegistrar& GuiClipboardRegistrar()
{
    static CQtClipboardFormatRegistrar registrar;
    return registrar;
}

CClipboardFormats& GuiClipboardFormats()
{
    static CClipboardFormats formats(GuiClipboardRegistrar());
    return formats;
}

// ---- the clipboard for the tree's copy

CQtClipboard::CQtClipboard(QClipboard& clipboard, const CQtClipboardFormatRegistrar& registrar)
    : m_Clipboard(clipboard), m_Registrar(registrar)
{
}

CQtClipboard::~CQtClipboard() = default;

bool CQtClipboard::Open()
{
    if (m_Pending)
        return false;
    m_Pending = std::make_unique<QMimeData>();
    return true;
}

bool CQtClipboard::Empty()
{
    if (!m_Pending)
        return false;
    m_Clipboard.clear();
    return true;
}

bool CQtClipboard::SetData(uint32_t formatId, std::span<const uint8_t> data)
{
    if (!m_Pending)
        return false;
    if (formatId == UnicodeTextId)
    {
        std::u16string text(data.size() / 2, u'\0');
        for (size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
        while (!text.empty() && text.back() == u'\0')
            text.pop_back();
        m_Pending->setText(ToQString(WithoutCarriageReturns(text)));
        return true;
    }
    const QString name = m_Registrar.NameOf(formatId);
    if (name.isEmpty())
        return false;
    m_Pending->setData(name, ToByteArray(data));
    return true;
}

bool CQtClipboard::Close()
{
    if (!m_Pending)
        return false;
    m_Clipboard.setMimeData(m_Pending.release());
    return true;
}

bool CopyTreeItemsToSystemClipboard(const TreeItemsWriter& writeItems)
{
    CQtClipboard clipboard(*QApplication::clipboard(), GuiClipboardRegistrar());
    return CopyTreeItemsToClipboard(clipboard, GuiClipboardFormats(), writeItems);
}

std::vector<uint8_t> TreeItemsOnSystemClipboard()
{
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime || GuiClipboardFormats().Id(EClipboardFormat::TreeData) == 0)
        return {};
    const QByteArray bytes = mime->data(FormatName(EClipboardFormat::TreeData));
    return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

// ---- text

std::unique_ptr<QMimeData> MakeRichTextMimeData(const CRichTextDocument& selection,
                                                std::u16string_view plainText,
                                                const SFontDescription& defaultFont)
{
    auto mime = std::make_unique<QMimeData>();
    CClipboardFormats& formats = GuiClipboardFormats();
    if (formats.Id(EClipboardFormat::KorimsenRichText) != 0)
    {
        CArchiveWriter writer;
        if (selection.Serialize(writer) == 0)
            mime->setData(FormatName(EClipboardFormat::KorimsenRichText), ToByteArray(writer.Bytes()));
    }
    const std::string rtf = RtfTextToBytes(ToRtf(selection, defaultFont));
    const QByteArray rtfBytes(rtf.data(), static_cast<qsizetype>(rtf.size()));
    if (formats.Id(EClipboardFormat::Rtf) != 0)
        mime->setData(FormatName(EClipboardFormat::Rtf), rtfBytes);
    mime->setData(QString::fromLatin1(MimeRtf), rtfBytes);
    mime->setData(QString::fromLatin1(MimeApplicationRtf), rtfBytes);

    const std::u16string html = ToHtml(selection, u"", defaultFont);
    if (formats.Id(EClipboardFormat::Html) != 0)
    {
        const std::string block = MakeHtmlClipboardBlock(html);
        mime->setData(FormatName(EClipboardFormat::Html),
                      QByteArray(block.data(), static_cast<qsizetype>(block.size())));
    }
    mime->setHtml(ToQString(html));
    mime->setText(ToQString(WithoutCarriageReturns(plainText)));
    return mime;
}

QString HtmlFromClipboardBlock(const QByteArray& block)
{
    if (!block.startsWith("Version:"))
        return {};
    const auto offsetOf = [&](const char* key) -> qsizetype
    {
        const qsizetype at = block.indexOf(key);
        if (at < 0)
            return -1;
        bool ok = false;
        const qsizetype value = block.mid(at + qsizetype(qstrlen(key)), 10).toLongLong(&ok);
        return ok ? value : -1;
    };
    qsizetype start = offsetOf("StartFragment:");
    qsizetype end = offsetOf("EndFragment:");
    if (start < 0 || end < start || end > block.size())
    {
        start = block.indexOf("<!--StartFragment-->");
        end = block.indexOf("<!--EndFragment-->");
        if (start < 0 || end < start)
            return {};
        start += qsizetype(qstrlen("<!--StartFragment-->"));
    }
    // The block's text is in the system's 8-bit code page; UTF-8 is what other programs write
    // into it today, and ASCII reads the same either way.
    const QByteArray fragment = block.mid(start, end - start);
    const std::string_view bytes(fragment.constData(), static_cast<size_t>(fragment.size()));
    return ToQString(DecodePlainTextBytes(bytes));
}

EPastedForm ReadRichTextMimeData(const QMimeData& mime, const SFontDescription& defaultFont,
                                 CRichTextDocument& document)
{
    if (ReadOwnRichText(mime.data(FormatName(EClipboardFormat::KorimsenRichText)), document))
        return EPastedForm::OwnRichText;

    // The same RTF often comes under several names; the first one present is read, once, so
    // that RTF that cannot be read gives one log line.
    for (const QString& name : {FormatName(EClipboardFormat::Rtf), QString::fromLatin1(MimeRtf),
                                QString::fromLatin1(MimeApplicationRtf)})
    {
        const QByteArray rtf = mime.data(name);
        if (rtf.isEmpty())
            continue;
        if (ReadRtf(std::string_view(rtf.constData(), static_cast<size_t>(rtf.size())), defaultFont,
                    document))
            return EPastedForm::Rtf;
        break;
    }

    QString html = mime.hasHtml() ? mime.html() : QString();
    if (html.isEmpty())
        html = HtmlFromClipboardBlock(mime.data(FormatName(EClipboardFormat::Html)));
    if (!html.isEmpty())
    {
        CRichTextDocument read = HtmlToDocument(html, defaultFont);
        if (!read.IsEmpty())
        {
            document = std::move(read);
            return EPastedForm::Html;
        }
    }

    if (mime.hasText() && !mime.text().isEmpty())
    {
        document.BuildFromPlainText(ToU16(mime.text()));
        return EPastedForm::PlainText;
    }
    return EPastedForm::Nothing;
}
