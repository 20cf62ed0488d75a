// Times the RTF reader on two generated RTF files of 20 MB: the RTF writer's own output for a
// document with a format change every 20 characters (control-word heavy), and prose in code page
// 1250 with \'hh escapes, \u characters and a paragraph every 400 bytes, as other programs write
// it. Times are the thread's CPU time, best of three runs. Prints MB/s (goal: at least 50) and
// the ratio to an anchor measured in the same run: one pass over the bytes counting backslashes.
#include "Shared/Base/TextConv.h"
#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfWriter.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace
{
constexpr size_t TargetBytes = 20u << 20;
constexpr double Megabyte = 1024.0 * 1024.0;

double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double BestSeconds(const std::function<void()>& run)
{
    double best = 1e30;
    for (int i = 0; i < 3; ++i)
    {
        const double start = ThreadSeconds();
        run();
        best = std::min(best, ThreadSeconds() - start);
    }
    return best;
}

SFontDescription DefaultFont()
{
    return SFontDescription::Make(u"Arial", 12);
}

// The writer's RTF for lines of 100 characters with a block every 20 characters.
std::string WriterRtf()
{
    static constexpr char16_t Sample[] =
        u"The quick brown fox jumps over the lazy dog; caf\u00e9 {x} \\ tab\t. ";
    const std::u16string_view sample(Sample);
    const SFontDescription fonts[] = {DefaultFont(), SFontDescription::Make(u"Courier New", 10, 900),
                                      SFontDescription::Make(u"Times New Roman", 14)};
    CRichTextDocument document;
    size_t estimate = 0;
    for (size_t i = 0; estimate < TargetBytes; ++i)
    {
        std::u16string text;
        while (text.size() < 100)
            text += sample.substr(0, std::min(sample.size(), 100 - text.size()));
        CRtfTextLine line(std::move(text));
        line.SetAlignment(static_cast<int32_t>(i % 3));
        for (int32_t start = 0; start < 100; start += 20)
        {
            CRtfTextBlockInfo block(start);
            block.SetFont(fonts[(i + static_cast<size_t>(start)) % 3]);
            block.SetTextColour(static_cast<RichTextColour>((start * 0x10203) & 0xFFFFFF));
            line.AddBlock(block);
        }
        document.AppendLine(std::move(line));
        estimate += 350; // bytes of RTF per line, as measured
    }
    return Utf16ToCp1252(ToRtf(document, DefaultFont()));
}

// Prose in code page 1250 with a few formats per paragraph.
std::string ProseRtf()
{
    std::string rtf = "{\\rtf1\\ansi\\ansicpg1250\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset238 Arial CE;}"
                      "{\\f1\\froman\\fcharset0 Times New Roman;}}{\\colortbl;\\red0\\green0\\blue255;}\r\n"
                      "\\viewkind4\\uc1\\pard\\f0\\fs20 ";
    static constexpr std::string_view Paragraph =
        "P\\'f8\\'edli\\'9a \\'9elu\\'9dou\\'e8k\\'fd k\\'f9\\'f2 \\'fap\\'ecl \\'EFbelsk\\'e9 \\'f3dy. "
        "Plain words follow here to make a longer run of ordinary text in the paragraph, "
        "{\\b bold words} and {\\i\\cf1 blue italic words}, a euro \\u8364? sign and a "
        "\\tab tab, then more ordinary text until the paragraph ends with its mark.\\par\r\n";
    while (rtf.size() < TargetBytes)
        rtf += Paragraph;
    return rtf + "}";
}

size_t CountBackslashes(const std::string& bytes)
{
    size_t count = 0;
    for (const char ch : bytes)
        count += ch == '\\' ? 1 : 0;
    return count;
}
} // namespace

int main()
{
    const std::pair<const char*, std::string> inputs[] = {{"writer output", WriterRtf()},
                                                          {"prose cp1250", ProseRtf()}};
    std::printf("%-16s %10s %12s %12s %12s %10s\n", "input", "MB", "read ms", "read MB/s", "anchor MB/s",
                "x anchor");
    bool withinGoal = true;
    size_t sink = 0;
    for (const auto& [name, rtf] : inputs)
    {
        const double anchor = BestSeconds([&] { sink += CountBackslashes(rtf); });
        size_t lines = 0;
        const double read = BestSeconds(
            [&]
            {
                CRichTextDocument document;
                if (!ReadRtf(rtf, DefaultFont(), document))
                    std::printf("read failed\n");
                lines = document.LineCount();
            });
        sink += lines;
        const double megabytes = static_cast<double>(rtf.size()) / Megabyte;
        const double rate = megabytes / read;
        withinGoal = withinGoal && rate >= 50.0;
        std::printf("%-16s %10.1f %12.1f %12.1f %12.1f %10.1f\n", name, megabytes, read * 1e3, rate,
                    megabytes / anchor, read / anchor);
    }
    std::printf("goal (at least 50 MB/s for each input): %s\n", withinGoal ? "met" : "NOT met");
    std::printf("(checksum %zu)\n", sink);
    return 0;
}
