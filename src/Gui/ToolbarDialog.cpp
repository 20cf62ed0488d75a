#include "Gui/ToolbarDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int NameRole = Qt::UserRole;
const QString kSeparatorMark = QStringLiteral("-");
// An empty toolbar is written as this, as an empty text means the program's own choice.
const QString kNoButtons = QStringLiteral("!");

QString PlainText(const QAction* action)
{
    // The menu text without its accelerator mark and shortcut column.
    QString text = action->text().section(QLatin1Char('\t'), 0, 0);
    text.remove(QLatin1Char('&'));
    return text;
}
} // namespace

QString ToolbarButtonsToText(const QStringList& buttons)
{
    if (buttons.isEmpty())
        return kNoButtons;
    QStringList parts;
    for (const QString& name : buttons)
        parts << (name.isEmpty() ? kSeparatorMark : name);
    return parts.join(QLatin1Char(','));
}

QStringList ToolbarButtonsFromText(const QString& text, const QStringList& defaults)
{
    if (text.isEmpty())
        return defaults;
    QStringList buttons;
    for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts))
        if (part == kSeparatorMark)
            buttons << QString();
        else if (part != kNoButtons)
            buttons << part.trimmed();
    return buttons;
}

CToolbarDialog::CToolbarDialog(const std::vector<QAction*>& commands, const QStringList& shown,
                               const QStringList& defaults, const TextLookup& text, QWidget* parent)
    : QDialog(parent), m_Commands(commands), m_Defaults(defaults),
      m_SeparatorText(text(u"TOOLBARDLG_SEPARATOR")), m_Available(new QListWidget), m_Shown(new QListWidget)
{
    setWindowTitle(text(u"TOOLBARDLG_CAPTION"));
    const auto button = [&](const char16_t* key, auto slot)
    {
        auto* pushButton = new QPushButton(text(key));
        connect(pushButton, &QPushButton::clicked, this, slot);
        return pushButton;
    };
    auto* buttons = new QVBoxLayout;
    buttons->addStretch();
    buttons->addWidget(button(u"TOOLBARDLG_ADD_BTN", [this] { AddSelected(); }));
    buttons->addWidget(button(u"TOOLBARDLG_REMOVE_BTN", [this] { RemoveSelected(); }));
    buttons->addSpacing(12);
    buttons->addWidget(button(u"TOOLBARDLG_UP_BTN", [this] { MoveSelected(-1); }));
    buttons->addWidget(button(u"TOOLBARDLG_DOWN_BTN", [this] { MoveSelected(1); }));
    buttons->addSpacing(12);
    buttons->addWidget(button(u"TOOLBARDLG_RESET_BTN", [this] { Reset(); }));
    buttons->addStretch();

    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(text(u"TOOLBARDLG_AVAILABLE_LABEL")), 0, 0);
    grid->addWidget(new QLabel(text(u"TOOLBARDLG_SHOWN_LABEL")), 0, 2);
    grid->addWidget(m_Available, 1, 0);
    grid->addLayout(buttons, 1, 1);
    grid->addWidget(m_Shown, 1, 2);
    connect(m_Available, &QListWidget::itemDoubleClicked, this, [this] { AddSelected(); });
    connect(m_Shown, &QListWidget::itemDoubleClicked, this, [this] { RemoveSelected(); });

    auto* box = new QDialogButtonBox;
    box->addButton(text(u"OK_BUTTON"), QDialogButtonBox::AcceptRole);
    box->addButton(text(u"CANCEL_BUTTON"), QDialogButtonBox::RejectRole);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(box);
    resize(560, 420);
    Fill(shown);
}

void CToolbarDialog::AddRow(QListWidget* list, const QString& name, int row)
{
    auto* entry = new QListWidgetItem;
    entry->setData(NameRole, name);
    if (name.isEmpty())
        entry->setText(QStringLiteral("—— %1 ——").arg(m_SeparatorText));
    for (const QAction* command : m_Commands)
        if (command->objectName() == name)
        {
            entry->setText(PlainText(command));
            entry->setIcon(command->icon());
        }
    list->insertItem(row < 0 ? list->count() : row, entry);
}

// The available list holds the separator and every command not on the toolbar, in the order the
// commands were made.
void CToolbarDialog::Fill(const QStringList& shown)
{
    m_Available->clear();
    m_Shown->clear();
    AddRow(m_Available, QString());
    for (const QAction* command : m_Commands)
        if (!command->text().isEmpty() && !shown.contains(command->objectName()))
            AddRow(m_Available, command->objectName());
    for (const QString& name : shown)
        AddRow(m_Shown, name);
}

QStringList CToolbarDialog::Buttons() const
{
    QStringList names;
    for (int i = 0; i < m_Shown->count(); ++i)
        names << m_Shown->item(i)->data(NameRole).toString();
    return names;
}

void CToolbarDialog::AddSelected()
{
    QListWidgetItem* chosen = m_Available->currentItem();
    if (!chosen)
        return;
    const QString name = chosen->data(NameRole).toString();
    const int row = m_Shown->currentRow() < 0 ? -1 : m_Shown->currentRow() + 1;
    AddRow(m_Shown, name, row);
    m_Shown->setCurrentRow(row < 0 ? m_Shown->count() - 1 : row);
    // The separator may be used any number of times; a command once.
    if (!name.isEmpty())
        delete m_Available->takeItem(m_Available->row(chosen));
}

void CToolbarDialog::RemoveSelected()
{
    const int row = m_Shown->currentRow();
    if (row < 0)
        return;
    const QStringList remaining = [&]
    {
        QStringList names = Buttons();
        names.removeAt(row);
        return names;
    }();
    Fill(remaining);
    m_Shown->setCurrentRow(std::min(row, m_Shown->count() - 1));
}

void CToolbarDialog::MoveSelected(int step)
{
    const int row = m_Shown->currentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= m_Shown->count())
        return;
    m_Shown->insertItem(target, m_Shown->takeItem(row));
    m_Shown->setCurrentRow(target);
}

void CToolbarDialog::Reset()
{
    Fill(m_Defaults);
}
