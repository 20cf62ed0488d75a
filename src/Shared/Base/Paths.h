#pragma once
// Well-known folders of this user and program. Every result ends with '/'.
#include <string>

// The full path of the running executable (from /proc/self/exe); empty when it cannot be read.
std::u16string ProgramPath();
// The folder of the running executable; empty when it cannot be read.
std::u16string ProgramFolder();
// $HOME, or the password database's home folder when HOME is unset.
std::u16string HomeFolder();
// $XDG_STATE_HOME when set to an absolute path, otherwise HomeFolder() + ".local/state/".
std::u16string XdgStateHome();
// $XDG_CONFIG_HOME when set to an absolute path, otherwise HomeFolder() + ".config/".
std::u16string XdgConfigHome();
// $XDG_DATA_HOME when set to an absolute path, otherwise HomeFolder() + ".local/share/".
std::u16string XdgDataHome();
