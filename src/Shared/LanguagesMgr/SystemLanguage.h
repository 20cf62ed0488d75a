#pragma once
// The user's language as a Windows language identifier (the numbers the module table is keyed
// by), taken from the POSIX locale, and the module description chosen for it when the user has
// not picked a language yet.
#include <string>
#include <string_view>

inline constexpr int kLanguageIdEnglishUs = 1033;

// "de_AT.UTF-8", "fr", "uz_UZ@cyrillic" and the like. A language without a known territory
// takes its primary identifier; "C", "POSIX", empty and unknown languages give English (US).
int LanguageIdFromLocale(std::string_view locale);

// The locale that names the language of messages: the first non-empty of LC_ALL, LC_MESSAGES
// and LANG.
std::string MessagesLocaleFromEnvironment();

int UserDefaultLanguageId();

// The description of the module to use for `languageId` ("Deutsch (German)", ...), or
// "English (Default)".
std::u16string DefaultModuleDescription(int languageId);
