#pragma once
// The nine default folders of a document. They are created with every new document, cannot be
// deleted or cut, and are captioned by these language keys:
//
//   kind  key                   English caption
//   0     FOLDER_NOTES          Notes
//   1     FOLDER_TASKS          Tasks
//   2     FOLDER_CONTACTS       Contacts
//   3     FOLDER_IDEAS          Ideas
//   4     FOLDER_JOURNAL        Journal
//   5     FOLDER_PASSWORDS      Passwords
//   6     FOLDER_BOOKMARKS      Bookmarks
//   7     FOLDER_TEMPLATES      Templates
//   8     FOLDER_RECYCLE_BIN    Recycle Bin
#include <cstddef>

constexpr int DefaultFolderKindCount = 9;
constexpr int RecycleBinFolderKind = 8;

bool IsDefaultFolderKind(int kind);
// The caption key of a default folder kind, or null for any other kind.
const char16_t* DefaultFolderCaptionKey(int kind);
