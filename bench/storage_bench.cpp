// Storage benchmark: one workload against CDataFile and against SQLite 3 in the same run.
//   storage_bench [N] [folder]
// N records of 1-4 KB of text (and a variant of 100-byte records), with and without a key:
//   1. add all (SQLite: one transaction)
//   2. close, reopen, enumerate ID, type and size of every record
//   3. 10,000 random reads
//   4. 10,000 random modifications, half the same size and half +50% (SQLite: one transaction)
//   5. delete a random 30%, then full defragmentation (SQLite: DELETE, then VACUUM)
// Ratios are ours / SQLite in WAL + synchronous=NORMAL, in CPU time of the benchmark thread.
// Heap figures come from mallinfo2.
#include "Shared/DataFile/DataFile.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <random>
#include <string>
#include <sys/resource.h>
#include <time.h>
#include <vector>

namespace
{
constexpr int RandomOps = 10000;

// The machine is shared, so the ratios are taken from this thread's CPU time (user and system,
// so the file system calls count); wall-clock ratios are printed beside them.
struct SStamp
{
    double wall = 0;
    double cpu = 0;
};

SStamp Now()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return {std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(),
            static_cast<double>(ts.tv_sec) + ts.tv_nsec / 1e9};
}

size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

struct SWorkload
{
    std::string text; // pool the records are cut from
    std::vector<uint32_t> offsets, sizes;
    std::vector<uint32_t> readOrder, modifyOrder, deleteOrder;
    std::vector<uint32_t> modifySizes;
};

SWorkload MakeWorkload(int n, bool small)
{
    static const char* words[] = {"note", "folder", "alarm", "the",   "quick", "brown",
                                  "fox",  "jumps",  "over",  "lazy",  "dog",   "text",
                                  "and",  "some",   "more",  "words", "here",  "to"};
    SWorkload w;
    std::mt19937 rng(12345);
    while (w.text.size() < (1u << 20) + 8192)
    {
        w.text += words[rng() % 18];
        w.text += rng() % 9 == 0 ? ".\n" : " ";
    }
    for (int i = 0; i < n; ++i)
    {
        const uint32_t size = small ? 100 : 1024 + rng() % 3073;
        w.sizes.push_back(size);
        w.offsets.push_back(rng() % (1u << 20));
    }
    for (int i = 0; i < RandomOps; ++i)
    {
        w.readOrder.push_back(rng() % n);
        const uint32_t target = rng() % n;
        w.modifyOrder.push_back(target);
        w.modifySizes.push_back(i % 2 == 0 ? w.sizes[target] : w.sizes[target] * 3 / 2);
    }
    std::vector<uint32_t> all(n);
    for (int i = 0; i < n; ++i)
        all[i] = i;
    std::shuffle(all.begin(), all.end(), rng);
    w.deleteOrder.assign(all.begin(), all.begin() + n * 3 / 10);
    return w;
}

struct SResult
{
    double phase[5] = {}; // CPU seconds
    double wall[5] = {};
    uint64_t fileSize = 0;
    size_t openHeap = 0; // heap held by the open file after reopening and enumerating
};

void Finish(SResult& r, int phase, const SStamp& start)
{
    const SStamp now = Now();
    r.phase[phase] = now.cpu - start.cpu;
    r.wall[phase] = now.wall - start.wall;
}

uint64_t FileSize(const std::string& path)
{
    std::error_code ec;
    const auto size = std::filesystem::file_size(path, ec);
    return ec ? 0 : size;
}

