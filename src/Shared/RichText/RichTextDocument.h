#pragma once
// A note's formatted text: an ordered list of paragraphs (CRtfTextLine), owned by value. The
// editor edits it directly, the writers walk it, and the item records store its serialized
// bytes (format version 100).
#include "Shared/RichText/RtfTextLine.h"

#include <cstddef>
#include <string_view>
#include <vector>

class CArchiveReader;
class CArchiveWriter;

class CRichTextDocument
{
public:
    static constexpr uint16_t Version = 100;

    size_t LineCount() const { return m_Lines.size(); }
    // invalid_argument when `index` is out of range.
    const CRtfTextLine& Line(size_t index) const;
    CRtfTextLine& Line(size_t index);
    const std::vector<CRtfTextLine>& Lines() const { return m_Lines; }

    // `index` may equal LineCount() to append; beyond that is an invalid_argument error.
    void InsertLine(size_t index, const CRtfTextLine& line);
    void AppendLine(CRtfTextLine line) { m_Lines.push_back(std::move(line)); }
    void RemoveLine(size_t index); // invalid_argument when out of range
    void Clear() { m_Lines.clear(); }

    // No lines, or one line with empty text.
    bool IsEmpty() const;

    // Replaces the content by plain text: U+0014 becomes a space; the separator is "\r\n" when
    // the text holds it anywhere, else "\r" when present, else "\n"; a line ends at the first
    // character that is any character of the separator, and as many characters as the separator
    // is long are skipped there. So with "\r\n" chosen, a lone CR or LF also ends a line and
    // swallows the character after it. n separators give n+1 lines.
    void BuildFromPlainText(std::u16string_view text);

    // Writes version 100, the u32 line count and the lines. Returns 0, or 2 after logging when
    // an element cannot be stored (an object of unknown type, a picture object without picture).
    int Serialize(CArchiveWriter& out) const;
    // Returns 0 on success, 1 for an unsupported version at any level, 2 for short data, a bad
    // element or an exception, with exactly one log line per failure. After a failure the
    // document is partly filled and must be discarded.
    int Serialize(CArchiveReader& in);

    bool operator==(const CRichTextDocument&) const = default;

private:
    int Load(CArchiveReader& in);
    void AppendTextLine(std::u16string_view text);

    std::vector<CRtfTextLine> m_Lines;
};
