// The field database: header record bytes, round trips through close and reopen, damaged
// headers and dangling fields, the rollback of an added field, read-only files and index errors.
#include "Shared/DataFile/DBFile.h"
#include "DataFileTestSupport.h"

#include <gtest/gtest.h>

namespace
{
const std::u16string Path = u"/db/test.ddb";
constexpr uint32_t FileType = 0x74726565;

class DBFileTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(db.Create(Path, u"Test [x]", FileType, 7000)); }

    std::vector<uint8_t> Field(const CUInt128& id, uint16_t type)
    {
        std::vector<uint8_t> data;
        EXPECT_TRUE(db.GetFieldData(id, type, data));
        return data;
    }
    void Reopen()
    {
        db.Close(false, 0);
        ASSERT_TRUE(db.Open(Path));
    }
    // Adds a raw data-file record of type 1 that the database should treat as a header.
    CUInt128 AddRawHeader(const std::vector<uint8_t>& bytes)
    {
        return db.GetDataFile().AddRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), 1, true, 0);
    }

    CLogCapture log;
    CMemFileSystem fs;
    CDBFile db{fs};
};

std::vector<uint8_t> HeaderBytes(uint16_t type, uint32_t count, size_t size)
{
    std::vector<uint8_t> bytes(size, 0);
    bytes[0] = static_cast<uint8_t>(type);
    for (int i = 0; i < 4; ++i)
        bytes[20 + i] = static_cast<uint8_t>(count >> (8 * i));
    return bytes;
}
} // namespace

TEST_F(DBFileTest, HeaderRecordBytesMatchTheLayout)
{
    const CUInt128 id = db.CreateRecord(7, {1, 0x01020304, 0, 0xFFFFFFFF});
    ASSERT_EQ(id, CUInt128(1));
    std::vector<uint8_t> raw;
    ASSERT_TRUE(db.GetDataFile().GetRecordData(id, raw));
    const std::vector<uint8_t> empty = {7, 0, 0, 0, 1,    0,    0,    0,    4, 3, 2, 1,
                                        0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0};
    EXPECT_EQ(raw, empty);

    const uint8_t data[] = {0xAB, 0xCD};
    ASSERT_TRUE(db.SetFieldData(id, 0x1234, data, 2, 0));
    ASSERT_TRUE(db.GetDataFile().GetRecordData(id, raw));
    std::vector<uint8_t> expected = empty;
    expected[20] = 1; // one field
    const std::vector<uint8_t> entry = {0x34, 0x12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0};
    expected.insert(expected.end(), entry.begin(), entry.end());
    EXPECT_EQ(raw, expected);
    EXPECT_EQ(db.GetDataFile().GetRecordType(CUInt128(2)), 2);
    EXPECT_EQ(db.GetDataFile().GetTypedRecordsCount(1), 1u);
}

TEST_F(DBFileTest, RecordsFieldsAndInfoSurviveReopen)
{
    const CUInt128 a = db.CreateRecord(3, {9, 8, 7, 6});
    const CUInt128 b = db.CreateRecord(5);
    const std::string big(5000, 'x');
    ASSERT_TRUE(db.SetFieldData(a, 1, "caption", 7, 50));
    ASSERT_TRUE(db.SetFieldData(a, 16, big.data(), static_cast<uint32_t>(big.size()), 20));
    ASSERT_TRUE(db.SetFieldData(b, 1, "", 0, 0));
    ASSERT_TRUE(db.SetFieldData(a, 1, "longer caption", 14, 50)); // rewrite in place or moved
    Reopen();
    EXPECT_EQ(db.GetRecordsCount(), 2u);
    EXPECT_EQ(db.GetRecordType(a), 3);
    DBRecordInfo info{};
    ASSERT_TRUE(db.GetRecordInfo(a, info));
    EXPECT_EQ(info, (DBRecordInfo{9, 8, 7, 6}));
    EXPECT_EQ(db.GetFieldsCount(a), 2u);
    EXPECT_EQ(db.GetFieldType(a, 0), 1);
    EXPECT_EQ(db.GetFieldType(a, 1), 16);
    EXPECT_EQ(Field(a, 1), Bytes("longer caption"));
    EXPECT_EQ(Field(a, 16), Bytes(big));
    EXPECT_TRUE(db.IsFieldPresent(b, 1));
    EXPECT_TRUE(Field(b, 1).empty());
    SDBRecordStatus status;
    ASSERT_TRUE(db.GetRecordStatus(a, status));
    EXPECT_EQ(status.recordType, 3);
    EXPECT_EQ(status.fieldsCount, 2u);
    EXPECT_EQ(status.fieldsMask, 17u);
    EXPECT_EQ(db.GetRecordsCountByType(3), 1u);
    EXPECT_EQ(db.GetRecordIDByTypedIndex(5, 0), b);
}

