// Opens arbitrary bytes as a .ddb file (with and without a key, with normal and tiny cache
// limits), reads every record, changes a few, defragments and closes. Everything runs on an
// in-memory file system; the first input byte chooses the options.
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/DataFile/DataFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace
{
class CFuzzClock : public IClock
{
public:
    OleDate NowLocal() const override { return 46000.0; }
    uint32_t TickCountMs() const override { return m_Tick += 3; }

private:
    mutable uint32_t m_Tick = 0;
};

void ReadEverything(CDataFile& file)
{
    std::vector<uint8_t> data;
    const uint32_t count = file.GetRecordsCount();
    for (uint32_t i = 0; i < count; ++i)
    {
        const CUInt128 id = file.GetRecordID(i);
        file.GetRecordType(id);
        file.GetRecordSizeOnDisk(id);
        file.GetRecordData(id, data);
    }
    for (uint16_t type = 0; type < 4; ++type)
        if (file.GetTypedRecordsCount(type) > 0)
            file.GetRecordIDByTypedIndex(type, 0);
}

void ChangeSome(CDataFile& file)
{
    static const char text[] = "fuzzing changes the file in small ways";
    const uint32_t count = file.GetRecordsCount();
    if (count > 0)
        file.ModifyRecord(file.GetRecordID(0), text, sizeof text, 20);
    if (count > 1)
        file.DeleteRecord(file.GetRecordID(count / 2));
    file.AddRecord(text, 10, 1, true, 50);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size)
{
    if (size < 1)
        return 0;
    const uint8_t options = input[0];
    CMemFileSystem fs;
    const std::u16string path = u"/fuzz.ddb";
    fs.Bytes(path).assign(reinterpret_cast<const char*>(input + 1), size - 1);
    CFuzzClock clock;
    CDataFile file(fs, clock);
    std::vector<uint8_t> key;
    if (options & 1)
        key = {1, 2, 3, 4, 5};
    if (!file.Open(path, key))
        return 0;
    if (options & 2)
        file.SetCacheLimits(64, 16);
    ReadEverything(file);
    if (options & 4)
        ChangeSome(file);
    if (options & 8)
        file.DefragmentQuick(5);
    else
        file.DefragmentFull();
    ReadEverything(file);
    file.IsCacheConsistentWithFile();
    file.Close(true, (options & 16) ? 0xFFFFFFFF : 10);
    if (file.Open(path, key))
        ReadEverything(file);
    return 0;
}
