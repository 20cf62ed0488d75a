// Document benchmark: a notes document against SQLite 3 holding the same tree, in the same run.
//   document_bench [N] [folder]
// N notes (default 100,000) in N/100 folders, plain texts of 1.5-2.5 KB and their rich texts
// (about 4 KB serialized). Timed for both:
//   1. creating the document (SQLite: one transaction; ours: saved in batches of 5,000 notes,
//      each batch flushed, so the texts need not all stay in memory)
//   2. opening it and loading the whole tree (captions and attributes; no texts)
//   3. reading 1,000 random notes' rich text
//   4. saving 1,000 edited notes: 500 each saved and flushed on its own, 500 as one batch
//   5. closing
// SQLite runs in WAL mode with synchronous=NORMAL (tables items, plain, rich); note that in that
// mode SQLite's single-statement commits are not synced to disk, while each of our saves is.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Shared/Base/Archive.h"
#include "Shared/Base/TextConv.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr int RandomNotes = 1000;
constexpr int NotesPerFolder = 100;
constexpr int CreateBatch = 5000;

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct SWorkload
{
    int notes = 0;
    int folders = 0;
    std::vector<std::u16string> texts;          // plain text of each note
    std::vector<std::vector<uint8_t>> richData; // its serialized rich text, for SQLite
    std::vector<int> openOrder, editOrder;
};

std::u16string MakeText(std::mt19937& rng)
{
    static const char16_t* words[] = {u"note", u"folder", u"alarm", u"the",   u"quick", u"brown",
                                      u"fox",  u"jumps",  u"over",  u"lazy",  u"dog",   u"text",
                                      u"and",  u"some",   u"more",  u"words", u"here",  u"to"};
    const size_t length = 1536 + rng() % 1024;
    std::u16string text;
    while (text.size() < length)
    {
        text += words[rng() % 18];
        text += rng() % 12 == 0 ? u"\r\n" : u" ";
    }
    text.resize(length);
    return text;
}

std::vector<uint8_t> RichBytes(const std::u16string& text)
{
    CRichTextDocument document;
    document.BuildFromPlainText(text);
    CArchiveWriter out;
    document.Serialize(out);
    return out.Take();
}

SWorkload MakeWorkload(int notes)
{
    SWorkload w;
    w.notes = notes;
    w.folders = std::max(1, notes / NotesPerFolder);
    std::mt19937 rng(4711);
    for (int i = 0; i < notes; ++i)
    {
        w.texts.push_back(MakeText(rng));
        w.richData.push_back(RichBytes(w.texts.back()));
    }
    for (int i = 0; i < RandomNotes; ++i)
    {
        w.openOrder.push_back(static_cast<int>(rng() % notes));
        w.editOrder.push_back(static_cast<int>(rng() % notes));
    }
    return w;
}

std::u16string EditedText(const std::u16string& text)
{
    return u"Edited. " + text.substr(0, text.size() - 8);
}

struct SResult
{
    double create = 0, openTree = 0, readText = 0, saveEach = 0, saveBatch = 0, close = 0;
    uint64_t size = 0;
};

// Our document -----------------------------------------------------------------------------------

void CollectNotes(CFolderBase& folder, std::vector<CDBNote*>& notes)
{
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
    {
        CItem* child = folder.GetChild(i);
        if (auto* note = dynamic_cast<CDBNote*>(child))
            notes.push_back(note);
        else if (auto* sub = dynamic_cast<CFolderBase*>(child))
            CollectNotes(*sub, notes);
    }
}

CDBNote* AddNoteUnsaved(CDataCenter& center, CFolderBase& parent, int index, const std::u16string& text)
{
    CItemRecords& records = center.GetRecords();
    const CUInt128 id = records.CreateItemRecord(CItemRecords::NoteItemKind, false);
    if (id.IsZero())
        return nullptr;
    auto note = std::make_unique<CDBNote>(&records, true);
    note->SetId(id);
    note->SetCaption(u"Note " + Utf8ToUtf16(std::to_string(index)));
    note->GetRichText()->BuildFromPlainText(text);
    auto* added = static_cast<CDBNote*>(parent.AddChild(std::move(note)));
    center.MarkChanged(*added, 1 | 2 | 16);
    return added;
}

