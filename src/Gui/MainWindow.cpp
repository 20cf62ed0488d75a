#include "Gui/MainWindow.h"

#include "App/RunningInstance.h"
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Document/ItemRecordFormat.h"
#include "Document/NoteBase.h"
#include "Gui/FxEditWidget.h"
#include "Gui/QtText.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTreeWidget>

namespace
{
constexpr int ItemRole = Qt::UserRole;
constexpr int FilledRole = Qt::UserRole + 1;

CItem* ItemOf(const QTreeWidgetItem* treeItem)
{
    return treeItem ? reinterpret_cast<CItem*>(treeItem->data(0, ItemRole).value<quintptr>()) : nullptr;
}
} // namespace

CMainWindow::CMainWindow(CDataCenter& center, const CLanguageModule* language, QWidget* parent)
    : QMainWindow(parent), m_Center(center), m_Language(language), m_Tree(new QTreeWidget),
      m_Editor(new CFxEditWidget(language))
{
    setObjectName(ToQString(kMainWindowClassName));
    setWindowTitle(QStringLiteral("Quillarium Organizer - ") + ToQString(m_Center.GetFilePath()));
    m_Editor->Edit().SetReadOnly(true);

    m_Tree->setHeaderHidden(true);
    m_Tree->setColumnCount(1);
    auto* splitter = new QSplitter;
    splitter->addWidget(m_Tree);
    splitter->addWidget(m_Editor);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({260, 780});
    setCentralWidget(splitter);
    statusBar();
    BuildMenus();

    if (CDBFolder* root = m_Center.GetRoot())
        FillChildren(m_Tree->invisibleRootItem(), *root);
    connect(m_Tree, &QTreeWidget::itemExpanded, this, &CMainWindow::OnItemExpanded);
    connect(m_Tree, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* current, QTreeWidgetItem*) { OnCurrentItemChanged(current); });
    connect(m_Editor, &CFxEditWidget::StatusTextChanged, this,
            [this](const QString& text) { statusBar()->showMessage(text); });
    resize(1040, 680);
}

QString CMainWindow::Text(const char16_t* key) const
{
    return m_Language ? ToQString(m_Language->GetString(key)) : QString();
}

void CMainWindow::BuildMenus()
{
    QMenu* file = menuBar()->addMenu(Text(u"MENU_FILE"));
    file->addAction(Text(u"MENU_FILE_EXIT"), this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(Text(u"MENU_EIDT"));
    const auto addEditAction = [this, edit](const char16_t* key, int32_t action)
    { edit->addAction(Text(key), this, [this, action] { m_Editor->RunAction(action); }); };
    addEditAction(u"EDITCTL_UNDO", CFxEdit::ActionUndo);
    addEditAction(u"EDITCTL_REDO", CFxEdit::ActionRedo);
    edit->addSeparator();
    addEditAction(u"EDITCTL_CUT", CFxEdit::ActionCut);
    addEditAction(u"EDITCTL_COPY", CFxEdit::ActionCopy);
    addEditAction(u"EDITCTL_PASTE", CFxEdit::ActionPaste);
    edit->addSeparator();
    addEditAction(u"EDITCTL_SELECTALL", CFxEdit::ActionSelectAll);
}

QTreeWidgetItem* CMainWindow::MakeTreeItem(CItem& item)
{
    auto* treeItem = new QTreeWidgetItem(QStringList(ToQString(item.GetCaption())));
    treeItem->setData(0, ItemRole, QVariant::fromValue(reinterpret_cast<quintptr>(&item)));
    const bool folder = item.IsKind(EItemKind::Folder);
    treeItem->setIcon(0, style()->standardIcon(folder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon));
    if (folder && item.GetChildState(EChildKind::Any, false) != EChildState::NoChildren)
        treeItem->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return treeItem;
}

// Children enter the tree when their folder is first shown open, so a large document starts as
// fast as a small one.
void CMainWindow::FillChildren(QTreeWidgetItem* parent, CFolderBase& folder)
{
    if (parent->data(0, FilledRole).toBool())
        return;
    parent->setData(0, FilledRole, true);
    if (!folder.LoadChildren(EChildKind::Any))
        return;
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
        parent->addChild(MakeTreeItem(*folder.GetChild(i)));
    parent->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

void CMainWindow::OnItemExpanded(QTreeWidgetItem* treeItem)
{
    if (auto* folder = dynamic_cast<CFolderBase*>(ItemOf(treeItem)))
        FillChildren(treeItem, *folder);
}

QTreeWidgetItem* CMainWindow::FindTreeItem(const CItem& item) const
{
    for (QTreeWidgetItemIterator it(m_Tree); *it; ++it)
        if (ItemOf(*it) == &item)
            return *it;
    return nullptr;
}

void CMainWindow::OnCurrentItemChanged(QTreeWidgetItem* current)
{
    SaveCurrentNote();
    m_CurrentNote = dynamic_cast<CNoteBase*>(ItemOf(current));
    const CRichTextDocument* text = m_CurrentNote ? m_CurrentNote->GetRichText() : nullptr;
    // A note whose text cannot be read stays read-only, so that nothing overwrites the stored one.
    m_Editor->SetDocument(text ? *text : CRichTextDocument());
    m_Editor->Edit().SetReadOnly(text == nullptr || m_Center.IsReadOnly());
    if (!text)
        m_CurrentNote = nullptr;
}

bool CMainWindow::SaveCurrentNote()
{
    if (!m_CurrentNote || !m_Editor->Edit().IsModified())
        return true;
    CRichTextDocument* text = m_CurrentNote->GetRichText();
    if (!text)
        return false;
    *text = m_Editor->Edit().GetDocument();
    m_Center.MarkChanged(*m_CurrentNote, ItemRecordFormat::RichTextField);
    if (!m_Center.Save())
        return false;
    m_Editor->Edit().SetModified(false);
    return true;
}

void CMainWindow::closeEvent(QCloseEvent* event)
{
    SaveCurrentNote();
    QMainWindow::closeEvent(event);
}