TEST_F(DBFileTest, DeletingFieldsAndRecordsRemovesTheirDataRecords)
{
    const CUInt128 a = db.CreateRecord(3);
    for (uint16_t field : {1, 2, 4, 8})
        ASSERT_TRUE(db.SetFieldData(a, field, "data", 4, 0));
    ASSERT_TRUE(db.DeleteField(a, 2));
    ASSERT_TRUE(db.DeleteField(a, 2)); // already gone: nothing to do
    EXPECT_FALSE(db.IsFieldPresent(a, 2));
    EXPECT_EQ(db.GetDataFile().GetTypedRecordsCount(2), 3u);
    std::vector<uint8_t> raw;
    ASSERT_TRUE(db.GetDataFile().GetRecordData(a, raw));
    EXPECT_EQ(raw.size(), 24u + 3 * 20);

    ASSERT_TRUE(db.DeleteAllFields(a));
    EXPECT_EQ(db.GetFieldsCount(a), 0u);
    EXPECT_EQ(db.GetDataFile().GetTypedRecordsCount(2), 0u);
    ASSERT_TRUE(db.GetDataFile().GetRecordData(a, raw));
    EXPECT_EQ(raw.size(), 24u);

    ASSERT_TRUE(db.SetFieldData(a, 4, "x", 1, 0));
    ASSERT_TRUE(db.DeleteRecord(a));
    EXPECT_EQ(db.GetDataFile().GetRecordsCount(), 0u);
    EXPECT_EQ(db.GetRecordsCount(), 0u);
    log.Clear();
    EXPECT_FALSE(db.DeleteRecord(a));
    EXPECT_TRUE(log.Has(u"Error: Attempt to delete record by invalid record ID."));
    EXPECT_FALSE(db.IsFieldPresent(a, 4));
    EXPECT_TRUE(log.Has(
        u"Error: Cannot get database record cache info on querying for record field presence status"));
}

TEST_F(DBFileTest, UpdateFieldsSavesTheHeaderOnceForAllNewFields)
{
    const CUInt128 a = db.CreateRecord(3);
    ASSERT_TRUE(db.SetFieldData(a, 8, "old", 3, 0));
    const SDBFieldChange changes[] = {
        {1, "one", 3, 50, false}, {2, "two", 3, 0, false}, {8, nullptr, 0, 0, true}};
    ASSERT_TRUE(db.UpdateFields(a, changes));
    Reopen();
    EXPECT_EQ(db.GetFieldsCount(a), 2u);
    EXPECT_EQ(Field(a, 1), Bytes("one"));
    EXPECT_EQ(Field(a, 2), Bytes("two"));
    EXPECT_FALSE(db.IsFieldPresent(a, 8));
    EXPECT_EQ(db.GetDataFile().GetTypedRecordsCount(2), 2u);
}

TEST_F(DBFileTest, DamagedHeadersAreSkippedAndTheFileOpens)
{
    const CUInt128 good = db.CreateRecord(3);
    ASSERT_TRUE(db.SetFieldData(good, 1, "ok", 2, 0));
    AddRawHeader(std::vector<uint8_t>(23, 0));
    AddRawHeader(HeaderBytes(3, 1, 24 + 20 - 1));
    AddRawHeader(HeaderBytes(3, 1, 24 + 20 + 1));
    AddRawHeader(HeaderBytes(3, 0xFFFFFFFF, 24)); // a count that would ask for 80 GB
    log.Clear();
    Reopen();
    EXPECT_TRUE(log.Has(u"Error: Cannot get DB record header data."));
    EXPECT_TRUE(
        log.Has(u"Error: DB record header seems to be corrupted. Expected size - 44, actual size - 43"));
    EXPECT_TRUE(
        log.Has(u"Error: DB record header seems to be corrupted. Expected size - 44, actual size - 45"));
    // The expected size is printed in 32 bits, as 24 + 20 x N wraps there.
    EXPECT_TRUE(
        log.Has(u"Error: DB record header seems to be corrupted. Expected size - 4, actual size - 24"));
    EXPECT_EQ(db.GetRecordsCount(), 1u);
    EXPECT_EQ(Field(good, 1), Bytes("ok"));
}

