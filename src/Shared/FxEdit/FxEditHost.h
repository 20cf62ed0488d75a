#pragma once
// Everything the editor needs from a screen and from the application reaches it through
// IFxEditHost: text measurement, the text area, the owner's messages, the clipboard, message
// boxes, key bindings, the language module, files and the clock. The GUI widget implements it
// with the platform; tests implement it with a fixed-width font and in-memory files.
#include "Shared/Base/MessageBox.h"
#include "Shared/RichText/FontDescription.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CLanguageModule;
class IFileSystem;
class IClock;

// Custom messages posted to the owner window.
constexpr uint32_t FxEditTextChangedMessage = 2042;   // value: 1 when the text counts as modified
constexpr uint32_t FxEditHeightChangedMessage = 2043; // value: the height the text needs (mode 2)

struct SFxExtent
{
    int32_t width = 0;
    int32_t height = 0;
};

// What the editor puts on or reads from the clipboard: plain text and its own rich text (the
// stored form of a document, format "Korimsen Rich Text Format").
struct SFxClipboardData
{
    std::u16string plainText;
    std::vector<uint8_t> richText;
};

// Keys the control handles itself when the host's bindings give no action code.
enum class EFxKey : int32_t
{
    Other = 0,
    Home,
    End,
    Left,
    Right,
    Up,
    Down,
    PageUp,
    PageDown,
    Tab,
    Enter,
    Backspace,
    Delete
};

// The values of the preferences the editor uses, handed in by the application.
struct SFxEditSettings
{
    SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    char16_t bulletCharacter = u'\x00B7';     // "RichTextBulletCharacter"
    int32_t spacesPerTab = 8;                 // "RichTextSpacesNumInSingleTabChar"
    int32_t dateStampFormat = 1;              // "DefaultDateStampFormat": 0 short, 1 long
    int32_t timeStampFormat = 1;              // "DefaultTimeStampFormat": 0 without, 1 with seconds
    bool stampDateTimeForEachNewLine = false; // "RichTextStampDateTimeForEachNewLine"
    uint64_t undoMemoryLimit = 256ull * 1024 * 1024;
};

// The find/replace dialog's answers.
struct SFxFindReplaceRequest
{
    enum EResult : int32_t
    {
        Cancelled = 0,
        ReplaceOne = 1300,
        ReplaceAll = 1301,
        FindNext = 1302
    };
    bool replaceMode = false;
    std::u16string findText;
    std::u16string replaceText;
    bool matchCase = false;
    bool inSelection = false;
    int32_t result = Cancelled;
};

class IFxEditHost
{
public:
    virtual ~IFxEditHost() = default;

    // Width and height of `text` drawn in `font` (tabs and object characters are never passed).
    virtual SFxExtent MeasureText(std::u16string_view text, const SFontDescription& font) = 0;
    virtual int32_t TextAreaWidth() = 0;
    virtual int32_t TextAreaHeight() = 0;
    // The row height of the single-line modes.
    virtual int32_t FixedRowHeight() = 0;
    virtual void PostOwnerMessage(uint32_t message, int32_t value) = 0;
    virtual void SetStatusText(std::u16string_view text) = 0;

    // False when the clipboard cannot be opened.
    virtual bool SetClipboard(const SFxClipboardData& data) = 0;
    virtual bool GetClipboard(SFxClipboardData& data) = 0;

    virtual EMsgResult ShowMessage(const std::u16string& text, EMsgIcon icon) = 0;
    // The application's key bindings: an action code, or 0 for keys the control handles itself.
    virtual int32_t TranslateKey(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt) = 0;
    virtual const CLanguageModule* LanguageModule() = 0;

    virtual bool RunFindReplaceDialog(SFxFindReplaceRequest& request) = 0;
    // A file dialog; false when cancelled.
    virtual bool AskFileName(bool save, std::u16string_view filter, const std::u16string& caption,
                             std::u16string& path) = 0;
    virtual IFileSystem& FileSystem() = 0;
    virtual std::u16string TempFolder() = 0;
    // Opens the file with its associated program (shell verb "open").
    virtual bool ShellOpen(const std::u16string& path) = 0;
    virtual const IClock& Clock() = 0;
};
