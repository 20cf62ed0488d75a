// Any bytes given as a language module must be loaded (and repaired) or rejected with a log
// line; look-ups of every English key must then succeed.
#include "Shared/Base/MemFileSystem.h"
#include "Shared/LanguagesMgr/InterfaceInfoParser.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/LanguagesMgr/LanguagesMgr.h"

#include <cstdlib>

namespace
{
const SAppCompatibility kApp{u"Fuzz Project", 214};

constexpr std::u16string_view kEnglish[] = {
    u"A_PLAIN=Plain",
    u"B_TAG=Open ^filename failed: %s",
    u"C_LINES=One\nTwo\tThree",
    u"/ comment=ignored",
    u"D_PIPE=a|b|c",
    u"E_PERCENT=100%% %d",
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CMemFileSystem fs;
    fs.Bytes(u"/Languages/in.lng").assign(reinterpret_cast<const char*>(data), size);

    CLanguagesMgr manager(u"/Languages/", kApp, u"English (Default)", &fs);
    CLanguageModule module(&fs);
    const bool loaded = module.LoadModule(u"/Languages/in.lng", kApp, kEnglish);
    if (loaded != (manager.Modules().size() == 2))
        std::abort(); // the search and the loader must agree on the header
    if (loaded)
    {
        std::u16string text;
        for (std::u16string_view key : {u"A_PLAIN", u"B_TAG", u"C_LINES", u"D_PIPE", u"E_PERCENT"})
            if (!module.FindString(key, text))
                std::abort();
        module.GetString(u"NOT_THERE");
    }

    // The same bytes as a skin description.
    fs.Bytes(u"/Skins/SkinInfo.ini").assign(reinterpret_cast<const char*>(data), size);
    std::u16string description;
    CInterfaceInfoParser(kApp, &fs).Check(u"/Skins/SkinInfo.ini", 100, description);
    return 0;
}
