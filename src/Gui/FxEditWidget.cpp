#include "Gui/FxEditWidget.h"

#include "Gui/FindReplaceDlg.h"
#include "Gui/GuiClipboard.h"
#include "Gui/GuiPictures.h"
#include "Gui/QtText.h"
#include "Shared/Base/Archive.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/Log/Log.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QUrl>

#include <algorithm>

namespace
{
EFxKey ToFxKey(int key)
{
    switch (key)
    {
    case Qt::Key_Home:
        return EFxKey::Home;
    case Qt::Key_End:
        return EFxKey::End;
    case Qt::Key_Left:
        return EFxKey::Left;
    case Qt::Key_Right:
        return EFxKey::Right;
    case Qt::Key_Up:
        return EFxKey::Up;
    case Qt::Key_Down:
        return EFxKey::Down;
    case Qt::Key_PageUp:
        return EFxKey::PageUp;
    case Qt::Key_PageDown:
        return EFxKey::PageDown;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return EFxKey::Tab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return EFxKey::Enter;
    case Qt::Key_Backspace:
        return EFxKey::Backspace;
    case Qt::Key_Delete:
        return EFxKey::Delete;
    default:
        return EFxKey::Other;
    }
}

bool IsTypedCharacter(QChar c)
{
    return c.unicode() >= 0x20 && c.unicode() != 0x7F;
}
} // namespace

CFxEditWidget::CFxEditWidget(const CLanguageModule* language, QWidget* parent)
    : QWidget(parent), m_Language(language), m_VScroll(new QScrollBar(Qt::Vertical, this)),
      m_Edit(*this, CFxEdit::ModeRich, true)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAcceptDrops(true);
    setMouseTracking(true);
    setCursor(Qt::IBeamCursor);
    setAutoFillBackground(false);
    m_VScroll->setCursor(Qt::ArrowCursor);
    m_VScroll->setFocusPolicy(Qt::NoFocus);
    connect(m_VScroll, &QScrollBar::valueChanged, this, &CFxEditWidget::ScrollToAbsoluteRow);
    m_CaretTimer.setInterval(QApplication::cursorFlashTime() > 0 ? QApplication::cursorFlashTime() / 2 : 500);
    connect(&m_CaretTimer, &QTimer::timeout, this,
            [this]
            {
                m_CaretShown = !m_CaretShown;
                if (const QRect caret = CaretRect(); !caret.isEmpty())
                    update(caret.adjusted(-1, 0, 1, 0));
            });
    m_AutoScroll.setInterval(50);
    connect(&m_AutoScroll, &QTimer::timeout, this, &CFxEditWidget::AutoScrollStep);
    SyncScrollBar();
}

CFxEditWidget::~CFxEditWidget() = default;

QFont CFxEditWidget::ToQFont(const SFontDescription& font)
{
    QFont result;
    if (!font.FaceNameView().empty())
        result.setFamily(ToQString(font.FaceNameView()));
    result.setPointSize(static_cast<int>(std::clamp<int64_t>(font.PointSize(), 1, 1000)));
    result.setBold(font.IsBold());
    result.setItalic(font.IsItalic());
    result.setUnderline(font.IsUnderlined());
    result.setStrikeOut(font.strikeOut != 0);
    return result;
}

const CFxEditWidget::SFontCache& CFxEditWidget::Fonts(const SFontDescription& font) const
{
    auto found = m_Fonts.find(font);
    if (found == m_Fonts.end())
    {
        const QFont qfont = ToQFont(font);
        found = m_Fonts.emplace(font, SFontCache{qfont, QFontMetrics(qfont, this)}).first;
    }
    return found->second;
}

void CFxEditWidget::SetDocument(const CRichTextDocument& document)
{
    m_Edit.SetDocument(document);
    m_Edit.SetModified(false);
    m_Pictures.clear();
    SyncScrollBar();
    update();
}

void CFxEditWidget::RunAction(int32_t action)
{
    m_Edit.DoAction(action);
    AfterEditing();
}

// ---- IFxEditHost

SFxExtent CFxEditWidget::MeasureText(std::u16string_view text, const SFontDescription& font)
{
    const QFontMetrics& metrics = Fonts(font).metrics;
    return SFxExtent{metrics.horizontalAdvance(ToQString(text)), metrics.height()};
}

