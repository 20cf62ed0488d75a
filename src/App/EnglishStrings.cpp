#include "App/EnglishStrings.h"

namespace
{
// Texts are in their final form: real line feeds and tabs, no "&" accelerator marks. Tags ("^"
// and a name) are replaced by the callers and must be kept by every translation.
constexpr std::u16string_view kEnglishStrings[] = {
    // Alarms
    u"ALARMDLG_ADD_BTN=Add",
    u"ALARMDLG_BROWSE_BTN=Browse...",
    u"ALARMDLG_CAPTION=Alarms of \"^caption\"",
    u"ALARMDLG_DESCRIPTION_LABEL=Description:",
    u"ALARMDLG_ENABLED_CHK=Enabled",
    u"ALARMDLG_END_CHK=Ends on:",
    u"ALARMDLG_INTERVAL_DAYS=day(s)",
    u"ALARMDLG_INTERVAL_LABEL=Every:",
    u"ALARMDLG_INTERVAL_MONTHS=month(s)",
    u"ALARMDLG_INTERVAL_WEEKS=week(s)",
    u"ALARMDLG_INTERVAL_YEARS=year(s)",
    u"ALARMDLG_REMOVE_BTN=Remove",
    u"ALARMDLG_SOUND_LABEL=Sound file:",
    u"ALARMDLG_START_LABEL=Start date:",
    u"ALARMDLG_TIME_LABEL=Time:",
    u"ALARMDLG_TYPE_LABEL=Repeat:",
    u"ALARMDLG_WEEKDAYS=Sun|Mon|Tue|Wed|Thu|Fri|Sat",
    u"ALARMDLG_WEEKDAYS_LABEL=On:",
    u"ALARME_TYPE_DAILY=Daily",
    u"ALARME_TYPE_MONTHLY_BY_DATE=Monthly (by date)",
    u"ALARME_TYPE_MONTHLY_BY_WEEKDAY=Monthly (by day of the week)",
    u"ALARME_TYPE_ONCE=Once",
    u"ALARME_TYPE_WEEKLY=Weekly",
    u"ALARME_TYPE_YEARLY=Yearly",
    u"ALARMREMINDDLG_CAPTION=Reminder",
    u"ALARMREMINDDLG_DATE_TIME_COLUMN_HEADER=Date and time",
    u"ALARMREMINDDLG_DESCRIPTION_COLUMN_HEADER=Description",
    u"ALARMREMINDDLG_DISMISS_ALL_BTN=Dismiss All",
    u"ALARMREMINDDLG_DISMISS_BTN=Dismiss",
    u"ALARMREMINDDLG_OPEN_BTN=Open Item",
    u"ALARMREMINDDLG_REMIND_IN_LABEL=Click Snooze to be reminded again in:",
    u"ALARMREMINDDLG_SNOOZE_BTN=Snooze",
    u"ALARMREMINDDLG_SNOOZE_BTN_HOUR=hour",
    u"ALARMREMINDDLG_SNOOZE_BTN_HOURS=hours",
    u"ALARMREMINDDLG_SNOOZE_BTN_MINUTES=minutes",
    u"ALARMREMINDDLG_TRAY_TEXT=^N reminders are due.",

    // Common buttons, dialog captions and status texts
    u"ATTACHMENT_DLG_CAPTION=Save Attachment As",
    u"BACKUP_DLG_CAPTION=Choose Backup Folder",
    u"CANCEL_BUTTON=Cancel",
    u"CLOSE_BUTTON=Close",
    u"FILE_OPEN_DLG_CAPTION=Open Data File",
    u"HELP_BUTTON=Help",
    u"IMAGE_DLG_CAPTION=Insert Image",
    u"MAIN_WND_STATUS_BUSY=Busy...",
    u"MAIN_WND_STATUS_LOADING=Loading...",
    u"MAIN_WND_STATUS_SAVING=Saving...",
    u"MAIN_WND_STATUS_WAIT=Please wait.",
    u"NEW_FILE_DLG_CAPTION=Create New Data File",
    u"OK_BUTTON=OK",
    u"SAVEAS_DLG_CAPTION=Save Data File As",
    u"SELECT_FILES_DLG_CAPTION=Select File",

    // Editor
    u"EDITCTL_CLEAR_SELECTION=Clear Selection",
    u"EDITCTL_COPY=Copy",
    u"EDITCTL_CUT=Cut",
    u"EDITCTL_FIND=Find...",
    u"EDITCTL_FIND_NOTFOUND=The search text was not found.",
    u"EDITCTL_HYPERLINK_TOOLTIP=Ctrl+Click to follow the link",
    u"EDITCTL_NO_UNDO=(nothing)",
    u"EDITCTL_PASTE=Paste",
    u"EDITCTL_REDO=Redo",
    u"EDITCTL_REPLACE=Replace...",
    u"EDITCTL_REPLACEMENT_INFO=^N occurrences have been replaced.",
    u"EDITCTL_SELECTALL=Select All",
    u"EDITCTL_UNDO=Undo",
    u"EDITCTL_UNDO_ALIGNMENT=Alignment",
    u"EDITCTL_UNDO_DELETION=Deletion",
    u"EDITCTL_UNDO_FONT_FORMATTING=Font Formatting",
    u"EDITCTL_UNDO_REPLACEMENT=Replacement",
    u"EDITCTL_UNDO_TXT_INSERT=Insertion",
    u"EDITCTL_UNDO_TYPING=Typing",

    // Error messages
    u"ERR_CANNOT_CREATE_FILE=Cannot create the data file ^filename.",
    u"ERR_CANNOT_DELETE_DEFAULT_FOLDERS=Default folders cannot be deleted.",
    u"ERR_CANNOT_DELETE_FILE=Cannot replace the file ^filename. It may be in use by another program.",
    u"ERR_CANNOT_LOAD_FILE=Cannot load the selected file.",
    u"ERR_CANNOT_LOAD_ROOT_FOLDER=Cannot open the data file ^filename: its root folder cannot be loaded.",
    u"ERR_CANNOT_LOAD_SKIN=Cannot load the default skin. The application cannot start.",
    u"ERR_CANNOT_SAVE_FILE=Cannot save the data file as ^filename.",
    u"ERR_CORRUPTED_FILE=Cannot open the data file ^filename. It is corrupted or was written by a newer "
    u"version of this program.",
    u"ERR_CORRUPTED_OR_LOCKED_FILE=Cannot open the data file ^filename. It is inaccessible or corrupted.",
    u"ERR_CUT_ON_DEFAULT_FOLDERS_NOT_ALLOWED=Default folders cannot be cut.",
    u"ERR_FILE_DOES_NOT_EXISTS=The file ^filename does not exist.",
    u"ERR_INCORRECT_FILE_TYPE=The file ^filename is not a Quillarium Organizer data file.",
    u"ERR_LAUNCH_FILE=Cannot launch ^fileName file. It appears that system has no application associated to "
    u"this file extension.",
    u"ERR_WRITE_PROTECTED_FILE=The data file ^filename is write-protected.\nYour changes will not be saved "
    u"to it.",
    u"ERR_WRONG_DATA_FILE_APP=The file ^filename was written by another application (^appname) and cannot be "
    u"opened.",
    u"ERR_WRONG_FILE_VERSION=The data file ^filename was written by a newer version of this program.\nPlease "
    u"upgrade to open it.",

    // Find and replace
    u"FINDREPLDLG_CASE_SENSITIVE=Match case",
    u"FINDREPLDLG_FIND_BTN=Find Next",
    u"FINDREPLDLG_FIND_CAPTION=Find",
    u"FINDREPLDLG_FIND_LABEL=Find what:",
    u"FINDREPLDLG_REPLACE_ALL_BTN=Replace All",
    u"FINDREPLDLG_REPLACE_BTN=Replace",
    u"FINDREPLDLG_REPLACE_CAPTION=Replace",
    u"FINDREPLDLG_REPLACE_LABEL=Replace with:",
    u"FINDREPLDLG_REPLACEIN_LABEL=Replace in",
    u"FINDREPLDLG_REPLACEIN_SELECTION=Selection",
    u"FINDREPLDLG_REPLACEIN_WHOLETEXT=Whole text",

    // Global search
    u"GLOBALSEARCHDLG_BOOLEAN=Boolean search (+required -excluded)",
    u"GLOBALSEARCHDLG_CAPTION=Search All Notes",
    u"GLOBALSEARCHDLG_CASE_SENSITIVE=Match case",
    u"GLOBALSEARCHDLG_CLOSE_BTN=Close",
    u"GLOBALSEARCHDLG_FILTER_BTN=Filter Tree",
    u"GLOBALSEARCHDLG_HELP_TEXT=Type the words to look for and press Search. Folders are found by their "
    u"caption, notes by their caption and text.\n\nWith boolean search each word is looked for on its own: "
    u"+word must occur, -word must not occur, a word without a sign may occur. Without it the whole line is "
    u"looked for as one phrase.",
    u"GLOBALSEARCHDLG_GOTO_BTN=Go To",
    u"GLOBALSEARCHDLG_QUERY_LABEL=Search for:",
    u"GLOBALSEARCHDLG_SEARCH_BTN=Search",
    u"GLOBALSEARCHDLG_STATUS_RESULT=Search finished: ^N items found.",
    u"GLOBALSEARCHDLG_STATUS_SEARCHING=Searching...",
    u"GLOBALSEARCHDLG_TABLEHDR_CAPTION=Caption",
    u"GLOBALSEARCHDLG_TABLEHDR_DESCRIPTION=Description",
    u"GLOBALSEARCHDLG_WHOLE_WORDS=Whole words only",

    // Menus
    u"MENU_EIDT=Edit",
    u"MENU_EIDT_ADVANCED=Advanced",
    u"MENU_EIDT_ADVANCED_LINEDOWN=Move Line Down",
    u"MENU_EIDT_ADVANCED_LINEUP=Move Line Up",
    u"MENU_EIDT_ADVANCED_TABIFY=Tabify Selection",
    u"MENU_EIDT_ADVANCED_UNTABIFY=Untabify Selection",
    u"MENU_EIDT_CHANGE_CASE=Change Case",
    u"MENU_EIDT_CHANGE_CASE_LOWER=lower case",
    u"MENU_EIDT_CHANGE_CASE_MIXED=Mixed Case",
    u"MENU_EIDT_CHANGE_CASE_UPPER=UPPER CASE",
    u"MENU_EIDT_FIND=Find...",
    u"MENU_EIDT_FIND_NEXT=Find Next",
    u"MENU_EIDT_INSERT=Insert",
    u"MENU_EIDT_INSERT_ATTACHMENT=Attachment...",
    u"MENU_EIDT_INSERT_CHARACTER=Special Character...",
    u"MENU_EIDT_INSERT_FILE_HYPERLINK=Link to File...",
    u"MENU_EIDT_INSERT_IMAGE=Image...",
    u"MENU_EIDT_INSERT_NOTE_LINK=Link to Note...",
    u"MENU_EIDT_REPLACE=Replace...",
    u"MENU_EIDT_RESTORE_IMAGE_SIZE=Restore Original Image Size",
    u"MENU_EIDT_STAMP_DATE=Date Stamp",
    u"MENU_EIDT_STAMP_TIME=Time Stamp",
    u"MENU_FILE=File",
    u"MENU_FILE_EXIT=Exit",
    u"MENU_FILE_OPEN=Open",
    u"MENU_FILE_SAVEAS=Save As...",
    u"MENU_ITEM_ALARMS=Alarms...",
    u"MENU_ITEM_COLOR=Colour",
    u"MENU_ITEM_ICON=Icon",
    u"MENU_ITEM_PRIORITY=Priority",
    u"MENU_ITEM_READ_ONLY=Read Only",
    u"MENU_ITEM_TASK=Task",
    u"MENU_TOOLS_PWD_GENERATOR=Password Generator...",

    // Password generator
    u"PWDGEN_DLG_CAPTION=Password Generator",
    u"PWDGEN_DLG_CHAR_LABEL=Characters to use:",
    u"PWDGEN_DLG_COPY_BTN=Copy",
    u"PWDGEN_DLG_GENERATE_BTN=Generate",
    u"PWDGEN_DLG_GENERATED_PWD_LABEL=Generated passwords:",
    u"PWDGEN_DLG_INSERT_BTN=Insert into Note",
    u"PWDGEN_DLG_LOWERCASE_CHK=Lower case letters (a-z)",
    u"PWDGEN_DLG_NOSIMILAR_CHK=Exclude look-alike characters",
    u"PWDGEN_DLG_NUM_PWD_LABEL=Number of passwords:",
    u"PWDGEN_DLG_NUMBERS_CHK=Digits (0-9)",
    u"PWDGEN_DLG_PUNCTUAT_CHK=Punctuation (#!-~@$*...)",
    u"PWDGEN_DLG_PWD_LENGHT_LABEL=Password length:",
    u"PWDGEN_DLG_PWD_STREGTH_LABEL=Password strength:",
    u"PWDGEN_DLG_PWD_STRGH_FANT_LABEL=Fantastic",
    u"PWDGEN_DLG_PWD_STRGH_NORM_LABEL=Normal",
    u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL=Strong",
    u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL=Weak",
    u"PWDGEN_DLG_UPPERCASE_CHK=Upper case letters (A-Z)",

    // Captions of the nine default folders (item tree, kinds 0-8)
    u"FOLDER_NOTES=Notes",
    u"FOLDER_TASKS=Tasks",
    u"FOLDER_CONTACTS=Contacts",
    u"FOLDER_IDEAS=Ideas",
    u"FOLDER_JOURNAL=Journal",
    u"FOLDER_PASSWORDS=Passwords",
    u"FOLDER_BOOKMARKS=Bookmarks",
    u"FOLDER_TEMPLATES=Templates",
    u"FOLDER_RECYCLE_BIN=Recycle Bin",

    // Sample notes of a new document's default tree
    u"WIZARDDLG_SAMPLE_TREE_IDEA_CAPTION=Idea: plan a weekend trip",
    u"WIZARDDLG_SAMPLE_TREE_IDEA_TEXT=Collect ideas here as they come.\nA note can hold text, pictures and "
    u"attached files.",
    u"WIZARDDLG_SAMPLE_TREE_TASK_CAPTION=Try out Quillarium Organizer",
    u"WIZARDDLG_SAMPLE_TREE_TASK_TEXT=Create a folder of your own.\nAdd a note to it and write "
    u"something.\nSet an alarm on an item to be reminded of it.",
    u"WIZARDDLG_SAMPLE_TREE_WELCOME_CAPTION=Welcome",
    u"WIZARDDLG_SAMPLE_TREE_WELCOME_TEXT=Welcome to Quillarium Organizer!\nKeep your notes in folders and "
    u"find them again with the global search.\nEverything is stored in one data file, which is backed up "
    u"automatically.",

    // Editor (FxEdit): attachment files
    u"ERR_CANNOT_SAVE_ATTACHMENT=Cannot save the attachment as ^filename.",
};
} // namespace

std::span<const std::u16string_view> EnglishStrings()
{
    return kEnglishStrings;
}
