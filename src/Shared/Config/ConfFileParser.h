#pragma once
// The plain key=value text files of the system (preferences, skin and sound descriptions, and
// the like). Lines are kept in file order exactly as they stood; keys may repeat and look-ups
// answer the first occurrence; setters only ever append. Files are written as UTF-16LE with a
// byte-order mark and CR LF after every line.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class IFileSystem;

struct SConfigLineEntry
{
    std::u16string key;
    std::u16string value;
};

class CConfFileParser
{
public:
    // Without a file system the disk is used.
    explicit CConfFileParser(IFileSystem* fs = nullptr);

    // Remembers `path` (also for Save), reads the whole file and parses it.
    bool Load(const std::u16string& path);
    // Parses `size` bytes of file content; the entries found replace the current ones.
    bool Parse(const void* buffer, size_t size);
    // Writes the entries to the remembered path.
    bool Save();
    void SetPath(const std::u16string& path) { m_Path = path; }
    void RemoveAll() { m_Entries.clear(); }

    // Look-ups by exact key; the output is left alone when the key is missing.
    bool GetString(std::u16string_view key, std::u16string& value) const;
    bool GetInt(std::u16string_view key, int& value) const;
    bool GetUInt(std::u16string_view key, unsigned& value) const;
    bool GetDouble(std::u16string_view key, double& value) const;
    bool GetBool(std::u16string_view key, bool& value) const;
    // False also when the text decodes to nothing.
    bool GetBinary(std::u16string_view key, std::vector<uint8_t>& value) const;
    // False also when the number of comma-separated items differs from `expectedCount`.
    bool GetIntList(std::u16string_view key, size_t expectedCount, std::vector<int>& values) const;

    void SetString(std::u16string_view key, std::u16string_view value);
    void SetBool(std::u16string_view key, bool value);
    void SetUInt(std::u16string_view key, unsigned value);
    void SetDouble(std::u16string_view key, double value);
    void SetBinary(std::u16string_view key, const void* data, size_t size);

    const std::vector<SConfigLineEntry>& Entries() const { return m_Entries; }
    const std::u16string& Path() const { return m_Path; }
    bool IsLoaded() const { return m_Loaded; }

private:
    const SConfigLineEntry* Find(std::u16string_view key) const;
    void ParseLines(std::u16string_view text);

    IFileSystem& m_Fs;
    std::u16string m_Path;
    bool m_Loaded = false;
    std::vector<SConfigLineEntry> m_Entries;
};

// The C library's wide string-to-integer reading: leading white space, an optional sign and the
// decimal digits that follow; 0 when there are none, and the nearest limit when out of range.
int WideTextToInt(std::u16string_view text);
// As above but kept in 64 bits, for readers that need the unsigned range.
long long WideTextToLongLong(std::u16string_view text);
// The C library's wide string-to-double reading of the longest valid prefix; 0 when none.
double WideTextToDouble(std::u16string_view text);
