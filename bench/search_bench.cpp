// Global search benchmark: a generated document searched with a plain, a whole-word and a
// three-word boolean query, against `grep -c -F -i` over the same plain texts in one UTF-8 file
// and SQLite's LIKE '%word%' over the same texts, all in the same run with a warm page cache.
//   search_bench [notes] [folder] [--reuse]
// The document is shaped like the document benchmark's: by default 100,000 notes of 1.5-2.5 KB
// of plain text (about 200 MB) in folders of 100. --reuse keeps the generated files and uses
// them again when they are there. grep gets the first word of each query; SQLite's query has
// the same words with the same meaning (AND of LIKE and NOT LIKE for the boolean query).
// Also measured: the matcher alone on text already in memory (GB/s of UTF-16), the heap added
// while a search runs, and how long a cancelled search takes to stop.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Document/GlobalSearch.h"
#include "Shared/Base/TextConv.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <time.h>
#include <vector>

namespace
{
constexpr int NotesPerFolder = 100;

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// CPU seconds of this thread, and of the finished child processes (grep): on a shared machine
// they compare the work done where wall-clock times mostly measure the other processes.
double ThreadCpu()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return ts.tv_sec + ts.tv_nsec / 1e9;
}

double ChildrenCpu()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

// Words of a made-up language; "zebra" is rare, "harbour" and "lantern" are common.
std::u16string NoteText(std::mt19937& rng)
{
    static const char16_t* words[] = {u"note",    u"folder", u"quick", u"brown", u"lazy",    u"dog",
                                      u"harbour", u"mill",   u"and",   u"the",   u"lantern", u"river",
                                      u"stone",   u"window", u"red",   u"to",    u"Garden",  u"letters"};
    const size_t length = 1536 + rng() % 1024;
    std::u16string text;
    while (text.size() < length)
    {
        text += rng() % 4000 == 0 ? u"zebra" : words[rng() % 18];
        text += rng() % 12 == 0 ? u".\r\n" : u" ";
    }
    text.resize(length);
    return text;
}

struct SCorpus
{
    std::string ddbPath, textPath, sqlitePath;

    bool Exists() const
    {
        return std::filesystem::exists(ddbPath) && std::filesystem::exists(textPath) &&
               std::filesystem::exists(sqlitePath);
    }
    void Remove() const
    {
        for (const std::string& path :
             {ddbPath, textPath, textPath + ".count", sqlitePath, sqlitePath + "-wal", sqlitePath + "-shm"})
            std::filesystem::remove(path);
    }
};

void Exec(sqlite3* db, const char* sql)
{
    char* error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK)
    {
        std::fprintf(stderr, "sqlite: %s\n", error ? error : "?");
        sqlite3_free(error);
    }
}

bool BuildCorpus(int notes, const SCorpus& corpus)
{
    corpus.Remove();
    CDataCenter document;
    if (!document.CreateDocument(Utf8ToUtf16(corpus.ddbPath)))
        return false;
    CItemRecords& records = document.GetRecords();
    std::ofstream plain(corpus.textPath, std::ios::binary | std::ios::trunc);
    sqlite3* db = nullptr;
    sqlite3_open(corpus.sqlitePath.c_str(), &db);
    Exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"
             "CREATE TABLE note(id INTEGER PRIMARY KEY, caption TEXT, text TEXT); BEGIN;");
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO note(id, caption, text) VALUES(?, ?, ?)", -1, &insert, nullptr);
    std::mt19937 rng(2024);
    CFolderBase* folder = nullptr;
    for (int i = 0; i < notes; ++i)
    {
        if (i % NotesPerFolder == 0)
            folder = document.AddFolder(*document.GetRoot(), u"Folder " + ToU16(i / NotesPerFolder));
        auto note = std::make_unique<CDBNote>(&records);
        note->SetId(records.CreateItemRecord(CItemRecords::NoteItemKind, false));
        note->SetCaption(u"Note " + ToU16(i));
        const std::u16string text = NoteText(rng);
        note->GetRichText()->BuildFromPlainText(text);
        if (!records.SaveItem(*note, ItemRecordFormat::CaptionField | ItemRecordFormat::RichTextField))
            return false;
        note->UnloadText();
        folder->AddChild(std::move(note));
        const std::string utf8 = Utf16ToUtf8(text);
        plain << utf8 << '\n';
        sqlite3_bind_int(insert, 1, i + 1);
        sqlite3_bind_text(insert, 2, ("Note " + std::to_string(i)).c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 3, utf8.c_str(), int(utf8.size()), SQLITE_TRANSIENT);
        sqlite3_step(insert);
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    Exec(db, "COMMIT;");
    sqlite3_close(db);
    // The child lists were written only as far as AddFolder knew them.
    for (size_t i = 0; i < document.GetRoot()->GetChildCount(); ++i)
        records.SaveItem(*document.GetRoot()->GetChild(i), ItemRecordFormat::ChildListField);
    return true;
}

