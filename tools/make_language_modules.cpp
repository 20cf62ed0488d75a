// Writes data/Languages/<Name>.lng for every tools/translations/<Name>.txt, from the built-in
// English table and the translation. With --check it only reports modules that differ from
// what it would write. Exit code 0 on success, 1 on any problem, 2 on wrong usage.
//
//     make_language_modules [--check] <source folder>
#include "App/AppIdentity.h"
#include "App/EnglishStrings.h"
#include "App/LanguageModuleBuilder.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"

#include <cstdio>
#include <string>
#include <vector>

namespace
{
std::u16string ModuleNameFor(const std::u16string& sourceName)
{
    return sourceName.substr(0, sourceName.rfind(u'.')) + u".lng";
}

bool ProcessTranslation(IFileSystem& fs, const std::u16string& sourcePath, const std::u16string& modulePath,
                        bool checkOnly)
{
    std::string source;
    int cause = 0;
    if (!ReadWholeFile(fs, sourcePath, source, cause))
    {
        std::fprintf(stderr, "cannot read %s (cause %d)\n", Utf16ToUtf8(sourcePath).c_str(), cause);
        return false;
    }
    std::string module;
    std::vector<std::string> problems;
    if (!BuildLanguageModuleFile(source, EnglishStrings(), AppCompatibility(), module, problems))
    {
        for (const std::string& problem : problems)
            std::fprintf(stderr, "%s: %s\n", Utf16ToUtf8(sourcePath).c_str(), problem.c_str());
        return false;
    }
    if (checkOnly)
    {
        std::string shipped;
        if (!ReadWholeFile(fs, modulePath, shipped, cause) || shipped != module)
        {
            std::fprintf(stderr, "%s is out of date\n", Utf16ToUtf8(modulePath).c_str());
            return false;
        }
        return true;
    }
    if (!WriteWholeFile(fs, modulePath, module, cause))
    {
        std::fprintf(stderr, "cannot write %s (cause %d)\n", Utf16ToUtf8(modulePath).c_str(), cause);
        return false;
    }
    std::printf("wrote %s\n", Utf16ToUtf8(modulePath).c_str());
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    const bool checkOnly = argc == 3 && std::string(argv[1]) == "--check";
    if (argc != 2 && !checkOnly)
    {
        std::fprintf(stderr, "usage: make_language_modules [--check] <source folder>\n");
        return 2;
    }
    IFileSystem& fs = DiskFileSystem();
    const std::u16string root = Utf8ToUtf16(argv[argc - 1]);
    const std::u16string sources = JoinPath(root, u"tools/translations");
    const std::u16string modules = JoinPath(root, u"data/Languages");
    bool ok = true;
    int count = 0;
    for (const SFolderEntry& entry : fs.ListFolder(sources, u"*.txt"))
    {
        ok = ProcessTranslation(fs, JoinPath(sources, entry.name),
                                JoinPath(modules, ModuleNameFor(entry.name)), checkOnly) &&
             ok;
        ++count;
    }
    if (count == 0)
    {
        std::fprintf(stderr, "no translation sources in %s\n", Utf16ToUtf8(sources).c_str());
        return 1;
    }
    return ok ? 0 : 1;
}
