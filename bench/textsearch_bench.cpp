// Speed of the text matcher on text already in memory: about 200 MB of generated UTF-16 note
// text, searched case-insensitively, case-sensitively, by whole words and with a boolean query
// of three words. The anchors run in the same process on the same text: std::search comparing
// each character through towlower, and memchr scanning the same bytes for a byte that does not
// occur (the memory-bandwidth ceiling of one core). Rates are of thread CPU time.
#include "Shared/TextSearch/TextSearch.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <functional>
#include <random>
#include <string>
#include <time.h>
#include <vector>

namespace
{
constexpr size_t NoteCount = 100000;
constexpr size_t UnitsPerNote = 1000; // 100,000 notes of 2,000 bytes each: 200 MB in all
constexpr size_t CachedRepeats = 2000;

const char16_t* const Vocabulary[] = {
    u"the",         u"meeting",  u"notes",    u"Project",   u"deadline", u"review",   u"budget", u"Monday",
    u"client",      u"draft",    u"summary",  u"action",    u"items",    u"follow",   u"up",     u"with",
    u"team",        u"report",   u"schedule", u"travel",    u"invoice",  u"ideas",    u"Garden", u"recipe",
    u"flour",       u"sugar",    u"butter",   u"oven",      u"minutes",  u"call",     u"Berlin", u"café",
    u"naïve",       u"Straße",   u"Привет",   u"мир",       u"日本語",   u"テキスト", u"and",    u"or",
    u"concatenate", u"category", u"scatter",  u"Cathedral", u"to",       u"of",       u"in",     u"for"};

std::vector<std::u16string> MakeNotes()
{
    std::mt19937 random(7);
    const char16_t* separators[] = {u" ", u" ", u" ", u", ", u". ", u"\r\n", u" - "};
    std::vector<std::u16string> notes(NoteCount);
    for (std::u16string& note : notes)
    {
        note.reserve(UnitsPerNote + 32);
        while (note.size() < UnitsPerNote)
        {
            note += Vocabulary[random() % std::size(Vocabulary)];
            note += separators[random() % std::size(separators)];
        }
        note.resize(UnitsPerNote);
    }
    return notes;
}

// CPU seconds of this thread: on a shared machine wall-clock times mostly measure the other
// processes.
double ThreadCpu()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

// Best of five runs, in CPU seconds.
double BestSeconds(const std::function<size_t()>& run, size_t& result)
{
    double best = 1e9;
    for (int i = 0; i < 5; ++i)
    {
        const double begin = ThreadCpu();
        result = run();
        best = std::min(best, ThreadCpu() - begin);
    }
    return best;
}

struct SRow
{
    const char* name;
    double gbPerSecond;
    size_t result;
};

void Print(const SRow& row, double anchor)
{
    std::printf("%-58s %8.2f GB/s  %7.2fx anchor  (result %zu)\n", row.name, row.gbPerSecond,
                row.gbPerSecond / anchor, row.result);
}
} // namespace

int main()
{
    const std::vector<std::u16string> notes = MakeNotes();
    std::u16string all;
    all.reserve(NoteCount * UnitsPerNote);
    for (const std::u16string& note : notes)
        all += note;
    const double gigabytes = double(all.size() * sizeof(char16_t)) / 1e9;
    std::printf("text: %zu notes, %.1f MB of UTF-16\n\n", notes.size(), gigabytes * 1000);

    auto rate = [&](const char* name, const std::function<size_t()>& run)
    {
        size_t result = 0;
        const double seconds = BestSeconds(run, result);
        return SRow{name, gigabytes / seconds, result};
    };

    const std::u16string absent = u"Quillarium";
    const SRow towlowerSearch =
        rate("anchor: std::search with towlower, one text",
             [&]
             {
                 auto same = [](char16_t a, char16_t b)
                 { return std::towlower(wint_t(a)) == std::towlower(wint_t(b)); };
                 return size_t(std::search(all.begin(), all.end(), absent.begin(), absent.end(), same) -
                               all.begin());
             });
    const SRow memchrScan = rate("anchor: memchr for an absent byte, one text",
                                 [&]
                                 {
                                     const void* hit =
                                         std::memchr(all.data(), 0xFF, all.size() * sizeof(char16_t));
                                     return size_t(hit != nullptr);
                                 });

    const CWordFinder anyCase(absent, false, false);
    const CWordFinder exact(absent, true, false);
    const CWordFinder wholeWord(u"cat", false, true);
    const CTextSearch booleanQuery(u"+deadline -zeppelin quokka", false, false, true);
    std::vector<SRow> rows = {
        rate("CWordFinder, ignoring case, absent word, one text", [&] { return anyCase.Find(all); }),
        rate("CWordFinder, match case, absent word, one text", [&] { return exact.Find(all); }),
        rate("CWordFinder, whole word \"cat\" (only inside words), one text",
             [&] { return wholeWord.Find(all); }),
        rate("CTextSearch::Contains, ignoring case, per note",
             [&]
             {
                 size_t count = 0;
                 for (const std::u16string& note : notes)
                     count += CTextSearch::Contains(note, absent, false, false);
                 return count;
             }),
        rate("CTextSearch::Match \"+deadline -zeppelin quokka\", per note",
             [&]
             {
                 size_t count = 0;
                 for (const std::u16string& note : notes)
                     count += booleanQuery.Match(note) == CTextSearch::MatchFound;
                 return count;
             }),
    };

    // The same searches over 256 KB that stay in the processor's cache, repeated: the matcher's own
    // speed without the memory bus as the limit.
    const std::u16string_view cached(all.data(), 128 * 1024);
    const double cachedGigabytes = double(cached.size() * sizeof(char16_t)) * CachedRepeats / 1e9;
    auto cachedRate = [&](const char* name, const std::function<size_t(std::u16string_view)>& find)
    {
        size_t result = 0;
        const double seconds = BestSeconds(
            [&]
            {
                size_t sum = 0;
                for (size_t i = 0; i < CachedRepeats; ++i)
                    sum += find(cached) != CWordFinder::NotFound;
                return sum;
            },
            result);
        return SRow{name, cachedGigabytes / seconds, result};
    };
    const SRow memchrCached = cachedRate(
        "anchor: memchr for an absent byte, in cache",
        [](std::u16string_view text) {
            return std::memchr(text.data(), 0xFF, text.size() * sizeof(char16_t)) ? 0 : CWordFinder::NotFound;
        });
    const std::vector<SRow> cachedRows = {
        cachedRate("CWordFinder, ignoring case, absent word, in cache",
                   [&](std::u16string_view text) { return anyCase.Find(text); }),
        cachedRate("CWordFinder, match case, absent word, in cache",
                   [&](std::u16string_view text) { return exact.Find(text); }),
    };

    std::printf("%-58s %8.2f GB/s\n", towlowerSearch.name, towlowerSearch.gbPerSecond);
    std::printf("%-58s %8.2f GB/s\n\n", memchrScan.name, memchrScan.gbPerSecond);
    std::printf("Ratios against std::search with towlower:\n");
    for (const SRow& row : rows)
        Print(row, towlowerSearch.gbPerSecond);
    std::printf("\nRatios against memchr (1.00 = memory speed of one core):\n");
    for (const SRow& row : rows)
        Print(row, memchrScan.gbPerSecond);
    std::printf("\nIn cache, against memchr in cache (%.2f GB/s):\n", memchrCached.gbPerSecond);
    for (const SRow& row : cachedRows)
        Print(row, memchrCached.gbPerSecond);
    return 0;
}
