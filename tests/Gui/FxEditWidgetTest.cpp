// The editor widget on the offscreen platform: where clicks, drags and double and triple clicks
// put the caret and the selection on wrapped rows, scrolling, links, input method text, drops
// and the context menu.
#include "Gui/FxEditWidget.h"
#include "App/EnglishStrings.h"
#include "Gui/FindReplaceDlg.h"
#include "Gui/GuiPictures.h"
#include "Gui/QtText.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Support/TempFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace
{
const SFontDescription TestFont = SFontDescription::Make(u"DejaVu Sans", 12);

class EditorWidget : public ::testing::Test
{
protected:
    EditorWidget()
    {
        m_Language.LoadBuiltIn(u"English (Default)", EnglishStrings());
        SFxEditSettings settings = m_Widget.Edit().Settings();
        settings.defaultFont = TestFont;
        m_Widget.Edit().SetSettings(settings);
        m_Widget.resize(320, 240);
        m_Widget.show();
    }

    void SetText(std::u16string_view text)
    {
        CRichTextDocument document;
        document.BuildFromPlainText(text);
        m_Widget.SetDocument(document);
    }

    void Mouse(QEvent::Type type, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event(type, QPointF(at), m_Widget.mapToGlobal(QPointF(at)), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, modifiers);
        QApplication::sendEvent(&m_Widget, &event);
    }
    void Click(QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Mouse(QEvent::MouseButtonPress, at, modifiers);
        Mouse(QEvent::MouseButtonRelease, at, modifiers);
    }

    // The rows of line 0 as the screen shows them: top, height.
    std::vector<std::pair<int, int>> RowsOfFirstLine() const
    {
        std::vector<std::pair<int, int>> rows;
        int top = 4; // the widget's margin
        const COneLineInfo& line = m_Widget.Edit().Line(0);
        for (int32_t row = 0; row < line.RowCount(); ++row)
        {
            rows.emplace_back(top, line.RowHeight(row));
            top += line.RowHeight(row);
        }
        return rows;
    }

    // Where a click at `x` on a row must put the caret, found from the font's own advances: the
    // boundary nearest to the click.
    int32_t NearestOffset(int32_t row, int x) const
    {
        const COneLineInfo& line = m_Widget.Edit().Line(0);
        const QFontMetrics metrics(CFxEditWidget::ToQFont(TestFont), &m_Widget);
        const QString text = ToQString(line.Text());
        int32_t best = line.RowStart(row);
        for (int32_t offset = line.RowStart(row); offset <= line.RowEnd(row); ++offset)
        {
            const int at =
                4 + metrics.horizontalAdvance(text.mid(line.RowStart(row), offset - line.RowStart(row)));
            const int bestAt =
                4 + metrics.horizontalAdvance(text.mid(line.RowStart(row), best - line.RowStart(row)));
            if (std::abs(at - x) < std::abs(bestAt - x))
                best = offset;
        }
        return best;
    }

    // A drop as the platform delivers it: the drag enters, moves to the point and drops.
    void Drop(QMimeData& mime, QPoint at)
    {
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_Widget, &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_Widget, &move);
        QDropEvent drop(QPointF(at), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_Widget, &drop);
        EXPECT_TRUE(drop.isAccepted());
    }

    std::u16string Selected() const { return m_Widget.Edit().GetSelectedPlainText(); }

    CLanguageModule m_Language;
    CFxEditWidget m_Widget{&m_Language};
};

const std::u16string Paragraph = u"alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu nu xi "
                                 u"omicron pi rho sigma tau upsilon phi chi psi omega";
} // namespace

