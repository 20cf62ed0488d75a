#pragma once
// The note editor on screen: a QWidget that paints a CFxEdit row by row (fonts, colours,
// selection, blinking caret), feeds it keys and mouse clicks, and answers its host questions
// with Qt (text measurement by QFontMetrics, the system clipboard, message boxes).
#include "Shared/FxEdit/FxEdit.h"

#include <QFont>
#include <QFontMetrics>
#include <QTimer>
#include <QWidget>

#include <map>

class CFxEditWidget : public QWidget, public IFxEditHost
{
    Q_OBJECT

public:
    // The editor looks its texts up in `language`, which outlives the widget.
    explicit CFxEditWidget(const CLanguageModule* language, QWidget* parent = nullptr);

    CFxEdit& Edit() { return m_Edit; }
    void SetDocument(const CRichTextDocument& document);
    // Runs one of the editor's key-binding actions (undo, copy...) and repaints.
    void RunAction(int32_t action);

    static QFont ToQFont(const SFontDescription& font);

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

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct SRowPaint;

    const QFontMetrics& Metrics(const SFontDescription& font);
    void PaintRow(QPainter& painter, const SRowPaint& row);
    void AfterEditing();
    void RestartCaretBlink();
    void ScrollByRows(int32_t rows);
    SFxPosition PositionAt(const QPoint& point) const;

    static constexpr int Margin = 4;

    const CLanguageModule* m_Language;
    // Built before the editor, whose constructor already measures text through this widget.
    std::map<SFontDescription, QFontMetrics> m_Metrics;
    CFxEdit m_Edit;
    QTimer m_CaretTimer;
    bool m_CaretShown = true;
};
