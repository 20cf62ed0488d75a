#include "TempFolder.h"

#include "Shared/Base/TextConv.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

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
    return Utf8ToUtf16(m_Path);
}

std::u16string CTempFolder::File16(const std::string& name) const
{
    return Utf8ToUtf16(m_Path + "/" + name);
}
