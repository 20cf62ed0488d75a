#pragma once
// Builds the shipped language module files from their translation sources, so that the
// modules always hold exactly the keys of the built-in English table.
//
// A translation source is UTF-8 text: "FileDescription=<name shown to the user>", then one
// "KEY=Text" line per English key, with line feeds and tabs written as "\n" and "\t" as in the
// module files; lines starting with "#" and empty lines are ignored.
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Checks the source against the English lines and writes the module file's bytes. Every problem
// (a missing, unknown or repeated key, a text whose markings differ from the English ones, a
// single "&" that loading would remove, a missing description) is added to `problems`; the
// result is false when there is any.
bool BuildLanguageModuleFile(std::string_view translationSource,
                             std::span<const std::u16string_view> englishLines, const SAppCompatibility& app,
                             std::string& moduleBytes, std::vector<std::string>& problems);
