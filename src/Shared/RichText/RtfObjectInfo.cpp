#include "Shared/RichText/RtfObjectInfo.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RichTextArchiveError.h"

#include <vector>

namespace
{
void WriteChunks(CArchiveWriter& out, const CHugeMemory& data)
{
    for (size_t i = 0; i < data.ChunkCount(); ++i)
    {
        const auto chunk = data.Chunk(i);
        out.WriteBytes(chunk.data(), chunk.size());
    }
}
} // namespace

int CRtfObjectInfo::Serialize(CArchiveWriter& out) const
{
    if (m_Type != PictureType && m_Type != AttachmentType)
    {
        LogMessage(
            u"Error: Cannot save Rich Text Attachment object, unsupported Object Typesize is too small in "
            u"storage file/location");
        return 2;
    }
    // A picture object is only stored with its picture: an empty one could not be read back.
    if (m_Type == PictureType && (!m_Picture || m_Picture->IsEmpty()))
    {
        LogMessage(u"Error: Cannot save Rich Text Attachment object, the picture is missing");
        return 2;
    }
    return SaveContent(out);
}

int CRtfObjectInfo::SaveContent(CArchiveWriter& out) const
{
    out.WriteI32(m_Type);
    out.WriteI32(m_Position);
    out.WriteU32(m_Param1);
    out.WriteU32(m_Param2);
    const uint8_t reserved[ReservedBytes] = {};
    out.WriteBytes(reserved, sizeof reserved);
    if (m_Type == PictureType)
    {
        m_Picture->Serialize(out);
        return 0;
    }
    out.WriteString(m_FileName);
    out.WriteU32(static_cast<uint32_t>(DataSize()));
    if (m_Data)
        WriteChunks(out, *m_Data);
    return 0;
}

int CRtfObjectInfo::Serialize(CArchiveReader& in, int version)
{
    if (version != Version)
    {
        LogMessage(u"Error: Cannot load Rich Text Attachment object, version number is unsupported - %d",
                   version);
        return 1;
    }
    try
    {
        return Load(in);
    }
    catch (const CRichTextArchiveError& error)
    {
        if (!error.Logged())
            LogMessage(u"Error: General exception caught on loading Rich Text Attachment object");
    }
    catch (const std::exception&)
    {
        LogMessage(u"Error: General exception caught on loading Rich Text Attachment object");
    }
    return 2;
}

int CRtfObjectInfo::Load(CArchiveReader& in)
{
    m_Type = static_cast<int32_t>(ReadU32OrThrow(in));
    m_Position = static_cast<int32_t>(ReadU32OrThrow(in));
    m_Param1 = ReadU32OrThrow(in);
    m_Param2 = ReadU32OrThrow(in);
    if (!in.Skip(ReservedBytes))
        throw CRichTextArchiveError(false);
    if (m_Type == PictureType)
        LoadPicture(in);
    else if (m_Type == AttachmentType)
        LoadAttachment(in);
    else
    {
        LogMessage(
            u"Error: Cannot load Rich Text Attachment object, unsupported Object Typesize is too small in "
            u"storage file/location");
        return 2;
    }
    return 0;
}

void CRtfObjectInfo::LoadPicture(CArchiveReader& in)
{
    m_FileName.clear();
    m_Data.reset();
    CDIBitmap picture;
    switch (picture.Serialize(in))
    {
    case CDIBitmap::ELoadResult::Loaded:
        m_Picture = std::move(picture);
        return;
    case CDIBitmap::ELoadResult::FailedWithMessage:
        throw CRichTextArchiveError(true);
    case CDIBitmap::ELoadResult::FailedSilently:
        break;
    }
    throw CRichTextArchiveError(false);
}

void CRtfObjectInfo::LoadAttachment(CArchiveReader& in)
{
    m_FileName = ReadStringOrThrow(in);
    const uint32_t size = ReadU32OrThrow(in);
    if (size > in.Remaining())
    {
        LogMessage(u"Error: Cannot load Rich Text Attachment object, object size is too small in storage "
                   u"file/location");
        throw CRichTextArchiveError(true);
    }
    CHugeMemory data;
    data.Resize(size);
    for (size_t i = 0; i < data.ChunkCount(); ++i)
    {
        const auto chunk = data.Chunk(i);
        in.ReadBytes(chunk.data(), chunk.size());
    }
    m_Data = std::move(data);
    m_Picture.reset();
}
