#pragma once
// The few questions the rich text code must put to the platform. The GUI installs its own
// answers; without a GUI the defaults below hold, which describe a plain headless system.
#include <cstdint>

struct SFontDescription;

class IRichTextPlatform
{
public:
    static constexpr uint8_t AntialiasedQuality = 4;
    static constexpr uint8_t ClearTypeQuality = 5;
    static constexpr int WesternCodePage = 1252;
    static constexpr int WesternLanguage = 1033; // the language identifier written with code page 1252

    virtual ~IRichTextPlatform() = default;

    // The quality byte for fonts shown on this display: 5 when font smoothing is on and of the
    // ClearType kind, otherwise 4.
    virtual uint8_t DisplayFontQuality() const { return AntialiasedQuality; }
    // The pitch-and-family byte the platform's text metrics report for `font` (family in the
    // high nibble; bit 0 variable pitch, bit 1 vector, bit 2 TrueType). Without metrics the
    // font's own byte is the best answer.
    virtual uint8_t FontPitchAndFamily(const SFontDescription& font) const;
    // The code page the platform's multi-language service gives for one character.
    virtual int CodePageOfCharacter(char16_t) const { return WesternCodePage; }
};

// The installed platform (the headless default until InstallRichTextPlatform is called). The
// caller keeps ownership; passing null restores the default.
IRichTextPlatform& RichTextPlatform();
void InstallRichTextPlatform(IRichTextPlatform* platform);

// The display quality, asked of the installed platform once and then kept: the system setting
// is read once per run. Installing a platform forgets the kept answer.
uint8_t CachedDisplayFontQuality();
