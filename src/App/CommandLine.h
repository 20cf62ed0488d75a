#pragma once
// The command line is one text: everything after the program name, taken whole, with no quote
// removal and no splitting. It either names a data file or carries the "-autostartup" flag that
// the autostart entry adds.
#include <string>
#include <string_view>

inline constexpr std::u16string_view kAutoStartupFlag = u"-autostartup";
inline constexpr std::u16string_view kDataFileExtension = u".ddb";

// The arguments after the program name joined with single blanks, as the text the system
// would have handed over; argv[0] is left out.
std::u16string CommandLineText(int argc, const char* const* argv);

// True when the text is longer than the extension and ends with ".ddb" in any case, so ".ddb"
// alone names nothing and "x.DDB" names a file.
bool CommandLineNamesDataFile(std::u16string_view commandLine);

// True when "-autostartup" occurs anywhere in the text (case-sensitive).
bool CommandLineHasAutoStartup(std::u16string_view commandLine);
