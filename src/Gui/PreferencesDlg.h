#pragma once
// The preferences window: one page per group (general, editor defaults, date and time stamps,
// backups, start-up, system tray, language, skin). OK and Apply write the controls into the
// preferences and emit Applied, on which the program applies what it can at once (tray, window
// on top, autosave and backup timers, editor defaults); a new language or skin is used from the
// next start, which the pages say.
#include <QDialog>

#include <string>

class CLanguageModule;
class CPreferences;
class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLineEdit;
class QListWidget;
class QSpinBox;
class QStackedWidget;

class CPreferencesDlg : public QDialog
{
    Q_OBJECT

public:
    enum EPage
    {
        PageGeneral,
        PageEditor,
        PageStamps,
        PageBackup,
        PageStartup,
        PageTray,
        PageLanguage,
        PageSkin,
        PageCount
    };

    // `applicationFolder` ends with '/'; its "Languages" and "Skins" folders are offered.
    CPreferencesDlg(CPreferences& prefs, const CLanguageModule* language,
                    const std::u16string& applicationFolder, QWidget* parent = nullptr);

    void ShowPage(EPage page);
    // Writes every control into the preferences and emits Applied.
    void Apply();
    void accept() override;

    QListWidget* Pages() const { return m_Pages; }
    QCheckBox* AutoSaveCheck() const { return m_AutoSave; }
    QSpinBox* AutoSaveMinutesSpin() const { return m_AutoSaveMinutes; }
    QSpinBox* AutoCloseMinutesSpin() const { return m_AutoCloseMinutes; }
    QCheckBox* CheckUpdatesCheck() const { return m_CheckUpdates; }
    QCheckBox* IncludeBetaCheck() const { return m_IncludeBeta; }
    QFontComboBox* FontCombo() const { return m_Font; }
    QSpinBox* FontSizeSpin() const { return m_FontSize; }
    QLineEdit* BulletEdit() const { return m_Bullet; }
    QSpinBox* TabSpacesSpin() const { return m_TabSpaces; }
    QComboBox* DateFormatCombo() const { return m_DateFormat; }
    QComboBox* TimeFormatCombo() const { return m_TimeFormat; }
    QCheckBox* StampEachLineCheck() const { return m_StampEachLine; }
    QCheckBox* AutoBackupCheck() const { return m_AutoBackup; }
    QCheckBox* BackupOnExitCheck() const { return m_BackupOnExit; }
    QSpinBox* BackupIntervalSpin() const { return m_BackupInterval; }
    QSpinBox* BackupDaysSpin() const { return m_BackupDays; }
    QLineEdit* BackupFolderEdit() const { return m_BackupFolder; }
    QCheckBox* RunWithOsCheck() const { return m_RunWithOs; }
    QCheckBox* HideWhenRunWithOsCheck() const { return m_HideWhenRunWithOs; }
    QCheckBox* WizardCheck() const { return m_Wizard; }
    QCheckBox* FileAssociationsCheck() const { return m_FileAssociations; }
    QCheckBox* TrayShowCheck() const { return m_TrayShow; }
    QCheckBox* TrayRightClickCheck() const { return m_TrayRightClick; }
    QCheckBox* TrayMinimizeCheck() const { return m_TrayMinimize; }
    QCheckBox* TrayCloseCheck() const { return m_TrayClose; }
    QCheckBox* AlwaysOnTopCheck() const { return m_AlwaysOnTop; }
    QComboBox* LanguageCombo() const { return m_Language; }
    QComboBox* SkinCombo() const { return m_Skin; }
    QLineEdit* ThemeEdit() const { return m_Theme; }

signals:
    void Applied();

private:
    QWidget* BuildGeneralPage();
    QWidget* BuildEditorPage();
    QWidget* BuildStampsPage();
    QWidget* BuildBackupPage();
    QWidget* BuildStartupPage();
    QWidget* BuildTrayPage();
    QWidget* BuildLanguagePage(const std::u16string& applicationFolder);
    QWidget* BuildSkinPage(const std::u16string& applicationFolder);
    QString Text(const char16_t* key) const;
    void UpdateEnabling();

    CPreferences& m_Prefs;
    const CLanguageModule* m_LanguageModule;
    QListWidget* m_Pages;
    QStackedWidget* m_Stack;

    QCheckBox* m_AutoSave;
    QSpinBox* m_AutoSaveMinutes;
    QSpinBox* m_AutoCloseMinutes;
    QCheckBox* m_CheckUpdates;
    QCheckBox* m_IncludeBeta;
    QFontComboBox* m_Font;
    QSpinBox* m_FontSize;
    QLineEdit* m_Bullet;
    QSpinBox* m_TabSpaces;
    QComboBox* m_DateFormat;
    QComboBox* m_TimeFormat;
    QCheckBox* m_StampEachLine;
    QCheckBox* m_AutoBackup;
    QCheckBox* m_BackupOnExit;
    QSpinBox* m_BackupInterval;
    QSpinBox* m_BackupDays;
    QLineEdit* m_BackupFolder;
    QCheckBox* m_RunWithOs;
    QCheckBox* m_HideWhenRunWithOs;
    QCheckBox* m_Wizard;
    QCheckBox* m_FileAssociations;
    QCheckBox* m_TrayShow;
    QCheckBox* m_TrayRightClick;
    QCheckBox* m_TrayMinimize;
    QCheckBox* m_TrayClose;
    QCheckBox* m_AlwaysOnTop;
    QComboBox* m_Language;
    QComboBox* m_Skin;
    QLineEdit* m_Theme;
};
