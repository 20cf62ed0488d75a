#pragma once
// What this application is called towards its language modules, skins and sound schemes, and
// its version: the one place these constants live.
#include "Shared/Base/Format.h"
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <string>
#include <string_view>

inline constexpr std::u16string_view kProjectSignature = u"Quillarium Organizer Project";
inline constexpr int kAppBuildNumber = 214;
inline constexpr std::u16string_view kAppVersionNumber = u"1.35";
// The description of the built-in English module, always the first in the list of modules.
inline constexpr std::u16string_view kDefaultLanguageModuleName = u"English (Default)";

// "1.35 (build 214) Release"
inline std::u16string AppVersionText()
{
    return FormatText(u"%s (build %d) Release", kAppVersionNumber, kAppBuildNumber);
}

inline SAppCompatibility AppCompatibility()
{
    return {std::u16string(kProjectSignature), kAppBuildNumber};
}