int32_t CFxEditWidget::TextAreaWidth()
{
    return std::max(1, width() - m_VScroll->sizeHint().width() - 2 * Margin);
}

int32_t CFxEditWidget::TextAreaHeight()
{
    return std::max(1, height() - 2 * Margin);
}

int32_t CFxEditWidget::FixedRowHeight()
{
    return fontMetrics().height();
}

void CFxEditWidget::PostOwnerMessage(uint32_t message, int32_t value)
{
    if (message == FxEditTextChangedMessage && value != 0)
        emit TextModified();
}

void CFxEditWidget::SetStatusText(std::u16string_view text)
{
    emit StatusTextChanged(ToQString(text));
}

bool CFxEditWidget::SetClipboard(const SFxClipboardData& data)
{
    CRichTextDocument selection;
    CArchiveReader reader(data.richText.data(), data.richText.size());
    if (data.richText.empty() || selection.Serialize(reader) != 0)
        selection.BuildFromPlainText(data.plainText);
    QApplication::clipboard()->setMimeData(
        MakeRichTextMimeData(selection, data.plainText, m_Edit.Settings().defaultFont).release());
    return true;
}

bool CFxEditWidget::GetClipboard(SFxClipboardData& data)
{
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime)
        return false;
    data.plainText = ToU16(mime->text());
    data.richText.clear();
    CRichTextDocument document;
    const EPastedForm form = DocumentFromMime(*mime, document);
    if (form == EPastedForm::OwnRichText || form == EPastedForm::Rtf || form == EPastedForm::Html)
    {
        CArchiveWriter writer;
        if (document.Serialize(writer) == 0)
            data.richText = writer.Take();
    }
    return true;
}

EMsgResult CFxEditWidget::ShowMessage(const std::u16string& text, EMsgIcon icon)
{
    const QString message = ToQString(text);
    switch (icon)
    {
    case EMsgIcon::Error:
        QMessageBox::critical(this, QString(), message);
        break;
    case EMsgIcon::Warning:
        QMessageBox::warning(this, QString(), message);
        break;
    default:
        QMessageBox::information(this, QString(), message);
        break;
    }
    return EMsgResult::Ok;
}

int32_t CFxEditWidget::TranslateKey(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt)
{
    if (key == EFxKey::Other && shift && !ctrl && !alt && platformKey == Qt::Key_Insert)
        return CFxEdit::ActionPasteOther;
    if (key == EFxKey::Delete && shift && !ctrl && !alt)
        return CFxEdit::ActionCut;
    if (!ctrl || alt || key != EFxKey::Other)
        return 0;
    switch (platformKey)
    {
    case Qt::Key_Z:
        return shift ? CFxEdit::ActionRedo : CFxEdit::ActionUndo;
    case Qt::Key_Y:
        return CFxEdit::ActionRedo;
    case Qt::Key_X:
        return CFxEdit::ActionCut;
    case Qt::Key_C:
    case Qt::Key_Insert:
        return CFxEdit::ActionCopy;
    case Qt::Key_V:
        return CFxEdit::ActionPaste;
    case Qt::Key_A:
        return CFxEdit::ActionSelectAll;
    case Qt::Key_F:
        return CFxEdit::ActionFind;
    case Qt::Key_H:
        return CFxEdit::ActionReplace;
    default:
        return 0;
    }
}

bool CFxEditWidget::RunFindReplaceDialog(SFxFindReplaceRequest& request)
{
    const bool answered = CFindReplaceDlg::Run(request, m_Prefs, m_Language, this);
    setFocus();
    return answered;
}

bool CFxEditWidget::AskFileName(bool save, std::u16string_view, const std::u16string& caption,
                                std::u16string& path)
{
    const QString chosen = save ? QFileDialog::getSaveFileName(this, ToQString(caption), ToQString(path))
                                : QFileDialog::getOpenFileName(this, ToQString(caption), ToQString(path));
    if (chosen.isEmpty())
        return false;
    path = ToU16(chosen);
    return true;
}

