// Clipboard, find and replace, and date and time stamps.
#include "Shared/Base/Archive.h"
#include "Shared/Base/OleDate.h"
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/FxEdit/LineEditing.h"
#include "Shared/LanguagesMgr/StringTemplate.h"
#include "Shared/Log/Log.h"
#include "Shared/TextSearch/TextSearch.h"

#include <algorithm>

// ---- clipboard

bool CFxEdit::Copy()
{
    if (IsSelectionEmpty())
        return false;
    m_Host.SetStatusText(Translate(u"MAIN_WND_STATUS_BUSY"));
    SFxClipboardData data;
    data.plainText = GetSelectedPlainText();
    CArchiveWriter writer;
    if (GetSelection().Serialize(writer) == 0)
        data.richText = writer.Take();
    const bool done = m_Host.SetClipboard(data);
    if (!done)
        LogMessage(u"Error: Unable to open clipboard [Edit->Copy]");
    m_Host.SetStatusText(u"");
    return done;
}

bool CFxEdit::Cut()
{
    if (m_ReadOnly || IsSelectionEmpty())
        return false;
    if (!Copy())
        return false;
    return DeleteSelection();
}

bool CFxEdit::Paste()
{
    if (m_ReadOnly)
        return false;
    m_Host.SetStatusText(Translate(u"MAIN_WND_STATUS_BUSY"));
    SFxClipboardData data;
    const bool opened = m_Host.GetClipboard(data);
    m_Host.SetStatusText(u"");
    if (!opened)
    {
        LogMessage(u"Error: Unable to open clipboard [Edit->Paste]");
        return false;
    }
    // Our own rich text first: it keeps formats and objects; plain text when it cannot be read.
    if (!data.richText.empty() && m_Mode == ModeRich)
    {
        CRichTextDocument document;
        CArchiveReader reader(data.richText.data(), data.richText.size());
        if (document.Serialize(reader) == 0 && document.LineCount() > 0)
        {
            InsertDocument(document);
            return true;
        }
    }
    if (data.plainText.empty())
        return false;
    InsertText(data.plainText);
    return true;
}

// ---- find and replace

bool CFxEdit::FindNext(std::u16string_view text, bool matchCase)
{
    if (text.empty())
        return false;
    const SFxCharPosition start = ToCharPosition(SelectionStart());
    int32_t line = start.line;
    int32_t offset = start.offset + 1;
    bool wrapped = false;
    while (true)
    {
        const std::u16string& lineText = Line(line).Text();
        const int32_t found = offset <= static_cast<int32_t>(lineText.size())
                                  ? CTextSearch::Find(lineText, text, matchCase, false, offset)
                                  : -1;
        if (wrapped && line == start.line)
        {
            // Back on the starting line only what lies before the starting point is new.
            if (found < 0 || found >= start.offset)
                return false;
        }
        if (found >= 0)
        {
            SetCaretChars({line, found}, {line, found + static_cast<int32_t>(text.size())});
            EnsureCaretVisible();
            Redraw();
            return true;
        }
        offset = 0;
        if (++line >= LineCount())
        {
            if (wrapped)
                return false;
            wrapped = true;
            line = 0;
        }
    }
}

int32_t CFxEdit::Replace(std::u16string_view find, std::u16string_view replace, bool matchCase, bool all,
                         bool inSelection)
{
    if (find.empty() || m_ReadOnly)
        return 0;
    SFxCharPosition from{0, 0};
    SFxCharPosition to{LineCount() - 1, Line(LineCount() - 1).Length()};
    if (inSelection)
    {
        from = ToCharPosition(SelectionStart());
        to = ToCharPosition(SelectionEnd());
    }
    const auto findLength = static_cast<int32_t>(find.size());
    const auto delta = static_cast<int32_t>(replace.size()) - findLength;
    const std::u16string label = Translate(u"EDITCTL_UNDO_REPLACEMENT");
    int32_t count = 0;
    int32_t firstChanged = -1;
    SFxCharPosition last{};
    for (int32_t line = from.line; line <= to.line && (all || count == 0); ++line)
    {
        // The occurrences are found in the line as it is: the text after a replaced one is the
        // text that followed it before, so the replacement itself is never searched again, and
        // the range's end is checked before anything on its line moved.
        const std::u16string& text = Line(line).Text();
        const int32_t end = line == to.line ? to.offset : static_cast<int32_t>(text.size());
        std::vector<int32_t> starts;
        for (int32_t offset = line == from.line ? from.offset : 0;
             offset <= static_cast<int32_t>(text.size());)
        {
            const int32_t found = CTextSearch::Find(text, find, matchCase, false, offset);
            if (found < 0 || found + findLength > end)
                break;
            starts.push_back(found);
            offset = found + findLength;
            if (!all)
                break;
        }
        if (starts.empty())
            continue;
        ReplaceInLine(line, starts, findLength, replace, label);
        firstChanged = firstChanged < 0 ? line : firstChanged;
        last = {line, starts.back() + static_cast<int32_t>(starts.size() - 1) * delta};
        count += static_cast<int32_t>(starts.size());
    }
    if (count == 0)
        return 0;
    for (int32_t line = firstChanged; line < last.line; ++line)
        if (!Line(line).IsLayoutValid())
            LayoutLine(line);
    RelayoutRange(last.line, last.line, true);
    SetCaretChars(last, last);
    NotifyTextChanged(true);
    EnsureCaretVisible();
    return count;
}

