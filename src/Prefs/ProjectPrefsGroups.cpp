#include "Prefs/ProjectPrefsGroups.h"

#include "Shared/Base/File.h"

namespace
{
constexpr int MinutesPerDay = 24 * 60;

// The bullet must be exactly one visible character.
bool IsUsableBullet(std::u16string_view value)
{
    return value.size() == 1 && value[0] != u' ';
}
} // namespace

void SOtherPrefs::Visit(IPrefsVisitor& v)
{
    v.Bool(u"OtherPrefsAutoSaveData", autoSaveData, true);
    v.Int(u"OtherPrefsAutoSaveMinutes", autoSaveMinutes, 3, 1, MinutesPerDay);
    v.Int(u"AutoClosePasswordProtectedFileMinutes", autoClosePasswordProtectedFileMinutes, 0, 0,
          MinutesPerDay);
}

void SBackupPrefs::Visit(IPrefsVisitor& v)
{
    // Portable copies usually run from removable media, where unattended copies of the data file
    // would fill the stick, so they start with automatic backups off.
    v.Bool(u"BackupPrefsEnableAutobackup", enableAutobackup, !v.Env().portable);
    v.Bool(u"BackupPrefsBackupOnExit", backupOnExit, false);
    v.Int(u"BackupPrefsBackupInterval", backupIntervalMinutes, 320, 1, 366 * MinutesPerDay);
    v.Int(u"BackupPrefsDelOldBackupDays", delOldBackupDays, 7, 0, 36600);
    v.Text(u"BackupPrefsBackupFolder", backupFolder, u"");
    v.PastDate(u"BackupPrefsLastBackupDate", lastBackupDate);
}

void SEditorPrefs::Visit(IPrefsVisitor& v)
{
    v.FontFace(u"DefaultPrefsFontName", fontName);
    v.Int(u"DefaultPrefsFontSize", fontSize, 12, 2, 299);
    v.Text(u"RichTextBulletCharacter", bulletCharacter, std::u16string_view(&DefaultBullet, 1),
           IsUsableBullet);
    v.Int(u"RichTextSpacesNumInSingleTabChar", spacesInTab, 8, 1, 99);
    v.Int(u"DefaultDateStampFormat", dateStampFormat, 1, 0, 1);
    v.Int(u"DefaultTimeStampFormat", timeStampFormat, 1, 0, 1);
    v.Bool(u"RichTextStampDateTimeForEachNewLine", stampDateTimeForEachNewLine, false);
    v.Text(u"LastUsedSpellDictionary", lastUsedSpellDictionary, u"");
    v.NumberedList(u"RecentlyUsedFont", recentFonts);
}

void SSearchPrefs::Visit(IPrefsVisitor& v)
{
    v.Text(u"GlobalSrchText", globalText, u"");
    v.Bool(u"GlobalSrchMatchCase", globalMatchCase, false);
    v.Bool(u"GlobalSrchWholeWords", globalWholeWords, false);
    v.Bool(u"GlobalSrchBool", globalBoolean, false);
    v.Text(u"FindReplDlgFindLine", findLine, u"");
    v.Text(u"FindReplDlgReplaceLine", replaceLine, u"");
    v.Bool(u"FindReplDlgMatchCase", findMatchCase, false);
}

void SPwdGenPrefs::Visit(IPrefsVisitor& v)
{
    v.ClampedInt(u"PwdGenPrefsPdwsNumTogenerate", passwordsToGenerate, 1, MinCount, MaxCount);
    v.ClampedInt(u"PwdGenPrefsPwdLen", passwordLength, 10, MinCount, MaxCount);
    v.Bool(u"PwdGenPrefsAllowLowercase", allowLowercase, true);
    v.Bool(u"PwdGenPrefsAllowuppercase", allowUppercase, true);
    v.Bool(u"PwdGenPrefsAllowNumeric", allowNumeric, true);
    v.Bool(u"PwdGenPrefsAllowPucnt", allowPunctuation, false);
    v.Bool(u"PwdGenPrefsNoSimilarChars", noSimilarChars, false);
}

void SLayoutPrefs::Visit(IPrefsVisitor& v)
{
    v.Int(u"MainWndTreeWidth", mainWndTreeWidth, 250, 20, 10000);
    v.Int(u"FolderListCardWidth", folderListCardWidth, 200, 40, 4000);
    v.Int(u"FolderListCardHeight", folderListCardHeight, 150, 30, 4000);
    v.Text(u"MainWndToolbarButtons", mainWndToolbarButtons, u"");
}

void SDocumentStatePrefs::Visit(IPrefsVisitor& v)
{
    v.Text(u"RecentFilePath", recentFilePath, JoinPath(v.Env().documentsFolder, DefaultDataFileName));
    v.Binary(u"idGeneratorState", idGeneratorState);
    v.Binary(u"NavigationState", navigationState);
    v.UInt(u"AIDCounter", alarmIdCounter, 0);
    v.UInt(u"NCounter", noteCounter, 0);
    v.UInt(u"FCounter", folderCounter, 0);
    v.UInt(u"LastAID", lastAlarmId, 0);
}