TEST_F(EditorWidget, ClicksOnWrappedRowsPutTheCaretAtTheRowsEndsAndNearestBoundaries)
{
    SetText(Paragraph + u"\r\nsecond");
    const CFxEdit& edit = m_Widget.Edit();
    const COneLineInfo& line = edit.Line(0);
    ASSERT_GE(line.RowCount(), 3);
    const auto rows = RowsOfFirstLine();
    const int right = m_Widget.width() - m_Widget.VerticalScrollBar()->width() - 2;
    for (int32_t row = 0; row < line.RowCount(); ++row)
    {
        const int y = rows[static_cast<size_t>(row)].first + rows[static_cast<size_t>(row)].second / 2;
        // Left of the text: the row's start. Right of it: the row's end, which on a wrapped row is
        // its own place, distinct from the next row's start though both are one offset.
        Click({1, y});
        EXPECT_EQ(edit.Caret(), (SFxPosition{0, line.RowLayoutStart(row)})) << row;
        Click({5000, y});
        EXPECT_EQ(edit.Caret(), (SFxPosition{0, line.RowLayoutEnd(row)})) << row;
        const QRect caret = m_Widget.CaretRect();
        EXPECT_EQ(caret.top(), rows[static_cast<size_t>(row)].first) << "caret drawn on its own row " << row;

        // Clicks inside the row land on the boundary nearest to them.
        for (int x = 10; x < right; x += 37)
        {
            Click({x, y});
            EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, NearestOffset(row, x)) << row << " x " << x;
            EXPECT_EQ(edit.Line(0).RowOfLayoutPosition(edit.Caret().pos), row);
        }
    }
    // Below the first paragraph's rows is the second paragraph; below everything, its end.
    Click({1, rows.back().first + rows.back().second + 3});
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 0}));
    Click({right, m_Widget.height() - 5});
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 6}));
}

TEST_F(EditorWidget, DraggingDoubleAndTripleClicksSelectCharactersWordsAndLines)
{
    SetText(Paragraph + u"\r\nsecond line");
    const CFxEdit& edit = m_Widget.Edit();
    const auto rows = RowsOfFirstLine();
    const int y0 = rows[0].first + rows[0].second / 2;
    const int y1 = rows[1].first + rows[1].second / 2;

    // A drag from the start of row 0 into row 1 selects everything between.
    Mouse(QEvent::MouseButtonPress, {1, y0});
    Mouse(QEvent::MouseMove, {60, y1});
    Mouse(QEvent::MouseButtonRelease, {60, y1});
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 0}));
    const int32_t end = edit.ToCharPosition(edit.Caret()).offset;
    EXPECT_EQ(end, NearestOffset(1, 60));
    EXPECT_EQ(Selected(), Paragraph.substr(0, static_cast<size_t>(end)));

    // Shift+click moves the selection's free end and keeps the anchor.
    Click({1, y1}, Qt::ShiftModifier);
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 0}));
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, edit.Line(0).RowStart(1));

    // A double click selects the word under it; dragging on extends by whole words.
    const QFontMetrics metrics(CFxEditWidget::ToQFont(TestFont), &m_Widget);
    const int inBeta = 4 + metrics.horizontalAdvance(QStringLiteral("alpha be"));
    Mouse(QEvent::MouseButtonPress, {inBeta, y0});
    Mouse(QEvent::MouseButtonRelease, {inBeta, y0});
    Mouse(QEvent::MouseButtonDblClick, {inBeta, y0});
    EXPECT_EQ(Selected(), u"beta");
    const int inDelta = 4 + metrics.horizontalAdvance(QStringLiteral("alpha beta gamma de"));
    Mouse(QEvent::MouseMove, {inDelta, y0});
    EXPECT_EQ(Selected(), u"beta gamma delta");
    Mouse(QEvent::MouseMove, {2, y0});
    EXPECT_EQ(Selected(), u"alpha beta");
    Mouse(QEvent::MouseButtonRelease, {2, y0});

    // A third click soon after the double click selects the whole paragraph, every row of it.
    Mouse(QEvent::MouseButtonPress, {inBeta, y0});
    Mouse(QEvent::MouseButtonRelease, {inBeta, y0});
    Mouse(QEvent::MouseButtonDblClick, {inBeta, y0});
    Mouse(QEvent::MouseButtonRelease, {inBeta, y0});
    Mouse(QEvent::MouseButtonPress, {inBeta, y0});
    Mouse(QEvent::MouseButtonRelease, {inBeta, y0});
    EXPECT_EQ(Selected(), Paragraph);

    // A press inside the selection and a release without moving only places the caret.
    Click({inBeta, y0});
    EXPECT_TRUE(edit.IsSelectionEmpty());
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, NearestOffset(0, inBeta));
}

