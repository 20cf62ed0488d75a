#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBFolder.h"
#include "Shared/Base/TextConv.h"

#include <ostream>

SCliCommand InfoCommand()
{
    SCliCommand command{
        "info", "info FILE", "Identity, counts of notes and folders, records and fragmentation.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CDataCenter& center = session.Center();
        CDataFile& file = center.GetDatabase().GetDataFile();
        size_t notes = 0, folders = 0;
        center.GetRoot()->CountItems(notes, folders, CountItemsDeep);
        const std::string signature = Utf16ToUtf8(file.GetCreatorSignature());
        if (args.json)
            out << "{\"signature\":\"" << JsonEscape(signature) << "\",\"fileType\":" << file.GetFileType()
                << ",\"fileVersion\":" << file.GetFileVersion() << ",\"notes\":" << notes
                << ",\"folders\":" << folders
                << ",\"databaseRecords\":" << center.GetDatabase().GetRecordsCount()
                << ",\"fileRecords\":" << file.GetRecordsCount()
                << ",\"fragmentation\":" << file.GetFragmentationLevel()
                << ",\"readOnly\":" << (file.IsReadOnly() ? "true" : "false") << "}\n";
        else
            out << "signature:      " << signature << "\nfile type:      0x" << std::hex << file.GetFileType()
                << std::dec << "\nfile version:   " << file.GetFileVersion() << "\nnotes:          " << notes
                << "\nfolders:        " << folders
                << "\ndb records:     " << center.GetDatabase().GetRecordsCount()
                << "\nfile records:   " << file.GetRecordsCount()
                << "\nfragmentation:  " << file.GetFragmentationLevel() << "%\n";
        return int(CliSuccess);
    };
    return command;
}
