#pragma once
// The command table of quillarium-cli. Each command lives in its own file and is listed once in
// CliCommands.cpp. A command writes its normal output to `out` and a failure's message to `err`,
// and answers the process exit status: 0 success, 1 a handled failure, 2 bad usage.
#include "Shared/RichText/FontDescription.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

enum ECliStatus
{
    CliSuccess = 0,
    CliFailure = 1,
    CliBadUsage = 2
};

// The words after the command name, with the common options taken out.
struct SCliArgs
{
    std::vector<std::string> positional;
    std::vector<std::pair<std::string, std::string>> options; // "--name" -> value ("" for flags)
    bool json = false;
    // Where a password-protected file's password comes from: the first line of this file when
    // named, otherwise a line of `in` (the tool's standard input).
    std::string passwordFile;
    std::istream* in = nullptr;
    // The note font of the program's preferences, for exported and imported texts.
    SFontDescription noteFont = SFontDescription::Make(u"Arial", 12);

    bool Has(std::string_view option) const;
    // The value of an option that takes one; `fallback` when absent.
    std::string Value(std::string_view option, std::string_view fallback = {}) const;
};

struct SCliCommand
{
    std::string name;
    std::string usage;   // "add-note FILE PARENT CAPTION [--text FILE]"
    std::string summary; // one line for the command list
    // Options that take a value ("--text"); every other "--x" is a flag.
    std::vector<std::string> valueOptions;
    std::function<int(const SCliArgs& args, std::ostream& out, std::ostream& err)> run;
};

const std::vector<SCliCommand>& CliCommands();

// Parses `words` (argv without the program name) and runs the command; the whole tool. Passwords
// are read from `in`; texts are exported and imported with `noteFont` when given.
int RunCli(const std::vector<std::string>& words, std::istream& in, std::ostream& out, std::ostream& err,
           const SFontDescription* noteFont = nullptr);

// Text for JSON string values (quotes, backslashes and control characters escaped).
std::string JsonEscape(std::string_view utf8);
