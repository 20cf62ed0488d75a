#pragma once
// The start-up quillarium-cli shares with the program, without any window: the log goes to the
// program's "Quillarium.log", the preferences come from its "Quillarium.ini" (read, never written
// back) and the language module is the one the program would load, so messages read the same.
// Message boxes are printed to the error stream.
#include "App/AppLocations.h"
#include "App/DataCenterStartup.h"
#include "App/QuillariumApp.h"
#include "App/RunningInstance.h"
#include "Prefs/FontFolders.h"
#include "Shared/Base/MessageBox.h"

#include <iosfwd>
#include <memory>
#include <string>

class CCliEnvironment
{
public:
    // `applicationFolder` ends with '/': where the program (and this tool beside it) lives.
    CCliEnvironment(std::u16string applicationFolder, std::ostream& err);
    ~CCliEnvironment();
    CCliEnvironment(const CCliEnvironment&) = delete;
    CCliEnvironment& operator=(const CCliEnvironment&) = delete;

    // Opens the log and loads the preferences and the language module; false (with the message
    // printed) when the language module cannot be loaded.
    bool Start();
    // The program's note font from the preferences ("DefaultPrefsFontName" and "...Size"); Arial
    // when they name no face (a system without any font).
    SFontDescription NoteFont() const;

private:
    class CStreamMessageBox : public IMessageBox
    {
    public:
        explicit CStreamMessageBox(std::ostream& err) : m_Err(err) {}
        EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons buttons) override;

    private:
        std::ostream& m_Err;
    };
    // The tool never opens a data file at start-up or asks for a path.
    class CNoRunningInstances : public IRunningInstanceQuery
    {
    public:
        bool FindRunningInstance(const std::u16string&) override { return false; }
    };
    class CNoNewFileDialog : public INewDataFileDialog
    {
    public:
        bool AskNewDataFilePath(const std::u16string&, const std::u16string&, std::u16string&) override
        {
            return false;
        }
    };

    CStreamMessageBox m_MessageBox;
    CFontFolderQuery m_Fonts;
    CNoRunningInstances m_RunningInstances;
    CNoNewFileDialog m_NewFileDialog;
    CXdgDocumentsFolder m_Documents;
    CDataCenterStartupFactory m_DataCenters;
    std::unique_ptr<CQuillariumApp> m_App;
};
