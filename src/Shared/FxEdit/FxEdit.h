#pragma once
// The program's own rich text editor, without its window: the lines of one note body with their
// wrap caches, the caret and the anchor, the pending typing format, the undo history and the
// commands. Every change follows one pattern: check that editing is allowed, open an undo
// quantum, replace whole paragraph lines while recording them, close the quantum, lay the
// changed lines out again, tell the owner, redraw. The screen is reached through IFxEditHost.
//
// Caret and anchor positions are layout positions (see COneLineInfo); the undo history and the
// commands convert them to character offsets around every change.
#include "Shared/FxEdit/FxEditHost.h"
#include "Shared/FxEdit/FxEditUndoRedo.h"
#include "Shared/FxEdit/OneLineInfo.h"
#include "Shared/RichText/RichTextDocument.h"

#include <compare>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SFxPosition
{
    int32_t line = 0;
    int32_t pos = 0;
    auto operator<=>(const SFxPosition&) const = default;
};

class CFxEdit
{
public:
    using CUndoRedo = CFxEditUndoRedo;

    enum EMode : int32_t
    {
        ModeRich = 0,       // rows of varying height (note body)
        ModeAutoHeight = 2, // asks the owner to resize it to the height its text needs
        ModeSingleLine = 3,
        ModeDigits = 4 // single line of decimal digits
    };

    // The codes of the host's key bindings.
    enum EAction : int32_t
    {
        ActionCut = 1,
        ActionCopy = 2,
        ActionPaste = 3,
        ActionPasteOther = 4,
        ActionFindNext = 6,
        ActionFind = 7,
        ActionReplace = 8,
        ActionSelectWord = 9,
        ActionUndo = 10,
        ActionRedo = 11,
        ActionSelectAll = 12,
        ActionSelectLine = 13,
        ActionDateStamp = 14,
        ActionTimeStamp = 15,
        ActionLineUp = 16,
        ActionLineDown = 17,
        ActionOwnKey = 18, // the key goes to the control's own deletion/insertion handling
        ActionUpperCase = 19,
        ActionLowerCase = 20,
        ActionMixedCase = 21,
        ActionDeleteLine = 22
    };

    enum class ECase
    {
        Upper,
        Lower,
        Mixed // first letter of each word upper, the rest lower
    };

    CFxEdit(IFxEditHost& host, int32_t mode, bool tabsAllowed, SFxEditSettings settings = {});
    CFxEdit(const CFxEdit&) = delete;
    CFxEdit& operator=(const CFxEdit&) = delete;
    ~CFxEdit();

    // Content. Setting content as a whole clears the undo history.
    void SetDocument(const CRichTextDocument& document);
    CRichTextDocument GetDocument() const;
    CRichTextDocument GetSelection() const;
    void SetPlainText(std::u16string_view text);
    std::u16string GetPlainText() const; // lines joined by CR LF
    std::u16string GetSelectedPlainText() const;
    int32_t LineCount() const { return static_cast<int32_t>(m_Lines.size()); }
    const COneLineInfo& Line(int32_t index) const; // invalid_argument when out of range

    int32_t Mode() const { return m_Mode; }
    bool TabsAllowed() const { return m_TabsAllowed; }
    void SetReadOnly(bool readOnly);
    bool IsReadOnly() const { return m_ReadOnly; }
    bool IsModified() const { return m_Modified; }
    void SetModified(bool modified) { m_Modified = modified; }
    const SFxEditSettings& Settings() const { return m_Settings; }
    void SetSettings(const SFxEditSettings& settings);

    // Selection. Positions are clamped into the text.
    SFxPosition Caret() const { return m_Caret; }
    SFxPosition Anchor() const { return m_Anchor; }
    void SetSelection(SFxPosition anchor, SFxPosition caret);
    void SetCaret(SFxPosition caret) { SetSelection(caret, caret); }
    bool IsSelectionEmpty() const { return m_Caret == m_Anchor; }
    SFxPosition SelectionStart() const { return std::min(m_Caret, m_Anchor); }
    SFxPosition SelectionEnd() const { return std::max(m_Caret, m_Anchor); }
    void SelectAll();
    void SelectAnchorLine();
    void SelectWordAtCaret();
    SFxCharPosition ToCharPosition(SFxPosition position) const;
    SFxPosition FromCharPosition(SFxCharPosition position) const;

