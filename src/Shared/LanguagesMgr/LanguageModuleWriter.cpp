#include "Shared/LanguagesMgr/LanguageModuleWriter.h"

#include "Shared/Base/TextConv.h"

std::string MakeLanguageModuleFile(const SAppCompatibility& app, std::u16string_view description,
                                   std::u16string_view comment, std::span<const std::u16string> lines)
{
    std::u16string text(1, char16_t(0xFEFF));
    auto addLine = [&text](std::u16string_view first, std::u16string_view second)
    {
        text += first;
        text += second;
        text += u"\r\n";
    };
    addLine(kProjectSignatureTag, app.projectSignature);
    addLine(kFileDescriptionTag, description);
    addLine(kRequiredBuildTag, ToU16(app.buildNumber));
    if (!comment.empty())
        addLine(u"// ", comment);
    for (const std::u16string& line : lines)
        addLine(line, u"");
    return TextToUtf16LeBytes(text);
}