struct SRun
{
    double seconds = 0;
    double cpu = 0;
    size_t hits = 0;
    size_t peakHeap = 0;    // the most the heap held above its size before the search
    size_t resultsHeap = 0; // what the finished search still holds: its result list
};

// With `sampleHeap` the heap in use is sampled every 64 items (mallinfo2 is slow, so that run is
// not the timed one).
SRun SearchDocument(CDataCenter& document, const CTextSearch& search, bool sampleHeap)
{
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    const size_t before = HeapInUse();
    size_t peak = before;
    if (sampleHeap)
        walk.SetProgressCallback(
            [&](uint64_t done, uint64_t)
            {
                if (done % 64 == 0)
                    peak = std::max(peak, HeapInUse());
            });
    const double start = Now();
    const double cpuStart = ThreadCpu();
    walk.Run(*document.GetRoot());
    SRun run;
    run.cpu = ThreadCpu() - cpuStart;
    run.seconds = Now() - start;
    run.hits = walk.Results().size();
    run.resultsHeap = HeapInUse() - before;
    run.peakHeap = std::max(peak, HeapInUse()) - before;
    return run;
}

struct STimes
{
    double wall = 0;
    double cpu = 0;
};

// The count goes to a file: with its output on /dev/null GNU grep stops at the first match.
STimes TimeGrep(const std::string& word, const std::string& file)
{
    const std::string command = "grep -c -F -i '" + word + "' '" + file + "' > '" + file + ".count'";
    const double start = Now();
    const double cpuStart = ChildrenCpu();
    if (std::system(command.c_str()) == -1)
        return {};
    return {Now() - start, ChildrenCpu() - cpuStart};
}

STimes TimeLike(sqlite3* db, const std::string& condition, long long& count)
{
    const std::string sql = "SELECT count(*) FROM note WHERE " + condition;
    sqlite3_stmt* st = nullptr;
    const double start = Now();
    const double cpuStart = ThreadCpu();
    sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr);
    count = sqlite3_step(st) == SQLITE_ROW ? sqlite3_column_int64(st, 0) : -1;
    sqlite3_finalize(st);
    return {Now() - start, ThreadCpu() - cpuStart};
}

void MeasureMatcher()
{
    std::mt19937 rng(7);
    std::u16string text;
    while (text.size() < (64u << 20))
        text += NoteText(rng);
    const CTextSearch search(u"Zebras", false, false, false); // never occurs: the whole text is scanned
    const double start = ThreadCpu();
    int rounds = 0;
    while (ThreadCpu() - start < 1.0)
    {
        if (search.Match(text) == CTextSearch::MatchFound)
            std::printf("unexpected match\n");
        ++rounds;
    }
    const double seconds = ThreadCpu() - start;
    std::printf(
        "matcher in memory: %.1f GB/s of thread CPU time (UTF-16 bytes, case-insensitive, %d x %zu MB; goal "
        ">= 10)\n",
        rounds * text.size() * 2 / seconds / 1e9, rounds, text.size() * 2 >> 20);
}

// The search is cancelled from another thread at several moments of its run; the time from
// setting the flag to the walk's return is the latency a user waits after pressing Cancel.
void MeasureCancel(CDataCenter& document)
{
    const CTextSearch search(u"+quick +lazy -zebra", false, false, true);
    double worst = 0;
    for (int delayMs : {1, 10, 30, 60, 100})
    {
        CSearchStatus status;
        CGlobalSearch walk(search, status);
        double finished = 0;
        std::thread worker(
            [&]
            {
                walk.Run(*document.GetRoot());
                finished = Now();
            });
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        const double cancelled = Now();
        status.Cancel();
        const uint64_t doneAtCancel = status.Done();
        worker.join();
        const double latency = std::max(0.0, finished - cancelled);
        worst = std::max(worst, latency);
        // Wall-clock latency includes waiting for a processor on a loaded machine; the items
        // searched after the flag show how soon the walk itself noticed it.
        std::printf(
            "cancel after %3d ms: stopped %.3f ms after the flag was set, %llu item(s) later (%llu of %llu "
            "items searched)\n",
            delayMs, latency * 1e3, (unsigned long long)(status.Done() - doneAtCancel),
            (unsigned long long)status.Done(), (unsigned long long)status.Total());
    }
    std::printf("cancel: at most %.3f ms from the flag to the end of the walk (goal <= 50 ms)\n",
                worst * 1e3);
}
} // namespace