    // Keyboard.
    void OnChar(char16_t c, bool shift = false);
    void OnKeyDown(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt);
    bool DoAction(int32_t action);
    // Caret movement; `extend` keeps the anchor (Shift), `ctrl` moves by words or to text ends.
    void MoveCaret(EFxKey key, bool ctrl, bool extend);

    // Editing.
    bool DeleteSelection();
    void InsertText(std::u16string_view text); // CR, LF and CR LF split lines
    void InsertDocument(const CRichTextDocument& document);
    void InsertObject(CRtfObjectInfo object);
    void Enter();
    void Backspace();
    void Delete();
    void IndentSelectedLines(bool outdent);
    void MoveLine(bool up);
    void DeleteCaretLine();
    bool Cut();
    bool Copy();
    bool Paste();

    // Undo history.
    bool Undo();
    bool Redo();
    bool CanUndo(std::u16string* text = nullptr) const;
    bool CanRedo(std::u16string* text = nullptr) const;
    const CUndoRedo& UndoHistory() const { return m_UndoRedo; }

    // Find and replace.
    bool FindNext(std::u16string_view text, bool matchCase);
    int32_t Replace(std::u16string_view find, std::u16string_view replace, bool matchCase, bool all,
                    bool inSelection);
    void RunFindCommand();
    void RunReplaceCommand();
    void FindNextCommand();

    // Stamps ("DefaultDateStampFormat", "DefaultTimeStampFormat").
    std::u16string DateStampText() const;
    std::u16string TimeStampText() const;
    void InsertDateStamp();
    void InsertTimeStamp();

    // Formatting: the selection's format blocks, or the pending format when it is empty.
    void SetFontName(std::u16string_view face);
    void SetFontSize(int32_t points);
    void ChangeFontSize(bool larger);
    void ToggleBold();
    void ToggleItalic();
    void ToggleUnderline();
    void SetTextColour(RichTextColour colour);
    void SetBackColour(RichTextColour colour);
    void SetAlignment(int32_t alignment);
    void ToggleBullets();
    const std::optional<CRtfTextBlockInfo>& PendingFormat() const { return m_PendingFormat; }
    SFxPosition PendingFormatPosition() const { return m_PendingPosition; }

    // Text commands over the selection (the caret's line when it is empty).
    void ChangeCase(ECase kind);
    void Tabify();
    void Untabify();

    // Objects at the caret.
    bool InsertImageFromFile();
    bool InsertAttachmentFromFile();
    void InsertFileHyperlink();
    // The object at the caret (the character right of it), or null.
    const CRtfObjectInfo* ObjectAtCaret() const;
    // The selected picture (the selection is its one character, or the caret stands before it)
    // goes back to its bitmap's own size.
    bool RestoreImageSize();
    bool OpenAttachment(SFxPosition position);
    bool SaveAttachmentAs(SFxPosition position);
    // Writes the attachment into the temporary folder under a free name; the path, or empty.
    std::u16string WriteAttachmentToTemp(const CRtfObjectInfo& attachment);

    // Layout and view.
    void OnResize(); // the text area's width changed: lays every line out again
    int32_t TotalRows() const { return m_TotalRows; }
    int32_t TotalHeight() const; // the height the text needs
    SFxPosition HitTest(int32_t x, int32_t y) const;
    int32_t TopLine() const { return m_TopLine; }
    int32_t TopRow() const { return m_TopRow; }
    void ScrollToRow(int32_t line, int32_t row);
    void EnsureCaretVisible();
    int32_t CaretX() const; // pixels from the text area's left edge

private:
    friend class CFxEditUndoRedo;

    // Lines and layout.
    int32_t CheckedLineIndex(int32_t index) const;
    COneLineInfo& MutableLine(int32_t index)
    {
        return *m_Lines[static_cast<size_t>(CheckedLineIndex(index))];
    }
    // Replaces line `index`, returning the paragraph it held.
    CRtfTextLine PutLine(int32_t index, CRtfTextLine line);
    // Replaces line `index` and records the change in the open undo quantum.
    void PutLineRecorded(int32_t index, CRtfTextLine line);
    void InsertLineAt(int32_t index, const CRtfTextLine& line);
    void RemoveLineAt(int32_t index);
    void ResetLines(const std::vector<CRtfTextLine>& lines);
    void LayoutLine(int32_t index);
    void RelayoutRange(int32_t first, int32_t last, bool forceScrollRange);
    int32_t LineTextWidthLimit() const;
    int32_t RowHeightOf(const COneLineInfo& line, int32_t row) const;
    void ClampPositions();
    SFxPosition ClampPosition(SFxPosition position) const;

