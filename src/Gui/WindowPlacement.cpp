#include "Gui/WindowPlacement.h"

#include "Prefs/Preferences.h"
#include "Prefs/WindowPlacements.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

bool RestoreWindowPlacement(QWidget& window, const CPreferences* prefs, std::u16string_view key)
{
    if (!prefs)
        return false;
    const SWndPlacementInfo* stored = FindWindowPlacement(prefs->ShellState().windowPlacements, key);
    if (!stored || stored->right <= stored->left || stored->bottom <= stored->top)
        return false;
    const QRect rect(QPoint(stored->left, stored->top), QPoint(stored->right - 1, stored->bottom - 1));
    bool onScreen = false;
    for (const QScreen* screen : QGuiApplication::screens())
        onScreen = onScreen || screen->availableGeometry().intersects(rect);
    if (!onScreen)
        return false;
    window.resize(rect.size());
    window.move(rect.topLeft());
    return true;
}

void SaveWindowPlacement(const QWidget& window, CPreferences* prefs, std::u16string_view key)
{
    if (!prefs)
        return;
    const QRect frame(window.pos(), window.size());
    SWndPlacementInfo info;
    info.name = std::u16string(key);
    info.showState = window.isMaximized() ? 2 : window.isMinimized() ? 1 : 0;
    info.left = frame.left();
    info.top = frame.top();
    info.right = frame.left() + frame.width();
    info.bottom = frame.top() + frame.height();
    StoreWindowPlacement(prefs->ShellState().windowPlacements, info);
}
