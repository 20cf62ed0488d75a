// Export benchmark: the 100,000-note tree of the document benchmark (N notes in N/100 folders,
// plain texts of 1.5-2.5 KB with a bold word on every line) exported from a stored document.
//   export_bench [N] [folder]
// Timed, wall clock:
//   1. the tree as HTML files, one per note, with the index page (every note's text read from
//      the document, converted and written, and left in storage again);
//   2. the whole tree as one HTML file (the subtree dump) and as one RTF file;
//   3. the anchor, in the same run: writing files of the same names and sizes straight from
//      memory, which is what the disk costs without reading or converting anything.
// The document is built with the import path (one save per batch of 5,000 notes).
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Document/Export/ItemExporter.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr int NotesPerFolder = 100;
constexpr int Batch = 5000;

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

CRichTextDocument MakeText(std::mt19937& rng)
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
    CRichTextDocument document;
    document.BuildFromPlainText(text);
    CRtfTextBlockInfo bold(0);
    bold.SetFont(SFontDescription::Make(u"Arial", 12, 900));
    CRtfTextBlockInfo plain(4);
    plain.SetFont(SFontDescription::Make(u"Arial", 12));
    for (size_t i = 0; i < document.LineCount(); ++i)
        document.Line(i).SetBlocks({bold, plain});
    return document;
}

bool CreateDocument(CDataCenter& center, const std::u16string& path, int notes)
{
    if (!center.CreateDocument(path))
        return false;
    std::mt19937 rng(42);
    CFolderBase& root = *center.GetRoot();
    for (int first = 0; first < notes; first += Batch)
    {
        std::vector<SImportItem> items;
        for (int i = first; i < std::min(notes, first + Batch); i += NotesPerFolder)
        {
            SImportItem folder = SImportItem::Folder(u"Folder " + ToU16(i / NotesPerFolder));
            for (int n = i; n < std::min(notes, i + NotesPerFolder); ++n)
                folder.children.push_back(SImportItem::Note(u"Note " + ToU16(n), MakeText(rng)));
            items.push_back(std::move(folder));
        }
        if (!center.AddItems(root, items))
            return false;
    }
    center.CloseDocument();
    return true;
}

struct SWritten
{
    size_t files = 0;
    uintmax_t bytes = 0;
    std::vector<std::pair<std::filesystem::path, uintmax_t>> sizes;
};

SWritten Survey(const std::filesystem::path& folder)
{
    SWritten written;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        if (!entry.is_regular_file())
            continue;
        ++written.files;
        written.bytes += entry.file_size();
        written.sizes.emplace_back(std::filesystem::relative(entry.path(), folder), entry.file_size());
    }
    return written;
}
} // namespace

int main(int argc, char** argv)
{
    const int notes = argc > 1 ? std::max(NotesPerFolder, std::atoi(argv[1])) : 100000;
    const std::filesystem::path work =
        std::filesystem::path(argc > 2 ? argv[2] : std::filesystem::temp_directory_path().string()) /
        "quill_export_bench";
    std::filesystem::remove_all(work);
    std::filesystem::create_directories(work);
    const std::u16string documentPath = Utf8ToUtf16((work / "bench.ddb").string());
    const SFontDescription font = SFontDescription::Make(u"Arial", 12);

    CDataCenter center;
    std::printf("building a document of %d notes...\n", notes);
    if (!CreateDocument(center, documentPath, notes) || !center.OpenDocument(documentPath))
    {
        std::printf("cannot build the document\n");
        return 1;
    }
    CItemExporter exporter(DiskFileSystem(), font);

    double start = Now();
    const bool site = exporter.ExportAsHtmlFiles(*center.GetRoot(), Utf8ToUtf16((work / "site").string()));
    const double siteSeconds = Now() - start;
    const SWritten written = Survey(work / "site");

    start = Now();
    const bool html = exporter.ExportToFile(*center.GetRoot(), EExportFormat::Html,
                                            Utf8ToUtf16((work / "all.html").string()));
    const double htmlSeconds = Now() - start;
    start = Now();
    const bool rtf = exporter.ExportToFile(*center.GetRoot(), EExportFormat::Rtf,
                                           Utf8ToUtf16((work / "all.rtf").string()));
    const double rtfSeconds = Now() - start;
    center.CloseDocument();

    // The anchor: the same files, their bytes made up in memory.
    start = Now();
    const std::string filler(1 << 16, 'x');
    for (const auto& [relative, size] : written.sizes)
    {
        const std::filesystem::path path = work / "anchor" / relative;
        std::filesystem::create_directories(path.parent_path());
        int cause = 0;
        WriteWholeFile(DiskFileSystem(), Utf8ToUtf16(path.string()),
                       std::string_view(filler).substr(0, std::min<size_t>(size, filler.size())), cause);
    }
    const double anchorSeconds = Now() - start;

    const double megabytes = double(written.bytes) / (1024.0 * 1024.0);
    std::printf("%-34s %10s %10s %12s %10s\n", "step", "seconds", "files", "MB", "x anchor");
    std::printf("%-34s %10.2f %10zu %12.1f %10.2f %s\n", "tree as HTML files (with index)", siteSeconds,
                written.files, megabytes, siteSeconds / anchorSeconds, site ? "" : "FAILED");
    std::printf("%-34s %10.2f %10d %12.1f %10s %s\n", "whole tree as one HTML file", htmlSeconds, 1,
                double(std::filesystem::file_size(work / "all.html")) / (1024.0 * 1024.0), "",
                html ? "" : "FAILED");
    std::printf("%-34s %10.2f %10d %12.1f %10s %s\n", "whole tree as one RTF file", rtfSeconds, 1,
                double(std::filesystem::file_size(work / "all.rtf")) / (1024.0 * 1024.0), "",
                rtf ? "" : "FAILED");
    std::printf("%-34s %10.2f %10zu %12.1f %10.2f\n", "anchor: same files from memory", anchorSeconds,
                written.files, megabytes, 1.0);
    std::printf("notes per second (HTML files): %.0f\n", notes / siteSeconds);
    std::filesystem::remove_all(work);
    return site && html && rtf ? 0 : 1;
}