bool CreateOurs(const SWorkload& w, const std::u16string& path)
{
    CDataCenter center;
    if (!center.CreateDocument(path))
        return false;
    std::vector<CFolderBase*> folders;
    for (int f = 0; f < w.folders; ++f)
    {
        auto* folder = center.AddFolder(*center.GetRoot(), u"Folder " + Utf8ToUtf16(std::to_string(f)));
        if (!folder)
            return false;
        folders.push_back(folder);
    }
    std::vector<CDBNote*> batch;
    for (int i = 0; i < w.notes; ++i)
    {
        CDBNote* note = AddNoteUnsaved(center, *folders[i / NotesPerFolder % w.folders], i, w.texts[i]);
        if (!note)
            return false;
        batch.push_back(note);
        if (batch.size() == CreateBatch || i + 1 == w.notes)
        {
            if (!center.Save())
                return false;
            for (CDBNote* saved : batch)
                saved->UnloadText();
            batch.clear();
        }
    }
    center.CloseDocument();
    return true;
}

bool RunOurs(const SWorkload& w, const std::u16string& path, SResult& r)
{
    double t = Now();
    if (!CreateOurs(w, path))
        return false;
    r.create = Now() - t;

    CDataCenter center;
    t = Now();
    if (!center.OpenDocument(path))
        return false;
    r.openTree = Now() - t;
    std::vector<CDBNote*> notes;
    CollectNotes(*center.GetRoot(), notes);
    std::printf("  our tree: %zu notes loaded\n", notes.size());
    if (notes.size() < static_cast<size_t>(w.notes))
        return false;
    const size_t defaults = notes.size() - static_cast<size_t>(w.notes); // sample notes come first

    t = Now();
    for (const int i : w.openOrder)
        if (!notes[defaults + i]->GetRichText())
            return false;
    r.readText = Now() - t;

    t = Now();
    for (int k = 0; k < RandomNotes / 2; ++k)
    {
        CDBNote* note = notes[defaults + w.editOrder[k]];
        note->GetRichText()->BuildFromPlainText(EditedText(w.texts[w.editOrder[k]]));
        center.MarkChanged(*note, 16);
        if (!center.Save())
            return false;
    }
    r.saveEach = Now() - t;
    t = Now();
    for (int k = RandomNotes / 2; k < RandomNotes; ++k)
    {
        CDBNote* note = notes[defaults + w.editOrder[k]];
        note->GetRichText()->BuildFromPlainText(EditedText(w.texts[w.editOrder[k]]));
        center.MarkChanged(*note, 16);
    }
    if (!center.Save())
        return false;
    r.saveBatch = Now() - t;

    t = Now();
    center.CloseDocument();
    r.close = Now() - t;
    r.size = std::filesystem::file_size(std::filesystem::path(Utf16ToUtf8(path)));
    return true;
}

// SQLite -----------------------------------------------------------------------------------------

bool Exec(sqlite3* db, const char* sql)
{
    char* message = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &message) == SQLITE_OK)
        return true;
    std::fprintf(stderr, "sqlite: %s\n", message ? message : "?");
    sqlite3_free(message);
    return false;
}

