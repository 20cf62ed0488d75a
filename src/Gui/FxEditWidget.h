#pragma once
// The note editor on screen: a QWidget that paints a CFxEdit row by row (fonts, colours,
// selection, blinking caret, bullets, pictures, attachment icons, underlined links), feeds it
// keys, input method text and mouse gestures, scrolls it by rows, exchanges text and files by
// drag and drop and the clipboard, and answers its host questions with Qt.
#include "Gui/GuiClipboard.h"
#include "Shared/FxEdit/FxEdit.h"

#include <QElapsedTimer>
#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPixmap>
#include <QPoint>
#include <QTimer>
#include <QWidget>

#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

class QMenu;
class QMimeData;
class QScrollBar;
struct SLineLayoutContext;

class CPreferences;

class CFxEditWidget : public QWidget, public IFxEditHost
{
    Q_OBJECT

public:
    // The editor looks its texts up in `language`, which outlives the widget.
    explicit CFxEditWidget(const CLanguageModule* language, QWidget* parent = nullptr);
    ~CFxEditWidget() override;

    CFxEdit& Edit() { return m_Edit; }
    const CFxEdit& Edit() const { return m_Edit; }
    // Where the find and replace window keeps its lines and placements; without preferences
    // they carry over for the run only.
    void SetPreferences(CPreferences* prefs) { m_Prefs = prefs; }
    void SetDocument(const CRichTextDocument& document);
    // Runs one of the editor's key-binding actions (undo, copy...) and repaints.
    void RunAction(int32_t action);

    // The context menu for the caret as it stands, its entries in the designed order.
    std::unique_ptr<QMenu> CreateContextMenu();
    // Text or files as a paste or a drop brings them, inserted at the caret: files become
    // pictures when they hold an image and attachments otherwise; false when nothing was usable.
    bool InsertMimeData(const QMimeData& mime);
    // The selection dragged to `at` within this editor: taken out and put in there, selected;
    // false when `at` lies inside it.
    bool MoveSelectionTo(SFxPosition at);
    // Gives the selected picture (or the one right of the caret) its bitmap's size again.
    bool RestoreImageSize();

    // The web link under `point` (widget coordinates), or empty.
    std::u16string LinkAt(const QPoint& point) const;
    // The point's place in the text, as a click there puts the caret.
    SFxPosition PositionAt(const QPoint& point) const;
    // The rectangle of the caret in widget coordinates; empty when it is scrolled out of view.
    QRect CaretRect() const;
    QScrollBar* VerticalScrollBar() const { return m_VScroll; }

    static QFont ToQFont(const SFontDescription& font);
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

    // IFxEditHost
    SFxExtent MeasureText(std::u16string_view text, const SFontDescription& font) override;
    int32_t TextAreaWidth() override;
    int32_t TextAreaHeight() override;
    int32_t FixedRowHeight() override;
    void PostOwnerMessage(uint32_t message, int32_t value) override;
    void SetStatusText(std::u16string_view text) override;
    bool SetClipboard(const SFxClipboardData& data) override;
    bool GetClipboard(SFxClipboardData& data) override;
    EMsgResult ShowMessage(const std::u16string& text, EMsgIcon icon) override;
    int32_t TranslateKey(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt) override;
    const CLanguageModule* LanguageModule() override { return m_Language; }
    bool RunFindReplaceDialog(SFxFindReplaceRequest& request) override;
    bool AskFileName(bool save, std::u16string_view filter, const std::u16string& caption,
                     std::u16string& path) override;
    IFileSystem& FileSystem() override;
    std::u16string TempFolder() override;
    bool ShellOpen(const std::u16string& path) override;
    const IClock& Clock() override;

signals:
    void TextModified();
    void StatusTextChanged(const QString& text);
    // A link was Ctrl+clicked; the widget opens it unless a receiver is connected.
    void LinkActivated(const QString& link);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct SRowPaint;
    struct SFontCache
    {
        QFont font;
        QFontMetrics metrics;
    };
    enum class EClickUnit
    {
        Character,
        Word,
        Line
    };

    // Painting (FxEditWidgetPaint.cpp).
    const SFontCache& Fonts(const SFontDescription& font) const;
    void PaintRow(QPainter& painter, const SRowPaint& row);
    void PaintObject(QPainter& painter, const CRtfObjectInfo& object, const QRect& cell, int32_t bottom);
    QImage PictureImage(const CRtfObjectInfo& object);
    QRect RowRect(int32_t line, int32_t row) const; // empty when out of view
    // The visible row at height `y` (widget coordinates) and its top; false below the text.
    bool RowAtY(int32_t y, int32_t& line, int32_t& row, int32_t& top) const;
    SLineLayoutContext LayoutContext() const;
    int32_t XOf(int32_t line, int32_t row, int32_t offset) const;
    // The character offset under the point when the point lies on a character, or -1.
    int32_t CharacterAt(const QPoint& point, int32_t& line) const;

    // Mouse and scrolling (FxEditWidgetMouse.cpp).
    void ExtendMouseSelection(const QPoint& point);
    void AutoScrollStep();
    void ScrollByRows(int32_t rows);
    void ScrollToAbsoluteRow(int32_t row);
    int32_t AbsoluteTopRow() const;
    void SyncScrollBar();
    void SelectObjectAt(SFxPosition position);
    void OpenLink(const std::u16string& link);
    bool DropMimeData(const QMimeData& mime, SFxPosition at, bool moveOwnSelection);

    // Scrolls to the caret and repaints: all of the view, or only the rows of `onlyLine` when
    // nothing else can have changed.
    // What a paste or a drop of `mime` inserts: its files as pictures and attachments, else its
    // richest readable text, else its image; the form that was read.
    EPastedForm DocumentFromMime(const QMimeData& mime, CRichTextDocument& document);
    void AfterEditing(std::optional<int32_t> onlyLine = std::nullopt);
    void RestartCaretBlink();
    void CommitText(const QString& text);

    static constexpr int Margin = 4;

    const CLanguageModule* m_Language;
    CPreferences* m_Prefs = nullptr;
    // Built before the editor, whose constructor already measures text through this widget.
    mutable std::map<SFontDescription, SFontCache> m_Fonts;
    QScrollBar* m_VScroll = nullptr;
    CFxEdit m_Edit;
    QTimer m_CaretTimer;
    bool m_CaretShown = true;
    QString m_Preedit;

    // Mouse gestures: the unit a drag extends by, the span the gesture began on, a click that may
    // become a drag of the selection, and the last double click for telling a triple click.
    EClickUnit m_ClickUnit = EClickUnit::Character;
    bool m_Selecting = false;
    SFxPosition m_GestureStart;
    SFxPosition m_GestureEnd;
    std::optional<QPoint> m_DragFrom;
    QElapsedTimer m_SinceDoubleClick;
    QPoint m_DoubleClickAt;
    QTimer m_AutoScroll;
    QPoint m_LastMouse;
    std::optional<SFxPosition> m_DropCaret;
    bool m_DraggingOut = false;
    int m_WheelRemainder = 0;

    // Decoded pictures by a hash of their bitmap bytes, so that painting decodes each once.
    std::unordered_map<size_t, QImage> m_Pictures;
    // Attachment icons by file name extension.
    std::map<QString, QPixmap> m_AttachmentIcons;
};
