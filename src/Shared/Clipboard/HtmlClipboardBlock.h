#pragma once
// The "HTML Format" clipboard block: a header of byte offsets, then the fragment between the
// start and end markers. The fragment is converted to Windows-1252 (characters it lacks become
// '?'); with n its length in bytes the HTML ends at n + 147 and the fragment at n + 127.
#include <string>
#include <string_view>

std::string MakeHtmlClipboardBlock(std::u16string_view htmlFragment);
