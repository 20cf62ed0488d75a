#include "Prefs/PrefsVisitors.h"

#include "Prefs/FontQuery.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Config/ConfFileParser.h"
#include "Shared/Log/Log.h"

#include <algorithm>
#include <cmath>

namespace
{
// Dates are written with six decimals; rounding down keeps a just-made backup from reading
// back as a moment in the future.
constexpr double StoredDateSteps = 1e6;

// A date that already has six decimals must come back unchanged, or every save would move it
// one step back; plain flooring of date * 1e6 can land one step low through rounding error.
OleDate RoundDownToStoredPrecision(OleDate date)
{
    double steps = std::round(date * StoredDateSteps);
    if (steps / StoredDateSteps > date)
        steps -= 1;
    return steps / StoredDateSteps;
}
} // namespace

std::u16string NumberedKey(std::u16string_view baseKey, int index)
{
    return std::u16string(baseKey) + ToU16(index);
}

// ---- CPrefsLoader ----

bool CPrefsLoader::GetText(std::u16string_view key, std::u16string& value) const
{
    std::u16string stored;
    if (!m_Parser.GetString(key, stored) || stored.empty())
        return false;
    value = std::move(stored);
    return true;
}

void CPrefsLoader::Bool(std::u16string_view key, bool& value, bool def)
{
    if (!m_Parser.GetBool(key, value))
        value = def;
}

void CPrefsLoader::Int(std::u16string_view key, int& value, int def, int min, int max)
{
    int stored = 0;
    value = m_Parser.GetInt(key, stored) && stored >= min && stored <= max ? stored : def;
}

void CPrefsLoader::ClampedInt(std::u16string_view key, int& value, int def, int min, int max)
{
    int stored = 0;
    value = m_Parser.GetInt(key, stored) ? std::clamp(stored, min, max) : def;
}

void CPrefsLoader::UInt(std::u16string_view key, uint32_t& value, uint32_t def)
{
    unsigned stored = 0;
    value = m_Parser.GetUInt(key, stored) ? stored : def;
}

void CPrefsLoader::Text(std::u16string_view key, std::u16string& value, std::u16string_view def,
                        TextCheck check)
{
    std::u16string stored;
    if (GetText(key, stored) && (check == nullptr || check(stored)))
        value = std::move(stored);
    else
        value = def;
}

void CPrefsLoader::FontFace(std::u16string_view key, std::u16string& value)
{
    if (!GetText(key, value))
        value = ChooseDefaultFontFace(Env().fonts);
}

void CPrefsLoader::PastDate(std::u16string_view key, OleDate& value)
{
    double stored = 0;
    const bool usable =
        m_Parser.GetDouble(key, stored) && std::isfinite(stored) && stored <= Env().clock.NowLocal();
    value = usable ? stored : 0;
}

void CPrefsLoader::Binary(std::u16string_view key, std::vector<uint8_t>& bytes)
{
    if (!m_Parser.GetBinary(key, bytes))
        bytes.clear();
}

void CPrefsLoader::NumberedList(std::u16string_view baseKey, CRecentList& list)
{
    std::vector<std::u16string> items;
    for (size_t index = 0; index < list.Capacity(); ++index)
    {
        std::u16string item;
        if (GetText(NumberedKey(baseKey, static_cast<int>(index)), item))
            items.push_back(std::move(item));
    }
    list.Assign(items);
}

void CPrefsLoader::Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements)
{
    placements.clear();
    std::u16string stored;
    if (!GetText(key, stored))
        return;
    try
    {
        std::vector<uint8_t> bytes;
        std::optional<std::vector<SWndPlacementInfo>> decoded;
        if (m_Parser.GetBinary(key, bytes))
            decoded = DecodeWindowPlacements(bytes);
        if (decoded)
        {
            placements = std::move(*decoded);
            return;
        }
    }
    catch (...)
    {
        placements.clear();
    }
    LogMessage(u"Error: Unable to serialize [load] window placements data");
}

// ---- CPrefsSaver ----

void CPrefsSaver::Bool(std::u16string_view key, bool& value, bool)
{
    m_Parser.SetBool(key, value);
}

void CPrefsSaver::Int(std::u16string_view key, int& value, int, int, int)
{
    m_Parser.SetString(key, ToU16(value));
}

void CPrefsSaver::ClampedInt(std::u16string_view key, int& value, int, int, int)
{
    m_Parser.SetString(key, ToU16(value));
}

void CPrefsSaver::UInt(std::u16string_view key, uint32_t& value, uint32_t)
{
    m_Parser.SetUInt(key, value);
}

void CPrefsSaver::Text(std::u16string_view key, std::u16string& value, std::u16string_view, TextCheck)
{
    if (!value.empty())
        m_Parser.SetString(key, value);
}

void CPrefsSaver::FontFace(std::u16string_view key, std::u16string& value)
{
    if (!value.empty())
        m_Parser.SetString(key, value);
}

void CPrefsSaver::PastDate(std::u16string_view key, OleDate& value)
{
    if (value != 0 && std::isfinite(value))
        m_Parser.SetDouble(key, RoundDownToStoredPrecision(value));
}

void CPrefsSaver::Binary(std::u16string_view key, std::vector<uint8_t>& bytes)
{
    if (!bytes.empty())
        m_Parser.SetBinary(key, bytes.data(), bytes.size());
}

void CPrefsSaver::NumberedList(std::u16string_view baseKey, CRecentList& list)
{
    const std::vector<std::u16string>& items = list.Items();
    for (size_t index = 0; index < items.size(); ++index)
        m_Parser.SetString(NumberedKey(baseKey, static_cast<int>(index)), items[index]);
}

void CPrefsSaver::Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements)
{
    if (placements.empty())
        return;
    try
    {
        const std::vector<uint8_t> bytes = EncodeWindowPlacements(placements);
        m_Parser.SetBinary(key, bytes.data(), bytes.size());
    }
    catch (...)
    {
        LogMessage(u"Error: Unable to serialize [save] window placements data");
    }
}

// ---- CPrefsResetter ----

void CPrefsResetter::Bool(std::u16string_view, bool& value, bool def)
{
    value = def;
}

void CPrefsResetter::Int(std::u16string_view, int& value, int def, int, int)
{
    value = def;
}

void CPrefsResetter::ClampedInt(std::u16string_view, int& value, int def, int, int)
{
    value = def;
}

void CPrefsResetter::UInt(std::u16string_view, uint32_t& value, uint32_t def)
{
    value = def;
}

void CPrefsResetter::Text(std::u16string_view, std::u16string& value, std::u16string_view def, TextCheck)
{
    value = def;
}

void CPrefsResetter::FontFace(std::u16string_view, std::u16string& value)
{
    value = ChooseDefaultFontFace(Env().fonts);
}

void CPrefsResetter::PastDate(std::u16string_view, OleDate& value)
{
    value = 0;
}

void CPrefsResetter::Binary(std::u16string_view, std::vector<uint8_t>& bytes)
{
    bytes.clear();
}

void CPrefsResetter::NumberedList(std::u16string_view, CRecentList& list)
{
    list.Clear();
}

void CPrefsResetter::Placements(std::u16string_view, std::vector<SWndPlacementInfo>& placements)
{
    placements.clear();
}