    // Change bookkeeping.
    void SetCaretChars(SFxCharPosition caret, SFxCharPosition anchor);
    void NotifyTextChanged(bool modified);
    void Redraw() {}
    // Find and replace belong to the text bodies, not to the single-line fields of dialogs.
    bool FindAllowed() const { return m_Mode == ModeRich || m_Mode == ModeAutoHeight; }
    std::u16string Translate(std::u16string_view key) const;

    // Editing helpers (Editing unit).
    void ReplaceLines(int32_t first, int32_t oldCount, std::vector<CRtfTextLine> newLines,
                      SFxCharPosition caret, SFxCharPosition anchor, const std::u16string& label);
    void DeleteCharRange(SFxCharPosition from, SFxCharPosition to, std::u16string_view labelKey);
    std::vector<CRtfTextLine> PlainInsertion(const CRtfTextLine& line, int32_t offset,
                                             const std::vector<std::u16string>& texts,
                                             int32_t& endOffset) const;
    std::vector<CRtfTextLine> RichInsertion(const CRtfTextLine& line, int32_t offset,
                                            const std::vector<CRtfTextLine>& lines, int32_t& endOffset) const;
    std::vector<std::u16string> SplitForInsertion(std::u16string_view text) const;
    void InsertTypedCharacter(char16_t c);
    void ApplyPendingFormat(CRtfTextLine& line, int32_t offset, int32_t count) const;
    bool CaretOnPendingPosition() const;
    std::vector<CRtfTextLine> LinesFromText(std::u16string_view text) const;
    bool HandleOwnKey(EFxKey key, bool ctrl, bool shift);
    // Calls `change` for each line of the selection (the caret's line when it is empty) with the
    // selected character range of that line, recording the lines it changed in one quantum.
    // `change` may move the caret's and the anchor's offsets; each is null when not on the line.
    using LineChange = std::function<bool(CRtfTextLine& line, int32_t from, int32_t to, int32_t* caretOffset,
                                          int32_t* anchorOffset)>;
    void ChangeSelectedLines(std::u16string_view labelKey, const LineChange& change);
    // Replaces the occurrences at `starts` (offsets into the line as it is) one quantum each.
    void ReplaceInLine(int32_t line, const std::vector<int32_t>& starts, int32_t findLength,
                       std::u16string_view replace, const std::u16string& label);

    // Caret movement helpers (Caret unit).
    SFxPosition WordLeft(SFxPosition position) const;
    SFxPosition WordRight(SFxPosition position) const;
    SFxPosition RowUpDown(SFxPosition position, int32_t rows) const;
    int32_t XOfPosition(int32_t line, int32_t position) const;
    int32_t PositionAtX(int32_t line, int32_t row, int32_t x) const;
    int32_t PageRows() const;
    void ScrollCaretRowToBottom(int32_t caretRow, int32_t areaHeight);

    // Formatting helpers (Format unit).
    SFontDescription FontAtCaret() const;
    void ChangeSelectionFont(const std::function<SFontDescription(const SFontDescription&)>& change);
    void ChangeSelectionColours(std::optional<RichTextColour> text, std::optional<RichTextColour> back);

    IFxEditHost& m_Host;
    int32_t m_Mode;
    bool m_TabsAllowed;
    SFxEditSettings m_Settings;
    bool m_ReadOnly = false;
    bool m_Modified = false;
    std::vector<std::unique_ptr<COneLineInfo>> m_Lines;
    SFxPosition m_Caret;
    SFxPosition m_Anchor;
    SFxPosition m_PendingPosition;
    std::optional<CRtfTextBlockInfo> m_PendingFormat;
    CUndoRedo m_UndoRedo;
    int32_t m_TotalRows = 0;
    int32_t m_LayoutWidth = 0;
    int32_t m_LastNeededHeight = -1;
    int32_t m_TopLine = 0;
    int32_t m_TopRow = 0;
};
