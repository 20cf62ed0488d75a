// Any bytes in place of "Quillarium.ini" must load into values that pass their checks, and what
// was loaded must save and load again to the very same file. The same bytes are also tried as
// stored window placements.
#include "Prefs/FontQuery.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/MemFileSystem.h"

#include <cstdlib>

namespace
{
class CFonts : public IFontQuery
{
public:
    bool HasFace(std::u16string_view face) const override { return face == u"Arial"; }
    std::u16string SystemSansFace() const override { return u"DejaVu Sans"; }
};

class CClock : public IClock
{
public:
    OleDate NowLocal() const override { return 45000.5; }
    uint32_t TickCountMs() const override { return 0; }
};

void CheckRanges(const CPreferences& prefs)
{
    const SEditorPrefs& editor = prefs.Editor();
    if (editor.fontSize < 2 || editor.fontSize > 299 || editor.bulletCharacter.size() != 1 ||
        editor.spacesInTab < 1 || editor.spacesInTab > 99 || editor.dateStampFormat < 0 ||
        editor.dateStampFormat > 1 || prefs.PwdGen().passwordLength < 1 ||
        prefs.PwdGen().passwordLength > 1000 || !(prefs.Backup().lastBackupDate <= 45000.5))
        std::abort();
}

void CheckPlacements(const uint8_t* data, size_t size)
{
    const std::vector<uint8_t> bytes(data, data + size);
    const auto decoded = DecodeWindowPlacements(bytes);
    if (decoded && DecodeWindowPlacements(EncodeWindowPlacements(*decoded)) != decoded)
        std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CMemFileSystem fs;
    CClock clock;
    CFonts fonts;
    const SPreferencesEnvironment env{fs, clock, fonts, false, u"/docs/"};
    fs.Bytes(u"/in.ini").assign(reinterpret_cast<const char*>(data), size);

    CPreferences first(env);
    first.Load(u"/in.ini");
    CheckRanges(first);
    if (!first.Save(u"/one.ini"))
        std::abort();
    CPreferences second(env);
    if (!second.Load(u"/one.ini") || !second.Save(u"/two.ini"))
        std::abort();
    if (fs.Bytes(u"/one.ini") != fs.Bytes(u"/two.ini"))
        std::abort();

    CheckPlacements(data, size);
    return 0;
}
