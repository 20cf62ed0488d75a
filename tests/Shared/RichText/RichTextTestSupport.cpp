#include "RichTextTestSupport.h"

namespace
{
int Uniform(std::mt19937& random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

std::u16string RandomText(std::mt19937& random, size_t maxChars, bool withAngleBracket = true)
{
    static constexpr char16_t Pieces[][3] = {
        u"a",      u"Z",      u" ",      u"\t",     u"{",          u"}",      u"\\", u"<", u"&",
        u"\u00e9", u"\u4e2d", u"\uff01", u"\u0416", u"\U0001F600", u"\u05d0", u"|",  u"~"};
    std::u16string text;
    const size_t target = static_cast<size_t>(Uniform(random, 0, static_cast<int>(maxChars)));
    while (text.size() < target)
    {
        const std::u16string_view piece = Pieces[Uniform(random, 0, static_cast<int>(std::size(Pieces)) - 1)];
        if (withAngleBracket || piece != u"<")
            text += piece;
    }
    return text;
}

SFontDescription RandomFont(std::mt19937& random)
{
    static constexpr const char16_t* Faces[] = {u"Arial", u"Courier New", u"\u5b8b\u4f53",
                                                u"Times New Roman"};
    SFontDescription font = SFontDescription::Make(Faces[Uniform(random, 0, 3)], Uniform(random, -40, 40),
                                                   Uniform(random, 0, 1000));
    font.italic = static_cast<uint8_t>(Uniform(random, 0, 1));
    font.underline = static_cast<uint8_t>(Uniform(random, 0, 2));
    font.charSet = static_cast<uint8_t>(Uniform(random, 0, 255));
    font.pitchAndFamily = static_cast<uint8_t>(Uniform(random, 0, 255));
    font.quality = 4;
    return font;
}

CRtfTextBlockInfo RandomBlock(std::mt19937& random, int32_t start, int combination)
{
    CRtfTextBlockInfo block(start);
    if (combination & 1)
        block.SetFont(RandomFont(random));
    if (combination & 2)
        block.SetTextColour(static_cast<RichTextColour>(random() & 0xFFFFFF));
    if (combination & 4)
        block.SetBackColour(combination & 8 ? DefaultRichTextColour : static_cast<RichTextColour>(random()));
    return block;
}

CRtfObjectInfo RandomObject(std::mt19937& random, int32_t position)
{
    CRtfObjectInfo object(Uniform(random, 0, 1), position);
    object.SetParam1(static_cast<uint32_t>(random()));
    object.SetParam2(static_cast<uint32_t>(random()));
    if (object.IsPicture())
    {
        static constexpr uint16_t BitCounts[] = {1, 4, 8, 24, 32};
        object.SetPicture(MakeRandomBitmap(random, Uniform(random, 1, 9), Uniform(random, 1, 5),
                                           BitCounts[Uniform(random, 0, 4)]));
        return object;
    }
    object.SetFileName(RandomText(random, 12));
    CHugeMemory data;
    for (int i = Uniform(random, 0, 3) * Uniform(random, 0, 50); i > 0; --i)
    {
        const uint8_t byte = static_cast<uint8_t>(random());
        data.Append({&byte, 1});
    }
    object.SetData(std::move(data));
    return object;
}

CRtfTextLine RandomLine(std::mt19937& random, const SRandomDocumentOptions& options)
{
    std::u16string text = RandomText(random, options.maxLineChars, options.withAngleBracket);
    std::vector<CRtfObjectInfo> objects;
    if (options.withObjects)
    {
        for (size_t i = 0; i < text.size(); ++i)
        {
            if (Uniform(random, 0, 9) == 0 && !(text[i] >= 0xD800 && text[i] < 0xE000))
            {
                text[i] = CRtfObjectInfo::ObjectCharacter;
                objects.push_back(RandomObject(random, static_cast<int32_t>(i)));
            }
        }
    }
    CRtfTextLine line(text);
    line.SetAlignment(Uniform(random, 0, 2));
    line.SetObjects(std::move(objects));
    std::vector<CRtfTextBlockInfo> blocks;
    for (int i = Uniform(random, 0, 5); i > 0; --i)
        blocks.push_back(
            RandomBlock(random, Uniform(random, 0, static_cast<int>(text.size())), Uniform(random, 0, 15)));
    line.SetBlocks(std::move(blocks));
    return line;
}
} // namespace

CDIBitmap MakeRandomBitmap(std::mt19937& random, int32_t width, int32_t height, uint16_t bitCount)
{
    SDIBitmapHeader header;
    header.width = width;
    header.height = height;
    header.bitCount = bitCount;
    std::vector<uint8_t> packed(static_cast<size_t>(header.PackedSize()));
    for (uint8_t& byte : packed)
        byte = static_cast<uint8_t>(random());
    header.ToBytes(std::span<uint8_t, 40>(packed.data(), 40));
    CDIBitmap bitmap;
    bitmap.SetPacked(std::move(packed));
    return bitmap;
}

CRichTextDocument MakeRandomDocument(std::mt19937& random, const SRandomDocumentOptions& options)
{
    CRichTextDocument document;
    for (int i = Uniform(random, 0, static_cast<int>(options.maxLines)); i > 0; --i)
        document.AppendLine(RandomLine(random, options));
    if (options.hugeAttachmentBytes != 0)
    {
        CRtfObjectInfo object(CRtfObjectInfo::AttachmentType, 0);
        object.SetFileName(u"big.bin");
        CHugeMemory data;
        data.Resize(options.hugeAttachmentBytes);
        for (size_t i = 0; i < data.ChunkCount(); ++i)
            for (uint8_t& byte : data.Chunk(i))
                byte = static_cast<uint8_t>(random());
        object.SetData(std::move(data));
        CRtfTextLine line(std::u16string(1, CRtfObjectInfo::ObjectCharacter));
        line.AddObject(std::move(object));
        document.AppendLine(std::move(line));
    }
    return document;
}
