#pragma once
// The notification-area icon with its menu (show or hide the window, new note, exit). Where the
// desktop has no notification area the icon is never shown and the window stays a normal one:
// minimising or closing to the tray only happens while IsAvailable() is true.
#include <QObject>
#include <QString>

class CMainWindow;
class QAction;
class QMenu;
class QSystemTrayIcon;

class CTrayIcon : public QObject
{
    Q_OBJECT

public:
    explicit CTrayIcon(CMainWindow& window);
    ~CTrayIcon() override;

    // Shows or hides the icon after the "SysTrayShow" preference (and the window's need for it).
    void Update(bool wanted);
    // True when the icon is shown on a desktop that has a notification area.
    bool IsAvailable() const;
    // Whether the window is hidden to the tray (only the icon is left).
    bool IsWindowHidden() const { return m_WindowHidden; }
    void HideWindow();
    // A notification from the icon, where the desktop shows them and the icon is shown.
    void ShowMessage(const QString& title, const QString& text);
    void ShowWindow();

private:
    void UpdateMenu();

    CMainWindow& m_Window;
    QSystemTrayIcon* m_Icon;
    QMenu* m_Menu;
    QAction* m_ShowHide;
    bool m_WindowHidden = false;
};