TEST_F(EditorWidget, TheWheelAndTheScrollBarScrollByRowsAndFollowTheCaret)
{
    std::u16string text;
    for (int i = 0; i < 100; ++i)
        text += u"line " + ToU16(QString::number(i)) + u"\r\n";
    SetText(text);
    CFxEdit& edit = m_Widget.Edit();
    QScrollBar* bar = m_Widget.VerticalScrollBar();
    const int rowsShown = (m_Widget.height() - 8) / edit.Line(0).RowHeight(0);
    EXPECT_EQ(bar->maximum(), 101 - rowsShown);

    QWheelEvent down(QPointF(50, 50), m_Widget.mapToGlobal(QPointF(50, 50)), QPoint(), QPoint(0, -120),
                     Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&m_Widget, &down);
    EXPECT_EQ(edit.TopLine(), QApplication::wheelScrollLines());
    EXPECT_EQ(bar->value(), QApplication::wheelScrollLines());

    bar->setValue(bar->maximum());
    EXPECT_EQ(edit.TopLine(), bar->maximum());
    // A click on the last visible row reaches the last line.
    Click({1, m_Widget.height() - 6});
    EXPECT_EQ(edit.Caret().line, 100);

    // Ctrl+Home brings the view back with the caret, and the bar follows.
    QKeyEvent home(QEvent::KeyPress, Qt::Key_Home, Qt::ControlModifier);
    QApplication::sendEvent(&m_Widget, &home);
    EXPECT_EQ(edit.TopLine(), 0);
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(EditorWidget, LinksAreFoundUnderTheMouseAndCtrlClickActivatesThem)
{
    m_Widget.resize(700, 100);
    SetText(u"see www.example.org/x now and xhttp://a.b");
    ASSERT_EQ(m_Widget.Edit().Line(0).RowCount(), 1);
    const QFontMetrics metrics(CFxEditWidget::ToQFont(TestFont), &m_Widget);
    const int y = 10;
    const auto xOf = [&](const char* prefix)
    { return 4 + metrics.horizontalAdvance(QString::fromLatin1(prefix)) + 2; };
    EXPECT_EQ(m_Widget.LinkAt({xOf("see www.ex"), y}), u"www.example.org/x");
    EXPECT_EQ(m_Widget.LinkAt({xOf("s"), y}), u"");
    EXPECT_EQ(m_Widget.LinkAt({xOf("see www.example.org/x n"), y}), u"");
    // A link may begin inside a word.
    EXPECT_EQ(m_Widget.LinkAt({xOf("see www.example.org/x now and xht"), y}), u"http://a.b");

    QStringList activated;
    QObject::connect(&m_Widget, &CFxEditWidget::LinkActivated,
                     [&](const QString& link) { activated << link; });
    Click({xOf("see www.ex"), y});
    EXPECT_TRUE(activated.isEmpty());
    Click({xOf("see www.ex"), y}, Qt::ControlModifier);
    EXPECT_EQ(activated, QStringList{QStringLiteral("http://www.example.org/x")});
}

TEST_F(EditorWidget, InputMethodTextIsShownUntilCommittedAndThenInserted)
{
    SetText(u"ab");
    m_Widget.Edit().SetCaret({0, 1});
    QInputMethodEvent compose(QStringLiteral("にほ"), {});
    QApplication::sendEvent(&m_Widget, &compose);
    EXPECT_EQ(m_Widget.Edit().GetPlainText(), u"ab");
    EXPECT_EQ(m_Widget.inputMethodQuery(Qt::ImCursorPosition).toInt(), 1);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("日本語"));
    QApplication::sendEvent(&m_Widget, &commit);
    EXPECT_EQ(m_Widget.Edit().GetPlainText(), u"a日本語b");
    EXPECT_EQ(m_Widget.Edit().Caret(), (SFxPosition{0, 4}));
    EXPECT_EQ(m_Widget.inputMethodQuery(Qt::ImSurroundingText).toString(), QStringLiteral("a日本語b"));
    // A commit that replaces text before the caret (a reconversion).
    QInputMethodEvent replace;
    replace.setCommitString(QStringLiteral("X"), -3, 3);
    QApplication::sendEvent(&m_Widget, &replace);
    EXPECT_EQ(m_Widget.Edit().GetPlainText(), u"aXb");
}

