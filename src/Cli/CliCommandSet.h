#pragma once
// The commands of quillarium-cli, one factory per file, listed in CliCommands.cpp.
#include "Cli/CliCommand.h"

SCliCommand NewCommand();
SCliCommand InfoCommand();
SCliCommand TreeCommand();
SCliCommand AddFolderCommand();
SCliCommand AddNoteCommand();
SCliCommand CatCommand();
SCliCommand ImportCommand();
SCliCommand ExportCommand();
SCliCommand RenameCommand();
SCliCommand MoveCommand();
SCliCommand RmCommand();
SCliCommand CheckCommand();
SCliCommand DefragCommand();
SCliCommand BackupCommand();
SCliCommand PasswdCommand();

// Shared by the commands: writes "quillarium-cli: <usage line>" to `err` and answers CliBadUsage
// when the positional arguments are not exactly `count`.
bool HasArgCount(const SCliArgs& args, size_t count, const SCliCommand& command, std::ostream& err);