IFileSystem& CFxEditWidget::FileSystem()
{
    return DiskFileSystem();
}

std::u16string CFxEditWidget::TempFolder()
{
    return ToU16(QDir::tempPath() + u'/');
}

bool CFxEditWidget::ShellOpen(const std::u16string& path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(ToQString(path)));
}

const IClock& CFxEditWidget::Clock()
{
    return SystemClock();
}

// ---- commands

std::unique_ptr<QMenu> CFxEditWidget::CreateContextMenu()
{
    auto menu = std::make_unique<QMenu>(this);
    const auto text = [this](const char16_t* key)
    { return m_Language ? ToQString(m_Language->GetString(key)) : ToQString(key); };
    const auto add = [&](const char16_t* key, bool enabled, auto run)
    {
        QAction* action = menu->addAction(text(key), this, run);
        action->setEnabled(enabled);
    };
    const bool editable = !m_Edit.IsReadOnly();
    const bool selected = !m_Edit.IsSelectionEmpty();
    const QMimeData* clipboard = QApplication::clipboard()->mimeData();
    const bool canPaste = editable && clipboard && !clipboard->formats().isEmpty();
    add(u"EDITCTL_CUT", editable && selected, [this] { RunAction(CFxEdit::ActionCut); });
    add(u"EDITCTL_COPY", selected, [this] { RunAction(CFxEdit::ActionCopy); });
    add(u"EDITCTL_PASTE", canPaste, [this] { RunAction(CFxEdit::ActionPaste); });
    menu->addSeparator();
    add(u"EDITCTL_SELECTALL", m_Edit.LineCount() > 0, [this] { RunAction(CFxEdit::ActionSelectAll); });
    menu->addSeparator();
    add(u"EDITCTL_FIND", true, [this] { RunAction(CFxEdit::ActionFind); });
    add(u"EDITCTL_REPLACE", editable, [this] { RunAction(CFxEdit::ActionReplace); });

    const CRtfObjectInfo* object = m_Edit.LineCount() > 0 ? m_Edit.ObjectAtCaret() : nullptr;
    if (object && object->IsAttachment())
    {
        menu->addSeparator();
        add(u"MENU_FILE_OPEN", true, [this] { m_Edit.OpenAttachment(m_Edit.Caret()); });
        add(u"MENU_FILE_SAVEAS", true, [this] { m_Edit.SaveAttachmentAs(m_Edit.Caret()); });
    }
    else if (object && object->IsPicture())
    {
        menu->addSeparator();
        add(u"MENU_EIDT_RESTORE_IMAGE_SIZE", editable && object->Param1() != 0 && object->Param2() != 0,
            [this] { RestoreImageSize(); });
    }
    return menu;
}

EPastedForm CFxEditWidget::DocumentFromMime(const QMimeData& mime, CRichTextDocument& document)
{
    const bool rich = m_Edit.Mode() == CFxEdit::ModeRich;
    // Files copied or dragged from a file manager come as local URLs, often with their paths as
    // text too: the files win, each becoming a picture or an attachment.
    if (rich && mime.hasUrls())
    {
        CRtfTextLine line;
        bool failed = false;
        for (const QUrl& url : mime.urls())
        {
            if (!url.isLocalFile())
                continue;
            const QString path = url.toLocalFile();
            std::optional<CRtfObjectInfo> object;
            if (IsImageFile(path))
            {
                object = PictureObject(QImage(path));
                if (!object)
                    LogMessage(u"Error: Cannot load image file (file path: %s).", ToU16(path));
            }
            else
                object = AttachmentObject(path);
            if (!object)
            {
                failed = true;
                continue;
            }
            object->SetPosition(static_cast<int32_t>(line.Text().size()));
            line.SetText(line.Text() + CRtfObjectInfo::ObjectCharacter);
            line.AddObject(std::move(*object));
        }
        if (failed)
            ShowMessage(m_Language ? m_Language->GetString(u"ERR_CANNOT_LOAD_FILE") : u"", EMsgIcon::Error);
        if (!line.Text().empty())
        {
            document.Clear();
            document.AppendLine(std::move(line));
            return EPastedForm::OwnRichText;
        }
    }
    const EPastedForm form = ReadRichTextMimeData(mime, m_Edit.Settings().defaultFont, document);
    if (form == EPastedForm::Nothing && rich && mime.hasImage())
    {
        if (std::optional<CRtfObjectInfo> picture = PictureObject(qvariant_cast<QImage>(mime.imageData())))
        {
            CRtfTextLine line(std::u16string(1, CRtfObjectInfo::ObjectCharacter));
            line.AddObject(std::move(*picture));
            document.Clear();
            document.AppendLine(std::move(line));
            return EPastedForm::OwnRichText;
        }
    }
    return form;
}

