#pragma once
// Writes language module files: UTF-16LE with a byte-order mark, the three header lines, then
// one "KEY=Text" line per string, every line ended by CR LF.
#include "Shared/LanguagesMgr/LanguageModuleHeader.h"

#include <span>
#include <string>
#include <string_view>

// `lines` are "KEY=Text" lines already in file form (control characters escaped); `comment`
// (may be empty) becomes a "//" line after the header.
std::string MakeLanguageModuleFile(const SAppCompatibility& app, std::u16string_view description,
                                   std::u16string_view comment, std::span<const std::u16string> lines);
