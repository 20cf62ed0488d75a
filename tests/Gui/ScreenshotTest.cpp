// The main window with a real document as a person sees it: a tree with marked and coloured
// items, a folder shown as cards, and a note with several fonts, colours, bullets, a picture and
// an attachment. With QUILL_GUI_SCREENSHOTS naming a folder, the views are saved there as PNG
// files at 1280x800 (docs/screenshots/ holds the committed ones).
#include "Document/DBNote.h"
#include "Document/ItemRecordFormat.h"
#include "Gui/FolderCardView.h"
#include "Gui/FxEditWidget.h"
#include "Gui/QtText.h"
#include "GuiSession.h"
#include "Shared/Base/TextConv.h"
#include "Shared/FxEdit/PictureFile.h"
#include "Shared/RichText/RtfObjectInfo.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

namespace
{
std::string GradientPng()
{
    QImage image(220, 130, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 130);
    sky.setColorAt(0, QColor(70, 130, 200));
    sky.setColorAt(1, QColor(250, 210, 150));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(250, 240, 120));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(160, 50), 22, 22);
    painter.setBrush(QColor(40, 90, 60));
    painter.drawPolygon(QPolygonF({QPointF(0, 130), QPointF(70, 70), QPointF(130, 110), QPointF(190, 80),
                                   QPointF(220, 100), QPointF(220, 130)}));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

// What a block shows: where it starts, its face, size, weight, slant and text colour (the
// stored form fills in defaults the editor leaves open, such as the character set).
std::vector<std::string> Looks(const std::vector<CRtfTextBlockInfo>& blocks)
{
    std::vector<std::string> looks;
    for (const CRtfTextBlockInfo& block : blocks)
    {
        std::string look = std::to_string(block.Start());
        if (block.Font())
            look += " " + Utf16ToUtf8(block.Font()->FaceName()) + " " +
                    std::to_string(block.Font()->PointSize()) + " " + std::to_string(block.Font()->weight) +
                    (block.Font()->IsItalic() ? " italic" : "");
        look += " colour " + std::to_string(block.TextColour().value_or(0xFEFFFF));
        looks.push_back(look);
    }
    return looks;
}

void Save(QWidget& window, const char* name)
{
    QApplication::processEvents();
    const QImage image = window.grab().toImage();
    if (const char* folder = std::getenv("QUILL_GUI_SCREENSHOTS"))
        image.save(QString::fromLocal8Bit(folder) + QLatin1Char('/') + QLatin1String(name));
}
} // namespace