TEST_F(DBFileTest, FieldsThatPointNowhereAreNotPresent)
{
    // Fields 1 -> a missing record, 2 -> a record of type 3, 4 -> a real field record.
    const uint8_t data[] = {1, 2, 3};
    const CUInt128 wrongType = db.GetDataFile().AddRecord(data, 3, 3, true, 0);
    const CUInt128 real = db.GetDataFile().AddRecord(data, 3, 2, true, 0);
    std::vector<uint8_t> header = HeaderBytes(3, 3, 24 + 60);
    const std::pair<uint16_t, CUInt128> fields[] = {{1, CUInt128(999)}, {2, wrongType}, {4, real}};
    for (size_t i = 0; i < 3; ++i)
    {
        header[24 + 20 * i] = static_cast<uint8_t>(fields[i].first);
        fields[i].second.ToBytes(header.data() + 24 + 20 * i + 4);
    }
    const CUInt128 id = AddRawHeader(header);
    Reopen();
    EXPECT_FALSE(db.IsFieldPresent(id, 1));
    EXPECT_FALSE(db.IsFieldPresent(id, 2));
    EXPECT_TRUE(db.IsFieldPresent(id, 4));
    EXPECT_EQ(Field(id, 4), std::vector<uint8_t>(data, data + 3));
    log.Clear();
    std::vector<uint8_t> out;
    EXPECT_FALSE(db.GetFieldData(id, 1, out));
    EXPECT_TRUE(log.HasText(u"Error: Cannot get database record field data, as the field is not present"));
    // The next header save writes only the fields that exist.
    ASSERT_TRUE(db.SetFieldData(id, 8, "p", 1, 0));
    ASSERT_TRUE(db.GetDataFile().GetRecordData(id, out));
    EXPECT_EQ(out.size(), 24u + 2 * 20);
}

TEST_F(DBFileTest, AFailedHeaderSaveLeavesNoOrphanFieldRecord)
{
    const CUInt128 id = db.CreateRecord(3);
    bool rolledBack = false;
    const std::string big(3000, 'b');
    for (int failAfter = 0; failAfter < 12; ++failAfter)
    {
        // Keep the header full so that adding a field must move it.
        fs.Faults().failWriteAfter = failAfter;
        log.Clear();
        db.SetFieldData(id, static_cast<uint16_t>(100 + failAfter), big.data(),
                        static_cast<uint32_t>(big.size()), 0);
        fs.Faults().failWriteAfter = -1;
        rolledBack =
            rolledBack || log.Has(u"Error: Cannot add database record field (cannot save header changes)");
        uint32_t fields = 0;
        for (uint32_t i = 0; i < db.GetRecordsCount(); ++i)
            fields += db.GetFieldsCount(db.GetRecordID(i));
        ASSERT_EQ(db.GetDataFile().GetTypedRecordsCount(2), fields) << "after failing write " << failAfter;
        ASSERT_TRUE(db.GetDataFile().IsCacheConsistentWithFile());
    }
    EXPECT_TRUE(rolledBack);
    // What the cache believes is what a reopen finds.
    const uint32_t fields = db.GetFieldsCount(id);
    Reopen();
    EXPECT_EQ(db.GetFieldsCount(id), fields);
    EXPECT_EQ(db.GetDataFile().GetTypedRecordsCount(2), fields);
}

