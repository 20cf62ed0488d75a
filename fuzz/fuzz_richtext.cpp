// Loads arbitrary bytes as a rich text document; a document that loads is written back and
// converted to RTF, HTML and plain text. Nothing may crash, hang or allocate beyond the input.
#include "Shared/Base/Archive.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RichTextDocument.h"
#include "Shared/RichText/RtfWriter.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CRichTextDocument document;
    CArchiveReader in(data, size);
    if (document.Serialize(in) != 0)
        return 0;
    CArchiveWriter out;
    document.Serialize(out);
    const SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    ToRtf(document, defaultFont);
    ToHtml(document, u"fuzz", defaultFont);
    ToPlainText(document);
    return 0;
}
