#include "Shared/RichText/RtfReaderCodePage.h"

#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

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
    if (codePage == WesternCodePage || codePage == 0 || m_Unknown.count(codePage) != 0)
    {
        out += Cp1252ToUtf16(bytes);
        return;
    }
    if (m_Converter.ToUtf16(codePage, bytes, out))
        return;
    LogMessage(u"Warning: RTF code page %d is not available, its text is read as code page 1252", codePage);
    m_Unknown.insert(codePage);
    out += Cp1252ToUtf16(bytes);
}
