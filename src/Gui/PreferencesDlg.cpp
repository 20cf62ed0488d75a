#include "Gui/PreferencesDlg.h"

#include "App/AppIdentity.h"
#include "Gui/DialogText.h"
#include "Prefs/Preferences.h"
#include "Shared/LanguagesMgr/AppFolders.h"
#include "Shared/LanguagesMgr/LanguagesMgr.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace
{
QSpinBox* MakeSpin(int minimum, int maximum, int value)
{
    auto* spin = new QSpinBox;
    spin->setRange(minimum, maximum);
    spin->setValue(std::clamp(value, minimum, maximum));
    return spin;
}

QCheckBox* MakeCheck(const QString& text, bool checked)
{
    auto* check = new QCheckBox(text);
    check->setChecked(checked);
    return check;
}

QLabel* MakeNote(const QString& text)
{
    auto* note = new QLabel(text);
    note->setWordWrap(true);
    return note;
}
} // namespace

CPreferencesDlg::CPreferencesDlg(CPreferences& prefs, const CLanguageModule* language,
                                 const std::u16string& applicationFolder, QWidget* parent)
    : QDialog(parent), m_Prefs(prefs), m_LanguageModule(language), m_Pages(new QListWidget),
      m_Stack(new QStackedWidget)
{
    setObjectName(QStringLiteral("PreferencesDlg"));
    setWindowTitle(Text(u"PREFSDLG_CAPTION"));
    const char16_t* pageKeys[PageCount] = {
        u"PREFSDLG_PAGE_GENERAL", u"PREFSDLG_PAGE_EDITOR", u"PREFSDLG_PAGE_STAMPS",   u"PREFSDLG_PAGE_BACKUP",
        u"PREFSDLG_PAGE_STARTUP", u"PREFSDLG_PAGE_TRAY",   u"PREFSDLG_PAGE_LANGUAGE", u"PREFSDLG_PAGE_SKIN"};
    QWidget* pages[PageCount] = {BuildGeneralPage(),
                                 BuildEditorPage(),
                                 BuildStampsPage(),
                                 BuildBackupPage(),
                                 BuildStartupPage(),
                                 BuildTrayPage(),
                                 BuildLanguagePage(applicationFolder),
                                 BuildSkinPage(applicationFolder)};
    for (int i = 0; i < PageCount; ++i)
    {
        m_Pages->addItem(Text(pageKeys[i]));
        m_Stack->addWidget(pages[i]);
    }
    m_Pages->setCurrentRow(0);
    m_Pages->setMaximumWidth(m_Pages->sizeHintForColumn(0) + 2 * m_Pages->frameWidth() + 16);
    connect(m_Pages, &QListWidget::currentRowChanged, m_Stack, &QStackedWidget::setCurrentIndex);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(Text(u"OK_BUTTON"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Text(u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    QPushButton* apply = buttons->addButton(Text(u"PREFSDLG_APPLY_BTN"), QDialogButtonBox::ApplyRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &CPreferencesDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(apply, &QPushButton::clicked, this, &CPreferencesDlg::Apply);

    auto* top = new QHBoxLayout;
    top->addWidget(m_Pages);
    top->addWidget(m_Stack, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);
    UpdateEnabling();
    resize(640, 420);
}

QString CPreferencesDlg::Text(const char16_t* key) const
{
    return LanguageText(m_LanguageModule, key);
}

QWidget* CPreferencesDlg::BuildGeneralPage()
{
    const SOtherPrefs& other = m_Prefs.Other();
    m_AutoSave = MakeCheck(Text(u"PREFSDLG_AUTOSAVE_CHK"), other.autoSaveData);
    m_AutoSaveMinutes = MakeSpin(1, 1440, other.autoSaveMinutes);
    m_AutoCloseMinutes = MakeSpin(0, 1440, other.autoClosePasswordProtectedFileMinutes);
    m_AutoCloseMinutes->setSpecialValueText(Text(u"PREFSDLG_NEVER"));
    m_CheckUpdates = MakeCheck(Text(u"PREFSDLG_CHECK_UPDATES_CHK"), m_Prefs.Internet().checkForAutoUpdate);
    m_IncludeBeta = MakeCheck(Text(u"PREFSDLG_INCLUDE_BETA_CHK"), m_Prefs.Internet().includeBetaWhenCheck);
    connect(m_AutoSave, &QCheckBox::toggled, this, &CPreferencesDlg::UpdateEnabling);
    connect(m_CheckUpdates, &QCheckBox::toggled, this, &CPreferencesDlg::UpdateEnabling);

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(m_AutoSave);
    form->addRow(Text(u"PREFSDLG_AUTOSAVE_MINUTES_LABEL"), m_AutoSaveMinutes);
    form->addRow(Text(u"PREFSDLG_AUTOCLOSE_LABEL"), m_AutoCloseMinutes);
    form->addRow(m_CheckUpdates);
    form->addRow(m_IncludeBeta);
    return page;
}

QWidget* CPreferencesDlg::BuildEditorPage()
{
    const SEditorPrefs& editor = m_Prefs.Editor();
    m_Font = new QFontComboBox;
    m_Font->setCurrentFont(QFont(ToQString(editor.fontName)));
    m_FontSize = MakeSpin(2, 299, editor.fontSize);
    m_Bullet = new QLineEdit(ToQString(editor.bulletCharacter));
    m_Bullet->setMaxLength(2); // a surrogate pair is one character
    m_Bullet->setMaximumWidth(60);
    m_TabSpaces = MakeSpin(1, 99, editor.spacesInTab);

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(Text(u"PREFSDLG_FONT_LABEL"), m_Font);
    form->addRow(Text(u"PREFSDLG_FONT_SIZE_LABEL"), m_FontSize);
    form->addRow(Text(u"PREFSDLG_BULLET_LABEL"), m_Bullet);
    form->addRow(Text(u"PREFSDLG_TAB_SPACES_LABEL"), m_TabSpaces);
    return page;
}

QWidget* CPreferencesDlg::BuildStampsPage()
{
    // The stamps are written with English names whatever the interface language, so the samples
    // are too.
    const QLocale english = QLocale::c();
    const QDateTime now = QDateTime::currentDateTime();
    m_DateFormat = new QComboBox;
    m_DateFormat->addItem(english.toString(now.date(), QStringLiteral("MM/dd/yyyy")));
    m_DateFormat->addItem(english.toString(now.date(), QStringLiteral("dddd, MMMM dd, yyyy")));
    m_DateFormat->setCurrentIndex(m_Prefs.Editor().dateStampFormat == 0 ? 0 : 1);
    m_TimeFormat = new QComboBox;
    m_TimeFormat->addItem(english.toString(now.time(), QStringLiteral("HH:mm")));
    m_TimeFormat->addItem(english.toString(now.time(), QStringLiteral("HH:mm:ss")));
    m_TimeFormat->setCurrentIndex(m_Prefs.Editor().timeStampFormat == 0 ? 0 : 1);
    m_StampEachLine =
        MakeCheck(Text(u"PREFSDLG_STAMP_EACH_LINE_CHK"), m_Prefs.Editor().stampDateTimeForEachNewLine);

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(Text(u"PREFSDLG_DATE_FORMAT_LABEL"), m_DateFormat);
    form->addRow(Text(u"PREFSDLG_TIME_FORMAT_LABEL"), m_TimeFormat);
    form->addRow(m_StampEachLine);
    return page;
}

QWidget* CPreferencesDlg::BuildBackupPage()
{
    const SBackupPrefs& backup = m_Prefs.Backup();
    m_AutoBackup = MakeCheck(Text(u"PREFSDLG_AUTOBACKUP_CHK"), backup.enableAutobackup);
    m_BackupOnExit = MakeCheck(Text(u"PREFSDLG_BACKUP_ON_EXIT_CHK"), backup.backupOnExit);
    m_BackupInterval = MakeSpin(1, 527040, backup.backupIntervalMinutes);
    m_BackupDays = MakeSpin(0, 36600, backup.delOldBackupDays);
    m_BackupDays->setSpecialValueText(Text(u"PREFSDLG_KEEP_ALL"));
    m_BackupFolder = new QLineEdit(ToQString(backup.backupFolder));
    m_BackupFolder->setPlaceholderText(Text(u"PREFSDLG_BACKUP_FOLDER_DEFAULT"));
    auto* browse = new QPushButton(Text(u"ALARMDLG_BROWSE_BTN"));
    connect(browse, &QPushButton::clicked, this,
            [this]
            {
                const QString folder = QFileDialog::getExistingDirectory(this, Text(u"BACKUP_DLG_CAPTION"),
                                                                         m_BackupFolder->text());
                if (!folder.isEmpty())
                    m_BackupFolder->setText(folder);
            });
    connect(m_AutoBackup, &QCheckBox::toggled, this, &CPreferencesDlg::UpdateEnabling);
    auto* folder = new QHBoxLayout;
    folder->addWidget(m_BackupFolder, 1);
    folder->addWidget(browse);

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(m_AutoBackup);
    form->addRow(Text(u"PREFSDLG_BACKUP_INTERVAL_LABEL"), m_BackupInterval);
    form->addRow(Text(u"PREFSDLG_BACKUP_DAYS_LABEL"), m_BackupDays);
    form->addRow(m_BackupOnExit);
    form->addRow(Text(u"PREFSDLG_BACKUP_FOLDER_LABEL"), folder);
    return page;
}

QWidget* CPreferencesDlg::BuildStartupPage()
{
    const SStartupPrefs& startup = m_Prefs.Startup();
    m_RunWithOs = MakeCheck(Text(u"PREFSDLG_RUN_WITH_OS_CHK"), startup.runWithOsStart);
    m_HideWhenRunWithOs =
        MakeCheck(Text(u"PREFSDLG_HIDE_WHEN_RUN_WITH_OS_CHK"), startup.hideWhenRunWithOsStart);
    m_Wizard = MakeCheck(Text(u"PREFSDLG_WIZARD_CHK"), startup.showFirstLaunchWizard);
    m_FileAssociations = MakeCheck(Text(u"PREFSDLG_FILE_ASSOC_CHK"), startup.checkFileExtAssociations);
    connect(m_RunWithOs, &QCheckBox::toggled, this, &CPreferencesDlg::UpdateEnabling);

    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (QWidget* check :
         std::initializer_list<QWidget*>{m_RunWithOs, m_HideWhenRunWithOs, m_Wizard, m_FileAssociations})
        layout->addWidget(check);
    m_HideWhenRunWithOs->setContentsMargins(20, 0, 0, 0);
    layout->addStretch();
    return page;
}

QWidget* CPreferencesDlg::BuildTrayPage()
{
    const SSysTrayPrefs& tray = m_Prefs.SysTray();
    m_TrayShow = MakeCheck(Text(u"PREFSDLG_TRAY_SHOW_CHK"), tray.show);
    m_TrayRightClick = MakeCheck(Text(u"PREFSDLG_TRAY_RIGHT_CLICK_CHK"), tray.rightClickOnly);
    m_TrayMinimize = MakeCheck(Text(u"PREFSDLG_TRAY_MINIMIZE_CHK"), tray.minimizeToTray);
    m_TrayClose = MakeCheck(Text(u"PREFSDLG_TRAY_CLOSE_CHK"), tray.closeToTray);
    m_AlwaysOnTop = MakeCheck(Text(u"PREFSDLG_ALWAYS_ON_TOP_CHK"), tray.alwaysOnTop);
    connect(m_TrayShow, &QCheckBox::toggled, this, &CPreferencesDlg::UpdateEnabling);

    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (QWidget* check : std::initializer_list<QWidget*>{m_TrayShow, m_TrayRightClick, m_TrayMinimize,
                                                          m_TrayClose, m_AlwaysOnTop})
        layout->addWidget(check);
    layout->addStretch();
    return page;
}

QWidget* CPreferencesDlg::BuildLanguagePage(const std::u16string& applicationFolder)
{
    m_Language = new QComboBox;
    // The first entry (empty path) lets the program choose by the user's language again.
    m_Language->addItem(Text(u"PREFSDLG_LANGUAGE_AUTOMATIC"), QString());
    const CLanguagesMgr modules(AppFolderPath(applicationFolder, EAppFolder::Languages), AppCompatibility(),
                                std::u16string(kDefaultLanguageModuleName));
    // The built-in module has no file to name; the automatic choice falls back to it.
    for (const SLanguageModuleInfo& module : modules.Modules())
        if (!module.fileName.empty())
            m_Language->addItem(ToQString(module.description), ToQString(module.fileName));
    const QString chosen = ToQString(m_Prefs.Paths().languagePath);
    int index = m_Language->findData(chosen);
    if (index < 0)
    {
        // A module chosen by a full path, or one that is no longer in the folder: kept as it is.
        m_Language->addItem(chosen, chosen);
        index = m_Language->count() - 1;
    }
    m_Language->setCurrentIndex(index);

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(Text(u"PREFSDLG_LANGUAGE_LABEL"), m_Language);
    form->addRow(MakeNote(Text(u"PREFSDLG_NEXT_START_NOTE")));
    return page;
}

QWidget* CPreferencesDlg::BuildSkinPage(const std::u16string& applicationFolder)
{
    m_Skin = new QComboBox;
    const QDir skins(ToQString(AppFolderPath(applicationFolder, EAppFolder::Skins)));
    for (const QString& name : skins.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        m_Skin->addItem(name, QStringLiteral("Skins/") + name);
    const QString current = ToQString(m_Prefs.Paths().skinPath);
    int index = m_Skin->findData(current);
    if (index < 0)
    {
        m_Skin->addItem(QDir(current).dirName(), current);
        index = m_Skin->count() - 1;
    }
    m_Skin->setCurrentIndex(index);
    m_Theme = new QLineEdit(ToQString(m_Prefs.Paths().skinThemeName));
    m_Theme->setPlaceholderText(Text(u"PREFSDLG_THEME_DEFAULT"));

    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(Text(u"PREFSDLG_SKIN_LABEL"), m_Skin);
    form->addRow(Text(u"PREFSDLG_THEME_LABEL"), m_Theme);
    form->addRow(MakeNote(Text(u"PREFSDLG_NEXT_START_NOTE")));
    return page;
}

void CPreferencesDlg::UpdateEnabling()
{
    m_AutoSaveMinutes->setEnabled(m_AutoSave->isChecked());
    m_IncludeBeta->setEnabled(m_CheckUpdates->isChecked());
    m_BackupInterval->setEnabled(m_AutoBackup->isChecked());
    m_BackupDays->setEnabled(m_AutoBackup->isChecked());
    m_HideWhenRunWithOs->setEnabled(m_RunWithOs->isChecked());
    m_TrayRightClick->setEnabled(m_TrayShow->isChecked());
    m_TrayMinimize->setEnabled(m_TrayShow->isChecked());
    m_TrayClose->setEnabled(m_TrayShow->isChecked());
}

void CPreferencesDlg::ShowPage(EPage page)
{
    m_Pages->setCurrentRow(page);
}

void CPreferencesDlg::Apply()
{
    SOtherPrefs& other = m_Prefs.Other();
    other.autoSaveData = m_AutoSave->isChecked();
    other.autoSaveMinutes = m_AutoSaveMinutes->value();
    other.autoClosePasswordProtectedFileMinutes = m_AutoCloseMinutes->value();
    m_Prefs.Internet().checkForAutoUpdate = m_CheckUpdates->isChecked();
    m_Prefs.Internet().includeBetaWhenCheck = m_IncludeBeta->isChecked();

    SEditorPrefs& editor = m_Prefs.Editor();
    editor.fontName = ToU16(m_Font->currentFont().family());
    editor.fontSize = m_FontSize->value();
    // Anything but one character falls back to the default bullet, as a stored value would.
    const QString bullet = m_Bullet->text();
    const bool oneCharacter = bullet.size() == 1 || (bullet.size() == 2 && bullet[0].isHighSurrogate());
    editor.bulletCharacter = oneCharacter && bullet != QStringLiteral(" ")
                                 ? ToU16(bullet)
                                 : std::u16string(1, SEditorPrefs::DefaultBullet);
    editor.spacesInTab = m_TabSpaces->value();
    editor.dateStampFormat = m_DateFormat->currentIndex();
    editor.timeStampFormat = m_TimeFormat->currentIndex();
    editor.stampDateTimeForEachNewLine = m_StampEachLine->isChecked();

    SBackupPrefs& backup = m_Prefs.Backup();
    backup.enableAutobackup = m_AutoBackup->isChecked();
    backup.backupOnExit = m_BackupOnExit->isChecked();
    backup.backupIntervalMinutes = m_BackupInterval->value();
    backup.delOldBackupDays = m_BackupDays->value();
    backup.backupFolder = ToU16(m_BackupFolder->text().trimmed());

    SStartupPrefs& startup = m_Prefs.Startup();
    startup.runWithOsStart = m_RunWithOs->isChecked();
    startup.hideWhenRunWithOsStart = m_HideWhenRunWithOs->isChecked();
    startup.showFirstLaunchWizard = m_Wizard->isChecked();
    startup.checkFileExtAssociations = m_FileAssociations->isChecked();

    SSysTrayPrefs& tray = m_Prefs.SysTray();
    tray.show = m_TrayShow->isChecked();
    tray.rightClickOnly = m_TrayRightClick->isChecked();
    tray.minimizeToTray = m_TrayMinimize->isChecked();
    tray.closeToTray = m_TrayClose->isChecked();
    tray.alwaysOnTop = m_AlwaysOnTop->isChecked();

    m_Prefs.Paths().languagePath = ToU16(m_Language->currentData().toString());
    m_Prefs.Paths().skinPath = ToU16(m_Skin->currentData().toString());
    m_Prefs.Paths().skinThemeName = ToU16(m_Theme->text().trimmed());
    emit Applied();
}

void CPreferencesDlg::accept()
{
    Apply();
    QDialog::accept();
}
