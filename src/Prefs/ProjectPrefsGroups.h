#pragma once
// The "project-specific" preference groups: settings of the notes document and its tools
// (saving and backups, the editor's text defaults, searching, the password generator, the
// window layout of tree and cards, and the state kept with the current data file).
#include "Prefs/PrefsVisitor.h"

#include <cstdint>
#include <string>
#include <vector>

struct SOtherPrefs
{
    bool autoSaveData{};
    int autoSaveMinutes{};
    int autoClosePasswordProtectedFileMinutes{}; // 0: never close
    void Visit(IPrefsVisitor& v);
};

struct SBackupPrefs
{
    bool enableAutobackup{};
    bool backupOnExit{};
    int backupIntervalMinutes{};
    int delOldBackupDays{}; // 0 keeps every backup
    std::u16string backupFolder;
    OleDate lastBackupDate{}; // 0: no backup made yet
    void Visit(IPrefsVisitor& v);
};

struct SEditorPrefs
{
    static constexpr size_t RecentFontsCount = 7;
    static constexpr char16_t DefaultBullet = u'\u00B7';

    std::u16string fontName;
    int fontSize{}; // points
    std::u16string bulletCharacter;
    int spacesInTab{};
    int dateStampFormat{}; // 0 or 1
    int timeStampFormat{}; // 0 or 1
    bool stampDateTimeForEachNewLine{};
    std::u16string lastUsedSpellDictionary;
    CRecentList recentFonts{RecentFontsCount}; // "RecentlyUsedFont0".."RecentlyUsedFont6"
    void Visit(IPrefsVisitor& v);
};

struct SSearchPrefs
{
    std::u16string globalText;
    bool globalMatchCase{};
    bool globalWholeWords{};
    bool globalBoolean{};
    std::u16string findLine;
    std::u16string replaceLine;
    bool findMatchCase{};
    void Visit(IPrefsVisitor& v);
};

// The password generator's settings; the counts are clamped as the generator clamps them.
struct SPwdGenPrefs
{
    static constexpr int MinCount = 1;
    static constexpr int MaxCount = 1000;

    int passwordsToGenerate{};
    int passwordLength{};
    bool allowLowercase{};
    bool allowUppercase{};
    bool allowNumeric{};
    bool allowPunctuation{};
    bool noSimilarChars{};
    void Visit(IPrefsVisitor& v);
};

struct SLayoutPrefs
{
    int mainWndTreeWidth{}; // pixels
    int folderListCardWidth{};
    int folderListCardHeight{};
    // "MainWndToolbarButtons": the toolbar's command names separated by ",", "-" for a
    // separator; empty for the program's own choice.
    std::u16string mainWndToolbarButtons;
    void Visit(IPrefsVisitor& v);
};

struct SDocumentStatePrefs
{
    std::u16string recentFilePath;
    std::vector<uint8_t> idGeneratorState;
    std::vector<uint8_t> navigationState;
    uint32_t alarmIdCounter{};
    uint32_t noteCounter{};
    uint32_t folderCounter{};
    uint32_t lastAlarmId{};
    void Visit(IPrefsVisitor& v);
};

// The file name of the data file that a fresh installation opens, in the documents folder.
inline constexpr char16_t DefaultDataFileName[] = u"Quillarium Documents.ddb";
