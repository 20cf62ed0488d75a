// import and export: files into the document, items out of it.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/Export/ItemExporter.h"
#include "Document/FolderBase.h"
#include "Document/Import/FileImporter.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"

#include <optional>
#include <ostream>

namespace
{
std::optional<EExportFormat> FormatNamed(std::string_view name)
{
    if (name == "rtf")
        return EExportFormat::Rtf;
    if (name == "html" || name == "htm")
        return EExportFormat::Html;
    if (name == "txt" || name == "text")
        return EExportFormat::PlainText;
    return std::nullopt;
}

// The --format option, else the output file's extension, else plain text.
std::optional<EExportFormat> ExportFormatOf(const SCliArgs& args, const std::string& out)
{
    if (args.Has("--format"))
        return FormatNamed(args.Value("--format"));
    const size_t dot = out.rfind('.');
    const size_t slash = out.rfind('/');
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash))
        if (const auto format = FormatNamed(Utf16ToUtf8(AsciiToLower(Utf8ToUtf16(out.substr(dot + 1))))))
            return format;
    return EExportFormat::PlainText;
}
} // namespace

SCliCommand ImportCommand()
{
    SCliCommand command{"import",
                        "import FILE PARENT PATH...",
                        "Import text, RTF and .knt files, or folders of them keeping their structure, into\n"
                        "      the folder PARENT; prints the IDs of the new items.",
                        {},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (args.positional.size() < 3)
        {
            err << "quillarium-cli: " << command.usage << "\n";
            return int(CliBadUsage);
        }
        // Every file is read before the document is touched: one that cannot be read or parsed
        // imports nothing.
        std::vector<std::u16string> paths;
        for (size_t i = 2; i < args.positional.size(); ++i)
            paths.push_back(CCliSession::Path16(args.positional[i]));
        CFileImporter importer(DiskFileSystem(), args.noteFont);
        std::vector<SImportItem> items;
        if (!importer.Read(paths, items))
        {
            err << "quillarium-cli: nothing imported, a file cannot be read (see the log)\n";
            return int(CliFailure);
        }
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CFolderBase* parent = session.FindFolder(args.positional[1]);
        if (!parent)
            return int(CliFailure);
        const size_t first = parent->GetChildCount();
        if (!session.Center().AddItems(*parent, items))
        {
            err << "quillarium-cli: nothing imported, the document cannot store the items\n";
            return int(CliFailure);
        }
        std::string ids;
        for (size_t i = first; i < parent->GetChildCount(); ++i)
        {
            const std::string id = Utf16ToUtf8(parent->GetChild(i)->GetId().ToHex());
            ids += args.json ? (ids.empty() ? "\"" : ",\"") + id + "\"" : id + "\n";
        }
        out << (args.json ? "{\"ids\":[" + ids + "]}\n" : ids);
        return int(CliSuccess);
    };
    return command;
}

SCliCommand ExportCommand()
{
    SCliCommand command{
        "export",
        "export FILE ITEM OUT [--format rtf|html|txt] [--per-note]",
        "Export a note, or a folder with everything in it (\\ for the whole tree), to the file\n"
        "      OUT (format from --format or OUT's extension). With --per-note a folder becomes\n"
        "      the HTML folder OUT: one file per note and index.html linking them.",
        {"--format"},
        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 3, command, err))
            return int(CliBadUsage);
        const std::string& target = args.positional[2];
        const std::optional<EExportFormat> format = ExportFormatOf(args, target);
        const bool perNote = args.Has("--per-note");
        if (!format || (perNote && *format != EExportFormat::Html))
        {
            err << "quillarium-cli: the format must be rtf, html or txt (html with --per-note)\n";
            return int(CliBadUsage);
        }
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CItem* item = session.FindItem(args.positional[1]);
        if (!item)
            return int(CliFailure);
        CItemExporter exporter(DiskFileSystem(), args.noteFont);
        bool written = false;
        if (perNote)
        {
            auto* folder = dynamic_cast<CFolderBase*>(item);
            if (!folder)
            {
                err << "quillarium-cli: --per-note needs a folder\n";
                return int(CliBadUsage);
            }
            written = exporter.ExportAsHtmlFiles(*folder, CCliSession::Path16(target));
        }
        else
            written = exporter.ExportToFile(*item, *format, CCliSession::Path16(target));
        if (!written)
        {
            err << "quillarium-cli: cannot export to " << Utf16ToUtf8(exporter.Failure().path) << " (cause "
                << exporter.Failure().cause << ")\n";
            return int(CliFailure);
        }
        if (args.json)
            out << "{\"written\":\"" << JsonEscape(target) << "\"}\n";
        return int(CliSuccess);
    };
    return command;
}
