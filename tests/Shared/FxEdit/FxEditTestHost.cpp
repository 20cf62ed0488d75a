#include "FxEditTestHost.h"

#include <array>

namespace
{
constexpr std::array<std::u16string_view, 17> TestStrings = {
    u"EDITCTL_UNDO=Undo",
    u"EDITCTL_REDO=Redo",
    u"EDITCTL_NO_UNDO=(nothing)",
    u"EDITCTL_UNDO_TYPING=Typing",
    u"EDITCTL_CLEAR_SELECTION=Clear Selection",
    u"EDITCTL_UNDO_DELETION=Deletion",
    u"EDITCTL_UNDO_TXT_INSERT=Insertion",
    u"EDITCTL_UNDO_FONT_FORMATTING=Font Formatting",
    u"EDITCTL_UNDO_ALIGNMENT=Alignment",
    u"EDITCTL_UNDO_REPLACEMENT=Replacement",
    u"EDITCTL_FIND_NOTFOUND=Not found.",
    u"EDITCTL_REPLACEMENT_INFO=^N occurrences have been replaced.",
    u"ERR_LAUNCH_FILE=Cannot launch ^fileName file.",
    u"MAIN_WND_STATUS_BUSY=Busy...",
    u"MAIN_WND_STATUS_LOADING=Loading...",
    u"IMAGE_DLG_CAPTION=Insert Image",
    u"ERR_CANNOT_LOAD_FILE=Cannot load the file.",
};
} // namespace

CFxEditTestHost::CFxEditTestHost()
{
    language.LoadBuiltIn(u"Test", TestStrings);
}

SFxExtent CFxEditTestHost::MeasureText(std::u16string_view text, const SFontDescription& font)
{
    return {static_cast<int32_t>(text.size()) * CharWidth, static_cast<int32_t>(font.PointSize()) + 4};
}

bool CFxEditTestHost::SetClipboard(const SFxClipboardData& data)
{
    if (clipboardWorks)
        clipboard = data;
    return clipboardWorks;
}

bool CFxEditTestHost::GetClipboard(SFxClipboardData& data)
{
    if (clipboardWorks)
        data = clipboard;
    return clipboardWorks;
}

EMsgResult CFxEditTestHost::ShowMessage(const std::u16string& text, EMsgIcon)
{
    shownMessages.push_back(text);
    return EMsgResult::Ok;
}

int32_t CFxEditTestHost::TranslateKey(EFxKey, int32_t platformKey, bool, bool, bool)
{
    const auto binding = keyBindings.find(platformKey);
    return binding == keyBindings.end() ? 0 : binding->second;
}

bool CFxEditTestHost::RunFindReplaceDialog(SFxFindReplaceRequest& request)
{
    const bool replaceMode = request.replaceMode;
    request = dialogAnswer;
    request.replaceMode = replaceMode;
    return request.result != SFxFindReplaceRequest::Cancelled;
}

bool CFxEditTestHost::AskFileName(bool, std::u16string_view, const std::u16string& caption,
                                  std::u16string& path)
{
    lastDialogCaption = caption;
    if (fileNameAnswer.empty())
        return false;
    path = fileNameAnswer;
    return true;
}

bool CFxEditTestHost::ShellOpen(const std::u16string& path)
{
    opened.push_back(path);
    return shellOpenWorks;
}

std::u16string EditorText(const CFxEdit& edit)
{
    std::u16string text;
    for (int32_t i = 0; i < edit.LineCount(); ++i)
        text += (i > 0 ? u"\n" : u"") + edit.Line(i).Text();
    return text;
}

bool LayoutIsConsistent(const CFxEdit& edit)
{
    int32_t rows = 0;
    for (int32_t i = 0; i < edit.LineCount(); ++i)
    {
        if (!edit.Line(i).IsLayoutValid())
            return false;
        rows += edit.Line(i).RowCount();
    }
    return rows == edit.TotalRows();
}
