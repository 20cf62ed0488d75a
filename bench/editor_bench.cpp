// Speed of the editor's model updates with a fixed-width screen: keystrokes, Enter, Backspace,
// undo and redo, a full layout at a new width and replace all of a word occurring 50,000 times,
// on a 100,000-line document and inside one 1 MB paragraph; a full layout of 10 MB at a new
// width. The anchor, measured in the same run, is copying the 1 MB paragraph's text once (what
// any whole-line step costs at least). Also prints the undo history's memory after 10,000
// keystrokes in the paragraph.
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace
{
class CBenchClock : public IClock
{
public:
    OleDate NowLocal() const override { return 45000; }
    uint32_t TickCountMs() const override { return 0; }
};

class CBenchHost : public IFxEditHost
{
public:
    CBenchHost()
    {
        const std::u16string_view lines[] = {u"EDITCTL_UNDO_TYPING=Typing", u"EDITCTL_UNDO_DELETION=Deletion",
                                             u"EDITCTL_UNDO_REPLACEMENT=Replacement"};
        language.LoadBuiltIn(u"Bench", lines);
    }
    SFxExtent MeasureText(std::u16string_view text, const SFontDescription&) override
    {
        return {static_cast<int32_t>(text.size()) * 8, 16};
    }
    int32_t TextAreaWidth() override { return width; }
    int32_t TextAreaHeight() override { return 600; }
    int32_t FixedRowHeight() override { return 16; }
    void PostOwnerMessage(uint32_t, int32_t) override {}
    void SetStatusText(std::u16string_view) override {}
    bool SetClipboard(const SFxClipboardData&) override { return true; }
    bool GetClipboard(SFxClipboardData&) override { return false; }
    EMsgResult ShowMessage(const std::u16string&, EMsgIcon) override { return EMsgResult::Ok; }
    int32_t TranslateKey(EFxKey, int32_t, bool, bool, bool) override { return 0; }
    const CLanguageModule* LanguageModule() override { return &language; }
    bool RunFindReplaceDialog(SFxFindReplaceRequest&) override { return false; }
    bool AskFileName(bool, std::u16string_view, const std::u16string&, std::u16string&) override
    {
        return false;
    }
    IFileSystem& FileSystem() override { return files; }
    std::u16string TempFolder() override { return u"/tmp"; }
    bool ShellOpen(const std::u16string&) override { return false; }
    const IClock& Clock() override { return clock; }

    int32_t width = 640;
    CLanguageModule language;
    CMemFileSystem files;
    CBenchClock clock;
};

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::u16string Words(size_t units)
{
    std::u16string text;
    text.reserve(units + 16);
    const char16_t* words[] = {u"alpha ", u"beta, ", u"gamma ", u"delta. ", u"epsilon "};
    for (size_t i = 0; text.size() < units; ++i)
        text += words[i % 5];
    text.resize(units);
    return text;
}

// `units` of text in which the word "lorem" stands `count` times, once every `spacing` units.
std::u16string MarkedWords(size_t units, size_t spacing, size_t count)
{
    std::u16string text = Words(units);
    for (size_t at = spacing - 6; at + 6 <= units && count > 0; at += spacing, --count)
        text.replace(at, 6, u" lorem");
    return text;
}

// Every second line holds the word "lorem" once.
CRichTextDocument ManyLines(size_t count, size_t unitsPerLine)
{
    CRichTextDocument document;
    const std::u16string line = Words(unitsPerLine);
    const std::u16string marked = Words(unitsPerLine - 6) + u" lorem";
    for (size_t i = 0; i < count; ++i)
        document.AppendLine(CRtfTextLine(i % 2 == 0 ? marked : line));
    return document;
}

void Report(const char* what, double seconds, double anchor)
{
    std::printf("%-52s %10.2f us  %8.2f x anchor\n", what, seconds * 1e6, seconds / anchor);
}

// The median of single runs: the machine is shared, and a preempted run says nothing about the
// editor.
double MedianSeconds(size_t repeats, const std::function<void()>& work)
{
    std::vector<double> times;
    for (size_t i = 0; i < repeats; ++i)
        times.push_back(Seconds(work));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void KeystrokeSet(CFxEdit& edit, const char* name, SFxPosition at, double anchor)
{
    constexpr size_t Repeats = 200;
    char label[128];
    edit.SetCaret(at);
    std::snprintf(label, sizeof label, "%s: typed character", name);
    Report(label, MedianSeconds(Repeats, [&] { edit.OnChar(u'x'); }), anchor);
    std::snprintf(label, sizeof label, "%s: Backspace", name);
    Report(label, MedianSeconds(Repeats, [&] { edit.Backspace(); }), anchor);
    std::snprintf(label, sizeof label, "%s: Enter", name);
    Report(label, MedianSeconds(Repeats / 4, [&] { edit.Enter(); }), anchor);
    std::snprintf(label, sizeof label, "%s: undo", name);
    Report(label, MedianSeconds(Repeats, [&] { edit.Undo(); }), anchor);
    std::snprintf(label, sizeof label, "%s: redo", name);
    Report(label, MedianSeconds(Repeats, [&] { edit.Redo(); }), anchor);
}
} // namespace

int main(int argc, char** argv)
{
    // "paragraph" runs only the 1 MB paragraph's keystrokes (for profiling).
    const bool paragraphOnly = argc > 1 && std::strcmp(argv[1], "paragraph") == 0;
    const std::u16string megabyte = Words(512 * 1024); // 1 MB of UTF-16
    std::u16string copy;
    double anchor = 1e9;
    for (int i = 0; i < 20; ++i)
        anchor = std::min(anchor, Seconds([&] { copy.assign(megabyte); }));
    std::printf("anchor: copying 1 MB of text %10.2f us\n", anchor * 1e6);

    CBenchHost host;
    if (!paragraphOnly)
    {
        CFxEdit edit(host, CFxEdit::ModeRich, true);
        edit.SetDocument(ManyLines(100000, 60));
        KeystrokeSet(edit, "100,000 lines", {50000, 10}, anchor);
        host.width = 480;
        Report("100,000 lines: full layout at a new width", Seconds([&] { edit.OnResize(); }), anchor);
        host.width = 640;
        edit.OnResize();
        int32_t replaced = 0;
        const double replaceSeconds =
            Seconds([&] { replaced = edit.Replace(u"lorem", u"ipsum", true, true, false); });
        Report("100,000 lines: replace all", replaceSeconds, anchor);
        std::printf("  (%d occurrences replaced)\n", replaced);
    }
    {
        CFxEdit edit(host, CFxEdit::ModeRich, true);
        CRichTextDocument paragraph;
        paragraph.AppendLine(CRtfTextLine(megabyte));
        edit.SetDocument(paragraph);
        KeystrokeSet(edit, "1 MB paragraph", {0, 300000}, anchor);
        if (paragraphOnly)
            return 0;
        host.width = 480;
        Report("1 MB paragraph: full layout at a new width", Seconds([&] { edit.OnResize(); }), anchor);
        host.width = 640;

        // The keystrokes above split the paragraph; the memory is measured on a whole one.
        edit.SetDocument(paragraph);
        constexpr size_t Keystrokes = 10000;
        edit.SetCaret({0, 1000});
        const double seconds = Seconds(
            [&]
            {
                for (size_t i = 0; i < Keystrokes; ++i)
                    edit.OnChar(u'k');
            });
        std::printf("1 MB paragraph: %zu keystrokes took %.2f s; undo history %.1f MB in %zu quanta (older "
                    "dropped: %s)\n",
                    Keystrokes, seconds,
                    static_cast<double>(edit.UndoHistory().MemoryUsed()) / (1024.0 * 1024.0),
                    edit.UndoHistory().QuantCount(), edit.UndoHistory().DroppedOlderChanges() ? "yes" : "no");
    }
    {
        CFxEdit edit(host, CFxEdit::ModeRich, true);
        CRichTextDocument paragraph;
        paragraph.AppendLine(CRtfTextLine(MarkedWords(512 * 1024, 10, 50000)));
        edit.SetDocument(paragraph);
        int32_t replaced = 0;
        const double replaceSeconds =
            Seconds([&] { replaced = edit.Replace(u"lorem", u"ipsum", true, true, false); });
        Report("1 MB paragraph: replace all", replaceSeconds, anchor);
        std::printf("  (%d occurrences replaced; undo history %.1f MB in %zu quanta)\n", replaced,
                    static_cast<double>(edit.UndoHistory().MemoryUsed()) / (1024.0 * 1024.0),
                    edit.UndoHistory().QuantCount());
    }
    {
        CFxEdit edit(host, CFxEdit::ModeRich, true);
        edit.SetDocument(ManyLines(85000, 62)); // about 10 MB of UTF-16
        host.width = 480;
        Report("10 MB document: full layout at a new width", Seconds([&] { edit.OnResize(); }), anchor);
    }
    return 0;
}
