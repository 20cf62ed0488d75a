#include "Shared/RichText/RtfReaderCodePage.h"

#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <iconv.h>

#include <string>

namespace
{
const iconv_t NoConverter = reinterpret_cast<iconv_t>(-1);

std::string IconvName(int codePage)
{
    switch (codePage)
    {
    case 437:
        return "IBM437";
    case 10000:
        return "MACINTOSH";
    case 20127:
        return "ASCII";
    case 65001:
        return "UTF-8";
    default:
        return "CP" + std::to_string(codePage);
    }
}
} // namespace

CRtfCodePageDecoder::~CRtfCodePageDecoder()
{
    for (const auto& [codePage, converter] : m_Converters)
        if (converter != nullptr)
            iconv_close(static_cast<iconv_t>(converter));
}

int CRtfCodePageDecoder::CodePageOfCharset(int charset)
{
    switch (charset)
    {
    case 77:
        return 10000;
    case 128:
        return 932;
    case 129:
        return 949;
    case 130:
        return 1361;
    case 134:
        return 936;
    case 136:
        return 950;
    case 161:
        return 1253;
    case 162:
        return 1254;
    case 163:
        return 1258;
    case 177:
        return 1255;
    case 178:
        return 1256;
    case 186:
        return 1257;
    case 204:
        return 1251;
    case 222:
        return 874;
    case 238:
        return 1250;
    case 255:
        return 437;
    default:
        return 0;
    }
}

void CRtfCodePageDecoder::Decode(int codePage, std::string_view bytes, std::u16string& out)
{
    if (codePage == WesternCodePage || codePage == 0)
    {
        out += Cp1252ToUtf16(bytes);
        return;
    }
    void* converter = Converter(codePage);
    if (converter == nullptr || !DecodeWithConverter(converter, bytes, out))
        out += Cp1252ToUtf16(bytes);
}

void* CRtfCodePageDecoder::Converter(int codePage)
{
    const auto found = m_Converters.find(codePage);
    if (found != m_Converters.end())
        return found->second;
    iconv_t converter = iconv_open("UTF-16LE", IconvName(codePage).c_str());
    void* kept = converter == NoConverter ? nullptr : static_cast<void*>(converter);
    if (kept == nullptr)
        LogMessage(u"Warning: RTF code page %d is not available, its text is read as code page 1252",
                   codePage);
    m_Converters.emplace(codePage, kept);
    return kept;
}

bool CRtfCodePageDecoder::DecodeWithConverter(void* converter, std::string_view bytes, std::u16string& out)
{
    iconv_t cd = static_cast<iconv_t>(converter);
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    std::string input(bytes);
    char* in = input.data();
    size_t inLeft = input.size();
    std::u16string buffer(2 * bytes.size() + 4, u'\0');
    size_t produced = 0;
    while (inLeft > 0)
    {
        char* outStart = reinterpret_cast<char*>(buffer.data() + produced);
        char* outPtr = outStart;
        size_t outLeft = (buffer.size() - produced) * sizeof(char16_t);
        const size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
        produced += static_cast<size_t>(outPtr - outStart) / sizeof(char16_t);
        if (result != static_cast<size_t>(-1))
            break;
        if (produced >= buffer.size())
            return false; // cannot happen: no code page yields more than two units per byte
        // An invalid or truncated sequence: one replacement character, then go on after its
        // first byte.
        buffer[produced++] = u'\xFFFD';
        ++in;
        --inLeft;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
    out.append(buffer, 0, produced);
    return true;
}
