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
    const auto replaceLength = static_cast<int32_t>(replace.size());
    const std::u16string label = Translate(u"EDITCTL_UNDO_REPLACEMENT");
    int32_t count = 0;
    int32_t firstChanged = -1;
    int32_t lastChanged = -1;
    SFxCharPosition last{};
    for (int32_t line = from.line, offset = from.offset; line <= to.line;)
    {
        const std::u16string& text = Line(line).Text();
        const int32_t found = offset <= static_cast<int32_t>(text.size())
                                  ? CTextSearch::Find(text, find, matchCase, false, offset)
                                  : -1;
        if (found < 0 || (line == to.line && found + findLength > to.offset))
        {
            ++line;
            offset = 0;
            continue;
        }
        last = {line, found};
        SetCaretChars(last, last);
        CRtfTextLine after =
            WithInsertedText(WithRemovedText(Line(line), found, found + findLength), found, replace);
        m_UndoRedo.BeginUndoQuant(label);
        PutLineRecorded(line, std::move(after));
        // The line waits to be laid out until all its replacements are made; until then its
        // positions are plain offsets.
        SetCaretChars(last, last);
        m_UndoRedo.EndUndoQuant();
        if (line == to.line)
            to.offset += replaceLength - findLength;
        firstChanged = firstChanged < 0 ? line : firstChanged;
        lastChanged = line;
        ++count;
        offset = found + replaceLength;
        if (!all)
            break;
    }
    if (count == 0)
        return 0;
    for (int32_t line = firstChanged; line <= lastChanged; ++line)
        if (!Line(line).IsLayoutValid())
            LayoutLine(line);
    RelayoutRange(lastChanged, lastChanged, true);
    SetCaretChars(last, last);
    NotifyTextChanged(true);
    EnsureCaretVisible();
    return count;
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
