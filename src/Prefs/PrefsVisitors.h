#pragma once
// The three walks over the preference groups: reading them from a configuration file, writing
// them into one, and setting every value to its default.
#include "Prefs/PrefsVisitor.h"

class CConfFileParser;

class CPrefsVisitorBase : public IPrefsVisitor
{
public:
    explicit CPrefsVisitorBase(const SPreferencesEnvironment& env) : m_Env(env) {}
    const SPreferencesEnvironment& Env() const override { return m_Env; }

private:
    const SPreferencesEnvironment& m_Env;
};

// Missing keys and values that fail their checks take the default.
class CPrefsLoader : public CPrefsVisitorBase
{
public:
    CPrefsLoader(const CConfFileParser& parser, const SPreferencesEnvironment& env)
        : CPrefsVisitorBase(env), m_Parser(parser)
    {
    }

    void Bool(std::u16string_view key, bool& value, bool def) override;
    void Int(std::u16string_view key, int& value, int def, int min, int max) override;
    void ClampedInt(std::u16string_view key, int& value, int def, int min, int max) override;
    void UInt(std::u16string_view key, uint32_t& value, uint32_t def) override;
    void Text(std::u16string_view key, std::u16string& value, std::u16string_view def,
              TextCheck check) override;
    void FontFace(std::u16string_view key, std::u16string& value) override;
    void PastDate(std::u16string_view key, OleDate& value) override;
    void Binary(std::u16string_view key, std::vector<uint8_t>& bytes) override;
    void NumberedList(std::u16string_view baseKey, CRecentList& list) override;
    void Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements) override;

private:
    // The stored text when the key is present with a non-empty value.
    bool GetText(std::u16string_view key, std::u16string& value) const;

    const CConfFileParser& m_Parser;
};

// Appends every key to the parser. Empty texts and lists are left out: the file format cannot
// hold an empty value, and a missing key reads back as the same default.
class CPrefsSaver : public CPrefsVisitorBase
{
public:
    CPrefsSaver(CConfFileParser& parser, const SPreferencesEnvironment& env)
        : CPrefsVisitorBase(env), m_Parser(parser)
    {
    }

    void Bool(std::u16string_view key, bool& value, bool def) override;
    void Int(std::u16string_view key, int& value, int def, int min, int max) override;
    void ClampedInt(std::u16string_view key, int& value, int def, int min, int max) override;
    void UInt(std::u16string_view key, uint32_t& value, uint32_t def) override;
    void Text(std::u16string_view key, std::u16string& value, std::u16string_view def,
              TextCheck check) override;
    void FontFace(std::u16string_view key, std::u16string& value) override;
    void PastDate(std::u16string_view key, OleDate& value) override;
    void Binary(std::u16string_view key, std::vector<uint8_t>& bytes) override;
    void NumberedList(std::u16string_view baseKey, CRecentList& list) override;
    void Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements) override;

private:
    CConfFileParser& m_Parser;
};

class CPrefsResetter : public CPrefsVisitorBase
{
public:
    using CPrefsVisitorBase::CPrefsVisitorBase;

    void Bool(std::u16string_view key, bool& value, bool def) override;
    void Int(std::u16string_view key, int& value, int def, int min, int max) override;
    void ClampedInt(std::u16string_view key, int& value, int def, int min, int max) override;
    void UInt(std::u16string_view key, uint32_t& value, uint32_t def) override;
    void Text(std::u16string_view key, std::u16string& value, std::u16string_view def,
              TextCheck check) override;
    void FontFace(std::u16string_view key, std::u16string& value) override;
    void PastDate(std::u16string_view key, OleDate& value) override;
    void Binary(std::u16string_view key, std::vector<uint8_t>& bytes) override;
    void NumberedList(std::u16string_view baseKey, CRecentList& list) override;
    void Placements(std::u16string_view key, std::vector<SWndPlacementInfo>& placements) override;
};
