// check: opens the file with every check of the program, then validates what opening tolerates:
// the record directory against a scan, database headers that were skipped, child lists naming
// records that do not load, and every note's stored text.
#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Shared/Base/TextConv.h"
#include "Shared/RichText/RichTextDocument.h"

#include <ostream>
#include <vector>

namespace
{
class CDocumentChecker
{
public:
    explicit CDocumentChecker(CDataCenter& center) : m_Center(center), m_Db(center.GetDatabase()) {}

    std::vector<std::string> Run()
    {
        CDataFile& file = m_Db.GetDataFile();
        if (!file.IsCacheConsistentWithFile())
            m_Problems.push_back("record directory does not match a scan of the file");
        const uint32_t headers = file.GetTypedRecordsCount(CDBFile::HeaderRecordType);
        if (headers != m_Db.GetRecordsCount())
            m_Problems.push_back(std::to_string(headers - m_Db.GetRecordsCount()) +
                                 " database record header(s) are corrupted");
        CheckItem(*m_Center.GetRoot());
        return m_Problems;
    }

private:
    void CheckItem(CItem& item)
    {
        if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        {
            CheckChildList(*folder);
            for (size_t i = 0; i < folder->GetChildCount(); ++i)
                CheckItem(*folder->GetChild(i));
        }
        else if (auto* note = dynamic_cast<CDBNote*>(&item))
        {
            CRichTextDocument text;
            if (!m_Center.GetRecords().LoadRichText(note->GetId(), text))
                Add(item, "its text cannot be read");
        }
    }

    void CheckChildList(CFolderBase& folder)
    {
        std::vector<uint8_t> list;
        const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(folder.GetId());
        if (!entry || !entry->FindField(ItemRecordFormat::ChildListField))
            return;
        if (!m_Db.GetFieldData(folder.GetId(), ItemRecordFormat::ChildListField, list))
            Add(folder, "its child list cannot be read");
        else if (list.size() / 16 != folder.GetChildCount())
            Add(folder, "its child list names " + std::to_string(list.size() / 16 - folder.GetChildCount()) +
                            " item(s) that cannot be loaded");
    }

    void Add(const CItem& item, const std::string& problem)
    {
        m_Problems.push_back(Utf16ToUtf8(item.GetPath()) + " [" + Utf16ToUtf8(item.GetId().ToHex()) +
                             "]: " + problem);
    }

    CDataCenter& m_Center;
    CDBFile& m_Db;
    std::vector<std::string> m_Problems;
};
} // namespace

SCliCommand CheckCommand()
{
    SCliCommand command{"check",
                        "check FILE",
                        "Validate the whole file; lists each problem, exit status 1 when any.",
                        {},
                        {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 1, command, err))
            return int(CliBadUsage);
        CCliSession session(args, err);
        std::vector<std::string> problems;
        if (!session.Open(args.positional[0]))
            problems.push_back("the file does not open as a document");
        else
            problems = CDocumentChecker(session.Center()).Run();
        if (args.json)
        {
            out << "{\"ok\":" << (problems.empty() ? "true" : "false") << ",\"problems\":[";
            for (size_t i = 0; i < problems.size(); ++i)
                out << (i ? "," : "") << "\"" << JsonEscape(problems[i]) << "\"";
            out << "]}\n";
        }
        else
        {
            for (const std::string& problem : problems)
                out << "problem: " << problem << "\n";
            out << (problems.empty() ? "ok\n" : "");
        }
        return problems.empty() ? int(CliSuccess) : int(CliFailure);
    };
    return command;
}
