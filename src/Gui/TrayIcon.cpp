#include "Gui/TrayIcon.h"

#include "Gui/MainWindow.h"

#include <QMenu>
#include <QStyle>
#include <QSystemTrayIcon>

CTrayIcon::CTrayIcon(CMainWindow& window)
    : QObject(&window), m_Window(window), m_Icon(new QSystemTrayIcon(this)), m_Menu(new QMenu),
      m_ShowHide(m_Menu->addAction(QString()))
{
    m_Icon->setIcon(window.windowIcon().isNull()
                        ? window.style()->standardIcon(QStyle::SP_FileDialogDetailedView)
                        : window.windowIcon());
    m_Icon->setToolTip(window.windowTitle());
    connect(m_ShowHide, &QAction::triggered, this, [this] { m_WindowHidden ? ShowWindow() : HideWindow(); });
    m_Menu->addAction(window.Text(u"MENU_ITEM_NEW_NOTE"), this,
                      [this]
                      {
                          ShowWindow();
                          m_Window.NewNote();
                      });
    m_Menu->addSeparator();
    m_Menu->addAction(window.Text(u"MENU_FILE_EXIT"), &window, &CMainWindow::Exit);
    m_Icon->setContextMenu(m_Menu);
    connect(m_Icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason)
            {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    m_WindowHidden ? ShowWindow() : HideWindow();
            });
    UpdateMenu();
}

CTrayIcon::~CTrayIcon()
{
    delete m_Menu;
}

void CTrayIcon::Update(bool wanted)
{
    // A hidden window keeps its icon whatever the preference, or nothing could bring it back.
    m_Icon->setVisible((wanted || m_WindowHidden) && QSystemTrayIcon::isSystemTrayAvailable());
}

bool CTrayIcon::IsAvailable() const
{
    // isVisible() is also true on desktops without a notification area.
    return QSystemTrayIcon::isSystemTrayAvailable() && m_Icon->isVisible();
}

void CTrayIcon::HideWindow()
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_WindowHidden = true;
    m_Icon->setVisible(true);
    m_Window.hide();
    UpdateMenu();
}

void CTrayIcon::ShowWindow()
{
    m_WindowHidden = false;
    UpdateMenu();
    m_Window.BringToFront();
}

void CTrayIcon::UpdateMenu()
{
    m_ShowHide->setText(m_Window.Text(m_WindowHidden ? u"TRAY_MENU_SHOW" : u"TRAY_MENU_HIDE"));
    m_Icon->setToolTip(m_Window.windowTitle());
}

void CTrayIcon::ShowMessage(const QString& title, const QString& text)
{
    if (IsAvailable() && QSystemTrayIcon::supportsMessages())
        m_Icon->showMessage(title, text);
}
