#include "Cli/CliSession.h"

#include "App/AppIdentity.h"
#include "App/EnglishStrings.h"
#include "Cli/CliCommand.h"
#include "Document/DBFolder.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <fstream>
#include <istream>
#include <ostream>

namespace
{
bool ParseHexId(const std::string& text, CUInt128& id)
{
    if (text.empty() || text.size() > 32)
        return false;
    uint64_t high = 0, low = 0;
    for (const char c : text)
    {
        unsigned digit = 0;
        if (c >= '0' && c <= '9')
            digit = static_cast<unsigned>(c - '0');
        else if (c >= 'a' && c <= 'f')
            digit = static_cast<unsigned>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F')
            digit = static_cast<unsigned>(c - 'A' + 10);
        else
            return false;
        high = (high << 4) | (low >> 60);
        low = (low << 4) | digit;
    }
    id = CUInt128(high, low);
    return !id.IsZero();
}

CItem* FindInSubtree(CItem& item, const CUInt128& id)
{
    if (item.GetId() == id)
        return &item;
    if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            if (CItem* found = FindInSubtree(*folder->GetChild(i), id))
                return found;
    return nullptr;
}

CItem* ChildByCaption(CFolderBase& folder, std::u16string_view caption)
{
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
        if (folder.GetChild(i)->GetCaption() == caption)
            return folder.GetChild(i);
    return nullptr;
}

// A line without its end; a password typed on Windows keeps no carriage return.
bool ReadLine(std::istream& in, std::string& line)
{
    if (!std::getline(in, line))
        return false;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return true;
}
} // namespace

CCliSession::CCliSession(const SCliArgs& args, std::ostream& err)
    : m_Err(err), m_In(args.in), m_PasswordFile(args.passwordFile),
      m_Center(DiskFileSystem(), SystemClock(), DiskFileTimes(), this)
{
    m_Previous = CAppConnector::Get();
    CLanguageModule* language = m_Previous ? m_Previous->GetLanguageModule() : nullptr;
    if (!language)
    {
        m_Language.LoadBuiltIn(std::u16string(kDefaultLanguageModuleName), EnglishStrings());
        language = &m_Language;
    }
    if (m_Previous)
        m_Connector.SetLog(m_Previous->GetLog());
    m_Connector.SetLanguageModule(language);
    m_Connector.SetMessageBox(this);
    CAppConnector::Install(&m_Connector);
}

CCliSession::~CCliSession()
{
    m_Center.CloseDocument();
    CAppConnector::Install(m_Previous);
}

bool CCliSession::Open(const std::string& path)
{
    if (!m_Center.OpenDocument(Path16(path)))
        return false;
    CItemRecords& records = m_Center.GetRecords();
    if (!records.IsPasswordSet())
        return true;
    // An empty text passes the record check by design, so it is refused here.
    if (ReadPassword(path) && !m_Password.empty() && records.CheckPassword(m_Password))
        return true;
    LogMessage(u"Error: Cannot unlock file %s: the password is missing or wrong.", Path16(path));
    m_Err << "quillarium-cli: wrong password for " << path << "\n";
    m_Password.clear();
    m_Center.CloseDocument();
    return false;
}

bool CCliSession::ReadPassword(const std::string& path)
{
    if (m_PasswordFile.empty())
    {
        m_Password = ReadInputLine("Password for " + path + ": ");
        return true;
    }
    std::ifstream file(m_PasswordFile, std::ios::binary);
    std::string line;
    if (!file || !ReadLine(file, line))
    {
        m_Err << "quillarium-cli: cannot read the password file " << m_PasswordFile << "\n";
        return false;
    }
    m_Password = Utf8ToUtf16(line);
    return true;
}

std::u16string CCliSession::ReadInputLine(std::string_view prompt)
{
    m_Err << prompt << std::flush;
    std::string line;
    if (!m_In || !ReadLine(*m_In, line))
        return {};
    return Utf8ToUtf16(line);
}

std::u16string CCliSession::Path16(const std::string& path)
{
    return Utf8ToUtf16(path);
}

EMsgResult CCliSession::Show(const std::u16string& text, EMsgIcon, EMsgButtons)
{
    m_Err << "quillarium-cli: " << Utf16ToUtf8(text) << "\n";
    return EMsgResult::Ok;
}

CItem* CCliSession::FindItem(const std::string& name)
{
    CItem* found = nullptr;
    if (!name.empty() && name[0] != '\\')
        found = FindById(name);
    if (!found)
        found = FindByPath(Utf8ToUtf16(name));
    if (!found)
        m_Err << "quillarium-cli: no item named '" << name << "'\n";
    return found;
}

CFolderBase* CCliSession::FindFolder(const std::string& name)
{
    CItem* item = FindItem(name);
    auto* folder = dynamic_cast<CFolderBase*>(item);
    if (item && !folder)
        m_Err << "quillarium-cli: '" << name << "' is not a folder\n";
    return folder;
}

CItem* CCliSession::FindById(const std::string& hex)
{
    CUInt128 id;
    return ParseHexId(hex, id) && m_Center.GetRoot() ? FindInSubtree(*m_Center.GetRoot(), id) : nullptr;
}

CItem* CCliSession::FindByPath(const std::u16string& path)
{
    CItem* item = m_Center.GetRoot();
    size_t start = !path.empty() && path[0] == u'\\' ? 1 : 0;
    while (item && start < path.size())
    {
        auto* folder = dynamic_cast<CFolderBase*>(item);
        const size_t end = std::min(path.find(u'\\', start), path.size());
        item =
            folder ? ChildByCaption(*folder, std::u16string_view(path).substr(start, end - start)) : nullptr;
        start = end + 1;
    }
    return item;
}

std::string CaptionOf(const CItem& item)
{
    return Utf16ToUtf8(item.GetCaption());
}
