// Text and tree items through QMimeData and the system clipboard: every form a copy offers reads
// back, a paste prefers the program's own rich text, then RTF, HTML and plain text, and a form
// that cannot be read passes the turn to the next.
#include "Gui/GuiClipboard.h"
#include "App/EnglishStrings.h"
#include "Gui/FxEditWidget.h"
#include "Gui/GuiPictures.h"
#include "Gui/QtText.h"
#include "Shared/Base/Archive.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Clipboard/HtmlClipboardBlock.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/RichText/RichTextPlatform.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

#include <gtest/gtest.h>

namespace
{
// Fonts as a document holds them once stored: with the display's quality byte.
SFontDescription Font(std::u16string_view face, int32_t points, int32_t weight = 400)
{
    SFontDescription font = SFontDescription::Make(face, points, weight);
    font.quality = CachedDisplayFontQuality();
    return font;
}

const SFontDescription DefaultFont = Font(u"DejaVu Sans", 12);

// Two paragraphs: a bold coloured word in a larger face, a highlighted word, a centred second line
// with a picture and an attachment.
CRichTextDocument FormattedDocument()
{
    CRichTextDocument document;
    CRtfTextLine first(u"plain bold back");
    CRtfTextBlockInfo bold(6);
    bold.SetFont(Font(u"DejaVu Serif", 16, SFontDescription::BoldWeight));
    bold.SetTextColour(0x102030);
    first.AddBlock(bold);
    CRtfTextBlockInfo back(11);
    back.SetFont(DefaultFont);
    back.SetTextColour(DefaultRichTextColour);
    back.SetBackColour(0x40E0F0);
    first.AddBlock(back);
    document.AppendLine(first);

    CRtfTextLine second(u"pic \x14 file \x14");
    second.SetAlignment(CRtfTextLine::AlignCentre);
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(Qt::green);
    CRtfObjectInfo picture(CRtfObjectInfo::PictureType, 4);
    picture.SetPicture(ImageToBitmap(image));
    second.AddObject(picture);
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 11);
    attachment.SetFileName(u"a.bin");
    CHugeMemory data;
    const uint8_t bytes[] = {0, 1, 2, 255};
    data.Append(bytes);
    attachment.SetData(std::move(data));
    second.AddObject(attachment);
    document.AppendLine(second);
    return document;
}

std::unique_ptr<QMimeData> OnlyFormat(const QMimeData& from, const QString& format)
{
    auto mime = std::make_unique<QMimeData>();
    mime->setData(format, from.data(format));
    return mime;
}

bool BoldAt(const CRtfTextLine& line, int32_t offset)
{
    return line.EffectiveFont(offset).value_or(DefaultFont).IsBold();
}
} // namespace

TEST(GuiClipboard, ACopyOffersEveryFormUnderItsExactNameAndItsOwnFormReadsBackUnchanged)
{
    const CRichTextDocument document = FormattedDocument();
    const auto mime = MakeRichTextMimeData(document, u"plain bold back\r\npic   file  ", DefaultFont);
    for (const char* name : {"Korimsen Rich Text Format", "Rich Text Format", "HTML Format", "text/rtf",
                             "application/rtf", "text/html", "text/plain"})
        EXPECT_TRUE(mime->hasFormat(QString::fromLatin1(name))) << name;
    EXPECT_EQ(mime->text(), QStringLiteral("plain bold back\npic   file  "));
    EXPECT_TRUE(mime->data("Rich Text Format").startsWith("{\\rtf1"));
    // The "HTML Format" block carries exactly the writer's HTML between its markers.
    EXPECT_EQ(HtmlFromClipboardBlock(mime->data("HTML Format")), mime->html());

    CRichTextDocument read;
    EXPECT_EQ(ReadRichTextMimeData(*mime, DefaultFont, read), EPastedForm::OwnRichText);
    EXPECT_EQ(read, document);
}