TEST_F(EditorWidget, DroppedFilesBecomePicturesAndAttachmentsAndDroppedTextGoesWhereItFell)
{
    CTempFolder folder;
    QImage image(7, 5, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString imagePath = ToQString(folder.File16("red.png"));
    ASSERT_TRUE(image.save(imagePath));
    const QString filePath = ToQString(folder.File16("notes.txt"));
    {
        QFile file(filePath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("attached bytes");
    }
    SetText(u"abcd");
    const QFontMetrics metrics(CFxEditWidget::ToQFont(TestFont), &m_Widget);
    const QPoint afterB(4 + metrics.horizontalAdvance(QStringLiteral("ab")), 10);

    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(imagePath), QUrl::fromLocalFile(filePath)});
    Drop(files, afterB);
    const COneLineInfo& line = m_Widget.Edit().Line(0);
    ASSERT_EQ(line.Text(), u"ab\x14\x14"
                           u"cd");
    ASSERT_EQ(line.Objects().size(), 2u);
    ASSERT_TRUE(line.Objects()[0].IsPicture());
    EXPECT_EQ(line.Objects()[0].Picture()->Header().width, 7);
    EXPECT_EQ(line.Objects()[0].Picture()->Header().height, 5);
    ASSERT_TRUE(line.Objects()[1].IsAttachment());
    EXPECT_EQ(line.Objects()[1].FileName(), u"notes.txt");
    EXPECT_EQ(line.Objects()[1].DataSize(), 14u);
    // The picture paints as itself: red pixels in its row.
    const QImage shot = m_Widget.grab().toImage();
    int red = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 120; ++x)
            red += shot.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
    EXPECT_EQ(red, 35);

    QMimeData text;
    text.setText(QStringLiteral("X\nY"));
    Drop(text, {1, 10});
    EXPECT_EQ(m_Widget.Edit().GetPlainText(), u"X\r\nYab\x14\x14"
                                              u"cd");
}

TEST_F(EditorWidget, TheContextMenuListsItsEntriesInOrderWithObjectEntriesForTheObjectAtTheCaret)
{
    const auto entries = [this]
    {
        std::vector<std::pair<QString, bool>> result;
        const std::unique_ptr<QMenu> menu = m_Widget.CreateContextMenu();
        for (QAction* action : menu->actions())
            if (!action->isSeparator())
                result.emplace_back(action->text(), action->isEnabled());
        return result;
    };
    using Entries = std::vector<std::pair<QString, bool>>;
    SetText(u"some text");
    m_Widget.Edit().SetCaret({0, 2});
    QApplication::clipboard()->setText(QStringLiteral("clip"));
    EXPECT_EQ(entries(), (Entries{{"Cut", false},
                                  {"Copy", false},
                                  {"Paste", true},
                                  {"Select All", true},
                                  {"Find...", true},
                                  {"Replace...", true}}));
    m_Widget.Edit().SetSelection({0, 0}, {0, 4});
    m_Widget.Edit().SetReadOnly(true);
    EXPECT_EQ(entries(), (Entries{{"Cut", false},
                                  {"Copy", true},
                                  {"Paste", false},
                                  {"Select All", true},
                                  {"Find...", true},
                                  {"Replace...", false}}));
    m_Widget.Edit().SetReadOnly(false);

    CRichTextDocument document;
    CRtfTextLine line(u"a\x14"
                      u"b\x14");
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 1);
    attachment.SetFileName(u"f.txt");
    line.AddObject(attachment);
    CRtfObjectInfo picture(CRtfObjectInfo::PictureType, 3);
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::blue);
    picture.SetPicture(ImageToBitmap(image));
    picture.SetParam1(8);
    picture.SetParam2(8);
    line.AddObject(picture);
    document.AppendLine(line);
    m_Widget.SetDocument(document);
    m_Widget.Edit().SetCaret({0, 1});
    Entries expected{{"Cut", false},    {"Copy", false},      {"Paste", true}, {"Select All", true},
                     {"Find...", true}, {"Replace...", true}, {"Open", true},  {"Save As...", true}};
    EXPECT_EQ(entries(), expected);
    m_Widget.Edit().SetCaret({0, 3});
    expected.resize(6);
    expected.emplace_back("Restore Original Image Size", true);
    EXPECT_EQ(entries(), expected);

    // Restoring gives the picture its bitmap's size and leaves the text as it was.
    ASSERT_TRUE(m_Widget.RestoreImageSize());
    const COneLineInfo& restored = m_Widget.Edit().Line(0);
    EXPECT_EQ(restored.Text(), u"a\x14"
                               u"b\x14");
    ASSERT_EQ(restored.Objects().size(), 2u);
    EXPECT_EQ(restored.Objects()[1].Param1(), 0u);
    EXPECT_EQ(restored.Objects()[1].Param2(), 0u);
    EXPECT_EQ(restored.Objects()[1].Picture(), picture.Picture());
    EXPECT_EQ(m_Widget.Edit().Caret(), (SFxPosition{0, 3}));
    expected.back().second = false;
    EXPECT_EQ(entries(), expected);
}

