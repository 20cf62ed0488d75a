#pragma once
// The built-in English texts: every key the application asks the language module for, as
// "KEY=Text" lines. Language modules are repaired against these lines, so a key missing here is
// missing everywhere; add the keys of a new feature to the table in EnglishStrings.cpp.
#include <span>
#include <string_view>

std::span<const std::u16string_view> EnglishStrings();