TEST_F(DBFileTest, ReadOnlyFilesRefuseEveryChange)
{
    const CUInt128 id = db.CreateRecord(3);
    ASSERT_TRUE(db.SetFieldData(id, 1, "x", 1, 0));
    ASSERT_TRUE(db.GetDataFile().SetReadOnly(true));
    const std::u16string name = u" File name - " + Path;
    log.Clear();
    EXPECT_TRUE(db.CreateRecord(3).IsZero());
    EXPECT_TRUE(log.Has(u"Warning: attempt to create record in read-only database file." + name));
    EXPECT_FALSE(db.SetFieldData(id, 2, "y", 1, 0));
    EXPECT_TRUE(log.Has(u"Warning: attempt to set record field for read-only database file." + name));
    EXPECT_FALSE(db.DeleteField(id, 1));
    EXPECT_TRUE(log.Has(u"Warning: attempt to delete record field from read-only database file." + name));
    EXPECT_FALSE(db.DeleteAllFields(id));
    EXPECT_TRUE(log.Has(u"Warning: attempt to delete all record fields in read-only database file." + name));
    EXPECT_FALSE(db.DeleteRecord(id));
    EXPECT_TRUE(log.Has(u"Warning: attempt to delete record from read-only database file." + name));
    EXPECT_FALSE(db.DeleteAllRecords());
    EXPECT_TRUE(
        log.Has(u"Warning: attempt to delete all database records from read-only database file." + name));
    EXPECT_EQ(db.GetRecordsCount(), 1u);
    EXPECT_EQ(Field(id, 1), Bytes("x"));
}

TEST_F(DBFileTest, IndexErrorsAndClosedDatabase)
{
    const CUInt128 id = db.CreateRecord(4);
    log.Clear();
    EXPECT_TRUE(db.GetRecordID(1).IsZero());
    EXPECT_TRUE(
        log.Has(u"Error: Cannot get record ID by its index in the database file, as index is out of valid "
                u"range. Index value - 1, max possible value - 0"));
    EXPECT_TRUE(db.GetRecordIDByTypedIndex(9, 0).IsZero());
    EXPECT_TRUE(
        log.Has(u"Error: Cannot get record ID by typed index, invalid type value specified (9) [DB]"));
    EXPECT_TRUE(db.GetRecordIDByTypedIndex(4, 3).IsZero());
    EXPECT_TRUE(log.Has(u"Error: Cannot get record ID by typed index, index value is out of valid range. Max "
                        u"possible index value - 0, requested index value - 3 [DB]"));
    EXPECT_EQ(db.GetFieldType(id, 0), 0);
    EXPECT_TRUE(
        log.Has(u"Error: Cannot get database record filed type, as its index is invalid. Queried filed "
                u"index - 0, max possible index - -1"));
    ASSERT_TRUE(db.DeleteRecord(id));
    EXPECT_TRUE(db.GetRecordIDByTypedIndex(4, 0).IsZero());
    EXPECT_TRUE(
        log.Has(u"Error: Cannot get record ID by typed index, invalid type value specified (4) [DB]"));

    db.Close(false, 0);
    log.Clear();
    EXPECT_EQ(db.GetRecordsCount(), 0u);
    EXPECT_TRUE(log.Has(u"Error: Cannot get records count in the database file, as database is not open"));
    EXPECT_TRUE(db.CreateRecord(1).IsZero());
    EXPECT_TRUE(log.Has(u"Error: Cannot create new database record, as database is not open"));
    EXPECT_FALSE(db.SetFieldData(id, 1, "x", 1, 0));
    EXPECT_TRUE(log.Has(u"Error: Cannot get database file record field data, as database is not open"));
}

TEST_F(DBFileTest, DeleteAllRecordsEmptiesTheDatabaseButNeverReusesIds)
{
    const CUInt128 a = db.CreateRecord(1);
    ASSERT_TRUE(db.SetFieldData(a, 1, "x", 1, 0));
    ASSERT_TRUE(db.DeleteAllRecords());
    EXPECT_EQ(db.GetRecordsCount(), 0u);
    EXPECT_EQ(db.GetDataFile().GetRecordsCount(), 0u);
    EXPECT_GT(db.CreateRecord(1), CUInt128(2));
}

TEST_F(DBFileTest, ReopeningAKeyedFileKeepsEverything)
{
    const uint8_t key[] = {7, 1, 9, 200, 13};
    ASSERT_TRUE(db.Create(Path, u"Test [x]", FileType, 7000, key));
    const CUInt128 id = db.CreateRecord(3, {1, 2, 3, 4});
    ASSERT_TRUE(db.SetFieldData(id, 16, "secret text", 11, 20));
    db.Close(true, 0xFFFFFFFF);
    EXPECT_EQ(fs.Bytes(Path).find("secret text"), std::string::npos);
    ASSERT_TRUE(db.Open(Path, key));
    EXPECT_EQ(Field(id, 16), Bytes("secret text"));
}
