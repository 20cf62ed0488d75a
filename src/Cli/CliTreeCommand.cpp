#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBFolder.h"
#include "Shared/Base/TextConv.h"

#include <ostream>

namespace
{
void PrintItem(const CItem& item, int depth, bool json, bool& first, std::ostream& out)
{
    const bool folder = item.IsKind(EItemKind::Folder);
    const std::string id = Utf16ToUtf8(item.GetId().ToHex());
    if (json)
    {
        out << (first ? "" : ",") << "\n{\"depth\":" << depth << ",\"kind\":\""
            << (folder ? "folder" : "note") << "\",\"id\":\"" << id << "\",\"caption\":\""
            << JsonEscape(CaptionOf(item)) << "\"}";
        first = false;
    }
    else
        out << std::string(2 * static_cast<size_t>(depth), ' ') << (folder ? "folder " : "note   ") << id
            << " " << CaptionOf(item) << "\n";
    if (auto* asFolder = dynamic_cast<const CFolderBase*>(&item))
        for (size_t i = 0; i < asFolder->GetChildCount(); ++i)
            PrintItem(*asFolder->GetChild(i), depth + 1, json, first, out);
}
} // namespace

SCliCommand TreeCommand()
{
    SCliCommand command{
        "tree", "tree FILE", "One line per item: indentation, kind, ID in hex, caption.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        bool first = true;
        if (args.json)
            out << "[";
        PrintItem(*session.Center().GetRoot(), 0, args.json, first, out);
        if (args.json)
            out << "\n]\n";
        return int(CliSuccess);
    };
    return command;
}
