#pragma once
// The text rules of language module lines: the character replacements made when a module is
// loaded, the escapes a module file uses for them, and the "markings" that decide whether a
// translation keeps the format of its English original.
#include <string>
#include <string_view>

// "\n", "\r" and "\t" escapes become the characters; single "&" accelerator marks disappear
// while "&&" and "& " survive (and "@@" turns into "&&").
std::u16string ApplyCharacterReplacements(std::u16string_view line);

// The inverse of the escapes above for writing a module file: line feed, carriage return and
// tab become "\n", "\r" and "\t", so every text fits on one CR LF line.
std::u16string EscapeControlCharacters(std::u16string_view text);

// In order: every "^", "|", line feed and tab, and the character after each "%" unless it is
// "M", "D" or "I" (after "%%" the second "%" is collected and starts a new conversion).
std::u16string ComputeMarkings(std::u16string_view text);

// "KEY=" of a "KEY=Text" line: up to and including the first "=" after the first character;
// empty for comment lines (starting with "/") and lines without such an "=".
std::u16string_view KeyPrefixOf(std::u16string_view line);
