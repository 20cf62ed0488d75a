#include "App/CommandLine.h"

#include "Shared/Base/TextConv.h"

namespace
{
char16_t AsciiLower(char16_t ch)
{
    return ch >= u'A' && ch <= u'Z' ? static_cast<char16_t>(ch - u'A' + u'a') : ch;
}
} // namespace

std::u16string CommandLineText(int argc, const char* const* argv)
{
    std::u16string text;
    for (int index = 1; index < argc; ++index)
    {
        if (index > 1)
            text.push_back(u' ');
        text += Utf8ToUtf16(argv[index]);
    }
    return text;
}

bool CommandLineNamesDataFile(std::u16string_view commandLine)
{
    if (commandLine.size() <= kDataFileExtension.size())
        return false;
    const std::u16string_view tail = commandLine.substr(commandLine.size() - kDataFileExtension.size());
    for (size_t index = 0; index < tail.size(); ++index)
    {
        if (AsciiLower(tail[index]) != kDataFileExtension[index])
            return false;
    }
    return true;
}

bool CommandLineHasAutoStartup(std::u16string_view commandLine)
{
    return commandLine.find(kAutoStartupFlag) != std::u16string_view::npos;
}
