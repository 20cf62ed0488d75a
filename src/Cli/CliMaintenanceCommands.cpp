// defrag and backup: maintenance of a whole file.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/BackupNames.h"
#include "Shared/Base/TextConv.h"

#include <cstdlib>
#include <ostream>

SCliCommand DefragCommand()
{
    SCliCommand command{"defrag",
                        "defrag FILE [--quick MS]",
                        "Defragment the file fully, or for at most MS milliseconds.",
                        {"--quick"},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        char* end = nullptr;
        const std::string quick = args.Value("--quick");
        const unsigned long limit = std::strtoul(quick.c_str(), &end, 10);
        if (args.Has("--quick") && (quick.empty() || *end != '\0' || limit > 0xFFFFFFFFul))
        {
            err << "quillarium-cli: --quick needs a number of milliseconds\n";
            return int(CliBadUsage);
        }
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CDataFile& file = session.Center().GetDatabase().GetDataFile();
        const int before = file.GetFragmentationLevel();
        const bool done =
            args.Has("--quick") ? file.DefragmentQuick(static_cast<uint32_t>(limit)) : file.DefragmentFull();
        if (!done)
        {
            err << "quillarium-cli: defragmentation failed\n";
            return int(CliFailure);
        }
        const int after = file.GetFragmentationLevel();
        if (args.json)
            out << "{\"before\":" << before << ",\"after\":" << after << "}\n";
        else
            out << "fragmentation " << before << "% -> " << after << "%\n";
        return int(CliSuccess);
    };
    return command;
}

SCliCommand BackupCommand()
{
    SCliCommand command{"backup",
                        "backup FILE [--to DIR]",
                        "Copy the file to a dated backup beside it or in DIR; prints the copy's path.",
                        {"--to"},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CDataCenter& center = session.Center();
        const std::u16string path = center.GetFilePath();
        const std::u16string folder = args.Has("--to") ? Utf8ToUtf16(args.Value("--to")) : FolderOf(path);
        center.BackupSettings().folder = folder;
        const std::u16string target = BackupNames::MakeBackupPath(
            folder.empty() ? u"." : folder, path, SystemClock().NowLocal(),
            [](const std::u16string& candidate) { return DiskFileSystem().Exists(candidate); });
        if (!center.Backup(true))
        {
            err << "quillarium-cli: the backup copy cannot be written\n";
            return int(CliFailure);
        }
        if (args.json)
            out << "{\"backup\":\"" << JsonEscape(Utf16ToUtf8(target)) << "\"}\n";
        else
            out << Utf16ToUtf8(target) << "\n";
        return int(CliSuccess);
    };
    return command;
}
