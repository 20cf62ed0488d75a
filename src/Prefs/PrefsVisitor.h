#pragma once
// Every preference group lists its keys exactly once, in a Visit function that names each key
// with its default and its check. Loading, saving and resetting are visitors over those lists,
// so a key can never be read under one name and written under another.
#include "Prefs/RecentList.h"
#include "Prefs/WindowPlacements.h"
#include "Shared/Base/OleDate.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class IFileSystem;
class IFontQuery;

// What the defaults depend on: the file layer, "now" (a stored last-backup date in the future
// is invalid), the installed fonts, portable mode and the documents folder, all decided by
// start-up before the preferences exist.
struct SPreferencesEnvironment
{
    IFileSystem& fileSystem;
    const IClock& clock;
    const IFontQuery& fonts;
    bool portable = false;
    std::u16string documentsFolder;
};

// A check on a stored text; a rejected text is replaced by the default.
using TextCheck = bool (*)(std::u16string_view value);

class IPrefsVisitor
{
public:
    virtual ~IPrefsVisitor() = default;
    virtual const SPreferencesEnvironment& Env() const = 0;

    virtual void Bool(std::u16string_view key, bool& value, bool def) = 0;
    // A stored value outside min..max becomes the default.
    virtual void Int(std::u16string_view key, int& value, int def, int min, int max) = 0;
    // A stored value outside min..max is pulled to the nearer bound.
    virtual void ClampedInt(std::u16string_view key, int& value, int def, int min, int max) = 0;
    virtual void UInt(std::u16string_view key, uint32_t& value, uint32_t def) = 0;
    // A stored text that `check` rejects becomes the default; an empty text counts as missing.
    virtual void Text(std::u16string_view key, std::u16string& value, std::u16string_view def,
                      TextCheck check = nullptr) = 0;
    // A text whose default is the system's default font face, chosen only when it is needed.
    virtual void FontFace(std::u16string_view key, std::u16string& value) = 0;
    // A moment; 0 (the default) means none. A stored moment later than now is invalid.
    virtual void PastDate(std::u16string_view key, OleDate& value) = 0;
    // Opaque bytes, stored in base-64; empty by default.
    virtual void Binary(std::u16string_view key, std::vector<uint8_t>& bytes) = 0;
    // Keys baseKey0, baseKey1, ... up to the list's capacity; empty values are skipped.
    virtual void NumberedList(std::u16string_view baseKey, CRecentList& list) = 0;
    virtual void Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements) = 0;
};

// The key of entry `index` of a numbered list ("RecentlyOpenedFile" and 3 give
// "RecentlyOpenedFile3").
std::u16string NumberedKey(std::u16string_view baseKey, int index);
