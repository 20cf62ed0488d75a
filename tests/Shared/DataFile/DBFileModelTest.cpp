// Random sequences of field database operations checked against a map of records and fields,
// with closes and reopens, and defragmentation, along the way.
#include "DataFileTestSupport.h"
#include "Shared/DataFile/DBFile.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{
struct SModelRecord
{
    uint16_t type = 0;
    std::map<uint16_t, std::vector<uint8_t>> fields;
};
using Model = std::map<CUInt128, SModelRecord>;

void ExpectMatches(CDBFile& db, const Model& model)
{
    ASSERT_EQ(db.GetRecordsCount(), model.size());
    size_t fieldTotal = 0;
    for (const auto& [id, record] : model)
    {
        ASSERT_EQ(db.GetRecordType(id), record.type);
        ASSERT_EQ(db.GetFieldsCount(id), record.fields.size());
        fieldTotal += record.fields.size();
        for (uint16_t field = 1; field <= 64; field <<= 1)
        {
            const auto it = record.fields.find(field);
            ASSERT_EQ(db.IsFieldPresent(id, field), it != record.fields.end());
            if (it == record.fields.end())
                continue;
            std::vector<uint8_t> data;
            ASSERT_TRUE(db.GetFieldData(id, field, data));
            ASSERT_EQ(data, it->second);
        }
    }
    for (uint16_t type = 1; type <= 5; ++type)
    {
        size_t count = 0;
        for (const auto& [id, record] : model)
            count += record.type == type;
        ASSERT_EQ(db.GetRecordsCountByType(type), count);
        for (size_t i = 0; i < count; ++i)
            ASSERT_EQ(db.GetRecordType(db.GetRecordIDByTypedIndex(type, static_cast<uint32_t>(i))), type);
    }
    ASSERT_EQ(db.GetDataFile().GetTypedRecordsCount(2), fieldTotal);
}

std::vector<uint8_t> RandomData(std::mt19937& rng)
{
    std::uniform_int_distribution<int> sizes(0, 3);
    static const size_t choices[] = {0, 13, 300, 4100};
    std::vector<uint8_t> data(choices[sizes(rng)]);
    for (uint8_t& b : data)
        b = static_cast<uint8_t>(rng());
    return data;
}
} // namespace

TEST(DBFileModel, RandomOperationsMatchAMapOfRecords)
{
    CLogCapture log;
    CMemFileSystem fs;
    CStepClock clock(1);
    CDBFile db(fs, clock);
    const std::u16string path = u"/db/model.ddb";
    ASSERT_TRUE(db.Create(path, u"Model", 1, 1));
    Model model;
    std::mt19937 rng(20240611);
    auto pick = [&]() -> CUInt128
    {
        auto it = model.begin();
        std::advance(it, rng() % model.size());
        return it->first;
    };
    for (int step = 0; step < 1500; ++step)
    {
        const int op = static_cast<int>(rng() % 100);
        const auto field = static_cast<uint16_t>(1u << (rng() % 7));
        if (model.empty() || op < 15)
        {
            const auto type = static_cast<uint16_t>(1 + rng() % 5);
            const CUInt128 id = db.CreateRecord(type);
            ASSERT_FALSE(id.IsZero());
            model[id].type = type;
        }
        else if (op < 55)
        {
            const CUInt128 id = pick();
            const std::vector<uint8_t> data = RandomData(rng);
            ASSERT_TRUE(db.SetFieldData(id, field, data.data(), static_cast<uint32_t>(data.size()),
                                        static_cast<int>(rng() % 60)));
            model[id].fields[field] = data;
        }
        else if (op < 70)
        {
            const CUInt128 id = pick();
            const std::vector<uint8_t> first = RandomData(rng);
            const auto other = static_cast<uint16_t>(1u << (rng() % 7));
            const SDBFieldChange changes[] = {
                {field, first.data(), static_cast<uint32_t>(first.size()), 20, false},
                {other, nullptr, 0, 0, true}};
            ASSERT_TRUE(db.UpdateFields(id, changes));
            model[id].fields[field] = first;
            model[id].fields.erase(other);
        }
        else if (op < 82)
        {
            const CUInt128 id = pick();
            ASSERT_TRUE(db.DeleteField(id, field));
            model[id].fields.erase(field);
        }
        else if (op < 90)
        {
            const CUInt128 id = pick();
            ASSERT_TRUE(db.DeleteRecord(id));
            model.erase(id);
        }
        else if (op < 93)
        {
            const CUInt128 id = pick();
            ASSERT_TRUE(db.DeleteAllFields(id));
            model[id].fields.clear();
        }
        else if (op < 97)
        {
            db.Close(rng() % 2 == 0, 5);
            ASSERT_TRUE(db.Open(path));
        }
        else
            ASSERT_TRUE(db.GetDataFile().DefragmentQuick(3));
        if (step % 50 == 0)
            ExpectMatches(db, model);
    }
    ExpectMatches(db, model);
    db.Close(true, 0xFFFFFFFF);
    ASSERT_TRUE(db.Open(path));
    ExpectMatches(db, model);
    EXPECT_FALSE(log.HasText(u"Error"));
}
