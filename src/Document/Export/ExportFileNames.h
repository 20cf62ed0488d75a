#pragma once
// File and folder names made from captions for the HTML files export, and the links between
// them. A caption may hold anything; a name must be accepted by every common file system, so
// the characters they refuse become '_', trailing dots and spaces go, names reserved on Windows
// get a '_' in front, long captions are cut, and a name already taken in the same folder (letter
// case ignored, as Windows and macOS do) gets " (2)", " (3)" and so on.
#include <set>
#include <string>
#include <string_view>

class CExportNames
{
public:
    static constexpr size_t MaxStemLength = 100;

    // A free name in this folder: the caption made safe, with `extension` (without dot; empty for
    // a folder) added.
    std::u16string Take(std::u16string_view caption, std::u16string_view extension);

private:
    std::set<std::u16string> m_Taken; // lower case
};

// The caption as a name stem that file systems accept (never empty).
std::u16string SafeFileStem(std::u16string_view caption);

// A relative link to a '/'-separated path: each part in UTF-8 with everything but letters, digits
// and "-._~" percent-encoded.
std::string RelativeLink(std::u16string_view path);

// Text for HTML content and attribute values: & < > " ' as character references.
std::string HtmlEscaped(std::u16string_view text);
