#pragma once
// Import of KeyNote ".knt" files, in the 1.x/2.x text layout (folders holding their nodes and
// texts) and in the 3.x layout (the notes with their texts listed first, then the folders whose
// nodes name them): each folder of the file becomes a folder, each tree node a note; a node with
// child nodes becomes a folder holding a note of the same caption with the node's text (when it
// has any) before its children. Simple folders become a folder with one note. Encrypted files,
// and files holding encrypted parts, are refused.
#include "Document/Import/ImportTarget.h"

#include <string>
#include <string_view>
#include <vector>

struct SFontDescription;

// Reads the whole file into `items` (appended). False after one error line naming `fileName`
// when the file is not a .knt text file, is in a layout not supported, is encrypted, is
// malformed or holds a note whose RTF cannot be read; `items` is then unchanged.
bool ParseKntFile(std::string_view bytes, const std::u16string& fileName, const SFontDescription& defaultFont,
                  std::vector<SImportItem>& items);

// Parses and then adds the file's folders under `parent`, all or nothing.
bool ImportKntFile(std::string_view bytes, const std::u16string& fileName,
                   const SFontDescription& defaultFont, IImportTarget& target, CFolderBase& parent);
