// Times the rich text storage and writers on documents of 1 and 5 million characters (10,000 and
// 50,000 lines of 100 characters, a format block every 20 characters). Times are the thread's CPU
// time, best of three runs. Prints nanoseconds per character, the 5M/1M time ratio (near 5 when
// the cost is linear) and the ratio to an anchor measured in the same run: summing every
// character of the text once.
#include "Shared/Base/Archive.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RichTextDocument.h"
#include "Shared/RichText/RtfWriter.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace
{
constexpr size_t LineChars = 100;
constexpr size_t BlockEvery = 20;

CRichTextDocument MakeDocument(size_t lines)
{
    static constexpr char16_t Sample[] =
        u"The quick brown fox jumps over the lazy dog; caf\u00e9 \u4e2d\u6587 & <b> {x}. ";
    const std::u16string_view sample(Sample);
    CRichTextDocument document;
    for (size_t i = 0; i < lines; ++i)
    {
        std::u16string text;
        while (text.size() < LineChars)
            text += sample.substr(0, std::min(sample.size(), LineChars - text.size()));
        CRtfTextLine line(std::move(text));
        line.SetAlignment(static_cast<int32_t>(i % 3));
        std::vector<CRtfTextBlockInfo> blocks;
        for (size_t start = 0; start < LineChars; start += BlockEvery)
        {
            CRtfTextBlockInfo block(static_cast<int32_t>(start));
            const size_t kind = (i + start / BlockEvery) % 4;
            if (kind == 0)
                block.SetFont(
                    SFontDescription::Make(kind % 2 ? u"Arial" : u"Courier New", 10 + int(i % 3), 900));
            if (kind != 3)
                block.SetTextColour(static_cast<RichTextColour>(0x102030 * (kind + 1)));
            if (kind == 2)
                block.SetBackColour(0xFFFFCC);
            blocks.push_back(block);
        }
        line.SetBlocks(std::move(blocks));
        document.AppendLine(std::move(line));
    }
    return document;
}

// The thread's CPU time, so that time spent waiting for a core on a shared machine does not count.
double ThreadCpuNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e9 + double(now.tv_nsec);
}

// Best of three runs, in nanoseconds of CPU time.
double TimeBest(const std::function<void()>& work)
{
    double best = 1e300;
    for (int run = 0; run < 3; ++run)
    {
        const double start = ThreadCpuNanoseconds();
        work();
        best = std::min(best, ThreadCpuNanoseconds() - start);
    }
    return best;
}

struct SResult
{
    const char* name;
    double nanoseconds;
};

std::vector<SResult> Measure(size_t lines, size_t& sink)
{
    const CRichTextDocument document = MakeDocument(lines);
    const SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    std::vector<uint8_t> bytes;
    std::vector<SResult> results;
    results.push_back({"anchor (sum of chars)", TimeBest(
                                                    [&]
                                                    {
                                                        for (const CRtfTextLine& line : document.Lines())
                                                            for (const char16_t ch : line.Text())
                                                                sink += ch;
                                                    })});
    results.push_back({"serialize", TimeBest(
                                        [&]
                                        {
                                            CArchiveWriter out(1 << 20);
                                            document.Serialize(out);
                                            bytes = out.Take();
                                        })});
    results.push_back({"load", TimeBest(
                                   [&]
                                   {
                                       CRichTextDocument loaded;
                                       CArchiveReader in(bytes);
                                       sink += static_cast<size_t>(loaded.Serialize(in)) + loaded.LineCount();
                                   })});
    results.push_back({"ToRtf", TimeBest([&] { sink += ToRtf(document, defaultFont).size(); })});
    results.push_back({"ToHtml", TimeBest([&] { sink += ToHtml(document, u"bench", defaultFont).size(); })});
    results.push_back({"plain text", TimeBest([&] { sink += ToPlainText(document).size(); })});
    return results;
}
} // namespace

int main()
{
    size_t sink = 0;
    const size_t smallLines = 10000;
    const size_t largeLines = 50000;
    const std::vector<SResult> small = Measure(smallLines, sink);
    const std::vector<SResult> large = Measure(largeLines, sink);
    const double largeChars = double(largeLines * LineChars);
    std::printf("%-22s %12s %12s %12s %10s %12s\n", "operation", "1M ms", "5M ms", "5M ns/char", "5M/1M",
                "x anchor");
    bool withinGoal = true;
    for (size_t i = 0; i < small.size(); ++i)
    {
        const double nsPerChar = large[i].nanoseconds / largeChars;
        std::printf("%-22s %12.2f %12.2f %12.2f %10.2f %12.1f\n", small[i].name, small[i].nanoseconds / 1e6,
                    large[i].nanoseconds / 1e6, nsPerChar, large[i].nanoseconds / small[i].nanoseconds,
                    large[i].nanoseconds / large[0].nanoseconds);
        if (i > 0 && nsPerChar >= 10.0)
            withinGoal = false;
    }
    std::printf("goal (< 10 ns per character for each operation): %s\n", withinGoal ? "met" : "NOT met");
    std::printf("(checksum %zu)\n", sink);
    return 0;
}