TEST_F(GuiSession, AFullDocumentIsShownInTreeCardsAndEditor)
{
    auto app = Start(u"");
    CMainWindow& window = *app->MainWindow();
    window.resize(1280, 800);
    window.show();
    CFolderBase& root = *app->Center()->GetRoot();
    CFolderBase& notes = *dynamic_cast<CFolderBase*>(ChildNamed(root, u"Notes"));
    window.SelectItem(notes);
    CItem* travel = window.NewFolder();
    ASSERT_NE(travel, nullptr);
    window.RenameItem(*travel, QStringLiteral("Travel"));
    const char16_t* captions[] = {u"Lisbon in May", u"Packing list",   u"Train times",
                                  u"Hotel booking", u"Museums to see", u"Budget"};
    for (const char16_t* caption : captions)
    {
        window.SelectItem(*travel);
        CItem* note = window.NewNote();
        ASSERT_NE(note, nullptr);
        window.RenameItem(*note, ToQString(caption));
        window.Editor()->Edit().InsertText(u"Remember the details for " + std::u16string(caption) +
                                           u".\r\nEverything else is in the main note.");
        window.SaveCurrentNote();
    }
    // Marks and colours in the tree.
    window.SelectItem(*ChildNamed(AsFolder(*travel), u"Packing list"));
    Trigger(window, "ItemTask");
    Trigger(window, "ItemPriority2");
    window.SelectItem(*ChildNamed(AsFolder(*travel), u"Budget"));
    Trigger(window, "ItemReadOnly");
    window.SelectItem(*ChildNamed(AsFolder(*travel), u"Train times"));
    CItemExtendedData* data = window.CurrentItem()->GetExtendedData(true);
    data->SetTextColour(0x0000C0u);
    app->Center()->MarkChanged(*window.CurrentItem(), ItemRecordFormat::AttributesField);
    app->Center()->Save();
    window.Tree()->RefreshItem(*window.CurrentItem());

    window.SelectItem(*travel);
    EXPECT_EQ(window.Cards()->count(), 6);
    Save(window, "main-window-cards.png");

    // The main note: a heading, coloured and italic text in other faces, bullets, a picture and
    // an attachment.
    window.SelectItem(*ChildNamed(AsFolder(*travel), u"Lisbon in May"));
    CFxEdit& edit = window.Editor()->Edit();
    edit.SetSelection({0, 0}, {edit.LineCount() - 1, edit.Line(edit.LineCount() - 1).Length()});
    edit.InsertText(u"Lisbon in May\r\nFlights are booked; the hotel is near the river.\r\n"
                    u"Pastéis de nata at the corner café, every morning.\r\n"
                    u"Walk up to the castle\r\nTram 28 to Graça\r\nDay trip to Sintra\r\n"
                    u"The view from the viewpoint:\r\n\r\nItinerary: \r\n");
    edit.SetSelection({0, 0}, {0, 13});
    edit.SetFontSize(20);
    edit.ToggleBold();
    edit.SetTextColour(0x8B3A1Fu);
    edit.SetSelection({1, 0}, {1, 19});
    edit.SetTextColour(0x0060C0u);
    edit.SetSelection({2, 0}, {2, 49});
    edit.SetFontName(u"DejaVu Serif");
    edit.ToggleItalic();
    edit.SetSelection({3, 0}, {5, 18});
    edit.ToggleBullets();
    std::u16string failure;
    auto picture = PictureFromImageFile(GradientPng(), failure);
    ASSERT_TRUE(picture.has_value()) << Utf16ToUtf8(failure);
    CRtfObjectInfo object(CRtfObjectInfo::PictureType, 0);
    object.SetPicture(std::move(picture));
    edit.SetCaret({7, 0});
    edit.InsertObject(std::move(object));
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 0);
    attachment.SetFileName(u"itinerary.pdf");
    CHugeMemory bytes;
    const std::string pdf = "%PDF-1.4 itinerary";
    bytes.Append(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(pdf.data()), pdf.size()));
    attachment.SetData(std::move(bytes));
    edit.SetCaret({8, 11});
    edit.InsertObject(std::move(attachment));
    edit.SetCaret({1, 0});
    window.Editor()->update();
    EXPECT_TRUE(window.SaveCurrentNote());
    Save(window, "main-window-note.png");

    // Everything written survives a restart.
    const CRichTextDocument shown = edit.GetDocument();
    const std::u16string shownText = edit.GetPlainText();
    app->Shutdown();
    app.reset();
    auto again = Start(u"");
    CFolderBase& notesAgain = *dynamic_cast<CFolderBase*>(ChildNamed(*again->Center()->GetRoot(), u"Notes"));
    CItem* travelAgain = ChildNamed(notesAgain, u"Travel");
    ASSERT_NE(travelAgain, nullptr);
    again->MainWindow()->SelectItem(*ChildNamed(AsFolder(*travelAgain), u"Lisbon in May"));
    const CFxEdit& reopened = again->MainWindow()->Editor()->Edit();
    EXPECT_EQ(reopened.GetPlainText(), shownText);
    ASSERT_EQ(static_cast<size_t>(reopened.LineCount()), shown.LineCount());
    for (int32_t line = 0; line < reopened.LineCount(); ++line)
    {
        const CRtfTextLine& before = shown.Line(static_cast<size_t>(line));
        EXPECT_EQ(Looks(reopened.Line(line).Blocks()), Looks(before.Blocks())) << line;
        EXPECT_EQ(reopened.Line(line).Objects().size(), before.Objects().size()) << line;
        EXPECT_EQ(reopened.Line(line).Text(), before.Text()) << line;
    }
}
