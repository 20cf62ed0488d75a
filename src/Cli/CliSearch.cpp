// quillarium-cli search: the global search of the desktop program over a document, printing one
// line (or one JSON object) per listed folder or note.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBFolder.h"
#include "Document/GlobalSearch.h"
#include "Shared/Base/TextConv.h"

#include <ostream>
#include <string>

namespace
{
const char* KindName(const CItem& item)
{
    return item.IsKind(EItemKind::Folder) ? "folder" : "note";
}

// The captions from below the root down to the item, each after a "\"; the root itself is "\".
std::string PathBelowRoot(const CItem& item)
{
    std::u16string path;
    for (const CItem* step = &item; step->GetParent() != nullptr; step = step->GetParent())
        path.insert(0, u"\\" + step->GetCaption());
    return Utf16ToUtf8(path.empty() ? u"\\" : path);
}

void PrintText(const std::vector<SSearchResultEntry>& results, std::ostream& out)
{
    for (const SSearchResultEntry& entry : results)
        out << KindName(*entry.item) << '\t' << PathBelowRoot(*entry.item) << '\n';
}

void PrintJson(const std::vector<SSearchResultEntry>& results, std::ostream& out)
{
    out << "{\"count\":" << results.size() << ",\"hits\":[";
    for (size_t i = 0; i < results.size(); ++i)
    {
        const CItem& item = *results[i].item;
        out << (i ? "," : "") << "{\"kind\":\"" << KindName(item) << "\",\"path\":\""
            << JsonEscape(PathBelowRoot(item)) << "\",\"caption\":\""
            << JsonEscape(Utf16ToUtf8(results[i].caption)) << "\",\"resultKind\":" << results[i].kind << "}";
    }
    out << "]}\n";
}

int RunSearch(const SCliCommand& command, const SCliArgs& args, std::ostream& out, std::ostream& err)
{
    if (!HasArgCount(args, 2, command, err))
        return CliBadUsage;
    CCliSession session(args, err);
    if (!session.Open(args.positional[0]))
        return CliFailure;
    const CTextSearch search(Utf8ToUtf16(args.positional[1]), args.Has("--case"), args.Has("--whole-words"),
                             args.Has("--boolean"));
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    walk.Run(*session.Center().GetRoot());
    if (args.json)
        PrintJson(walk.Results(), out);
    else
        PrintText(walk.Results(), out);
    return CliSuccess;
}
} // namespace

SCliCommand CliSearchCommand()
{
    SCliCommand command{
        "search",
        "search FILE QUERY [--case] [--whole-words] [--boolean] [--json]",
        "Lists the folders and notes that the global search finds, one \"kind<TAB>path\" line each.",
        {},
        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    { return RunSearch(command, args, out, err); };
    return command;
}