TEST(GuiClipboard, RtfAndHtmlAloneKeepTextLinesBoldAndColours)
{
    const CRichTextDocument document = FormattedDocument();
    const auto mime = MakeRichTextMimeData(document, u"", DefaultFont);
    for (const QString& format : {QStringLiteral("Rich Text Format"), QStringLiteral("text/rtf"),
                                  QStringLiteral("text/html"), QStringLiteral("HTML Format")})
    {
        SCOPED_TRACE(format.toStdString());
        CRichTextDocument read;
        const EPastedForm form = ReadRichTextMimeData(*OnlyFormat(*mime, format), DefaultFont, read);
        EXPECT_EQ(form, format.contains(QStringLiteral("html"), Qt::CaseInsensitive) ? EPastedForm::Html
                                                                                     : EPastedForm::Rtf);
        ASSERT_EQ(read.LineCount(), 2u);
        const CRtfTextLine& first = read.Line(0);
        EXPECT_EQ(first.Text(), u"plain bold back");
        EXPECT_FALSE(BoldAt(first, 0));
        EXPECT_FALSE(BoldAt(first, 5));
        EXPECT_TRUE(BoldAt(first, 6));
        EXPECT_TRUE(BoldAt(first, 9));
        EXPECT_FALSE(BoldAt(first, 11));
        EXPECT_EQ(first.EffectiveTextColour(7).value_or(DefaultRichTextColour), 0x102030u);
        EXPECT_EQ(first.EffectiveBackColour(12).value_or(DefaultRichTextColour), 0x40E0F0u);
        EXPECT_EQ(first.EffectiveFont(6).value_or(DefaultFont).PointSize(), 16);
        EXPECT_EQ(first.EffectiveFont(6).value_or(DefaultFont).FaceName(), u"DejaVu Serif");
        // The writers leave objects out; the paragraph around them stays.
        EXPECT_EQ(read.Line(1).Alignment(), CRtfTextLine::AlignCentre);
        EXPECT_TRUE(read.Line(1).Text().starts_with(u"pic ")) << Utf16ToUtf8(read.Line(1).Text());
    }
}

TEST(GuiClipboard, APastePrefersOwnThenRtfThenHtmlThenTextAndSkipsWhatCannotBeRead)
{
    CRichTextDocument own;
    own.BuildFromPlainText(u"own");
    CArchiveWriter writer;
    ASSERT_EQ(own.Serialize(writer), 0);
    const QByteArray ownBytes(reinterpret_cast<const char*>(writer.Bytes().data()),
                              static_cast<qsizetype>(writer.Bytes().size()));
    const QByteArray rtf("{\\rtf1\\ansi rtf}");

    QMimeData all;
    all.setData("Korimsen Rich Text Format", ownBytes);
    all.setData("Rich Text Format", rtf);
    all.setHtml(QStringLiteral("<p>html</p>"));
    all.setText(QStringLiteral("text"));
    const auto pasted = [](const QMimeData& mime, EPastedForm expected) -> std::u16string
    {
        CRichTextDocument read;
        EXPECT_EQ(ReadRichTextMimeData(mime, DefaultFont, read), expected);
        return read.LineCount() > 0 ? read.Line(0).Text() : u"";
    };
    EXPECT_EQ(pasted(all, EPastedForm::OwnRichText), u"own");
    // Own data cut short and RTF that is not RTF each hand over to the next form.
    all.setData("Korimsen Rich Text Format", ownBytes.left(ownBytes.size() - 1));
    EXPECT_EQ(pasted(all, EPastedForm::Rtf), u"rtf");
    all.setData("Rich Text Format", QByteArray("{\\notrtf"));
    EXPECT_EQ(pasted(all, EPastedForm::Html), u"html");
    all.setHtml(QString());
    all.setData("HTML Format", QByteArray("Version:1.0\r\nStartHTML:xx"));
    EXPECT_EQ(pasted(all, EPastedForm::PlainText), u"text");

    QMimeData lines;
    lines.setText(QStringLiteral("one\ntwo www.x.org\n"));
    CRichTextDocument read;
    EXPECT_EQ(ReadRichTextMimeData(lines, DefaultFont, read), EPastedForm::PlainText);
    ASSERT_EQ(read.LineCount(), 3u);
    EXPECT_EQ(read.Line(1).Text(), u"two www.x.org");
    EXPECT_EQ(ReadRichTextMimeData(QMimeData(), DefaultFont, read), EPastedForm::Nothing);
}

