// The first-launch wizard on a new document: the shipped languages offered, the choice kept for
// the next start, and the sample notes dropped when the user does not want them.
#include "Gui/FirstLaunchWizard.h"
#include "Gui/QtText.h"
#include "GuiSession.h"
#include "Prefs/Preferences.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QCheckBox>
#include <QComboBox>
#include <QMenu>

TEST_F(GuiSession, TheWizardKeepsTheLanguageAndDropsTheSampleNotesWhenAsked)
{
    std::filesystem::copy(std::string(QUILL_SOURCE_DIR) + "/data/Languages", m_Program.Path() + "/Languages");
    {
        auto app = Start(u"");
        EXPECT_EQ(app->wizardRuns, 1);
        const size_t samples = FindSampleNotes(*app->Center(), *app->LanguageModule()).size();
        EXPECT_EQ(samples, 3u);
        CFirstLaunchWizard wizard(*app->Preferences(), *app->LanguageModule(), m_Program.Path16() + u"/",
                                  *app->Center());
        QComboBox* languages = wizard.LanguageChoice();
        ASSERT_EQ(languages->count(), 3); // the built-in English and the two shipped modules
        EXPECT_EQ(languages->itemText(0), QStringLiteral("English (Default)"));
        const int german = languages->findData(QStringLiteral("German.lng"));
        ASSERT_GE(german, 0);
        languages->setCurrentIndex(german);
        ASSERT_TRUE(wizard.SampleNotesChoice()->isEnabled());
        wizard.SampleNotesChoice()->setChecked(false);
        if (const char* folder = std::getenv("QUILL_GUI_SCREENSHOTS"))
            wizard.grab().save(QString::fromLocal8Bit(folder) + QStringLiteral("/first-launch-wizard.png"));
        wizard.accept();
        EXPECT_EQ(app->Preferences()->Paths().languagePath, u"German.lng");
        EXPECT_TRUE(FindSampleNotes(*app->Center(), *app->LanguageModule()).empty());
        app->Shutdown();
    }
    // The next start speaks German and the document has no sample notes left to offer.
    auto app = Start(u"");
    EXPECT_EQ(app->wizardRuns, 0);
    EXPECT_EQ(app->LanguageModule()->Name(), u"German.lng");
    EXPECT_EQ(app->MainWindow()->Menu(u"MENU_FILE")->title(), QStringLiteral("Datei"));
    CFirstLaunchWizard wizard(*app->Preferences(), *app->LanguageModule(), m_Program.Path16() + u"/",
                              *app->Center());
    EXPECT_FALSE(wizard.SampleNotesChoice()->isEnabled());
    EXPECT_EQ(wizard.LanguageChoice()->currentData().toString(), QStringLiteral("German.lng"));
}