sqlite3* OpenSqlite(const std::string& path)
{
    sqlite3* db = nullptr;
    if (sqlite3_open(path.c_str(), &db) != SQLITE_OK ||
        !Exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"))
    {
        sqlite3_close(db);
        return nullptr;
    }
    return db;
}

class CStatement
{
public:
    CStatement(sqlite3* db, const char* sql) { sqlite3_prepare_v2(db, sql, -1, &m_Stmt, nullptr); }
    ~CStatement() { sqlite3_finalize(m_Stmt); }
    CStatement(const CStatement&) = delete;
    CStatement& operator=(const CStatement&) = delete;
    sqlite3_stmt* operator*() const { return m_Stmt; }
    // Steps once and resets for the next use; true when the step succeeded.
    bool Run()
    {
        const int rc = sqlite3_step(m_Stmt);
        sqlite3_reset(m_Stmt);
        return rc == SQLITE_DONE || rc == SQLITE_ROW;
    }

private:
    sqlite3_stmt* m_Stmt = nullptr;
};

void BindText16(sqlite3_stmt* stmt, int column, const std::u16string& text)
{
    sqlite3_bind_text16(stmt, column, text.data(), static_cast<int>(text.size() * 2), SQLITE_TRANSIENT);
}

void BindBlob(sqlite3_stmt* stmt, int column, const std::vector<uint8_t>& data)
{
    sqlite3_bind_blob(stmt, column, data.data(), static_cast<int>(data.size()), SQLITE_TRANSIENT);
}

bool CreateSqlite(const SWorkload& w, const std::string& path)
{
    sqlite3* db = OpenSqlite(path);
    if (!db)
        return false;
    bool ok = Exec(db, "CREATE TABLE items(id INTEGER PRIMARY KEY, parent INTEGER, caption TEXT, attrs BLOB);"
                       "CREATE TABLE plain(id INTEGER PRIMARY KEY, text TEXT);"
                       "CREATE TABLE rich(id INTEGER PRIMARY KEY, data BLOB);"
                       "BEGIN;");
    {
        CStatement item(db, "INSERT INTO items VALUES(?,?,?,?)");
        CStatement plain(db, "INSERT INTO plain VALUES(?,?)");
        CStatement rich(db, "INSERT INTO rich VALUES(?,?)");
        const std::vector<uint8_t> attrs(24, 0);
        for (int f = 0; ok && f < w.folders; ++f)
        {
            sqlite3_bind_int(*item, 1, f + 1);
            sqlite3_bind_int(*item, 2, 0);
            BindText16(*item, 3, u"Folder " + Utf8ToUtf16(std::to_string(f)));
            BindBlob(*item, 4, std::vector<uint8_t>(3, 0));
            ok = item.Run();
        }
        for (int i = 0; ok && i < w.notes; ++i)
        {
            const int id = w.folders + 1 + i;
            sqlite3_bind_int(*item, 1, id);
            sqlite3_bind_int(*item, 2, i / NotesPerFolder % w.folders + 1);
            BindText16(*item, 3, u"Note " + Utf8ToUtf16(std::to_string(i)));
            BindBlob(*item, 4, attrs);
            sqlite3_bind_int(*plain, 1, id);
            BindText16(*plain, 2, w.texts[i]);
            sqlite3_bind_int(*rich, 1, id);
            BindBlob(*rich, 2, w.richData[i]);
            ok = item.Run() && plain.Run() && rich.Run();
        }
    }
    ok = ok && Exec(db, "COMMIT;");
    sqlite3_close(db);
    return ok;
}

struct SSqliteItem
{
    int64_t id, parent;
    std::u16string caption;
    std::vector<uint8_t> attrs;
};

bool UpdateSqliteNote(CStatement& plain, CStatement& rich, int id, const std::u16string& text)
{
    BindText16(*plain, 1, text);
    sqlite3_bind_int(*plain, 2, id);
    BindBlob(*rich, 1, RichBytes(text));
    sqlite3_bind_int(*rich, 2, id);
    return plain.Run() && rich.Run();
}

bool RunSqlite(const SWorkload& w, const std::string& path, SResult& r)
{
    double t = Now();
    if (!CreateSqlite(w, path))
        return false;
    r.create = Now() - t;

    t = Now();
    sqlite3* db = OpenSqlite(path);
    if (!db)
        return false;
    std::vector<SSqliteItem> items;
    {
        CStatement select(db, "SELECT id, parent, caption, attrs FROM items");
        while (sqlite3_step(*select) == SQLITE_ROW)
        {
            const auto* caption = static_cast<const char16_t*>(sqlite3_column_text16(*select, 2));
            const auto* attrs = static_cast<const uint8_t*>(sqlite3_column_blob(*select, 3));
            items.push_back(
                {sqlite3_column_int64(*select, 0), sqlite3_column_int64(*select, 1),
                 std::u16string(caption, static_cast<size_t>(sqlite3_column_bytes16(*select, 2)) / 2),
                 std::vector<uint8_t>(attrs, attrs + sqlite3_column_bytes(*select, 3))});
        }
    }
    r.openTree = Now() - t;

    bool ok = true;
    {
        CStatement read(db, "SELECT data FROM rich WHERE id=?");
        t = Now();
        for (const int i : w.openOrder)
        {
            sqlite3_bind_int(*read, 1, w.folders + 1 + i);
            ok = ok && sqlite3_step(*read) == SQLITE_ROW;
            const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(*read, 0));
            std::vector<uint8_t> bytes(data, data + sqlite3_column_bytes(*read, 0));
            CRichTextDocument document;
            CArchiveReader in(bytes);
            ok = ok && document.Serialize(in) == 0;
            sqlite3_reset(*read);
        }
        r.readText = Now() - t;

        CStatement plain(db, "UPDATE plain SET text=? WHERE id=?");
        CStatement rich(db, "UPDATE rich SET data=? WHERE id=?");
        t = Now();
        for (int k = 0; ok && k < RandomNotes / 2; ++k)
        {
            ok = Exec(db, "BEGIN;") &&
                 UpdateSqliteNote(plain, rich, w.folders + 1 + w.editOrder[k],
                                  EditedText(w.texts[w.editOrder[k]])) &&
                 Exec(db, "COMMIT;");
        }
        r.saveEach = Now() - t;
        t = Now();
        ok = ok && Exec(db, "BEGIN;");
        for (int k = RandomNotes / 2; ok && k < RandomNotes; ++k)
            ok = UpdateSqliteNote(plain, rich, w.folders + 1 + w.editOrder[k],
                                  EditedText(w.texts[w.editOrder[k]]));
        ok = ok && Exec(db, "COMMIT;");
        r.saveBatch = Now() - t;
    }
    t = Now();
    sqlite3_close(db);
    r.close = Now() - t;
    std::error_code error;
    r.size = std::filesystem::file_size(path);
    const uint64_t wal = std::filesystem::file_size(path + "-wal", error);
    r.size += error ? 0 : wal;
    std::printf("  SQLite tree: %zu items loaded\n", items.size());
    return ok;
}