SResult RunOurs(const SWorkload& w, const std::string& path, bool keyed)
{
    SResult r;
    std::vector<uint8_t> key;
    if (keyed)
        key = {0x3A, 0x91, 0x07, 0xC4, 0x55, 0x18, 0xE2, 0x6B,
               0x9F, 0x20, 0x4D, 0x73, 0xB8, 0x01, 0xAE, 0x36};
    const std::u16string path16(path.begin(), path.end());
    const int n = static_cast<int>(w.sizes.size());
    std::vector<CUInt128> ids(n);
    {
        CDataFile file;
        SStamp t = Now();
        file.Create(path16, u"Bench", 1, 1, key);
        for (int i = 0; i < n; ++i)
            ids[i] = file.AddRecord(w.text.data() + w.offsets[i], w.sizes[i],
                                    static_cast<uint16_t>(1 + i % 2), true, 10);
        Finish(r, 0, t);
        file.Close(false, 0);
    }
    CDataFile file;
    const size_t heapBefore = HeapInUse();
    SStamp t = Now();
    file.Open(path16, key);
    uint64_t sum = 0;
    const uint32_t count = file.GetRecordsCount();
    for (uint32_t i = 0; i < count; ++i)
    {
        const CUInt128 id = file.GetRecordID(i);
        sum += file.GetRecordType(id) + file.GetRecordSize(id);
    }
    Finish(r, 1, t);
    r.openHeap = HeapInUse() - heapBefore;

    std::vector<uint8_t> data;
    t = Now();
    for (uint32_t index : w.readOrder)
    {
        file.GetRecordData(ids[index], data);
        sum += data.size();
    }
    Finish(r, 2, t);

    std::string buffer;
    t = Now();
    for (int i = 0; i < RandomOps; ++i)
    {
        const uint32_t index = w.modifyOrder[i];
        buffer.assign(w.text.data() + w.offsets[(index + 1) % n], w.modifySizes[i]);
        file.ModifyRecord(ids[index], buffer.data(), static_cast<uint32_t>(buffer.size()), 10);
    }
    Finish(r, 3, t);

    t = Now();
    for (uint32_t index : w.deleteOrder)
        file.DeleteRecord(ids[index]);
    file.DefragmentFull();
    Finish(r, 4, t);
    file.Close(false, 0);
    r.fileSize = FileSize(path);
    if (sum == 42)
        std::puts("");
    return r;
}

void Exec(sqlite3* db, const char* sql)
{
    char* error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK)
    {
        std::fprintf(stderr, "sqlite: %s: %s\n", sql, error ? error : "?");
        sqlite3_free(error);
        std::exit(1);
    }
}

sqlite3* OpenSqlite(const std::string& path, bool wal)
{
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    Exec(db, wal ? "PRAGMA journal_mode=WAL" : "PRAGMA journal_mode=OFF");
    Exec(db, wal ? "PRAGMA synchronous=NORMAL" : "PRAGMA synchronous=OFF");
    return db;
}

