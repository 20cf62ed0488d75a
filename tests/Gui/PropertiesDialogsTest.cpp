// Item and file properties and the file password, on a real data file that is closed and opened
// again to see what was stored.
#include "Gui/FilePasswordDlg.h"
#include "Gui/FilePropertiesDlg.h"
#include "Gui/ItemPropertiesDlg.h"

#include "DialogTestSupport.h"
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Document/ItemExtendedData.h"
#include "Support/TempFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

namespace
{
class PropertiesDialogsTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CTempFolder folder;
    std::u16string path = folder.File16("props.ddb");
    CDataCenter center;

    // Projects\{Plan, Budget, Old\{Draft}}
    CDBFolder* MakeTree()
    {
        EXPECT_TRUE(center.CreateDocument(path));
        CDBFolder* projects = center.AddFolder(*center.GetRoot(), u"Projects");
        center.AddNote(*projects, u"Plan", u"first steps");
        center.AddNote(*projects, u"Budget", u"numbers");
        CDBFolder* old = center.AddFolder(*projects, u"Old");
        center.AddNote(*old, u"Draft", std::u16string(20000, u'x'));
        return projects;
    }

    CItem* Reopened(const std::u16string& caption)
    {
        center.CloseDocument();
        EXPECT_TRUE(center.OpenDocument(path));
        CDBFolder* root = center.GetRoot();
        if (!root || !root->LoadChildren(EChildKind::Any))
            return nullptr;
        for (size_t i = 0; i < root->GetChildCount(); ++i)
            if (root->GetChild(i)->GetCaption() == caption)
                return root->GetChild(i);
        return nullptr;
    }
};

TEST_F(PropertiesDialogsTest, ItemPropertiesAreStoredAndShownAgainWithTheItemsCounts)
{
    CDBFolder* projects = MakeTree();
    {
        CItemPropertiesDlg dlg(*projects, false, &env.english);
        EXPECT_EQ(dlg.StatisticsLabel()->text(), QStringLiteral("3 Notes, 1 Folders"));
        EXPECT_FALSE(dlg.SizeLabel()->text().isEmpty());
        EXPECT_EQ(dlg.IconCombo()->currentIndex(), 0);
        EXPECT_FALSE(dlg.TextColourCheck()->isChecked());
        dlg.CaptionEdit()->setText(QStringLiteral("  Work  "));
        dlg.IconCombo()->setCurrentIndex(3);
        dlg.SetTextColour(0x112233);
        dlg.PriorityCombo()->setCurrentIndex(4);
        dlg.TaskCombo()->setCurrentIndex(2);
        dlg.ReadOnlyCheck()->setChecked(true);
        EXPECT_TRUE(dlg.TextColourCheck()->isChecked());
        dlg.accept();
    }
    ASSERT_TRUE(center.Save());
    CItem* work = Reopened(u"Work");
    ASSERT_NE(work, nullptr);
    const CItemExtendedData* data = work->FindExtendedData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->Icon(), 3);
    EXPECT_EQ(data->TextColour(), std::optional<uint32_t>(0x112233));
    EXPECT_EQ(data->BackColour(), std::nullopt);
    EXPECT_EQ(data->Priority(), 4);
    EXPECT_EQ(data->TaskState(), 2);
    EXPECT_TRUE(data->IsReadOnly());

    // Shown again as stored; unticking the colour and the mark takes them away.
    CItemPropertiesDlg again(*work, false, &env.english);
    EXPECT_EQ(again.CaptionEdit()->text(), QStringLiteral("Work"));
    EXPECT_EQ(again.PriorityCombo()->currentIndex(), 4);
    EXPECT_EQ(again.TaskCombo()->currentIndex(), 2);
    EXPECT_TRUE(again.TextColourCheck()->isChecked());
    again.TextColourCheck()->setChecked(false);
    again.ReadOnlyCheck()->setChecked(false);
    again.accept();
    EXPECT_EQ(work->FindExtendedData()->TextColour(), std::nullopt);
    EXPECT_FALSE(work->FindExtendedData()->IsReadOnly());
    EXPECT_EQ(work->FindExtendedData()->Icon(), 3);
}

TEST_F(PropertiesDialogsTest, ValuesBeyondTheOfferedOnesSurviveAndAReadOnlyDocumentChangesNothing)
{
    CDBFolder* projects = MakeTree();
    CItemExtendedData* data = projects->GetExtendedData(true);
    data->SetIcon(40);
    data->SetPriority(9);
    {
        CItemPropertiesDlg dlg(*projects, false, &env.english);
        EXPECT_EQ(dlg.IconCombo()->currentText(), QStringLiteral("40"));
        dlg.accept();
    }
    EXPECT_EQ(projects->FindExtendedData()->Icon(), 40);
    EXPECT_EQ(projects->FindExtendedData()->Priority(), 9);

    CItemPropertiesDlg locked(*projects, true, &env.english);
    EXPECT_FALSE(locked.CaptionEdit()->isEnabled());
    EXPECT_FALSE(locked.PriorityCombo()->isEnabled());
}

