#include "Shared/RichText/RichTextPlatform.h"

#include "Shared/RichText/FontDescription.h"

#include <atomic>

namespace
{
IRichTextPlatform g_DefaultPlatform;
std::atomic<IRichTextPlatform*> g_Platform{&g_DefaultPlatform};
constexpr int NotAsked = -1;
std::atomic<int> g_CachedQuality{NotAsked};
} // namespace

uint8_t IRichTextPlatform::FontPitchAndFamily(const SFontDescription& font) const
{
    return font.pitchAndFamily;
}

IRichTextPlatform& RichTextPlatform()
{
    return *g_Platform.load();
}

void InstallRichTextPlatform(IRichTextPlatform* platform)
{
    g_Platform.store(platform ? platform : &g_DefaultPlatform);
    g_CachedQuality.store(NotAsked);
}

uint8_t CachedDisplayFontQuality()
{
    int quality = g_CachedQuality.load();
    if (quality == NotAsked)
    {
        quality = RichTextPlatform().DisplayFontQuality();
        g_CachedQuality.store(quality);
    }
    return static_cast<uint8_t>(quality);
}