TEST(GuiClipboard, HtmlBlocksGiveTheirFragmentByOffsetsOrByMarkers)
{
    const std::string block = MakeHtmlClipboardBlock(u"<b>x</b> \u00e9");
    EXPECT_EQ(HtmlFromClipboardBlock(QByteArray::fromStdString(block)), QStringLiteral("<b>x</b> \u00e9"));
    // Offsets that point past the end fall back to the markers.
    std::string broken = block;
    broken.replace(broken.find("EndFragment:") + 12, 10, "9999999999");
    EXPECT_EQ(HtmlFromClipboardBlock(QByteArray::fromStdString(broken)),
              QStringLiteral("\r\n<b>x</b> \u00e9\r\n"));
    EXPECT_TRUE(HtmlFromClipboardBlock(QByteArray("<html>")).isEmpty());
    EXPECT_TRUE(HtmlFromClipboardBlock(QByteArray("Version:1.0\r\n")).isEmpty());
}

TEST(GuiClipboard, TheEditorsCopyAndPasteCarryFormatsThroughTheSystemClipboard)
{
    CLanguageModule language;
    language.LoadBuiltIn(u"English (Default)", EnglishStrings());
    CFxEditWidget source(&language);
    CFxEditWidget target(&language);
    source.resize(400, 300);
    target.resize(400, 300);
    source.SetDocument(FormattedDocument());
    source.RunAction(CFxEdit::ActionSelectAll);
    source.RunAction(CFxEdit::ActionCopy);
    EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf16(u"plain bold back\npic \x14 file \x14"));
    target.RunAction(CFxEdit::ActionPaste);
    EXPECT_EQ(target.Edit().GetDocument(), FormattedDocument());

    // From another program: HTML only.
    auto html = std::make_unique<QMimeData>();
    html->setHtml(QStringLiteral("<p>A <b>B</b></p>"));
    html->setText(QStringLiteral("A B"));
    QApplication::clipboard()->setMimeData(html.release());
    target.RunAction(CFxEdit::ActionSelectAll);
    target.RunAction(CFxEdit::ActionPaste);
    ASSERT_EQ(target.Edit().LineCount(), 1);
    EXPECT_EQ(target.Edit().Line(0).Text(), u"A B");
    EXPECT_TRUE(BoldAt(target.Edit().Line(0), 2));
    EXPECT_FALSE(BoldAt(target.Edit().Line(0), 0));
}

TEST(GuiClipboard, TreeItemsTravelAsTreeDataWithTheirText)
{
    const std::vector<uint8_t> treeBytes = {7, 0, 1, 2, 255};
    ASSERT_TRUE(CopyTreeItemsToSystemClipboard(
        [&](CArchiveWriter& tree, CArchiveWriter& text)
        {
            tree.WriteBytes(treeBytes.data(), treeBytes.size());
            const char16_t units[] = u"a\r\nb";
            for (char16_t unit : std::u16string_view(units, 5)) // with the terminating zero
            {
                const uint8_t le[2] = {static_cast<uint8_t>(unit & 0xFF), static_cast<uint8_t>(unit >> 8)};
                text.WriteBytes(le, 2);
            }
        }));
    EXPECT_EQ(TreeItemsOnSystemClipboard(), treeBytes);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasFormat("Korimsen Tree Data v100"));
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("a\nb"));

    QApplication::clipboard()->setText(QStringLiteral("no items"));
    EXPECT_TRUE(TreeItemsOnSystemClipboard().empty());
}
