#pragma once
// The header lines of a language module and the check that a module fits this build of the
// application: "FileDescription=", "RequiredAppBuildNumber=" (compared as text with the build
// number in decimal, so "0214" does not fit build 214) and "ProjectSignature=".
#include <string>
#include <string_view>

// What a module must name to be used by the application that loads it.
struct SAppCompatibility
{
    std::u16string projectSignature;
    int buildNumber = 0;
};

inline constexpr std::u16string_view kProjectSignatureTag = u"ProjectSignature=";
inline constexpr std::u16string_view kFileDescriptionTag = u"FileDescription=";
inline constexpr std::u16string_view kRequiredBuildTag = u"RequiredAppBuildNumber=";

// Module files are UTF-16LE, with or without a byte-order mark; the text ends at a NUL.
std::u16string DecodeLanguageModuleText(std::string_view bytes);

// The text after `tag` on the first line (CR LF separated) that starts with it; false when
// there is no such line.
bool FindHeaderValue(std::u16string_view text, std::u16string_view tag, std::u16string& value);

// Checks the header lines in order and logs the first failure. The description is handed back
// whenever the module has one, even when a later check fails.
bool CheckLanguageModuleHeader(std::u16string_view text, std::u16string_view fileName,
                               const SAppCompatibility& app, std::u16string& description);