void CFxEdit::ReplaceInLine(int32_t line, const std::vector<int32_t>& starts, int32_t findLength,
                            std::u16string_view replace, const std::u16string& label)
{
    const auto delta = static_cast<int32_t>(replace.size()) - findLength;
    // Every replacement copies the whole line twice into the history. In a long paragraph with
    // many occurrences only the newest quanta fit in its bound; the older ones would be dropped
    // as soon as they were made, and with them everything before, so they are not made at all.
    const uint64_t limit = m_UndoRedo.MemoryLimit();
    const uint64_t lineBytes = CUndoRedo::LineBytes(Line(line));
    uint64_t kept = 0;
    size_t made = 0;
    while (made < starts.size())
    {
        const auto index = static_cast<int64_t>(starts.size() - made);
        const int64_t beforeBytes =
            static_cast<int64_t>(lineBytes) + (index - 1) * delta * static_cast<int64_t>(sizeof(char16_t));
        const uint64_t quantBytes = static_cast<uint64_t>(std::max<int64_t>(0, beforeBytes)) * 2 +
                                    static_cast<uint64_t>(std::max(delta, 0)) * sizeof(char16_t) +
                                    sizeof(CUndoRedo::SOneUndoStep);
        if (made > 0 && kept + quantBytes > limit)
            break;
        kept += quantBytes;
        ++made;
    }
    const size_t skipped = starts.size() - made;
    if (skipped > 0)
    {
        const std::vector<int32_t> unrecorded(starts.begin(),
                                              starts.begin() + static_cast<std::ptrdiff_t>(skipped));
        PutLine(line, WithReplacedRanges(Line(line), unrecorded, findLength, replace));
        m_UndoRedo.DropAll();
    }
    for (size_t k = skipped; k < starts.size(); ++k)
    {
        const SFxCharPosition at{line, starts[k] + static_cast<int32_t>(k) * delta};
        SetCaretChars(at, at);
        CRtfTextLine after = WithInsertedText(WithRemovedText(Line(line), at.offset, at.offset + findLength),
                                              at.offset, replace);
        m_UndoRedo.BeginUndoQuant(label);
        PutLineRecorded(line, std::move(after));
        // The line waits to be laid out until all its replacements are made; until then its
        // positions are plain offsets.
        SetCaretChars(at, at);
        m_UndoRedo.EndUndoQuant();
    }
}

void CFxEdit::RunFindCommand()
{
    if (!FindAllowed())
        return;
    SFxFindReplaceRequest request;
    request.findText = GetSelectedPlainText();
    if (!m_Host.RunFindReplaceDialog(request) || request.result != SFxFindReplaceRequest::FindNext)
        return;
    if (!FindNext(request.findText, request.matchCase))
        m_Host.ShowMessage(Translate(u"EDITCTL_FIND_NOTFOUND"), EMsgIcon::Information);
}

void CFxEdit::FindNextCommand()
{
    if (!FindAllowed())
        return;
    const std::u16string text = GetSelectedPlainText();
    if (text.empty())
    {
        RunFindCommand();
        return;
    }
    if (!FindNext(text, false))
        m_Host.ShowMessage(Translate(u"EDITCTL_FIND_NOTFOUND"), EMsgIcon::Information);
}

void CFxEdit::RunReplaceCommand()
{
    if (m_ReadOnly || !FindAllowed())
        return;
    SFxFindReplaceRequest request;
    request.replaceMode = true;
    request.findText = GetSelectedPlainText();
    request.inSelection = !IsSelectionEmpty() && m_Caret.line != m_Anchor.line;
    if (!m_Host.RunFindReplaceDialog(request))
        return;
    if (request.result == SFxFindReplaceRequest::ReplaceAll)
    {
        const int32_t count =
            Replace(request.findText, request.replaceText, request.matchCase, true, request.inSelection);
        std::u16string text = Translate(u"EDITCTL_REPLACEMENT_INFO");
        ReplaceTag(text, u"^N", std::u16string(FormatText(u"%d", count)), u"EDITCTL_REPLACEMENT_INFO");
        m_Host.ShowMessage(text, EMsgIcon::Information);
    }
    else if (request.result == SFxFindReplaceRequest::ReplaceOne)
    {
        if (Replace(request.findText, request.replaceText, request.matchCase, false, request.inSelection) ==
            0)
            m_Host.ShowMessage(Translate(u"EDITCTL_FIND_NOTFOUND"), EMsgIcon::Information);
    }
}

// ---- stamps

std::u16string CFxEdit::DateStampText() const
{
    SDateTimeFields fields;
    if (!OleDateToFields(m_Host.Clock().NowLocal(), fields))
        return {};
    return FormatDateTime(m_Settings.dateStampFormat == 0 ? u"%m/%d/%Y" : u"%A, %B %d, %Y", fields) + u" ";
}

std::u16string CFxEdit::TimeStampText() const
{
    SDateTimeFields fields;
    if (!OleDateToFields(m_Host.Clock().NowLocal(), fields))
        return {};
    return FormatDateTime(m_Settings.timeStampFormat == 0 ? u"%H:%M" : u"%H:%M:%S", fields) + u" ";
}

void CFxEdit::InsertDateStamp()
{
    if (!m_ReadOnly)
        InsertText(DateStampText());
}

void CFxEdit::InsertTimeStamp()
{
    if (!m_ReadOnly)
        InsertText(TimeStampText());
}
