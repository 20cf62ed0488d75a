#include "Shared/RichText/PlainTextWriter.h"

#include "Shared/RichText/TextAppend.h"

#include <algorithm>

void AppendPlainText(std::u16string& out, const CRtfTextLine& line)
{
    const std::u16string& text = line.Text();
    const std::vector<CRtfObjectInfo>& objects = line.Objects();
    size_t nextObject = 0;
    size_t from = 0;
    while (from < text.size())
    {
        // Objects are sorted by position; those outside the text are passed over.
        while (nextObject < objects.size() && objects[nextObject].Position() < static_cast<int64_t>(from))
            ++nextObject;
        const size_t objectAt =
            nextObject < objects.size() ? static_cast<size_t>(objects[nextObject].Position()) : text.size();
        const size_t runEnd = std::min(objectAt, text.size());
        out.append(text, from, runEnd - from);
        if (runEnd == text.size())
            break;
        const CRtfObjectInfo& object = objects[nextObject];
        if (object.IsAttachment())
        {
            out.push_back(u'[');
            out += object.FileName();
            out.push_back(u']');
        }
        from = runEnd + 1;
        ++nextObject;
    }
}

std::u16string ToPlainText(const CRichTextDocument& document)
{
    std::u16string out;
    out.reserve(EstimatedTextSize(document) + 2 * document.LineCount());
    const size_t count = document.LineCount();
    for (size_t i = 0; i < count; ++i)
    {
        if (i > 0)
            out += u"\r\n";
        AppendPlainText(out, document.Line(i));
    }
    return out;
}
