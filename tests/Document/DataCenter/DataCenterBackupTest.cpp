// Backup names on a fixed date with their counter, when forced and automatic backups copy, and
// the deletion of old backups by their file times against a fixed clock.
#include "DataCenterTestSupport.h"
#include "Document/BackupNames.h"
#include "Document/DBFolder.h"

#include <gtest/gtest.h>

#include <set>

namespace
{
constexpr OleDate Aug3rd2010 = 40393.5;

TEST(BackupNames, DateAndCounter)
{
    std::set<std::u16string> taken;
    const auto exists = [&](const std::u16string& path) { return taken.count(path) != 0; };
    std::u16string first = BackupNames::MakeBackupPath(u"/backups", u"/docs/MyData.ddb", Aug3rd2010, exists);
    EXPECT_EQ(first, u"/backups/MyData - backup 10-08-03.ddb");
    taken.insert(first);
    std::u16string second =
        BackupNames::MakeBackupPath(u"/backups/", u"/docs/MyData.ddb", Aug3rd2010, exists);
    EXPECT_EQ(second, u"/backups/MyData - backup 10-08-03 [1].ddb");
    taken.insert(second);
    EXPECT_EQ(BackupNames::MakeBackupPath(u"/backups", u"/docs/MyData.ddb", Aug3rd2010, exists),
              u"/backups/MyData - backup 10-08-03 [2].ddb");
    // Single-digit day and month keep their zero; the extension is the last one.
    EXPECT_EQ(BackupNames::MakeBackupPath(u"C:\\b\\", u"/d/My.Data.v2.ddb", 36526.0, exists),
              u"C:\\b\\My.Data.v2 - backup 00-01-01.ddb");
    EXPECT_EQ(BackupNames::MakeBackupPath(u"/b", u"/d.x/plain", Aug3rd2010, exists),
              u"/b/plain - backup 10-08-03");
}

TEST(BackupNames, WhatCountsAsABackupOfAFile)
{
    EXPECT_TRUE(BackupNames::IsBackupName(u"MyData - backup 10-08-03.ddb", u"MyData"));
    EXPECT_TRUE(BackupNames::IsBackupName(u"Old MyData - backup 1.ddb", u"MyData"));
    EXPECT_FALSE(BackupNames::IsBackupName(u"MyData - backup ", u"MyData")); // not longer than the pattern
    EXPECT_FALSE(BackupNames::IsBackupName(u"MyData.ddb", u"MyData"));
    EXPECT_FALSE(BackupNames::IsBackupName(u"Other - backup 10-08-03.ddb", u"MyData"));
}

class DataCenterBackup : public ::testing::Test, public SDataCenterFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(center.CreateDocument(Path));
        center.BackupSettings().folder = u"/backups";
    }
    bool Exists(const char16_t* path) { return fs.Exists(path); }
};

TEST_F(DataCenterBackup, ForcedBackupsAlwaysCopy)
{
    std::vector<std::u16string> status;
    center.SetStatusTextSink([&](const std::u16string& text) { status.push_back(text); });
    ASSERT_TRUE(center.Backup(true));
    ASSERT_TRUE(center.Backup(true));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-08-03.ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-08-03 [1].ddb"));
    EXPECT_EQ(center.BackupSettings().lastBackupDate, Aug3rd2010);
    EXPECT_EQ(status,
              (std::vector<std::u16string>{u"Saving... Please wait.", u"", u"Saving... Please wait.", u""}));

    // A copy is a document of its own and holds the changes pending at backup time.
    center.GetRoot()->SetCaption(u"root after edit");
    ASSERT_TRUE(center.Backup(true));
    center.CloseDocument();
    ASSERT_TRUE(center.OpenDocument(u"/backups/MyData - backup 10-08-03 [2].ddb"));
    EXPECT_EQ(center.GetRoot()->GetCaption(), u"root after edit");
    EXPECT_EQ(center.GetRoot()->GetChildCount(), 9u);
}

TEST_F(DataCenterBackup, AutomaticBackupOnlyAfterAWrite)
{
    center.BackupSettings().lastBackupDate = Aug3rd2010 - 1;
    times.times[Path] = Aug3rd2010 - 2; // written before the last backup
    ASSERT_TRUE(center.Backup(false));
    EXPECT_FALSE(Exists(u"/backups/MyData - backup 10-08-03.ddb"));
    EXPECT_EQ(center.BackupSettings().lastBackupDate, Aug3rd2010 - 1);

    times.times[Path] = Aug3rd2010 - 0.5; // written since
    ASSERT_TRUE(center.Backup(false));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-08-03.ddb"));
    EXPECT_EQ(center.BackupSettings().lastBackupDate, Aug3rd2010);
}

class DataCenterOldBackups : public DataCenterBackup
{
protected:
    void AddFile(const std::u16string& name, OleDate time)
    {
        fs.Bytes(u"/backups/" + name) = "x";
        times.times[u"/backups/" + name] = time;
    }
    void AddFiles()
    {
        AddFile(u"MyData - backup 10-07-01.ddb", Aug3rd2010 - 33);
        AddFile(u"MyData - backup 10-07-24 [1].ddb", Aug3rd2010 - 10.25);
        AddFile(u"MyData - backup 10-07-25.ddb", Aug3rd2010 - 9.75);
        AddFile(u"Other - backup 10-07-01.ddb", Aug3rd2010 - 33);
        AddFile(u"MyData.ddb", Aug3rd2010 - 33);
        AddFile(u"MyData - backup ", Aug3rd2010 - 33);
        ClearLog();
    }
};

TEST_F(DataCenterOldBackups, OnlyThisFilesBackupsOlderThanTheDaysGo)
{
    AddFiles();
    center.DeleteOldBackups(u"/backups", u"MyData", 10);
    EXPECT_FALSE(Exists(u"/backups/MyData - backup 10-07-01.ddb"));
    EXPECT_FALSE(Exists(u"/backups/MyData - backup 10-07-24 [1].ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-07-25.ddb"));
    EXPECT_TRUE(Exists(u"/backups/Other - backup 10-07-01.ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData.ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup "));
    EXPECT_TRUE(Logged(u"Info: Old backup file /backups/MyData - backup 10-07-01.ddb successfully deleted"));
    EXPECT_TRUE(
        Logged(u"Info: Old backup file /backups/MyData - backup 10-07-24 [1].ddb successfully deleted"));

    // A week later the next one has aged past the limit.
    clock.now += 7;
    center.DeleteOldBackups(u"/backups", u"MyData", 10);
    EXPECT_FALSE(Exists(u"/backups/MyData - backup 10-07-25.ddb"));
}

TEST_F(DataCenterOldBackups, AutomaticBackupDeletesOldOnesUnlessDaysIsZero)
{
    AddFiles();
    times.times[Path] = Aug3rd2010;
    center.BackupSettings().deleteOldBackupDays = 0;
    ASSERT_TRUE(center.Backup(false));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-07-01.ddb"));

    center.BackupSettings().lastBackupDate = 0;
    center.BackupSettings().deleteOldBackupDays = 30;
    ASSERT_TRUE(center.Backup(false));
    EXPECT_FALSE(Exists(u"/backups/MyData - backup 10-07-01.ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-07-24 [1].ddb"));
    // The backups just made have no time on the fake disk, so they stay.
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-08-03.ddb"));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-08-03 [1].ddb"));

    // A forced backup never deletes.
    clock.now += 100;
    ASSERT_TRUE(center.Backup(true));
    EXPECT_TRUE(Exists(u"/backups/MyData - backup 10-07-24 [1].ddb"));
}
} // namespace