TEST_F(EditorWidget, MovingTheSelectionWithinTheEditorMatchesCuttingAndPastingInAString)
{
    // Positions are whole-text indexes into the model string, whose paragraphs end with '\n'.
    std::mt19937 random(1234);
    const std::u16string start = u"one two\nthree four five\n\nsix seven eight nine ten eleven twelve\nx";
    std::u16string model = start;
    SetText(start);
    CFxEdit& edit = m_Widget.Edit();
    const auto toPosition = [&](size_t index)
    {
        const int32_t line = static_cast<int32_t>(std::count(model.begin(), model.begin() + index, u'\n'));
        const size_t lineStart = model.rfind(u'\n', index == 0 ? std::u16string::npos : index - 1);
        const size_t offset = lineStart == std::u16string::npos || index == 0 ? index : index - lineStart - 1;
        return edit.FromCharPosition({line, static_cast<int32_t>(offset)});
    };
    const auto plain = [&]
    {
        std::u16string text = edit.GetPlainText();
        std::erase(text, u'\r');
        return text;
    };
    for (int step = 0; step < 200; ++step)
    {
        std::uniform_int_distribution<size_t> anywhere(0, model.size());
        size_t from = anywhere(random);
        size_t to = anywhere(random);
        if (from == to)
            continue;
        if (random() % 2)
            std::swap(from, to);
        const size_t target = anywhere(random);
        const size_t low = std::min(from, to);
        const size_t high = std::max(from, to);
        edit.SetSelection(toPosition(from), toPosition(to));
        const bool inside = target > low && target < high;
        ASSERT_EQ(m_Widget.MoveSelectionTo(toPosition(target)), !inside) << step;
        if (inside)
            continue;
        const std::u16string moved = model.substr(low, high - low);
        model.erase(low, high - low);
        const size_t at = target >= high ? target - moved.size() : target;
        model.insert(at, moved);
        ASSERT_EQ(plain(), model) << step;
        std::u16string selected = edit.GetSelectedPlainText();
        std::erase(selected, u'\r');
        EXPECT_EQ(selected, moved) << step;
        EXPECT_EQ(edit.SelectionStart(), toPosition(at)) << step;
    }
}

