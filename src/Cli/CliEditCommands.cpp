// rename, move and rm: changes to existing items, each saved and flushed before the file closes.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/FolderBase.h"
#include "Shared/Base/TextConv.h"

#include <ostream>

namespace
{
int Report(bool done, const SCliArgs& args, std::ostream& out, std::ostream& err, const char* what)
{
    if (!done)
    {
        err << "quillarium-cli: cannot " << what << " '" << args.positional[1] << "'\n";
        return CliFailure;
    }
    if (args.json)
        out << "{\"done\":true}\n";
    return CliSuccess;
}
} // namespace

SCliCommand RenameCommand()
{
    SCliCommand command{"rename", "rename FILE ITEM CAPTION", "Give an item a new caption.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 3, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CItem* item = session.FindItem(args.positional[1]);
        if (!item)
            return int(CliFailure);
        item->SetCaption(Utf8ToUtf16(args.positional[2]));
        return Report(session.Center().Save(), args, out, err, "rename");
    };
    return command;
}

SCliCommand MoveCommand()
{
    SCliCommand command{"move", "move FILE ITEM NEWPARENT", "Move an item into another folder.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 3, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CItem* item = session.FindItem(args.positional[1]);
        CFolderBase* target = item ? session.FindFolder(args.positional[2]) : nullptr;
        if (!target)
            return int(CliFailure);
        return Report(session.Center().MoveItem(*item, *target), args, out, err, "move");
    };
    return command;
}

SCliCommand RmCommand()
{
    SCliCommand command{
        "rm", "rm FILE ITEM", "Delete an item and everything in it (not default folders).", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 2, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CItem* item = session.FindItem(args.positional[1]);
        if (!item)
            return int(CliFailure);
        return Report(session.Center().DeleteItem(*item), args, out, err, "delete");
    };
    return command;
}
