// Thousands of random operations checked after each step against a plain map of ID -> bytes,
// with and without a key and with tiny cache limits. After every reopen the directory restored
// from the cache record must equal what a scan of the file finds, and the file must always
// parse as an unbroken chain of records.
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

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
        ASSERT_TRUE(m_File.IsCacheConsistentWithFile());
        ApplyLimits();
        CheckAllData();
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
