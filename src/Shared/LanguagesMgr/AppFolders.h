#pragma once
// The data folders beside the program, addressed by index as the preferences and the skin and
// language code do.
#include <string>

enum class EAppFolder
{
    Skins = 0,
    Dictionaries = 1,
    Languages = 2,
    Sounds = 3
};

// "Skins/", "Dictionaries/", "Languages/" or "Sounds/" under `appFolder`, with the trailing "/".
std::u16string AppFolderPath(const std::u16string& appFolder, EAppFolder folder);
