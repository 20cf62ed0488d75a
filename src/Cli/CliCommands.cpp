#include "Cli/CliCommand.h"
#include "Cli/CliCommandSet.h"

#include <algorithm>
#include <ostream>

bool SCliArgs::Has(std::string_view option) const
{
    return std::any_of(options.begin(), options.end(), [&](const auto& o) { return o.first == option; });
}

std::string SCliArgs::Value(std::string_view option, std::string_view fallback) const
{
    for (const auto& [name, value] : options)
        if (name == option)
            return value;
    return std::string(fallback);
}

SCliCommand CliSearchCommand(); // CliSearch.cpp

const std::vector<SCliCommand>& CliCommands()
{
    // Commands register here, one line each, in the order the help lists them.
    static const std::vector<SCliCommand> commands = {
        NewCommand(),     InfoCommand(),   TreeCommand(),      AddFolderCommand(),
        AddNoteCommand(), CatCommand(),    ImportCommand(),    ExportCommand(),
        RenameCommand(),  MoveCommand(),   RmCommand(),        CheckCommand(),
        DefragCommand(),  BackupCommand(), CliSearchCommand(), PasswdCommand(),
    };
    return commands;
}

namespace
{
void PrintHelp(std::ostream& out)
{
    out << "quillarium-cli - Quillarium Organizer command-line tool\n\n"
           "Usage: quillarium-cli COMMAND [ARGS...] [--json]\n"
           "       quillarium-cli COMMAND --help\n\n"
           "Commands:\n";
    for (const SCliCommand& command : CliCommands())
        out << "  " << command.usage << "\n      " << command.summary << "\n";
    out << "\nItems are named by their path from the root (captions joined with \"\\\") or by\n"
           "their ID in hex. A password-protected file asks for its password on stdin, or\n"
           "takes the first line of --password-file FILE.\n"
           "Exit status: 0 success, 1 failure, 2 bad usage.\n";
}

const SCliCommand* FindCommand(std::string_view name)
{
    for (const SCliCommand& command : CliCommands())
        if (command.name == name)
            return &command;
    return nullptr;
}

bool TakesValue(const SCliCommand& command, std::string_view option)
{
    return std::find(command.valueOptions.begin(), command.valueOptions.end(), option) !=
           command.valueOptions.end();
}

// False with a message when an option that needs a value comes last.
bool ParseArgs(const SCliCommand& command, const std::vector<std::string>& words, SCliArgs& args,
               std::ostream& err)
{
    for (size_t i = 1; i < words.size(); ++i)
    {
        const std::string& word = words[i];
        if (word.size() < 3 || word.compare(0, 2, "--") != 0)
        {
            args.positional.push_back(word);
            continue;
        }
        if (word == "--json")
        {
            args.json = true;
            continue;
        }
        const bool common = word == "--password-file";
        if (!common && !TakesValue(command, word))
        {
            args.options.emplace_back(word, "");
            continue;
        }
        if (i + 1 >= words.size())
        {
            err << "quillarium-cli: " << word << " needs a value\n";
            return false;
        }
        if (common)
            args.passwordFile = words[++i];
        else
            args.options.emplace_back(word, words[++i]);
    }
    return true;
}
} // namespace

int RunCli(const std::vector<std::string>& words, std::istream& in, std::ostream& out, std::ostream& err,
           const SFontDescription* noteFont)
{
    if (words.empty())
    {
        PrintHelp(err);
        return CliBadUsage;
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help")
    {
        PrintHelp(out);
        return CliSuccess;
    }
    const SCliCommand* command = FindCommand(words[0]);
    if (!command)
    {
        err << "quillarium-cli: unknown command '" << words[0] << "' (see --help)\n";
        return CliBadUsage;
    }
    SCliArgs args;
    args.in = &in;
    if (noteFont)
        args.noteFont = *noteFont;
    if (!ParseArgs(*command, words, args, err))
        return CliBadUsage;
    if (args.Has("--help"))
    {
        out << "Usage: quillarium-cli " << command->usage << "\n" << command->summary << "\n";
        return CliSuccess;
    }
    return command->run(args, out, err);
}

std::string JsonEscape(std::string_view utf8)
{
    std::string escaped;
    escaped.reserve(utf8.size() + 2);
    for (const char c : utf8)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
        {
            escaped += '\\';
            escaped += c;
        }
        else if (byte < 0x20)
        {
            static const char hex[] = "0123456789abcdef";
            escaped += "\\u00";
            escaped += hex[byte >> 4];
            escaped += hex[byte & 15];
        }
        else
            escaped += c;
    }
    return escaped;
}
