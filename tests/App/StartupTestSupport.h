#pragma once
// Fakes for start-up tests: the data center records what it was asked and creates files in the
// in-memory file system, other copies "hold" a set of paths, dialogs and message boxes answer
// from scripts.
#include "App/AppLocations.h"
#include "App/RunningInstance.h"
#include "App/StartupDataCenter.h"
#include "Prefs/FontQuery.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/Base/OleDate.h"

#include <set>
#include <string>
#include <vector>

class CStartupFs : public CMemFileSystem
{
public:
    std::set<std::u16string> readOnlyFolders;
    bool IsWritableFolder(const std::u16string& folder) override
    {
        return readOnlyFolders.count(folder) == 0 && CMemFileSystem::IsFolder(folder);
    }
};

class CFixedClock : public IClock
{
public:
    OleDate NowLocal() const override { return 45000.5; }
    uint32_t TickCountMs() const override { return 1000; }
};

class COneFontSystem : public IFontQuery
{
public:
    bool HasFace(std::u16string_view face) const override { return face == u"Arial"; }
    std::u16string SystemSansFace() const override { return u"Arial"; }
};

class CFixedDocuments : public IDocumentsFolder
{
public:
    std::u16string PersonalDocumentsFolder() const override { return u"/home/u/Documents/"; }
};

class CFakeRunningCopies : public IRunningInstanceQuery
{
public:
    std::set<std::u16string> heldPaths;
    std::vector<std::u16string> asked;
    bool FindRunningInstance(const std::u16string& path) override
    {
        asked.push_back(path);
        return heldPaths.count(path) != 0;
    }
};

// Events are "open <path>", "create <path>" and "close" (the data center's destruction), the
// last marked " after <path>" when `watchedPath` exists at that moment.
class CFakeDataCenters : public IStartupDataCenterFactory
{
public:
    explicit CFakeDataCenters(CMemFileSystem& fs) : m_Fs(fs) {}
    std::set<std::u16string> unreadable;
    std::set<std::u16string> uncreatable;
    std::u16string watchedPath;
    std::vector<std::u16string> events;
    int created = 0;

    std::unique_ptr<IStartupDataCenter> CreateDataCenter() override
    {
        ++created;
        return std::make_unique<CCenter>(*this);
    }

private:
    class CCenter : public IStartupDataCenter
    {
    public:
        explicit CCenter(CFakeDataCenters& owner) : m_Owner(owner) {}
        ~CCenter() override
        {
            const bool watchedExists =
                !m_Owner.watchedPath.empty() && m_Owner.m_Fs.Exists(m_Owner.watchedPath);
            m_Owner.events.push_back(watchedExists ? u"close after " + m_Owner.watchedPath : u"close");
        }
        bool OpenDataFile(const std::u16string& path) override
        {
            m_Owner.events.push_back(u"open " + path);
            return m_Owner.m_Fs.Exists(path) && m_Owner.unreadable.count(path) == 0;
        }
        bool CreateNewDataFile(const std::u16string& path) override
        {
            m_Owner.events.push_back(u"create " + path);
            if (m_Owner.uncreatable.count(path) != 0)
                return false;
            m_Owner.m_Fs.Bytes(path) = "new data file";
            return true;
        }

    private:
        CFakeDataCenters& m_Owner;
    };

    CMemFileSystem& m_Fs;
};

class CScriptedNewFileDialog : public INewDataFileDialog
{
public:
    std::u16string answer;             // empty: the user cancels
    std::vector<std::u16string> asked; // filter and proposed name of each question
    bool AskNewDataFilePath(const std::u16string& filter, const std::u16string& proposedName,
                            std::u16string& path) override
    {
        asked.push_back(filter + u"|" + proposedName);
        path = answer;
        return !answer.empty();
    }
};

class CRecordingMessageBox : public IMessageBox
{
public:
    struct SShown
    {
        std::u16string text;
        EMsgIcon icon;
    };
    std::vector<SShown> shown;
    EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons) override
    {
        shown.push_back({text, icon});
        return EMsgResult::Ok;
    }
};
