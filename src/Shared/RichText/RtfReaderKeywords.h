#pragma once
// The control words the RTF reader acts on, looked up by name. Every other control word is
// ignored, and every other destination is skipped when it is marked with \*.
#include <cstdint>
#include <string_view>

enum class ERtfKeyword : uint8_t
{
    Unknown,
    // paragraphs and special characters
    Par,
    Tab,
    Cell,
    ParagraphDefaults,
    AlignLeft,
    AlignCentre,
    AlignRight,
    EmDash,
    EnDash,
    Bullet,
    LeftQuote,
    RightQuote,
    LeftDoubleQuote,
    RightDoubleQuote,
    Unicode,
    UnicodeSkip,
    Binary,
    // character formats
    Plain,
    Bold,
    Italic,
    Underline,
    UnderlineNone,
    Hidden,
    Font,
    FontSize,
    TextColour,
    BackColour,
    // code pages and the document defaults
    AnsiCodePage,
    MacCodePage,
    PcCodePage,
    PcaCodePage,
    GroupCodePage,
    DefaultFont,
    // tables
    FontTable,
    ColourTable,
    Charset,
    Pitch,
    FamilyNil,
    FamilyRoman,
    FamilySwiss,
    FamilyModern,
    FamilyScript,
    FamilyDecor,
    TrueType,
    Red,
    Green,
    Blue,
    // pictures
    Picture,
    ShapePicture,
    PngBlip,
    JpegBlip,
    DibBitmap,
    OtherPictureFormat,
    // destinations whose content is never text
    SkippedDestination
};

ERtfKeyword FindRtfKeyword(std::string_view name);
