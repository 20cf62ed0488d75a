#pragma once
// What every document command of quillarium-cli shares: the built-in English language module (so
// the data center's messages read as in the program), a message box that prints to the error
// stream, the data center, and naming items by path or ID.
#include "Document/DataCenter.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <iosfwd>
#include <string>

class CItem;
class CFolderBase;

class CCliSession : public IMessageBox
{
public:
    explicit CCliSession(std::ostream& err);
    ~CCliSession() override;
    CCliSession(const CCliSession&) = delete;
    CCliSession& operator=(const CCliSession&) = delete;

    bool Open(const std::string& path) { return m_Center.OpenDocument(Path16(path)); }
    bool Create(const std::string& path) { return m_Center.CreateDocument(Path16(path)); }
    CDataCenter& Center() { return m_Center; }

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

    std::ostream& m_Err;
    CLanguageModule m_Language;
    CAppConnector m_Connector;
    CAppConnector* m_Previous = nullptr;
    CDataCenter m_Center;
};

// The caption as UTF-8.
std::string CaptionOf(const CItem& item);