void Row(const char* step, double ours, double theirs, const char* goal)
{
    std::printf("%-34s %12.3f %12.3f %8.2f   %s\n", step, ours * 1000, theirs * 1000,
                theirs > 0 ? ours / theirs : 0.0, goal);
}
} // namespace

int main(int argc, char** argv)
{
    const int notes = argc > 1 ? std::max(NotesPerFolder, std::atoi(argv[1])) : 100000;
    const std::filesystem::path folder =
        argc > 2 ? argv[2] : std::filesystem::temp_directory_path() / "document_bench";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const std::u16string ourPath = Utf8ToUtf16((folder / "bench.ddb").string());
    const std::string sqlitePath = (folder / "bench.sqlite").string();

    std::printf("document_bench: N = %d notes in %d folders\n", notes, std::max(1, notes / NotesPerFolder));
    const SWorkload w = MakeWorkload(notes);
    SResult ours, sqlite;
    if (!RunSqlite(w, sqlitePath, sqlite) || !RunOurs(w, ourPath, ours))
    {
        std::fprintf(stderr, "document_bench: a run failed\n");
        return 1;
    }
    std::printf("\n%-34s %12s %12s %8s   %s\n", "step", "ours ms", "SQLite ms", "ratio", "goal");
    Row("create the document", ours.create, sqlite.create, "ratio <= 0.5");
    Row("open and load the tree (warm)", ours.openTree, sqlite.openTree, "ratio <= 2");
    Row("read 1,000 random note texts", ours.readText, sqlite.readText, "<= 5 us per note");
    Row("save 500 notes, each flushed", ours.saveEach, sqlite.saveEach, "<= 2 flushes per save");
    Row("save 500 notes as one batch", ours.saveBatch, sqlite.saveBatch, "");
    Row("close", ours.close, sqlite.close, "");
    std::printf("per note text read: ours %.2f us, SQLite %.2f us\n", ours.readText * 1e6 / RandomNotes,
                sqlite.readText * 1e6 / RandomNotes);
    std::printf("file size: ours %llu bytes, SQLite %llu bytes, ratio %.2f (goal <= 1.0)\n",
                static_cast<unsigned long long>(ours.size), static_cast<unsigned long long>(sqlite.size),
                static_cast<double>(ours.size) / static_cast<double>(sqlite.size));
    std::filesystem::remove_all(folder);
    return 0;
}
