#include "Shared/Base/CodePageConverter.h"

#include <iconv.h>

namespace
{
const iconv_t NoConverter = reinterpret_cast<iconv_t>(-1);

std::string IconvName(int codePage)
{
    switch (codePage)
    {
    case 437:
        return "IBM437";
    case 850:
        return "IBM850";
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

CCodePageConverter::~CCodePageConverter()
{
    for (const auto& [codePage, converter] : m_Converters)
        if (converter != nullptr)
            iconv_close(static_cast<iconv_t>(converter));
}

void* CCodePageConverter::Converter(int codePage)
{
    const auto found = m_Converters.find(codePage);
    if (found != m_Converters.end())
        return found->second;
    iconv_t converter = iconv_open("UTF-16LE", IconvName(codePage).c_str());
    void* kept = converter == NoConverter ? nullptr : static_cast<void*>(converter);
    m_Converters.emplace(codePage, kept);
    return kept;
}

bool CCodePageConverter::ToUtf16(int codePage, std::string_view bytes, std::u16string& out)
{
    void* converter = Converter(codePage);
    if (converter == nullptr)
        return false;
    iconv_t cd = static_cast<iconv_t>(converter);
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    std::string input(bytes);
    char* in = input.data();
    size_t inLeft = input.size();
    // No code page gives more than two UTF-16 units a byte.
    std::u16string buffer(2 * bytes.size() + 4, u'\0');
    size_t produced = 0;
    while (inLeft > 0)
    {
        char* outStart = reinterpret_cast<char*>(buffer.data() + produced);
        char* outPtr = outStart;
        size_t outLeft = (buffer.size() - produced) * sizeof(char16_t);
        const size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
        produced += static_cast<size_t>(outPtr - outStart) / sizeof(char16_t);
        if (result != static_cast<size_t>(-1) || produced >= buffer.size())
            break;
        // An invalid or truncated sequence: one replacement character, then on after its first byte.
        buffer[produced++] = u'\xFFFD';
        ++in;
        --inLeft;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
    out.append(buffer, 0, produced);
    return true;
}
