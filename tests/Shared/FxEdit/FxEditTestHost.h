#pragma once
// A screen for the editor with a fixed-width font: every character is 10 pixels wide and a font
// of n points is n + 4 pixels high. It records what the editor tells the owner and shows.
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

class CFixedClock : public IClock
{
public:
    OleDate now = 0;
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return 0; }
};

class CFxEditTestHost : public IFxEditHost
{
public:
    static constexpr int32_t CharWidth = 10;

    CFxEditTestHost();

    SFxExtent MeasureText(std::u16string_view text, const SFontDescription& font) override;
    int32_t TextAreaWidth() override { return width; }
    int32_t TextAreaHeight() override { return height; }
    int32_t FixedRowHeight() override { return 20; }
    void PostOwnerMessage(uint32_t message, int32_t value) override { messages.emplace_back(message, value); }
    void SetStatusText(std::u16string_view text) override { statusTexts.emplace_back(text); }
    bool SetClipboard(const SFxClipboardData& data) override;
    bool GetClipboard(SFxClipboardData& data) override;
    EMsgResult ShowMessage(const std::u16string& text, EMsgIcon) override;
    int32_t TranslateKey(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt) override;
    const CLanguageModule* LanguageModule() override { return &language; }
    bool RunFindReplaceDialog(SFxFindReplaceRequest& request) override;
    bool AskFileName(bool save, std::u16string_view filter, const std::u16string& caption,
                     std::u16string& path) override;
    IFileSystem& FileSystem() override { return files; }
    std::u16string TempFolder() override { return u"/tmp"; }
    bool ShellOpen(const std::u16string& path) override;
    const IClock& Clock() override { return clock; }

    int32_t width = 100; // ten characters per row
    int32_t height = 200;
    std::vector<std::pair<uint32_t, int32_t>> messages;
    std::vector<std::u16string> statusTexts;
    std::vector<std::u16string> shownMessages;
    bool clipboardWorks = true;
    SFxClipboardData clipboard;
    std::map<int32_t, int32_t> keyBindings; // platform key -> action
    CLanguageModule language;
    SFxFindReplaceRequest dialogAnswer;
    std::u16string fileNameAnswer;
    std::u16string lastDialogCaption;
    std::vector<std::u16string> opened;
    bool shellOpenWorks = true;
    CMemFileSystem files;
    CFixedClock clock;
};

// The text of every line joined by '\n'.
std::u16string EditorText(const CFxEdit& edit);
// Every line has a valid wrap cache and the row total adds up.
bool LayoutIsConsistent(const CFxEdit& edit);
