// add-folder and add-note: new items under a folder named by path or ID.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Shared/Base/TextConv.h"
#include "Shared/RichText/PlainTextReader.h"

#include <ostream>

namespace
{
void PrintAdded(const CItem& item, bool json, std::ostream& out)
{
    const std::string id = Utf16ToUtf8(item.GetId().ToHex());
    if (json)
        out << "{\"id\":\"" << id << "\"}\n";
    else
        out << id << "\n";
}
} // namespace

SCliCommand AddFolderCommand()
{
    SCliCommand command{
        "add-folder", "add-folder FILE PARENT CAPTION", "Add a folder; prints its ID.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 3, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CFolderBase* parent = session.FindFolder(args.positional[1]);
        if (!parent)
            return int(CliFailure);
        CDBFolder* folder = session.Center().AddFolder(*parent, Utf8ToUtf16(args.positional[2]));
        if (!folder)
        {
            err << "quillarium-cli: cannot add the folder\n";
            return int(CliFailure);
        }
        PrintAdded(*folder, args.json, out);
        return int(CliSuccess);
    };
    return command;
}

SCliCommand AddNoteCommand()
{
    SCliCommand command{"add-note",
                        "add-note FILE PARENT CAPTION [--text FILE]",
                        "Add a note, with the plain text of FILE; prints its ID.",
                        {"--text"},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 3, command, err))
            return int(CliBadUsage);
        std::u16string text;
        if (args.Has("--text"))
        {
            std::string bytes;
            int cause = 0;
            if (!ReadWholeFile(DiskFileSystem(), Utf8ToUtf16(args.Value("--text")), bytes, cause))
            {
                err << "quillarium-cli: cannot read " << args.Value("--text") << " (cause " << cause << ")\n";
                return int(CliFailure);
            }
            text = DecodePlainTextBytes(bytes);
        }
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CFolderBase* parent = session.FindFolder(args.positional[1]);
        if (!parent)
            return int(CliFailure);
        CDBNote* note = session.Center().AddNote(*parent, Utf8ToUtf16(args.positional[2]), text);
        if (!note)
        {
            err << "quillarium-cli: cannot add the note\n";
            return int(CliFailure);
        }
        PrintAdded(*note, args.json, out);
        return int(CliSuccess);
    };
    return command;
}