bool CFxEditWidget::InsertMimeData(const QMimeData& mime)
{
    if (m_Edit.IsReadOnly())
        return false;
    CRichTextDocument document;
    SetStatusText(m_Language ? m_Language->GetString(u"MAIN_WND_STATUS_LOADING") : u"");
    const EPastedForm form = DocumentFromMime(mime, document);
    SetStatusText(u"");
    if (form == EPastedForm::Nothing)
        return false;
    m_Edit.InsertDocument(document);
    AfterEditing();
    return true;
}

bool CFxEditWidget::RestoreImageSize()
{
    if (!m_Edit.RestoreImageSize())
        return false;
    AfterEditing();
    return true;
}

// ---- keyboard and input methods

bool CFxEditWidget::event(QEvent* event)
{
    // Tab moves the focus in a dialog but indents in the editor: it is taken before the focus
    // chain sees it, when the editor handles tabs.
    if (event->type() == QEvent::KeyPress && m_Edit.TabsAllowed())
    {
        auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) &&
            !key->modifiers().testFlag(Qt::ControlModifier))
        {
            keyPressEvent(key);
            return true;
        }
    }
    if (event->type() == QEvent::ToolTip)
    {
        auto* help = static_cast<QHelpEvent*>(event);
        const std::u16string link = LinkAt(help->pos());
        int32_t line = 0;
        const int32_t offset = link.empty() ? CharacterAt(help->pos(), line) : -1;
        const CRtfObjectInfo* object = offset >= 0 ? m_Edit.Line(line).FindObject(offset) : nullptr;
        if (!link.empty())
            setToolTip(
                ToQString(link) + u'\n' +
                (m_Language ? ToQString(m_Language->GetString(u"EDITCTL_HYPERLINK_TOOLTIP")) : QString()));
        else if (object && object->IsAttachment())
            setToolTip(ToQString(object->FileName()));
        else
            setToolTip(QString());
    }
    return QWidget::event(event);
}

void CFxEditWidget::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool ctrl = modifiers.testFlag(Qt::ControlModifier);
    const bool shift = modifiers.testFlag(Qt::ShiftModifier) || event->key() == Qt::Key_Backtab;
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    const EFxKey key = ToFxKey(event->key());
    if (key != EFxKey::Other || ctrl || alt || event->key() == Qt::Key_Insert)
    {
        m_Edit.OnKeyDown(key, event->key(), ctrl, shift, alt);
        AfterEditing();
        event->accept();
        return;
    }
    const QString text = event->text();
    // Typing with nothing selected changes the caret's paragraph only: while that keeps its rows
    // and the view stays where it was, only those rows are painted again.
    const SFxPosition caret = m_Edit.Caret();
    const bool inLine = m_Edit.IsSelectionEmpty() && m_Edit.LineCount() > 0;
    const int32_t rows = inLine ? m_Edit.Line(caret.line).RowCount() : 0;
    const SFxPosition top{m_Edit.TopLine(), m_Edit.TopRow()};
    const int32_t lines = m_Edit.LineCount();
    bool typed = false;
    for (QChar c : text)
        if (IsTypedCharacter(c))
        {
            m_Edit.OnChar(c.unicode(), shift);
            typed = true;
        }
    if (!typed)
    {
        QWidget::keyPressEvent(event);
        return;
    }
    m_Edit.EnsureCaretVisible();
    if (inLine && m_Edit.Caret().line == caret.line && m_Edit.LineCount() == lines &&
        m_Edit.Line(caret.line).RowCount() == rows && SFxPosition{m_Edit.TopLine(), m_Edit.TopRow()} == top)
        AfterEditing(caret.line);
    else
        AfterEditing();
    event->accept();
}

