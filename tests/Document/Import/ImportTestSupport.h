#pragma once
// Helpers for the import tests: an outline string of an item tree, a log whose lines can be read
// back, and quick access to notes.
#include "Document/MemFolder.h"
#include "Document/MemNote.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"

#include <stdexcept>
#include <string>
#include <vector>

// "caption" for a note, "caption[child,child]" for a folder.
inline std::u16string Outline(const CItem& item)
{
    if (!item.IsKind(EItemKind::Folder))
        return item.GetCaption();
    const auto& folder = static_cast<const CFolderBase&>(item);
    std::u16string text = folder.GetCaption() + u"[";
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
        text += (i > 0 ? u"," : u"") + Outline(*folder.GetChild(i));
    return text + u"]";
}

// The children of `folder` as an outline without the folder's own caption.
inline std::u16string ChildrenOutline(const CFolderBase& folder)
{
    const std::u16string outline = Outline(folder);
    return outline.substr(folder.GetCaption().size() + 1, outline.size() - folder.GetCaption().size() - 2);
}

// The note reached by child indexes from `folder`; throws (failing the test) when there is none.
inline CMemNote& NoteAt(const CFolderBase& folder, std::initializer_list<size_t> path)
{
    const CItem* item = &folder;
    for (const size_t index : path)
    {
        const auto* parent = dynamic_cast<const CFolderBase*>(item);
        item = parent != nullptr ? parent->GetChild(index) : nullptr;
    }
    auto* note = const_cast<CMemNote*>(dynamic_cast<const CMemNote*>(item));
    if (note == nullptr)
        throw std::runtime_error("no note at that path");
    return *note;
}

// The first note with `caption`, depth first; throws when there is none.
inline CMemNote& FindNote(const CFolderBase& folder, std::u16string_view caption)
{
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
    {
        CItem* child = folder.GetChild(i);
        if (auto* note = dynamic_cast<CMemNote*>(child); note != nullptr && note->GetCaption() == caption)
            return *note;
        if (auto* sub = dynamic_cast<CFolderBase*>(child); sub != nullptr)
        {
            try
            {
                return FindNote(*sub, caption);
            }
            catch (const std::runtime_error&)
            {
            }
        }
    }
    throw std::runtime_error("no note with that caption");
}

inline std::u16string PlainText(CMemNote& note)
{
    std::u16string text;
    const CRichTextDocument& document = *note.GetRichText();
    for (size_t i = 0; i < document.LineCount(); ++i)
        text += (i > 0 ? u"\n" : u"") + document.Line(i).Text();
    return text;
}

class CImportLogCapture
{
public:
    CImportLogCapture()
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CImportLogCapture() { CAppConnector::Install(nullptr); }
    CImportLogCapture(const CImportLogCapture&) = delete;
    CImportLogCapture& operator=(const CImportLogCapture&) = delete;

    // The level-word lines written since the last call.
    std::vector<std::u16string> TakeMessages()
    {
        const std::string& bytes = m_Fs.Bytes(Path);
        const std::u16string text = Utf16LeBytesToText(std::string_view(bytes).substr(m_ConsumedBytes));
        std::vector<std::u16string> lines;
        size_t start = 0;
        for (size_t end; (end = text.find(u"\r\n", start)) != std::u16string::npos; start = end + 2)
        {
            const std::u16string line = text.substr(start, end - start);
            if (line.starts_with(u"Error: ") || line.starts_with(u"Warning: ") || line.starts_with(u"Info: "))
                lines.push_back(line);
        }
        m_ConsumedBytes += 2 * start;
        return lines;
    }

private:
    static constexpr const char16_t* Path = u"/logs/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
    size_t m_ConsumedBytes = 0;
};
