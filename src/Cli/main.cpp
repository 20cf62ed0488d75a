// quillarium-cli: the headless tool over the same core as the desktop program.
#include <cstdio>
#include <cstring>

static void PrintHelp()
{
    std::puts("quillarium-cli - Quillarium Organizer command-line tool\n"
              "\n"
              "Usage:\n"
              "  quillarium-cli --help     show this help");
}

int main(int argc, char** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)
    {
        PrintHelp();
        return argc < 2 ? 1 : 0;
    }
    std::fprintf(stderr, "quillarium-cli: unknown command '%s' (see --help)\n", argv[1]);
    return 2;
}