void CFxEditWidget::CommitText(const QString& text)
{
    if (text.isEmpty())
        return;
    if (text.size() == 1)
        m_Edit.OnChar(text[0].unicode());
    else
        m_Edit.InsertText(ToU16(text));
}

void CFxEditWidget::inputMethodEvent(QInputMethodEvent* event)
{
    if (m_Edit.IsReadOnly() || m_Edit.LineCount() == 0)
    {
        m_Preedit.clear();
        event->ignore();
        return;
    }
    if (event->replacementLength() > 0 && m_Edit.IsSelectionEmpty())
    {
        // The input method takes back text next to the caret (a reconversion): select it so that
        // the commit replaces it.
        const SFxCharPosition caret = m_Edit.ToCharPosition(m_Edit.Caret());
        const int32_t length = m_Edit.Line(caret.line).Length();
        const int32_t from = std::clamp(caret.offset + event->replacementStart(), 0, length);
        const int32_t to = std::clamp(from + event->replacementLength(), 0, length);
        m_Edit.SetSelection(m_Edit.FromCharPosition({caret.line, from}),
                            m_Edit.FromCharPosition({caret.line, to}));
    }
    CommitText(event->commitString());
    m_Preedit = event->preeditString();
    AfterEditing();
    event->accept();
}

QVariant CFxEditWidget::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (m_Edit.LineCount() == 0)
        return QWidget::inputMethodQuery(query);
    const SFxCharPosition caret = m_Edit.ToCharPosition(m_Edit.Caret());
    const SFxCharPosition anchor = m_Edit.ToCharPosition(m_Edit.Anchor());
    const COneLineInfo& line = m_Edit.Line(caret.line);
    switch (query)
    {
    case Qt::ImEnabled:
        return !m_Edit.IsReadOnly();
    case Qt::ImCursorRectangle:
        return CaretRect();
    case Qt::ImFont:
        return Fonts(
                   line.EffectiveFont(std::max(0, caret.offset - 1)).value_or(m_Edit.Settings().defaultFont))
            .font;
    case Qt::ImCursorPosition:
        return caret.offset;
    case Qt::ImAnchorPosition:
        return anchor.line == caret.line ? anchor.offset : caret.offset;
    case Qt::ImSurroundingText:
        return ToQString(line.Text());
    case Qt::ImCurrentSelection:
        return anchor.line == caret.line ? ToQString(m_Edit.GetSelectedPlainText()) : QString();
    case Qt::ImHints:
        return static_cast<int>(Qt::ImhMultiLine);
    default:
        return QWidget::inputMethodQuery(query);
    }
}

// ---- focus and size

void CFxEditWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const int scrollWidth = m_VScroll->sizeHint().width();
    m_VScroll->setGeometry(width() - scrollWidth, 0, scrollWidth, height());
    m_Edit.OnResize();
    SyncScrollBar();
}

void CFxEditWidget::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    RestartCaretBlink();
    update();
}

void CFxEditWidget::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    m_CaretTimer.stop();
    update();
}

void CFxEditWidget::AfterEditing(std::optional<int32_t> onlyLine)
{
    m_Edit.EnsureCaretVisible();
    SyncScrollBar();
    RestartCaretBlink();
    if (onlyLine)
    {
        // The visible rows of the line, walked once from the top of the view.
        QRect dirty;
        int32_t line = m_Edit.TopLine();
        int32_t row = m_Edit.TopRow();
        for (int32_t top = Margin; top < height() && line <= *onlyLine;)
        {
            const int32_t rowHeight = m_Edit.Line(line).RowHeight(row);
            if (line == *onlyLine)
                dirty |= QRect(0, top, width(), rowHeight);
            top += rowHeight;
            if (++row >= m_Edit.Line(line).RowCount())
            {
                ++line;
                row = 0;
            }
        }
        update(dirty);
    }
    else
        update();
    QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImSurroundingText |
                                           Qt::ImCursorPosition | Qt::ImAnchorPosition);
}

void CFxEditWidget::RestartCaretBlink()
{
    m_CaretShown = true;
    m_CaretTimer.start();
}
