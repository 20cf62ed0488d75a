#pragma once
// Dialog positions kept in the preferences' window placement list under each dialog's settings
// key ("GlobalSrchDlg", "FindTxtDlg", ...). A stored rectangle that lies off every screen is not
// applied, so a dialog never opens where the user cannot reach it.
#include <string_view>

class CPreferences;
class QWidget;

// Moves and sizes `window` as stored under `key`; false when nothing usable is stored.
bool RestoreWindowPlacement(QWidget& window, const CPreferences* prefs, std::u16string_view key);
void SaveWindowPlacement(const QWidget& window, CPreferences* prefs, std::u16string_view key);
