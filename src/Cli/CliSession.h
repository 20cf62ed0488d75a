#pragma once
// What every document command of quillarium-cli shares: the language module (the program's, when
// the tool's start-up loaded it, otherwise the built-in English one, so the data center's
// messages read as in the program), a message box that prints to the error stream, the data
// center, the file password, and naming items by path or ID.
#include "Document/DataCenter.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <iosfwd>
#include <string>
#include <string_view>

struct SCliArgs;

class CItem;
class CFolderBase;

class CCliSession : public IMessageBox
{
public:
    // The password of a protected file comes from `args` (its --password-file or its input).
    CCliSession(const SCliArgs& args, std::ostream& err);
    ~CCliSession() override;
    CCliSession(const CCliSession&) = delete;
    CCliSession& operator=(const CCliSession&) = delete;

    // Opens the document; a password-protected one only with its password, and is closed again
    // when the password read is empty or wrong.
    bool Open(const std::string& path);
    bool Create(const std::string& path) { return m_Center.CreateDocument(Path16(path)); }
    CDataCenter& Center() { return m_Center; }
    // The password the open document was unlocked with; empty when it has none.
    const std::u16string& Password() const { return m_Password; }
    // The next line of the input (without its line end) after writing `prompt` to the error
    // stream; empty at the end of the input.
    std::u16string ReadInputLine(std::string_view prompt);

    // An item named by its path from the root (captions joined with "\", a leading "\" optional)
    // or by its record ID in hex. Null, with a message on the error stream, when there is none.
    CItem* FindItem(const std::string& name);
    // As FindItem, for a name that must be a folder.
    CFolderBase* FindFolder(const std::string& name);

    EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons buttons) override;

    static std::u16string Path16(const std::string& path);

private:
    CItem* FindByPath(const std::u16string& path);
    CItem* FindById(const std::string& hex);
    bool ReadPassword(const std::string& path);

    std::ostream& m_Err;
    std::istream* m_In;
    std::string m_PasswordFile;
    std::u16string m_Password;
    CLanguageModule m_Language;
    CAppConnector m_Connector;
    CAppConnector* m_Previous = nullptr;
    CDataCenter m_Center;
};

// The caption as UTF-8.
std::string CaptionOf(const CItem& item);
