// Reads arbitrary bytes as RTF, once as bytes and once as UTF-16 text (two bytes a unit); a
// document that reads is written back to RTF and read again. Nothing may crash, hang (deeply
// nested groups included) or allocate beyond a multiple of the input.
#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfWriter.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    CRichTextDocument document;
    if (ReadRtf(bytes, defaultFont, document))
    {
        CRichTextDocument again;
        ReadRtf(ToRtf(document, defaultFont), defaultFont, again);
    }
    std::u16string units(size / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    ReadRtf(units, defaultFont, document);
    return 0;
}
