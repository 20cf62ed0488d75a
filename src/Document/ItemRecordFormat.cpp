#include "Document/ItemRecordFormat.h"

#include "Document/ItemExtendedData.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace ItemRecordFormat
{
namespace
{
constexpr size_t PreviewMaxLines = 40;
constexpr uint32_t PreviewColumnLimit = 120;
constexpr uint32_t PreviewColumnStep = 2;

void PutU32(uint8_t* out, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<uint8_t>(v >> (8 * i));
}

uint32_t GetU32(const uint8_t* in)
{
    return static_cast<uint32_t>(in[0]) | static_cast<uint32_t>(in[1]) << 8 |
           static_cast<uint32_t>(in[2]) << 16 | static_cast<uint32_t>(in[3]) << 24;
}

void AppendExtended(std::vector<uint8_t>& out, size_t offset, const CItemExtendedData* extended)
{
    if (!extended)
        return;
    out.resize(offset + CItemExtendedData::Size, 0);
    std::memcpy(out.data() + offset, extended->Bytes().data(), CItemExtendedData::Size);
}

// Terms are computed in 32 bits and sign-extended, as the stored hashes were made that way.
int64_t SignExtended(uint32_t term)
{
    return static_cast<int32_t>(term);
}
} // namespace

std::vector<uint8_t> EncodeText(std::u16string_view text)
{
    std::vector<uint8_t> out(2 * text.size() + 2, 0);
    for (size_t i = 0; i < text.size(); ++i)
    {
        out[2 * i] = static_cast<uint8_t>(text[i]);
        out[2 * i + 1] = static_cast<uint8_t>(text[i] >> 8);
    }
    return out;
}

size_t DecodeTextInto(std::span<const uint8_t> data, char16_t* out)
{
    // Search decodes every note's text, so the units are copied and tested for zero eight at a
    // time. The stored bytes are UTF-16LE, the machine's own order on every platform we build for.
    static_assert(std::endian::native == std::endian::little);
    const size_t units = data.size() / 2;
    const uint8_t* in = data.data();
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; i + 8 <= units; i += 8)
    {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 2 * i));
        const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi16(block, zero));
        if (zeros != 0)
        {
            // Two mask bits per unit; the lowest set bit is the first zero unit's low byte.
            const size_t end = i + static_cast<size_t>(std::countr_zero(static_cast<unsigned>(zeros))) / 2;
            std::memcpy(out + i, in + 2 * i, 2 * (end - i));
            return end;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), block);
    }
#endif
    for (; i < units; ++i)
    {
        char16_t unit;
        std::memcpy(&unit, in + 2 * i, 2);
        if (unit == u'\0')
            return i;
        out[i] = unit;
    }
    return units;
}

std::u16string DecodeText(std::span<const uint8_t> data)
{
    std::u16string text(data.size() / 2, u'\0');
    text.resize(DecodeTextInto(data, text.data()));
    return text;
}

std::vector<uint8_t> EncodeFolderAttributes(const SFolderAttributes& flags, const CItemExtendedData* extended)
{
    std::vector<uint8_t> out{flags.notesLoaded, flags.foldersLoaded, flags.open};
    AppendExtended(out, FolderExtendedOffset, extended);
    return out;
}

std::vector<uint8_t> EncodeNoteAttributes(const SNoteAttributes& attributes,
                                          const CItemExtendedData* extended)
{
    std::vector<uint8_t> out(NoteShortSize, 0);
    out[0] = attributes.open;
    for (size_t i = 0; i < AttributeWordCount; ++i)
        PutU32(out.data() + 4 + 4 * i, attributes.words[i]);
    AppendExtended(out, NoteExtendedOffset, extended);
    return out;
}

SNoteAttributes DecodeNoteAttributes(std::span<const uint8_t> data)
{
    SNoteAttributes attributes;
    if (!data.empty())
        attributes.open = data[0];
    if (data.size() >= NoteShortSize)
        for (size_t i = 0; i < AttributeWordCount; ++i)
            attributes.words[i] = GetU32(data.data() + 4 + 4 * i);
    return attributes;
}

