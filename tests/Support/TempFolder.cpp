#include "TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace
{
std::u16string Widen(const std::string& ascii)
{
    // Temporary paths are ASCII (mkdtemp template under TMPDIR or /tmp).
    return std::u16string(ascii.begin(), ascii.end());
}
} // namespace

CTempFolder::CTempFolder()
{
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/quill-test-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_Path = pattern;
}

CTempFolder::~CTempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
}

std::u16string CTempFolder::Path16() const
{
    return Widen(m_Path);
}

std::u16string CTempFolder::File16(const std::string& name) const
{
    return Widen(m_Path + "/" + name);
}