TEST_F(EditorWidget, TooltipsNameTheLinkOrTheAttachmentUnderTheMouse)
{
    m_Widget.resize(700, 100);
    CRtfTextLine line(u"go http://q.example/ \x14");
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 21);
    attachment.SetFileName(u"plan.pdf");
    line.AddObject(attachment);
    CRichTextDocument document;
    document.AppendLine(line);
    m_Widget.SetDocument(document);
    const QFontMetrics metrics(CFxEditWidget::ToQFont(TestFont), &m_Widget);
    const auto tipAt = [&](int x)
    {
        QHelpEvent help(QEvent::ToolTip, QPoint(x, 20), m_Widget.mapToGlobal(QPoint(x, 20)));
        QApplication::sendEvent(&m_Widget, &help);
        return m_Widget.toolTip();
    };
    EXPECT_EQ(tipAt(4 + metrics.horizontalAdvance(QStringLiteral("go http"))),
              QStringLiteral("http://q.example/\nCtrl+Click to follow the link"));
    EXPECT_EQ(tipAt(4 + metrics.horizontalAdvance(QStringLiteral("go http://q.example/ ")) + 16),
              QStringLiteral("plan.pdf"));
    EXPECT_EQ(tipAt(5), QString());
}

TEST_F(EditorWidget, FindAndReplaceRunThroughTheDialogAndRememberTheirTexts)
{
    SetText(u"a cat, a Cat\r\nand a cat");
    CFxEdit& edit = m_Widget.Edit();
    // Answers the next modal dialog from within its own loop.
    const auto whenShown = [](std::function<void(QWidget*)> act)
    {
        QTimer::singleShot(0,
                           [act]
                           {
                               QWidget* modal = QApplication::activeModalWidget();
                               ASSERT_NE(modal, nullptr);
                               act(modal);
                           });
    };
    const auto button = [](QWidget* dialog, const QString& text)
    {
        for (QPushButton* candidate : dialog->findChildren<QPushButton*>())
            if (candidate->text() == text)
                return candidate;
        ADD_FAILURE() << "no button " << text.toStdString();
        return static_cast<QPushButton*>(nullptr);
    };

    whenShown(
        [&](QWidget* dialog)
        {
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Find"));
            auto* find = static_cast<CFindReplaceDlg*>(dialog);
            EXPECT_EQ(find->FindEdit()->text(), QString());
            EXPECT_FALSE(button(dialog, QStringLiteral("Find Next"))->isEnabled());
            find->FindEdit()->setText(QStringLiteral("cat"));
            button(dialog, QStringLiteral("Find Next"))->click();
        });
    m_Widget.RunAction(CFxEdit::ActionFind);
    EXPECT_EQ(Selected(), u"cat");
    EXPECT_EQ(edit.ToCharPosition(edit.SelectionStart()).offset, 2);
    EXPECT_EQ(CFindReplaceDlg::Memory().findLine, u"cat");

    // Replace all, case-sensitive: the remembered find text comes back, the count is shown.
    edit.SetCaret({0, 0});
    whenShown(
        [&](QWidget* dialog)
        {
            auto* replace = static_cast<CFindReplaceDlg*>(dialog);
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Replace"));
            EXPECT_EQ(replace->FindEdit()->text(), QStringLiteral("cat"));
            replace->ReplaceEdit()->setText(QStringLiteral("dog"));
            dialog->findChild<QCheckBox*>()->setChecked(true);
            whenShown(
                [](QWidget* box)
                {
                    EXPECT_EQ(static_cast<QMessageBox*>(box)->text(),
                              QStringLiteral("2 occurrences have been replaced."));
                    box->close();
                });
            button(dialog, QStringLiteral("Replace All"))->click();
        });
    m_Widget.RunAction(CFxEdit::ActionReplace);
    EXPECT_EQ(edit.GetPlainText(), u"a dog, a Cat\r\nand a dog");
    EXPECT_TRUE(CFindReplaceDlg::Memory().matchCase);
    EXPECT_EQ(CFindReplaceDlg::Memory().replaceLine, u"dog");

    // Cancel changes nothing and forgets nothing.
    whenShown([&](QWidget* dialog) { button(dialog, QStringLiteral("Cancel"))->click(); });
    m_Widget.RunAction(CFxEdit::ActionReplace);
    EXPECT_EQ(edit.GetPlainText(), u"a dog, a Cat\r\nand a dog");
    EXPECT_EQ(CFindReplaceDlg::Memory().findLine, u"cat");
}