SFolderAttributes DecodeFolderAttributes(std::span<const uint8_t> data)
{
    SFolderAttributes flags;
    if (data.size() > 0)
        flags.notesLoaded = data[0];
    if (data.size() > 1)
        flags.foldersLoaded = data[1];
    if (data.size() > 2)
        flags.open = data[2];
    return flags;
}

const uint8_t* FindExtendedBlock(std::span<const uint8_t> data, size_t offset)
{
    if (data.size() < offset + CItemExtendedData::Size)
        return nullptr;
    const uint8_t* block = data.data() + offset;
    const bool allZero =
        std::all_of(block, block + CItemExtendedData::Size, [](uint8_t b) { return b == 0; });
    return allZero ? nullptr : block;
}

std::vector<uint8_t> EncodeChildList(std::span<const CUInt128> ids)
{
    std::vector<uint8_t> out(CUInt128::DiskSize * ids.size());
    for (size_t i = 0; i < ids.size(); ++i)
        ids[i].ToBytes(out.data() + CUInt128::DiskSize * i);
    return out;
}

std::vector<CUInt128> DecodeChildList(std::span<const uint8_t> data)
{
    std::vector<CUInt128> ids;
    const size_t count = data.size() / CUInt128::DiskSize;
    ids.reserve(count);
    for (size_t i = 0; i < count; ++i)
        ids.push_back(CUInt128::FromBytes(data.data() + CUInt128::DiskSize * i));
    return ids;
}

std::u16string BuildPreview(std::u16string_view plainText)
{
    std::u16string preview;
    size_t lines = 0;
    uint32_t column = 0;
    bool cut = false;
    size_t i = 0;
    while (i < plainText.size() && lines < PreviewMaxLines)
    {
        const char16_t c = plainText[i++];
        if (c == u'\r')
        {
            if (i < plainText.size() && plainText[i] == u'\n')
                ++i;
            preview += u"\r\n";
            ++lines;
            column = 1;
            cut = false;
        }
        else if (column < PreviewColumnLimit)
        {
            preview += c;
            column += PreviewColumnStep;
        }
        else if (!cut)
        {
            preview += u"...";
            cut = true;
        }
    }
    return preview;
}

uint64_t PasswordHash(std::u16string_view password)
{
    const auto n = static_cast<uint32_t>(password.size());
    int64_t a = 0;
    int64_t b = 0;
    int64_t c = 0;
    for (uint32_t i = 0; i < n; ++i)
    {
        const uint32_t unit = password[i];
        const uint32_t mirrored = password[n - 1 - i];
        a += SignExtended((i + 1) * unit * 255u - 255u);
        b += SignExtended(unit * n);
        c += SignExtended(mirrored * i * 173u);
    }
    const auto ua = static_cast<uint64_t>(a);
    const auto ub = static_cast<uint64_t>(b);
    const auto uc = static_cast<uint64_t>(c);
    const uint32_t low = static_cast<uint32_t>(ua) ^ static_cast<uint32_t>(ub);
    const uint32_t high =
        (static_cast<uint32_t>(ua >> 32) ^ static_cast<uint32_t>(ub >> 32)) | static_cast<uint32_t>(uc);
    return static_cast<uint64_t>(high) << 32 | low;
}

std::array<uint8_t, PasswordFieldSize> EncodePasswordHash(uint64_t hash)
{
    std::array<uint8_t, PasswordFieldSize> out{};
    PutU32(out.data(), static_cast<uint32_t>(hash));
    PutU32(out.data() + 4, static_cast<uint32_t>(hash >> 32));
    return out;
}

uint64_t DecodePasswordHash(std::span<const uint8_t, PasswordFieldSize> data)
{
    return static_cast<uint64_t>(GetU32(data.data() + 4)) << 32 | GetU32(data.data());
}
} // namespace ItemRecordFormat
