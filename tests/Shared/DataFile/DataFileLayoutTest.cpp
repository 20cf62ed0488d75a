// Byte layouts of the .ddb container checked against bytes computed by hand.
#include "DataFileTestSupport.h"
#include "Shared/DataFile/DataFileCacheRecord.h"
#include "Shared/DataFile/DataFileCipher.h"
#include "Shared/DataFile/DataFileHeader.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
const std::u16string Path = u"/data/test.ddb";

std::string Hex(const std::string& bytes, size_t offset, size_t size)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (size_t i = 0; i < size; ++i)
    {
        const auto b = static_cast<uint8_t>(bytes[offset + i]);
        out += digits[b >> 4];
        out += digits[b & 15];
        if (i + 1 < size)
            out += ' ';
    }
    return out;
}
} // namespace

TEST(DataFileLayout, NewFileHeaderBytes)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"Qu [x]", 0x74726565, 7000));
    const std::string bytes = fs.Bytes(Path);
    ASSERT_EQ(bytes.size(), 1464u);
    EXPECT_EQ(Hex(bytes, 0, 12), "5F 42 44 5F 01 00 00 00 B8 05 00 00");
    EXPECT_EQ(Hex(bytes, 12, 14), "51 00 75 00 20 00 5B 00 78 00 5D 00 00 00");
    // Read-only and reserved bytes, type, version, key checksum 0, then the ID counter 1: twelve
    // zero bytes and 01 00 00 00.
    EXPECT_EQ(Hex(bytes, 414, 14), "00 00 65 65 72 74 58 1B 00 00 00 00 00 00");
    EXPECT_EQ(Hex(bytes, 428, 16), "00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00");
    EXPECT_EQ(bytes.find_first_not_of('\0', 444), std::string::npos);
    EXPECT_EQ(file.GetCreatorSignature(), u"Qu [x]");
}

TEST(DataFileLayout, CreatorSignatureIsCutTo200UnitsAndTerminated)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, std::u16string(300, u'W'), 1, 1));
    const std::string bytes = fs.Bytes(Path);
    EXPECT_EQ(Hex(bytes, 12 + 2 * 199, 4), "57 00 00 00");
    EXPECT_EQ(file.GetCreatorSignature(), std::u16string(200, u'W'));
}

TEST(DataFileLayout, RecordHeaderAndAllocation)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    ASSERT_TRUE(file.Create(Path, u"T", 1, 1));
    const std::string ten = "0123456789";
    const CUInt128 id = file.AddRecord(ten.data(), 10, 0x1234, true, 20);
    EXPECT_EQ(id, CUInt128(1));
    const std::string bytes = fs.Bytes(Path);
    ASSERT_EQ(bytes.size(), 1464u + 40 + 64); // 10 bytes with a reserve get the 64-byte minimum
    EXPECT_EQ(Hex(bytes, 1464, 40),
              "00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 34 12 00 00 0A 00 "
              "00 00 40 00 00 00 14 04 00 00 00 00 00 00");
    EXPECT_EQ(bytes.substr(1504, 10), ten);
    EXPECT_EQ(file.GetRecordSizeOnDisk(id), 104u);

    const CUInt128 plain = file.AddRecord(ten.data(), 10, 3, false, 0);
    EXPECT_EQ(file.GetRecordSizeOnDisk(plain), 50u);
    // 2000 percent wraps through the 10-bit field to no reserve at all.
    const CUInt128 wrapped = file.AddRecord(ten.data(), 10, 3, true, 2000);
    const std::string after = fs.Bytes(Path);
    EXPECT_EQ(Hex(after, 1464 + 104 + 50, 40).substr(72), "0A 00 00 00 0A 00 00 00 00 04 00 00 00 00 00 00");
    EXPECT_EQ(file.GetRecordSizeOnDisk(wrapped), 50u);
    EXPECT_EQ(ReadU32(after, 428 + 12), 4u); // the counter is on disk at once
}

TEST(DataFileLayout, CacheRecordBytes)
{
    CMemFileSystem fs;
    CLogCapture log;
    {
        CDataFile file(fs);
        ASSERT_TRUE(file.Create(Path, u"T", 1, 1));
        ASSERT_EQ(file.AddRecord("hi", 2, 7, true, 0), CUInt128(1));
        ASSERT_EQ(file.AddRecord("xyz", 3, 7, true, 0), CUInt128(2));
        ASSERT_TRUE(file.DeleteRecord(CUInt128(1)));
        log.Clear();
        file.Close(false, 0);
    }
    EXPECT_TRUE(log.Has(u"Info: Saved cache record size. Its size = 66."));
    const std::string bytes = fs.Bytes(Path);
    EXPECT_EQ(ReadU64(bytes, 464), 1549u); // appended after record 2 (1506 + 43)
    EXPECT_EQ(Hex(bytes, 472, 16), "00 00 00 00 00 00 00 00 00 00 00 00 03 00 00 00");
    EXPECT_EQ(Hex(bytes, 1549, 40),
              "00 00 00 00 00 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00 00 00 00 00 42 00 "
              "00 00 42 00 00 00 00 04 00 00 00 00 00 00");
    EXPECT_EQ(Hex(bytes, 1589, 66),
              "65 00 00 00 01 00 00 00 B8 05 00 00 00 00 00 00 2A 00 00 00 01 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 00 00 02 00 00 00 07 00 03 00 00 00 2B 00 00 00 E2 05 "
              "00 00 00 00 00 00 01 78 79 7A 00 00 00 00");
    EXPECT_EQ(bytes.size(), 1589u + 66);
}

