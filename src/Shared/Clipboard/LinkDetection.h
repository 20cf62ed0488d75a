#pragma once
// Web links in plain text: the prefix test, the length of a link at a position, and the
// conversion of plain text into HTML with the links turned into anchors.
#include <cstddef>
#include <string>
#include <string_view>

// The length of the first of "file://", "ftp://", "gopher://", "http://", "https://",
// "mailto:", "news:", "telnet:", "wais:", "www.", "ftp." that the text at `position` starts
// with (ASCII case ignored), or 0.
size_t LinkPrefixLength(std::u16string_view text, size_t position);

// The length of the link at `position`: the prefix and everything up to the next space, tab,
// CR, LF or the end. 0 when no prefix matches, when a space follows the prefix, or when nothing
// follows it. Any position may start a link, not only word starts.
size_t LinkLength(std::u16string_view text, size_t position);

// Wraps the text in "<HTML><BODY><DIV>" ... "</DIV></BODY></HTML>", turns line breaks into
// "</DIV><DIV>" (an empty line gets "&nbsp;" first) and links into anchors. The anchor's
// address gets "http://" or "ftp://" put in front when the whole text (not the link) starts
// with "www." or "ftp.". No other character is escaped.
std::u16string PlainTextToHtml(std::u16string_view text);
