// Times the rich text storage and writers on documents of 1 and 5 million characters (10,000 and
// 50,000 lines of 100 characters, a format block every 20 characters). Times are the thread's CPU
// time, best of three runs. Prints nanoseconds per character, the 5M/1M time ratio (near 5 when
// the cost is linear) and the ratio to an anchor measured in the same run: summing every
// character of the text once.
//
// Each operation is timed twice. With new memory, every run starts with the allocator's free
// memory handed back to the system, so it pays for first touching its output the way a program's
// first export does (the kernel zeroes each new page; on a loaded machine that costs microseconds
// a page). With reused memory, the allocator keeps what the previous run freed (large blocks come
// from its heap, not from separate mappings). A second anchor shows what merely touching as much
// new memory as the HTML output costs.
#include "Shared/Base/Archive.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RichTextDocument.h"
#include "Shared/RichText/RtfWriter.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
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
                    SFontDescription::Make(i % 2 ? u"Arial" : u"Courier New", 10 + int(i % 3), 900));
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

long MinorFaults()
{
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_minflt;
}

struct SResult
{
    const char* name;
    double nanoseconds;
    long faults;
};

bool g_NewMemory = true;

// Best of three runs, in nanoseconds of CPU time, with the page faults of that run.
SResult TimeBest(const char* name, const std::function<void()>& work)
{
    SResult best{name, 1e300, 0};
    for (int run = 0; run < 3; ++run)
    {
        if (g_NewMemory)
            malloc_trim(0);
        const long faults = MinorFaults();
        const double start = ThreadCpuNanoseconds();
        work();
        const double elapsed = ThreadCpuNanoseconds() - start;
        if (elapsed < best.nanoseconds)
            best = {name, elapsed, MinorFaults() - faults};
    }
    return best;
}

std::vector<SResult> Measure(size_t lines, size_t& sink)
{
    const CRichTextDocument document = MakeDocument(lines);
    const SFontDescription defaultFont = SFontDescription::Make(u"Arial", 12);
    std::vector<uint8_t> bytes;
    std::vector<SResult> results;
    results.push_back(TimeBest("anchor (sum of chars)",
                               [&]
                               {
                                   for (const CRtfTextLine& line : document.Lines())
                                       for (const char16_t ch : line.Text())
                                           sink += ch;
                               }));
    size_t htmlUnits = 0;
    results.push_back(TimeBest("serialize",
                               [&]
                               {
                                   CArchiveWriter out(1 << 20);
                                   document.Serialize(out);
                                   bytes = out.Take();
                               }));
    results.push_back(TimeBest("load",
                               [&]
                               {
                                   CRichTextDocument loaded;
                                   CArchiveReader in(bytes);
                                   sink += static_cast<size_t>(loaded.Serialize(in)) + loaded.LineCount();
                               }));
    results.push_back(TimeBest("ToRtf", [&] { sink += ToRtf(document, defaultFont).size(); }));
    results.push_back(TimeBest("ToHtml",
                               [&]
                               {
                                   htmlUnits = ToHtml(document, u"bench", defaultFont).size();
                                   sink += htmlUnits;
                               }));
    results.push_back(TimeBest("plain text", [&] { sink += ToPlainText(document).size(); }));
    // What the largest output's memory costs before anything is written into it.
    results.push_back(TimeBest("anchor (touch HTML size)",
                               [&]
                               {
                                   std::u16string touched(htmlUnits, u'x');
                                   sink += touched[htmlUnits / 2];
                               }));
    return results;
}

void Report(const char* title, size_t smallLines, size_t largeLines, size_t& sink)
{
    const std::vector<SResult> small = Measure(smallLines, sink);
    const std::vector<SResult> large = Measure(largeLines, sink);
    const double largeChars = double(largeLines * LineChars);
    std::printf("%s\n", title);
    std::printf("%-26s %10s %10s %12s %12s %8s %10s\n", "operation", "1M ms", "5M ms", "5M ns/char",
                "5M faults", "5M/1M", "x anchor");
    bool withinGoal = true;
    for (size_t i = 0; i < small.size(); ++i)
    {
        const double nsPerChar = large[i].nanoseconds / largeChars;
        std::printf("%-26s %10.2f %10.2f %12.2f %12ld %8.2f %10.1f\n", small[i].name,
                    small[i].nanoseconds / 1e6, large[i].nanoseconds / 1e6, nsPerChar, large[i].faults,
                    large[i].nanoseconds / small[i].nanoseconds, large[i].nanoseconds / large[0].nanoseconds);
        const bool isAnchor = i == 0 || i + 1 == small.size();
        if (!isAnchor && nsPerChar >= 10.0)
            withinGoal = false;
    }
    std::printf("goal (< 10 ns per character for each operation): %s\n\n", withinGoal ? "met" : "NOT met");
}
} // namespace

int main()
{
    // Large blocks come from the allocator's heap and stay there when freed, so that they can be
    // reused; runs with new memory hand them back first.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    size_t sink = 0;
    g_NewMemory = true;
    Report("with new memory (as a first export):", 10000, 50000, sink);
    g_NewMemory = false;
    Report("with reused memory:", 10000, 50000, sink);
    std::printf("(checksum %zu)\n", sink);
    return 0;
}
