// Any bytes given to the configuration parser must give entries or a clear failure; the entries
// found must come back unchanged through a save and a load when no value holds a line break.
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Config/ConfFileParser.h"

#include <cstdlib>

namespace
{
void ReadEveryType(const CConfFileParser& parser, const std::u16string& key)
{
    std::u16string text;
    int i = 0;
    unsigned u = 0;
    double d = 0;
    bool b = false;
    std::vector<uint8_t> bytes;
    std::vector<int> list;
    parser.GetString(key, text);
    parser.GetInt(key, i);
    parser.GetUInt(key, u);
    parser.GetDouble(key, d);
    parser.GetBool(key, b);
    parser.GetBinary(key, bytes);
    parser.GetIntList(key, 4, list);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CMemFileSystem fs;
    fs.Bytes(u"/in.ini").assign(reinterpret_cast<const char*>(data), size);
    CConfFileParser parser(&fs);
    if (!parser.Load(u"/in.ini"))
        return 0;
    for (size_t i = 0; i < parser.Entries().size() && i < 64; ++i)
        ReadEveryType(parser, parser.Entries()[i].key);

    parser.SetPath(u"/out.ini");
    if (!parser.Save())
        std::abort();
    CConfFileParser reloaded(&fs);
    if (!reloaded.Load(u"/out.ini"))
        std::abort();
    const auto& before = parser.Entries();
    const auto& after = reloaded.Entries();
    if (before.size() != after.size())
        std::abort();
    for (size_t i = 0; i < before.size(); ++i)
        if (before[i].key != after[i].key || before[i].value != after[i].value)
            std::abort();
    return 0;
}
