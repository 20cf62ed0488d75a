#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"

#include <ostream>

SCliCommand NewCommand()
{
    SCliCommand command{"new", "new FILE", "Create a new data file with the default folders.", {}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Create(args.positional[0]))
            return int(CliFailure);
        if (args.json)
            out << "{\"created\":\"" << JsonEscape(args.positional[0]) << "\"}\n";
        else
            out << "created " << args.positional[0] << "\n";
        return int(CliSuccess);
    };
    return command;
}

bool HasArgCount(const SCliArgs& args, size_t count, const SCliCommand& command, std::ostream& err)
{
    if (args.positional.size() == count)
        return true;
    err << "quillarium-cli: usage: " << command.usage << "\n";
    return false;
}
