// Thousands of random operations checked after each step against a plain map of ID -> bytes,
// with and without a key and with tiny cache limits. After every step the file's bytes, walked
// here without the data file's own scanner, must be an unbroken chain of records holding exactly
// the model's data; after every reopen the directory restored from the cache record must equal
// the one a second file object builds by scanning a copy without the cache record.
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace
{
const std::u16string Path = u"/data/model.ddb";

struct SModelRecord
{
    uint16_t type = 0;
    bool external = true;
    std::vector<uint8_t> data;
};

struct SModelCase
{
    bool withKey;
    bool tinyCache;
    uint32_t seed;
};

class CModelRun
{
public:
    explicit CModelRun(const SModelCase& c) : m_Case(c), m_Rng(c.seed), m_File(m_Fs, m_Clock)
    {
        if (c.withKey)
            m_Key = {0x11, 0x5A, 0xC3, 0x07, 0x99, 0x42, 0x13};
    }

    void Run(int steps)
    {
        ASSERT_TRUE(m_File.Create(Path, u"Model", 1, 1, m_Key));
        ApplyLimits();
        for (int step = 0; step < steps; ++step)
        {
            const int op = static_cast<int>(m_Rng() % 100);
            SCOPED_TRACE("step " + std::to_string(step) + ", op " + std::to_string(op));
            if (op < 30)
                Add();
            else if (op < 50)
                Modify();
            else if (op < 64)
                Delete();
            else if (op < 65)
                DeleteAll();
            else if (op < 72)
                QuickDefragment();
            else if (op < 74)
                ASSERT_TRUE(m_File.DefragmentFull());
            else if (op < 79)
                Reopen();
            else
                ReadOne();
            CheckQueries();
            CheckFileBytes();
            ASSERT_TRUE(m_File.IsCacheConsistentWithFile());
            if (::testing::Test::HasFatalFailure())
                return;
        }
        CheckAllData();
    }

private:
    void ApplyLimits()
    {
        if (m_Case.tinyCache)
            m_File.SetCacheLimits(700, 120);
    }

    std::vector<uint8_t> RandomData(uint32_t size)
    {
        std::vector<uint8_t> data(size);
        for (auto& b : data)
            b = static_cast<uint8_t>(m_Rng() % 4 == 0 ? 0 : m_Rng());
        return data;
    }

    uint32_t RandomSize()
    {
        const uint32_t kind = m_Rng() % 10;
        if (kind == 0)
            return 0;
        if (kind < 7)
            return m_Rng() % 200;
        return m_Rng() % 3000;
    }

    int RandomReserve()
    {
        static const int reserves[] = {0, 0, 10, 20, 50, 100, 2000, -3};
        return reserves[m_Rng() % 8];
    }

    CUInt128 PickId()
    {
        auto it = m_Model.begin();
        std::advance(it, m_Rng() % m_Model.size());
        return it->first;
    }

    void Add()
    {
        SModelRecord record;
        record.type = static_cast<uint16_t>(1 + m_Rng() % 4);
        record.external = m_Rng() % 8 != 0;
        record.data = RandomData(RandomSize());
        const CUInt128 id = m_File.AddRecord(record.data.data(), static_cast<uint32_t>(record.data.size()),
                                             record.type, record.external, RandomReserve());
        ASSERT_FALSE(id.IsZero());
        ASSERT_EQ(m_Model.count(id), 0u) << "an ID was handed out twice";
        m_Model[id] = record;
    }

    void Modify()
    {
        if (m_Model.empty())
            return;
        const CUInt128 id = PickId();
        SModelRecord& record = m_Model[id];
        const size_t old = record.data.size();
        switch (m_Rng() % 4)
        {
        case 0: // same bytes
            break;
        case 1:
            record.data = RandomData(static_cast<uint32_t>(old));
            break;
        case 2:
            record.data = RandomData(static_cast<uint32_t>(old / 2));
            break;
        default:
            record.data = RandomData(static_cast<uint32_t>(old + old / 2 + 1 + m_Rng() % 300));
            break;
        }
        ASSERT_TRUE(m_File.ModifyRecord(id, record.data.data(), static_cast<uint32_t>(record.data.size()),
                                        RandomReserve()));
    }

    void Delete()
    {
        if (m_Model.empty())
            return;
        const CUInt128 id = PickId();
        ASSERT_TRUE(m_File.DeleteRecord(id));
        m_Model.erase(id);
        EXPECT_EQ(m_File.GetRecordSize(id), 0u);
    }

    void DeleteAll()
    {
        ASSERT_TRUE(m_File.DeleteAllRecords(false));
        m_Model.clear();
    }

    void QuickDefragment()
    {
        m_Clock.SetStep(1);
        ASSERT_TRUE(m_File.DefragmentQuick(m_Rng() % 4));
        m_Clock.SetStep(0);
    }

    void Reopen()
    {
        const bool defragment = m_Rng() % 3 == 0;
        m_Clock.SetStep(1);
        m_File.Close(defragment, defragment ? m_Rng() % 5 : 0);
        m_Clock.SetStep(0);
        ASSERT_TRUE(m_File.Open(Path, m_Key));
        EXPECT_TRUE(m_File.WasCacheLoadedFromRecord());
        CompareWithScannedCopy();
        ASSERT_TRUE(m_File.IsCacheConsistentWithFile());
        ApplyLimits();
        CheckAllData();
    }

    // Records follow one another from the header size to the end of the file, none torn, none
    // past the end; the live ones are the model's records (plus the cache record while it is
    // current) with their kind, type and data, deciphered at their own offset; the free blocks
    // give the fragmentation level.
    void CheckFileBytes()
    {
        const std::string& bytes = m_Fs.Bytes(Path);
        ASSERT_GE(bytes.size(), 1464u);
        const CUInt128 cacheRecordId = ReadId(bytes, 472);
        uint64_t position = ReadU32(bytes, 8);
        uint64_t freeBytes = 0;
        size_t live = 0;
        while (position < bytes.size())
        {
            ASSERT_LE(position + 40, bytes.size()) << "torn record header at " << position;
            const CUInt128 id = ReadId(bytes, position);
            const uint32_t state = ReadU32(bytes, position + 16);
            const uint16_t type = static_cast<uint16_t>(ReadU32(bytes, position + 20));
            const uint32_t dataSize = ReadU32(bytes, position + 24);
            const uint32_t allocated = ReadU32(bytes, position + 28);
            const uint32_t flags = ReadU32(bytes, position + 32);
            ASSERT_LE(dataSize, allocated) << "at " << position;
            ASSERT_LE(position + 40 + allocated, bytes.size())
                << "record at " << position << " runs past the end";
            if (state != 2)
            {
                ASSERT_EQ(flags & ~0x7FFu, 0u);
                ASSERT_EQ((flags & 0x400) != 0, m_Key.empty()) << "live record at " << position;
            }
            if (state == 2)
                freeBytes += allocated + 40;
            else if (state == 0 && id == cacheRecordId)
                ASSERT_EQ(type, 0);
            else
            {
                const auto it = m_Model.find(id);
                ASSERT_TRUE(it != m_Model.end()) << "unknown live record at " << position;
                ASSERT_EQ(state, it->second.external ? 1u : 0u);
                ASSERT_EQ(type, it->second.type);
                std::vector<uint8_t> data(bytes.begin() + static_cast<std::ptrdiff_t>(position + 40),
                                          bytes.begin() +
                                              static_cast<std::ptrdiff_t>(position + 40 + dataSize));
                if (!m_Key.empty())
                    ReferenceCipher(m_Key, data.data(), dataSize, position + 40);
                ASSERT_EQ(data, it->second.data) << "record at " << position;
                ++live;
            }
            position += 40 + static_cast<uint64_t>(allocated);
        }
        ASSERT_EQ(position, bytes.size());
        ASSERT_EQ(live, m_Model.size());
        ASSERT_EQ(m_File.GetFragmentationLevel(), static_cast<int>(100.0 * static_cast<uint32_t>(freeBytes) /
                                                                   static_cast<double>(bytes.size())));
    }

    // A copy whose header names no cache record is opened by a second object, which must scan it.
    void CompareWithScannedCopy()
    {
        const std::u16string copyPath = u"/data/scanned.ddb";
        std::string& copy = m_Fs.Bytes(copyPath);
        copy = m_Fs.Bytes(Path);
        std::fill(copy.begin() + 464, copy.begin() + 488, '\0');
        CDataFile scanned(m_Fs, m_Clock);
        ASSERT_TRUE(scanned.Open(copyPath, m_Key));
        ASSERT_FALSE(scanned.WasCacheLoadedFromRecord());
        ASSERT_EQ(scanned.GetRecordsCount(), m_File.GetRecordsCount());
        ASSERT_EQ(scanned.GetFragmentationLevel(), m_File.GetFragmentationLevel());
        std::set<CUInt128> loadedIds;
        std::set<CUInt128> scannedIds;
        for (uint32_t i = 0; i < m_File.GetRecordsCount(); ++i)
        {
            loadedIds.insert(m_File.GetRecordID(i));
            scannedIds.insert(scanned.GetRecordID(i));
        }
        ASSERT_EQ(loadedIds, scannedIds);
        for (uint16_t type = 1; type <= 4; ++type)
            ASSERT_EQ(scanned.GetTypedRecordsCount(type), m_File.GetTypedRecordsCount(type));
        for (const auto& [id, record] : m_Model)
        {
            ASSERT_EQ(scanned.GetRecordType(id), m_File.GetRecordType(id));
            ASSERT_EQ(scanned.GetRecordSize(id), m_File.GetRecordSize(id));
            ASSERT_EQ(scanned.GetRecordSizeOnDisk(id), m_File.GetRecordSizeOnDisk(id));
        }
        scanned.Close(false, 0);
        int cause = 0;
        ASSERT_TRUE(m_Fs.Delete(copyPath, cause));
    }

    void ReadOne()
    {
        if (m_Model.empty())
            return;
        const CUInt128 id = PickId();
        std::vector<uint8_t> data;
        ASSERT_TRUE(m_File.GetRecordData(id, data));
        ASSERT_EQ(data, m_Model[id].data);
    }

    void CheckQueries()
    {
        std::map<uint16_t, uint32_t> typed;
        uint32_t external = 0;
        for (const auto& [id, record] : m_Model)
        {
            ASSERT_EQ(m_File.GetRecordType(id), record.type);
            ASSERT_EQ(m_File.GetRecordSize(id), record.data.size());
            ASSERT_GE(m_File.GetRecordSizeOnDisk(id), record.data.size() + 40);
            if (record.external)
            {
                ++external;
                ++typed[record.type];
            }
        }
        ASSERT_EQ(m_File.GetRecordsCount(), external);
        for (uint32_t i = 0; i < external; ++i)
        {
            const auto it = m_Model.find(m_File.GetRecordID(i));
            ASSERT_TRUE(it != m_Model.end() && it->second.external);
        }
        for (uint16_t type = 1; type <= 4; ++type)
        {
            ASSERT_EQ(m_File.GetTypedRecordsCount(type), typed[type]);
            for (uint32_t i = 0; i < typed[type]; ++i)
                ASSERT_EQ(m_Model[m_File.GetRecordIDByTypedIndex(type, i)].type, type);
        }
        const int level = m_File.GetFragmentationLevel();
        ASSERT_TRUE(level >= 0 && level <= 100);
    }

    void CheckAllData()
    {
        for (const auto& [id, record] : m_Model)
        {
            std::vector<uint8_t> data;
            ASSERT_TRUE(m_File.GetRecordData(id, data));
            ASSERT_EQ(data, record.data);
        }
    }

    SModelCase m_Case;
    std::mt19937 m_Rng;
    CMemFileSystem m_Fs;
    CStepClock m_Clock;
    CDataFile m_File;
    std::vector<uint8_t> m_Key;
    std::map<CUInt128, SModelRecord> m_Model;
};
} // namespace

class DataFileModel : public ::testing::TestWithParam<SModelCase>
{
};

TEST_P(DataFileModel, RandomOperationsMatchPlainMap)
{
    CModelRun run(GetParam());
    run.Run(1500);
}

INSTANTIATE_TEST_SUITE_P(Cases, DataFileModel,
                         ::testing::Values(SModelCase{false, false, 1}, SModelCase{true, false, 2},
                                           SModelCase{false, true, 3}, SModelCase{true, true, 4},
                                           SModelCase{true, false, 5}));
