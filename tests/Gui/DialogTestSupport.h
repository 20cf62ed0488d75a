#pragma once
// What a dialog needs when it is built on its own: preferences in an in-memory program folder,
// a settable clock and the built-in English language module.
#include "App/EnglishStrings.h"
#include "Prefs/FontQuery.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>

#include <functional>

class CDialogTestFonts : public IFontQuery
{
public:
    bool HasFace(std::u16string_view face) const override { return face == u"Arial"; }
    std::u16string SystemSansFace() const override { return u"DejaVu Sans"; }
};

class CDialogTestClock : public IClock
{
public:
    OleDate now = 46000.5;
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return 0; }
};

struct SDialogTestEnv
{
    static constexpr const char16_t* IniPath = u"/prog/Quillarium.ini";

    CMemFileSystem fs;
    CDialogTestClock clock;
    CDialogTestFonts fonts;
    CLanguageModule english{&fs};

    SDialogTestEnv() { english.LoadBuiltIn(u"English", EnglishStrings()); }

    SPreferencesEnvironment Env() { return SPreferencesEnvironment{fs, clock, fonts, false, u"/docs/"}; }
};

// Runs the event loop until `done` holds or `ms` milliseconds have passed; the result of `done`.
inline bool WaitFor(const std::function<bool()>& done, int ms = 5000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}