TEST_F(PropertiesDialogsTest, FilePasswordIsSetChangedAndRemovedOnlyWithTheRightAnswers)
{
    MakeTree();
    CItemRecords& records = center.GetRecords();
    {
        CFilePasswordDlg dlg(records, false, &env.english);
        ASSERT_EQ(dlg.Mode(), CFilePasswordDlg::EMode::Set);
        EXPECT_EQ(dlg.OldEdit(), nullptr);
        dlg.accept(); // nothing typed
        EXPECT_EQ(dlg.ErrorLabel()->text(), QStringLiteral("Please enter a new password."));
        dlg.NewEdit()->setText(QStringLiteral("s3cret"));
        dlg.ConfirmEdit()->setText(QStringLiteral("s3cre"));
        dlg.accept();
        EXPECT_EQ(dlg.ErrorLabel()->text(), QStringLiteral("The new password and its confirmation differ."));
        EXPECT_FALSE(records.IsPasswordSet());
        dlg.ConfirmEdit()->setText(QStringLiteral("s3cret"));
        dlg.accept();
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
    }
    ASSERT_TRUE(records.IsPasswordSet());
    EXPECT_TRUE(records.CheckPassword(u"s3cret"));
    {
        CFilePasswordDlg dlg(records, false, &env.english);
        ASSERT_EQ(dlg.Mode(), CFilePasswordDlg::EMode::Change);
        dlg.NewEdit()->setText(QStringLiteral("n3w"));
        dlg.ConfirmEdit()->setText(QStringLiteral("n3w"));
        dlg.accept(); // the current password left empty
        EXPECT_EQ(dlg.ErrorLabel()->text(), QStringLiteral("The current password is not correct."));
        dlg.OldEdit()->setText(QStringLiteral("wrong"));
        dlg.accept();
        EXPECT_TRUE(records.CheckPassword(u"s3cret"));
        dlg.OldEdit()->setText(QStringLiteral("s3cret"));
        dlg.accept();
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
    }
    center.CloseDocument();
    ASSERT_TRUE(center.OpenDocument(path));
    EXPECT_TRUE(center.GetRecords().CheckPassword(u"n3w"));
    EXPECT_FALSE(center.GetRecords().CheckPassword(u"s3cret"));
    {
        CFilePasswordDlg dlg(center.GetRecords(), true, &env.english);
        ASSERT_EQ(dlg.Mode(), CFilePasswordDlg::EMode::Remove);
        EXPECT_EQ(dlg.NewEdit(), nullptr);
        dlg.OldEdit()->setText(QStringLiteral("n3w"));
        dlg.accept();
    }
    EXPECT_FALSE(center.GetRecords().IsPasswordSet());
}

TEST_F(PropertiesDialogsTest, FilePropertiesCountTheTreeAndDefragmentAfterDeletions)
{
    CDBFolder* projects = MakeTree();
    CItem* old = projects->GetChild(2);
    ASSERT_TRUE(center.DeleteItem(*old));
    ASSERT_TRUE(center.Save());
    CFilePropertiesDlg dlg(center, &env.english);
    size_t notes = 0;
    size_t folders = 0;
    center.GetRoot()->CountItems(notes, folders, CountItemsDeep);
    EXPECT_EQ(dlg.StatisticsLabel()->text(), QStringLiteral("%1 Notes, %2 Folders").arg(notes).arg(folders));
    EXPECT_EQ(dlg.PasswordLabel()->text(), QStringLiteral("Not protected"));
    EXPECT_EQ(dlg.SetPasswordButton()->text(), QStringLiteral("Set Password..."));
    const int before = center.GetDatabase().GetDataFile().GetFragmentationLevel();
    ASSERT_GT(before, 0);
    EXPECT_TRUE(dlg.DefragmentButton()->isEnabled());
    EXPECT_EQ(dlg.FragmentationLabel()->text(), QStringLiteral("%1 %").arg(before));
    ASSERT_TRUE(dlg.Defragment());
    EXPECT_EQ(center.GetDatabase().GetDataFile().GetFragmentationLevel(), 0);
    EXPECT_EQ(dlg.FragmentationLabel()->text(), QStringLiteral("0 %"));
    EXPECT_FALSE(dlg.DefragmentButton()->isEnabled());
    center.CloseDocument();
    ASSERT_TRUE(center.OpenDocument(path));
    ASSERT_NE(center.GetRoot(), nullptr);
}
} // namespace
