#include "Shared/RichText/RtfTextBlockInfo.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RichTextArchiveError.h"
#include "Shared/RichText/RichTextPlatform.h"

#include <new>

namespace
{
void WriteOptionalColour(CArchiveWriter& out, const std::optional<RichTextColour>& colour)
{
    out.WriteBool(colour.has_value());
    if (colour)
        out.WriteU32(*colour);
}

std::optional<RichTextColour> ReadOptionalColour(CArchiveReader& in)
{
    if (!ReadBoolOrThrow(in))
        return std::nullopt;
    return ReadU32OrThrow(in);
}
} // namespace

int CRtfTextBlockInfo::Serialize(CArchiveWriter& out) const
{
    try
    {
        out.WriteI32(m_Start);
        out.WriteBool(m_Font.has_value());
        if (m_Font)
        {
            const auto bytes = m_Font->ToBytes();
            out.WriteBytes(bytes.data(), bytes.size());
        }
        WriteOptionalColour(out, m_TextColour);
        WriteOptionalColour(out, m_BackColour);
        return 0;
    }
    catch (const std::exception&)
    {
        LogMessage(u"Error: General exception caught on saving Rich Text Formatting Block object");
        return 2;
    }
}

int CRtfTextBlockInfo::Serialize(CArchiveReader& in, int version)
{
    if (version != Version)
    {
        LogMessage(
            u"Error: Cannot load Rich Text Formatting Block object, version number is unsupported - %d",
            version);
        return 1;
    }
    try
    {
        Load(in);
        return 0;
    }
    catch (const CRichTextArchiveError& error)
    {
        if (!error.Logged())
            LogMessage(u"Error: General exception caught on loading Rich Text Formatting Block object");
    }
    catch (const std::exception&)
    {
        LogMessage(u"Error: General exception caught on loading Rich Text Formatting Block object");
    }
    return 2;
}

void CRtfTextBlockInfo::Load(CArchiveReader& in)
{
    m_Marker = false;
    m_Start = static_cast<int32_t>(ReadU32OrThrow(in));
    m_Font.reset();
    if (ReadBoolOrThrow(in))
    {
        uint8_t bytes[SFontDescription::StoredSize];
        if (!in.ReadBytes(bytes, sizeof bytes))
        {
            LogMessage(u"Error: Cannot load Rich Text Formatting Block object, object size is too small in "
                       u"storage file/location");
            throw CRichTextArchiveError(true);
        }
        m_Font = SFontDescription::FromBytes(bytes);
        m_Font->quality = CachedDisplayFontQuality();
    }
    m_TextColour = ReadOptionalColour(in);
    m_BackColour = ReadOptionalColour(in);
}
