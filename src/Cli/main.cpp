// quillarium-cli: the headless tool over the same core as the desktop program.
#include "Cli/CliCommand.h"

#include <iostream>

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    return RunCli(words, std::cout, std::cerr);
}