SResult RunSqlite(const SWorkload& w, const std::string& path, bool wal)
{
    SResult r;
    const int n = static_cast<int>(w.sizes.size());
    std::filesystem::remove(path);
    std::filesystem::remove(path + "-wal");
    std::filesystem::remove(path + "-shm");
    sqlite3* db = OpenSqlite(path, wal);
    sqlite3_stmt* st = nullptr;
    SStamp t = Now();
    Exec(db, "CREATE TABLE rec(id INTEGER PRIMARY KEY, type INTEGER, data BLOB)");
    Exec(db, "BEGIN");
    sqlite3_prepare_v2(db, "INSERT INTO rec(id, type, data) VALUES(?, ?, ?)", -1, &st, nullptr);
    for (int i = 0; i < n; ++i)
    {
        sqlite3_bind_int(st, 1, i + 1);
        sqlite3_bind_int(st, 2, 1 + i % 2);
        sqlite3_bind_blob(st, 3, w.text.data() + w.offsets[i], static_cast<int>(w.sizes[i]), SQLITE_STATIC);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    Exec(db, "COMMIT");
    Finish(r, 0, t);

    t = Now();
    sqlite3_close(db);
    db = OpenSqlite(path, wal);
    int64_t sum = 0;
    sqlite3_prepare_v2(db, "SELECT id, type, length(data) FROM rec", -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        sum += sqlite3_column_int64(st, 0) + sqlite3_column_int(st, 1) + sqlite3_column_int(st, 2);
    sqlite3_finalize(st);
    Finish(r, 1, t);

    t = Now();
    sqlite3_prepare_v2(db, "SELECT data FROM rec WHERE id = ?", -1, &st, nullptr);
    std::vector<uint8_t> data;
    for (uint32_t index : w.readOrder)
    {
        sqlite3_bind_int(st, 1, static_cast<int>(index) + 1);
        if (sqlite3_step(st) == SQLITE_ROW)
        {
            const auto* p = static_cast<const uint8_t*>(sqlite3_column_blob(st, 0));
            data.assign(p, p + sqlite3_column_bytes(st, 0));
            sum += data.size();
        }
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    Finish(r, 2, t);

    t = Now();
    Exec(db, "BEGIN");
    sqlite3_prepare_v2(db, "UPDATE rec SET data = ? WHERE id = ?", -1, &st, nullptr);
    for (int i = 0; i < RandomOps; ++i)
    {
        const uint32_t index = w.modifyOrder[i];
        sqlite3_bind_blob(st, 1, w.text.data() + w.offsets[(index + 1) % n],
                          static_cast<int>(w.modifySizes[i]), SQLITE_STATIC);
        sqlite3_bind_int(st, 2, static_cast<int>(index) + 1);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    Exec(db, "COMMIT");
    Finish(r, 3, t);

    t = Now();
    Exec(db, "BEGIN");
    sqlite3_prepare_v2(db, "DELETE FROM rec WHERE id = ?", -1, &st, nullptr);
    for (uint32_t index : w.deleteOrder)
    {
        sqlite3_bind_int(st, 1, static_cast<int>(index) + 1);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    Exec(db, "COMMIT");
    Exec(db, "VACUUM");
    Finish(r, 4, t);
    if (wal)
        Exec(db, "PRAGMA wal_checkpoint(TRUNCATE)");
    sqlite3_close(db);
    r.fileSize = FileSize(path);
    if (sum == 42)
        std::puts("");
    return r;
}

const char* Verdict(bool met)
{
    return met ? "met" : "MISSED";
}

void PrintTable(const char* title, const SResult& plain, const SResult& keyed, const SResult& wal,
                const SResult& off, int n)
{
    static const char* phases[] = {"1 add all", "2 reopen+enumerate", "3 10k random reads",
                                   "4 10k modifications", "5 delete 30% + full defrag"};
    static const double goals[] = {0.5, 1.0, 0.5, 1.0, 0.5}; // ours / SQLite WAL
    constexpr double KeyedGoal = 1.2;                        // keyed / plain
    std::printf("\n%s, N = %d\n", title, n);
    std::printf("CPU seconds of the benchmark thread; the wall column is ours/WAL in wall-clock time\n");
    std::printf("%-28s %9s %9s %9s %9s %9s %5s %-7s %9s %-7s %6s\n", "phase", "ours [s]", "ours+key",
                "WAL [s]", "OFF [s]", "ours/WAL", "goal", "", "key/plain", "", "wall");
    for (int i = 0; i < 5; ++i)
    {
        const double ratio = plain.phase[i] / wal.phase[i];
        const double keyedRatio = keyed.phase[i] / plain.phase[i];
        std::printf("%-28s %9.4f %9.4f %9.4f %9.4f %9.2f %5.1f %-7s %9.2f %-7s %6.2f\n", phases[i],
                    plain.phase[i], keyed.phase[i], wal.phase[i], off.phase[i], ratio, goals[i],
                    Verdict(ratio <= goals[i]), keyedRatio, Verdict(keyedRatio <= KeyedGoal),
                    plain.wall[i] / wal.wall[i]);
    }
    std::printf("%-28s %9.1f %9.1f %9.1f %9.1f   (MB, after phase 5; goal: ours <= WAL after VACUUM: %s)\n",
                "file size", plain.fileSize / 1e6, keyed.fileSize / 1e6, wal.fileSize / 1e6,
                off.fileSize / 1e6,
                Verdict(plain.fileSize <= wal.fileSize && keyed.fileSize <= wal.fileSize));
    const double perRecord = (static_cast<double>(plain.openHeap) - 524288.0) / n;
    std::printf(
        "heap held by the open file: %.1f MB = cache limit 0.5 MB + %.1f bytes per record (goal <= 100: "
        "%s)\n",
        plain.openHeap / 1e6, perRecord, Verdict(perRecord <= 100.0));
}
} // namespace

int main(int argc, char** argv)
{
    const int n = argc > 1 ? std::atoi(argv[1]) : 100000;
    const std::string folder = argc > 2 ? argv[2] : std::filesystem::temp_directory_path().string();
    for (bool small : {false, true})
    {
        const SWorkload w = MakeWorkload(n, small);
        const SResult plain = RunOurs(w, folder + "/bench_plain.ddb", false);
        const SResult keyed = RunOurs(w, folder + "/bench_keyed.ddb", true);
        const SResult wal = RunSqlite(w, folder + "/bench_wal.sqlite", true);
        const SResult off = RunSqlite(w, folder + "/bench_off.sqlite", false);
        PrintTable(small ? "100-byte records" : "1-4 KB records", plain, keyed, wal, off, n);
        for (const char* name :
             {"/bench_plain.ddb", "/bench_keyed.ddb", "/bench_wal.sqlite", "/bench_off.sqlite"})
            std::filesystem::remove(folder + name);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("\npeak resident memory of the whole run: %.1f MB\n", usage.ru_maxrss / 1024.0);
    return 0;
}
