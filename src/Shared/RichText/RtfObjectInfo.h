#pragma once
// An object embedded in a paragraph: a picture or a file attachment. It occupies one character
// position of the paragraph's text, where the text holds ObjectCharacter.
#include "Shared/RichText/DIBitmap.h"
#include "Shared/RichText/HugeMemory.h"

#include <cstdint>
#include <optional>
#include <string>

class CArchiveReader;
class CArchiveWriter;

class CRtfObjectInfo
{
public:
    static constexpr int Version = 100;
    static constexpr int32_t PictureType = 0;
    static constexpr int32_t AttachmentType = 1;
    static constexpr size_t ReservedBytes = 160;
    // The character that stands in the paragraph text at an object's position.
    static constexpr char16_t ObjectCharacter = u'\x14';

    CRtfObjectInfo() = default;
    CRtfObjectInfo(int32_t type, int32_t position) : m_Type(type), m_Position(position) {}

    int32_t Type() const { return m_Type; }
    void SetType(int32_t type) { m_Type = type; }
    bool IsPicture() const { return m_Type == PictureType; }
    bool IsAttachment() const { return m_Type == AttachmentType; }
    int32_t Position() const { return m_Position; }
    void SetPosition(int32_t position) { m_Position = position; }
    // Stored and loaded unchanged; their meaning belongs to the editor.
    uint32_t Param1() const { return m_Param1; }
    void SetParam1(uint32_t value) { m_Param1 = value; }
    uint32_t Param2() const { return m_Param2; }
    void SetParam2(uint32_t value) { m_Param2 = value; }

    // Pictures only.
    const std::optional<CDIBitmap>& Picture() const { return m_Picture; }
    void SetPicture(std::optional<CDIBitmap> picture) { m_Picture = std::move(picture); }

    // Attachments only.
    const std::u16string& FileName() const { return m_FileName; }
    void SetFileName(std::u16string name) { m_FileName = std::move(name); }
    const std::optional<CHugeMemory>& Data() const { return m_Data; }
    void SetData(std::optional<CHugeMemory> data) { m_Data = std::move(data); }
    size_t DataSize() const { return m_Data ? m_Data->Size() : 0; }

    // Storage: u32 type, position, param1, param2; 160 zero bytes; then the picture (type 0) or
    // the file name, u32 data size and the data (type 1). Save returns 0, or 2 after logging
    // for an unknown type or a picture object without a picture.
    int Serialize(CArchiveWriter& out) const;
    // Load returns 0, 1 for a version other than 100, or 2 for short data, a bad picture or an
    // unknown type; each failure writes one log line. Sizes are checked against the bytes left
    // before anything is allocated.
    int Serialize(CArchiveReader& in, int version);

    bool operator==(const CRtfObjectInfo& other) const = default;

private:
    int SaveContent(CArchiveWriter& out) const;
    int Load(CArchiveReader& in);
    void LoadPicture(CArchiveReader& in);
    void LoadAttachment(CArchiveReader& in);

    int32_t m_Type = PictureType;
    int32_t m_Position = 0;
    uint32_t m_Param1 = 0;
    uint32_t m_Param2 = 0;
    std::optional<CDIBitmap> m_Picture;
    std::u16string m_FileName;
    std::optional<CHugeMemory> m_Data;
};
