// Every dialog laid out in English and in German: no label or button is narrower than its text
// needs. With QUILL_SCREENSHOT_DIR set, each dialog is also saved there as a PNG picture (the
// pictures under docs/screenshots are made this way).
#include "App/AppIdentity.h"
#include "DialogTestSupport.h"
#include "Document/DataCenter.h"
#include "Document/ItemTreeAlarms.h"
#include "Document/MemFolder.h"
#include "Document/MemNote.h"
#include "Gui/AlarmEditorDlg.h"
#include "Gui/AlarmReminderDlg.h"
#include "Gui/FilePasswordDlg.h"
#include "Gui/FilePropertiesDlg.h"
#include "Gui/FindReplaceDlg.h"
#include "Gui/GlobalSearchDlg.h"
#include "Gui/ItemPropertiesDlg.h"
#include "Gui/PasswordGeneratorDlg.h"
#include "Gui/PreferencesDlg.h"
#include "Gui/QtText.h"
#include "GuiTestModal.h"
#include "Support/TempFolder.h"

#include <QAbstractButton>
#include <QLabel>
#include <QListWidget>
#include <QPixmap>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
class DialogLayoutTest : public ::testing::TestWithParam<const char*>
{
protected:
    SDialogTestEnv env;
    CLanguageModule german; // read from the disk
    CPreferences prefs{env.Env()};
    CTempFolder folder;

    const CLanguageModule* Language()
    {
        if (std::string(GetParam()) == "English")
            return &env.english;
        EXPECT_TRUE(german.LoadModule(ToU16(QStringLiteral(QUILL_SOURCE_DIR "/data/Languages/German.lng")),
                                      AppCompatibility(), EnglishStrings()));
        return &german;
    }

    // Shows `dialog`, checks that no text is cut and saves its picture when asked to.
    void Check(QWidget& dialog, const QString& name)
    {
        CExpectModal shown([&](QWidget* modal) { return modal == &dialog; });
        dialog.show();
        QApplication::processEvents();
        for (QLabel* label : dialog.findChildren<QLabel*>())
        {
            if (label->isVisible() && !label->wordWrap() && !label->text().isEmpty())
            {
                EXPECT_GE(label->width(), label->minimumSizeHint().width())
                    << name.toStdString() << ": " << label->text().toStdString();
            }
        }
        for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        {
            if (button->isVisible() && !button->text().isEmpty())
            {
                EXPECT_GE(button->width(), button->minimumSizeHint().width())
                    << name.toStdString() << ": " << button->text().toStdString();
            }
        }
        if (const char* dir = std::getenv("QUILL_SCREENSHOT_DIR"))
            dialog.grab().save(QString::fromLocal8Bit(dir) + u'/' + name + u'-' + QLatin1String(GetParam()) +
                               QStringLiteral(".png"));
        dialog.hide();
    }
};

TEST_P(DialogLayoutTest, EveryDialogShowsItsTextsWhole)
{
    const CLanguageModule* language = Language();
    CMemFolder root;
    auto note = std::make_unique<CMemNote>();
    note->SetCaption(u"Dentist");
    note->SetId(5);
    CMemNote* dentist = static_cast<CMemNote*>(root.AddChild(std::move(note)));
    {
        CPasswordGeneratorDlg dlg(prefs, language, {});
        dlg.Generate();
        Check(dlg, QStringLiteral("PasswordGenerator"));
    }
    {
        CGlobalSearchDlg dlg(root, &prefs, language);
        Check(dlg, QStringLiteral("GlobalSearch"));
    }
    for (bool replace : {false, true})
    {
        SFxFindReplaceRequest request;
        request.replaceMode = replace;
        CFindReplaceDlg dlg(request, &prefs, language);
        Check(dlg, replace ? QStringLiteral("Replace") : QStringLiteral("Find"));
    }
    {
        CAlarmEditorDlg dlg(*dentist, env.clock, language);
        dlg.AddAlarm();
        Check(dlg, QStringLiteral("AlarmEditor"));
    }
    {
        CAlarmInfo alarm(env.clock.now - 0.01);
        alarm.startDay = static_cast<int32_t>(env.clock.now);
        alarm.SetText(EAlarmText::Description, u"Call the dentist");
        dentist->GetAlarms(true)->Add(alarm);
        CItemTreeAlarmSource source(&root);
        CAlarmManager manager(env.clock, &source);
        CAlarmReminderDlg dlg(manager, source, language);
        dlg.CheckNow();
        Check(dlg, QStringLiteral("Reminder"));
    }
    {
        CItemPropertiesDlg dlg(*dentist, false, language);
        Check(dlg, QStringLiteral("ItemProperties"));
    }
    CDataCenter center;
    ASSERT_TRUE(center.CreateDocument(folder.File16("shots.ddb")));
    {
        CFilePropertiesDlg dlg(center, language);
        Check(dlg, QStringLiteral("FileProperties"));
    }
    {
        CFilePasswordDlg dlg(center.GetRecords(), false, language);
        Check(dlg, QStringLiteral("FilePassword"));
    }
    {
        CPreferencesDlg dlg(prefs, language, ToU16(QStringLiteral(QUILL_SOURCE_DIR "/data/")));
        for (int page = 0; page < CPreferencesDlg::PageCount; ++page)
        {
            dlg.ShowPage(static_cast<CPreferencesDlg::EPage>(page));
            Check(dlg, QStringLiteral("Preferences%1").arg(page));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, DialogLayoutTest, ::testing::Values("English", "German"));
} // namespace
