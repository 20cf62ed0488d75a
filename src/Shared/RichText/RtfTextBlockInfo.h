#pragma once
// A format change point in a paragraph: from `Start()` on, each field that is present replaces
// the one in force before; an absent field keeps it.
#include "Shared/RichText/FontDescription.h"

#include <cstdint>
#include <optional>

class CArchiveReader;
class CArchiveWriter;

// Colours are 0x00BBGGRR (red in the low byte).
using RichTextColour = uint32_t;
// "Default colour" (default text colour or default background): writers emit no markup for it.
constexpr RichTextColour DefaultRichTextColour = 0xFEFFFF;

class CRtfTextBlockInfo
{
public:
    static constexpr int Version = 100;

    CRtfTextBlockInfo() = default;
    explicit CRtfTextBlockInfo(int32_t start) : m_Start(start) {}

    int32_t Start() const { return m_Start; }
    void SetStart(int32_t start) { m_Start = start; }

    bool HasFont() const { return m_Font.has_value(); }
    const std::optional<SFontDescription>& Font() const { return m_Font; }
    void SetFont(std::optional<SFontDescription> font) { m_Font = std::move(font); }

    bool HasTextColour() const { return m_TextColour.has_value(); }
    std::optional<RichTextColour> TextColour() const { return m_TextColour; }
    void SetTextColour(std::optional<RichTextColour> colour) { m_TextColour = colour; }

    bool HasBackColour() const { return m_BackColour.has_value(); }
    std::optional<RichTextColour> BackColour() const { return m_BackColour; }
    void SetBackColour(std::optional<RichTextColour> colour) { m_BackColour = colour; }

    // A flag for the editor's own use: never stored, cleared by every load, and copied into
    // bit 4 of the segments this block starts.
    bool Marker() const { return m_Marker; }
    void SetMarker(bool marker) { m_Marker = marker; }

    // Storage: u32 start; bool + 92 font bytes; bool + u32 text colour; bool + u32 background.
    // Save returns 0, or 2 after logging when writing failed.
    int Serialize(CArchiveWriter& out) const;
    // Load returns 0, 1 for a version other than 100, or 2 for data that ends early; each
    // failure writes one log line. A loaded font's quality byte is set to the display's.
    int Serialize(CArchiveReader& in, int version);

    // Stored fields only (the marker is not compared).
    bool operator==(const CRtfTextBlockInfo& other) const
    {
        return m_Start == other.m_Start && m_Font == other.m_Font && m_TextColour == other.m_TextColour &&
               m_BackColour == other.m_BackColour;
    }

private:
    void Load(CArchiveReader& in);

    int32_t m_Start = 0;
    std::optional<SFontDescription> m_Font;
    std::optional<RichTextColour> m_TextColour;
    std::optional<RichTextColour> m_BackColour;
    bool m_Marker = false;
};