TEST(DataFileLayout, CacheRecordTooLargeNamesThePartThatDidNotFit)
{
    SDataFileCacheBudget budget;
    CDataFile::CDeletedSpaceList deleted;
    CDataFile::CRecordsCache external(budget);
    CDataFile::CRecordsCache internal(budget);
    deleted.Add(1464, 100);
    deleted.Add(2000, 64);
    external.Add(CUInt128(5), 1, 1564, 60, 20);
    internal.Add(CUInt128(7), 0, 1624, 376, 336);
    // 8 + 2 x 12 for the directory, 4 + 35 for each cache.
    const size_t whole = 32 + 39 + 39;
    std::vector<uint8_t> out;
    using DataFileCacheRecord::EPart;
    EPart failed = EPart::Internal;
    ASSERT_TRUE(DataFileCacheRecord::Serialize(deleted, external, internal, whole, out, failed));
    EXPECT_EQ(out.size(), whole);
    const std::pair<size_t, EPart> limits[] = {{whole - 1, EPart::Internal}, {32 + 39, EPart::Internal},
                                               {32 + 38, EPart::External},   {32, EPart::External},
                                               {31, EPart::Directory},       {0, EPart::Directory}};
    for (const auto& [limit, part] : limits)
    {
        EXPECT_FALSE(DataFileCacheRecord::Serialize(deleted, external, internal, limit, out, failed))
            << limit;
        EXPECT_EQ(failed, part) << limit;
    }
}

TEST(DataFileLayout, EncipheredRecordBytes)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    const std::vector<uint8_t> key = {1, 2, 3, 4, 5};
    ASSERT_TRUE(file.Create(Path, u"T", 1, 1, key));
    const CUInt128 id = file.AddRecord("ABCD", 4, 1, true, 0);
    const std::string bytes = fs.Bytes(Path);
    // Checksum 5 * (1*2 + 2*3 + 3*4 + 4*5) = 200.
    EXPECT_EQ(ReadU32(bytes, 424), 200u);
    // Flags: no plain bit. Stream at offset 1504 for 4 bytes: j starts at 6025 mod 5 = 0,
    // giving 07 E1 07 01, and "ABCD" XOR that stream is 46 A3 44 45.
    EXPECT_EQ(Hex(bytes, 1464 + 32, 4), "00 00 00 00");
    EXPECT_EQ(Hex(bytes, 1504, 4), "46 A3 44 45");
    std::vector<uint8_t> data;
    ASSERT_TRUE(file.GetRecordData(id, data));
    EXPECT_EQ(std::string(data.begin(), data.end()), "ABCD");
}

TEST(DataFileCipher, OddPositionStreamByHandAndAgreesWithReference)
{
    CDataFileCipher cipher;
    const std::vector<uint8_t> key = {0x0F, 0xF0, 0xFF};
    cipher.SetKey(key);
    uint8_t b[3] = {0, 0, 0};
    cipher.Apply(b, 3, 1);
    EXPECT_EQ(b[0], 0xF3);
    EXPECT_EQ(b[1], 0xFD);
    EXPECT_EQ(b[2], 0x0F);

    std::mt19937 rng(7);
    for (int round = 0; round < 300; ++round)
    {
        std::vector<uint8_t> k(1 + rng() % 70);
        for (auto& v : k)
            v = static_cast<uint8_t>(rng());
        cipher.SetKey(k);
        const uint32_t n = rng() % 3 == 0 ? rng() % 20000 : rng() % 300;
        const uint64_t position = (static_cast<uint64_t>(rng()) << 20) + rng();
        std::vector<uint8_t> mine(n), reference(n);
        for (uint32_t i = 0; i < n; ++i)
            mine[i] = reference[i] = static_cast<uint8_t>(rng());
        const std::vector<uint8_t> original = mine;
        cipher.Apply(mine.data(), n, position);
        ReferenceCipher(k, reference.data(), n, position);
        ASSERT_EQ(mine, reference) << "key length " << k.size() << ", size " << n;
        cipher.Apply(mine.data(), n, position);
        ASSERT_EQ(mine, original);
    }
}

TEST(DataFileHeader, KeyChecksumIgnoresFirstByteAndWraps)
{
    const std::vector<uint8_t> one = {200};
    EXPECT_EQ(CDataFileHeader::KeyChecksum(one), 0u);
    EXPECT_EQ(CDataFileHeader::KeyChecksum({}), 0u);
    std::vector<uint8_t> big(70000, 0xFF);
    uint64_t sum = 0;
    for (uint64_t i = 0; i < big.size(); ++i)
        sum += 5 * i * 0xFF;
    EXPECT_EQ(CDataFileHeader::KeyChecksum(big), static_cast<uint32_t>(sum));
}

TEST(DataFileLayout, DumpDeciphersWholeFileAtOffsetZero)
{
    CMemFileSystem fs;
    CDataFile file(fs);
    const std::vector<uint8_t> key = {9, 8, 7, 6};
    ASSERT_TRUE(file.Create(Path, u"T", 1, 1, key));
    file.AddRecord("some data", 9, 1, true, 10);
    ASSERT_TRUE(file.DumpDecipheredTo(u"/out/dump.bin"));
    std::string expected = fs.Bytes(Path);
    CDataFileCipher cipher;
    cipher.SetKey(key);
    cipher.Apply(reinterpret_cast<uint8_t*>(expected.data()), expected.size(), 0);
    EXPECT_EQ(fs.Bytes(u"/out/dump.bin"), expected);
}
