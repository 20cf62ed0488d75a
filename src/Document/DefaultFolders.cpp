#include "Document/DefaultFolders.h"

#include <array>

namespace
{
constexpr std::array<const char16_t*, DefaultFolderKindCount> CaptionKeys = {
    u"FOLDER_NOTES",     u"FOLDER_TASKS",     u"FOLDER_CONTACTS",  u"FOLDER_IDEAS",      u"FOLDER_JOURNAL",
    u"FOLDER_PASSWORDS", u"FOLDER_BOOKMARKS", u"FOLDER_TEMPLATES", u"FOLDER_RECYCLE_BIN"};
} // namespace

bool IsDefaultFolderKind(int kind)
{
    return kind >= 0 && kind < DefaultFolderKindCount;
}

const char16_t* DefaultFolderCaptionKey(int kind)
{
    return IsDefaultFolderKind(kind) ? CaptionKeys[static_cast<size_t>(kind)] : nullptr;
}
