#pragma once
// User-visible texts are templates: a "^" followed by a name ("^filename", "^N", ...) stands
// where the caller puts its value. A text that lacks the tag is shown unchanged, after a log line
// that names the tag and the key, so a faulty translation is noticed without hiding the message.
#include <string>
#include <string_view>

class CLanguageModule;

// Replaces every occurrence of `tag` in `text` by `value`. When there is none, logs
// "Error: Cannot find <tag> tag in the <key> string resource." and returns false.
bool ReplaceTag(std::u16string& text, std::u16string_view tag, std::u16string_view value,
                std::u16string_view key);

// The text of `key` from the language module installed in the application connector; the key
// itself when no module is installed (as in unit tests of other components).
std::u16string LoadLanguageString(std::u16string_view key);

// LoadLanguageString(key) with `tag` replaced by `value` (see ReplaceTag).
std::u16string LoadLanguageStringWithTag(std::u16string_view key, std::u16string_view tag,
                                         std::u16string_view value);
