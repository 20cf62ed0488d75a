// passwd: sets, changes or removes the file password. The new password is typed twice so that a
// typing slip cannot lock the user out of the file.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"

#include <ostream>

namespace
{
bool StorePassword(CCliSession& session, const std::u16string& password, std::ostream& err)
{
    CDataCenter& center = session.Center();
    if (center.IsReadOnly())
    {
        err << "quillarium-cli: the file is write-protected\n";
        return false;
    }
    if (!center.GetRecords().SetPassword(session.Password(), password) ||
        !center.GetDatabase().GetDataFile().Flush())
    {
        err << "quillarium-cli: cannot store the password\n";
        return false;
    }
    return true;
}
} // namespace

SCliCommand PasswdCommand()
{
    SCliCommand command{"passwd",
                        "passwd FILE [--password-file OLD]",
                        "Set, change or remove the file password: reads the new password and its "
                        "repetition from stdin, one line each; an empty one removes it.",
                        {},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        const std::u16string password = session.ReadInputLine("New password (empty removes it): ");
        if (session.ReadInputLine("Repeat the new password: ") != password)
        {
            err << "quillarium-cli: the two passwords differ; nothing changed\n";
            return int(CliFailure);
        }
        if (!StorePassword(session, password, err))
            return int(CliFailure);
        const bool set = !password.empty();
        if (args.json)
            out << "{\"password\":" << (set ? "true" : "false") << "}\n";
        else
            out << (set ? "password set\n" : "password removed\n");
        return int(CliSuccess);
    };
    return command;
}
