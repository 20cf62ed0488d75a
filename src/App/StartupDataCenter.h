#pragma once
// What start-up needs from the data center and from the shell to bring a data file up: open an
// existing file, create a new one, and ask the user where to put a new file when the intended
// place cannot take it. Each operation reports its own failures; start-up only needs the result.
#include <memory>
#include <string>

class IStartupDataCenter
{
public:
    virtual ~IStartupDataCenter() = default;
    virtual bool OpenDataFile(const std::u16string& path) = 0;
    // Creates a new data file at `path` holding a newly generated tree.
    virtual bool CreateNewDataFile(const std::u16string& path) = 0;
};

class IStartupDataCenterFactory
{
public:
    virtual ~IStartupDataCenterFactory() = default;
    virtual std::unique_ptr<IStartupDataCenter> CreateDataCenter() = 0;
};

// The save dialog offered when a new data file cannot be created where it was meant to be.
class INewDataFileDialog
{
public:
    virtual ~INewDataFileDialog() = default;
    // False when the user cancels; otherwise the chosen path.
    virtual bool AskNewDataFilePath(const std::u16string& filter, const std::u16string& proposedName,
                                    std::u16string& path) = 0;
};

inline constexpr char16_t kNewDataFileFilter[] = u"Quillarium data file (*.ddb)|*.ddb||";
inline constexpr char16_t kNewDataFileProposedName[] = u"MyData";