int main(int argc, char** argv)
{
    const int notes = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100000;
    const std::string folder = argc > 2 ? argv[2] : std::filesystem::temp_directory_path().string();
    const bool reuse = argc > 3 && std::string(argv[3]) == "--reuse";
    const std::string stem = folder + "/search_bench_" + std::to_string(notes);
    const SCorpus corpus{stem + ".ddb", stem + ".txt", stem + ".sqlite"};

    if (!reuse || !corpus.Exists())
    {
        std::printf("building %d notes of 1.5-2.5 K characters...\n", notes);
        const double buildStart = Now();
        if (!BuildCorpus(notes, corpus))
        {
            std::printf("could not build the document\n");
            return 1;
        }
        std::printf("built in %.1f s\n", Now() - buildStart);
    }
    std::printf("plain text %.1f MB UTF-8, data file %.1f MB\n",
                std::filesystem::file_size(corpus.textPath) / 1e6,
                std::filesystem::file_size(corpus.ddbPath) / 1e6);

    CDataCenter document;
    const size_t heapBeforeOpen = HeapInUse();
    if (!document.OpenDocument(Utf8ToUtf16(corpus.ddbPath)))
        return 1;
    std::printf("open document heap: %.1f MB\n", (HeapInUse() - heapBeforeOpen) / 1e6);
    sqlite3* db = nullptr;
    sqlite3_open(corpus.sqlitePath.c_str(), &db);

    struct SQuery
    {
        const char* label;
        std::u16string query;
        bool wholeWords, boolean;
        std::string grepWord;
        std::string likeCondition;
    };
    const SQuery queries[] = {{"plain", u"zebra", false, false, "zebra", "text LIKE '%zebra%'"},
                              {"whole-word", u"lantern", true, false, "lantern", "text LIKE '%lantern%'"},
                              {"boolean x3", u"+quick +lazy -zebra", false, true, "quick",
                               "text LIKE '%quick%' AND text LIKE '%lazy%' AND text NOT LIKE '%zebra%'"}};
    for (const SQuery& q : queries)
    {
        const CTextSearch search(q.query, false, q.wholeWords, q.boolean);
        // The first run warms the page cache and the record caches and samples the heap.
        const SRun warmUp = SearchDocument(document, search, true);
        const SRun run = SearchDocument(document, search, false);
        TimeGrep(q.grepWord, corpus.textPath);
        const STimes grep = TimeGrep(q.grepWord, corpus.textPath);
        long long likeCount = 0;
        TimeLike(db, q.likeCondition, likeCount);
        const STimes like = TimeLike(db, q.likeCondition, likeCount);
        std::printf(
            "%-10s wall: ours %7.1f ms (%zu hits)  grep %7.1f ms  LIKE %7.1f ms (%lld)  ours/grep %.2f  "
            "ours/LIKE %.2f\n",
            q.label, run.seconds * 1e3, run.hits, grep.wall * 1e3, like.wall * 1e3, likeCount,
            run.seconds / grep.wall, run.seconds / like.wall);
        std::printf("%-10s cpu:  ours %7.1f ms  grep %7.1f ms  LIKE %7.1f ms  ours/grep %.2f (goal <= 1.5)  "
                    "ours/LIKE %.2f (goal < 1)\n",
                    q.label, run.cpu * 1e3, grep.cpu * 1e3, like.cpu * 1e3, run.cpu / grep.cpu,
                    run.cpu / like.cpu);
        std::printf("%-10s heap: +%.2f MB at most above the open document (goal <= 10), of which the result "
                    "list kept %.2f MB\n",
                    q.label, warmUp.peakHeap / 1e6, warmUp.resultsHeap / 1e6);
    }
    sqlite3_close(db);
    MeasureCancel(document);
    MeasureMatcher();
    document.CloseDocument();
    if (!reuse)
        corpus.Remove();
    return 0;
}
