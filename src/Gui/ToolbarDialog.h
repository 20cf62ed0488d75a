#pragma once
// The toolbar's customisation: the named commands of the main window on the left, the
// toolbar's buttons (and separators) in their order on the right, moved between and within the
// lists with buttons. The result is a list of command names, an empty name for a separator.
#include <QDialog>

#include <functional>

class QAction;
class QListWidget;
class QPushButton;

class CToolbarDialog : public QDialog
{
    Q_OBJECT

public:
    using TextLookup = std::function<QString(const char16_t* key)>;

    CToolbarDialog(const std::vector<QAction*>& commands, const QStringList& shown,
                   const QStringList& defaults, const TextLookup& text, QWidget* parent = nullptr);

    QStringList Buttons() const;
    QListWidget* Available() const { return m_Available; }
    QListWidget* Shown() const { return m_Shown; }
    void AddSelected();
    void RemoveSelected();
    void MoveSelected(int step);
    void Reset();

private:
    void Fill(const QStringList& shown);
    void AddRow(QListWidget* list, const QString& name, int row = -1);

    std::vector<QAction*> m_Commands;
    QStringList m_Defaults;
    QString m_SeparatorText;
    QListWidget* m_Available;
    QListWidget* m_Shown;
};

// The preference text of a toolbar ("MainWndToolbarButtons") and back.
QString ToolbarButtonsToText(const QStringList& buttons);
// Empty text: the `defaults`.
QStringList ToolbarButtonsFromText(const QString& text, const QStringList& defaults);
