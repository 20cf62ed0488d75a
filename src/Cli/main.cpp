// quillarium-cli: the headless tool over the same core as the desktop program.
#include "Cli/CliCommand.h"
#include "Cli/CliEnvironment.h"
#include "Shared/Base/Paths.h"

#include <iostream>

int main(int argc, char** argv)
{
    CCliEnvironment environment(ProgramFolder(), std::cerr);
    if (!environment.Start())
        return CliFailure;
    std::vector<std::string> words(argv + 1, argv + argc);
    const SFontDescription noteFont = environment.NoteFont();
    return RunCli(words, std::cin, std::cout, std::cerr, &noteFont);
}
