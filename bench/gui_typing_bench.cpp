// Typing in the editor widget end to end: each keystroke is a key event sent to the widget (the
// editor's model update, layout and scroll bar) followed by the event loop's pass that paints
// what the widget marked for repainting, as the user waits for it. Measured on the offscreen platform in a 1
// MB note (512 Ki UTF-16 units) of ordinary paragraphs with some formatting, and in a note that is one 1 MB
// paragraph. The anchor, measured in the same run, is the same keystroke in a one-line note: the ratio is
// what the note's size adds. The budget is one frame, 16 ms, per keystroke.
//
//   gui_typing_bench [keystrokes]   (default 400 per shape)
#include "App/EnglishStrings.h"
#include "Gui/FxEditWidget.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
constexpr size_t Megabyte = 512 * 1024; // UTF-16 units

std::u16string Words(size_t units, uint32_t seed)
{
    static const char16_t* const words[] = {u"lorem", u"ipsum",       u"dolor",      u"sit",
                                            u"amet,", u"consectetur", u"adipiscing", u"elit.",
                                            u"sed",   u"do",          u"eiusmod",    u"tempor"};
    std::u16string text;
    while (text.size() < units)
    {
        seed = seed * 1103515245u + 12345u;
        text += words[(seed >> 16) % 12];
        text += u' ';
    }
    text.resize(units);
    return text;
}

// Paragraphs of 40 to 600 units, every fifth with a bold and a coloured run.
CRichTextDocument Note(size_t units, bool oneParagraph)
{
    CRichTextDocument document;
    if (oneParagraph)
    {
        document.AppendLine(CRtfTextLine(Words(units, 1)));
        return document;
    }
    uint32_t seed = 7;
    size_t total = 0;
    while (total < units)
    {
        seed = seed * 1103515245u + 12345u;
        const size_t length = 40 + (seed >> 16) % 560;
        CRtfTextLine line(Words(length, seed));
        if (document.LineCount() % 5 == 0)
        {
            CRtfTextBlockInfo bold(5);
            bold.SetFont(SFontDescription::Make(u"DejaVu Sans", 12, SFontDescription::BoldWeight));
            line.AddBlock(bold);
            CRtfTextBlockInfo colour(20);
            colour.SetFont(SFontDescription::Make(u"DejaVu Serif", 14));
            colour.SetTextColour(0x2040C0);
            line.AddBlock(colour);
        }
        total += length + 2;
        document.AppendLine(std::move(line));
    }
    return document;
}

class CPaintCounter : public QObject
{
public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

struct STimes
{
    double median = 0;
    double p99 = 0;
    double worst = 0;
    double eventMedian = 0; // the key event alone: the editor's model, layout and scroll bar
};

// Types `count` letters at the caret, with a space after every sixth, each followed by a repaint.
STimes Type(CFxEditWidget& widget, int count)
{
    std::vector<double> times;
    std::vector<double> events;
    times.reserve(static_cast<size_t>(count));
    events.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
    {
        const bool space = i % 7 == 6;
        QKeyEvent press(QEvent::KeyPress, space ? Qt::Key_Space : Qt::Key_A + i % 26, Qt::NoModifier,
                        space ? QStringLiteral(" ") : QString(QChar(u'a' + i % 26)));
        const auto start = std::chrono::steady_clock::now();
        QApplication::sendEvent(&widget, &press);
        const auto handled = std::chrono::steady_clock::now();
        QApplication::processEvents(); // the repaint the widget asked for
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        events.push_back(std::chrono::duration<double, std::milli>(handled - start).count());
    }
    std::sort(times.begin(), times.end());
    std::sort(events.begin(), events.end());
    return {times[times.size() / 2], times[times.size() * 99 / 100], times.back(), events[events.size() / 2]};
}

STimes Measure(const CLanguageModule& language, const CRichTextDocument& note, SFxCharPosition caret,
               int count)
{
    CFxEditWidget widget(&language);
    SFxEditSettings settings = widget.Edit().Settings();
    settings.defaultFont = SFontDescription::Make(u"DejaVu Sans", 12);
    widget.Edit().SetSettings(settings);
    widget.resize(900, 700);
    widget.show();
    QApplication::processEvents(); // the window is exposed, so repaints paint
    widget.SetDocument(note);
    widget.Edit().SetCaret(widget.Edit().FromCharPosition(caret));
    widget.RunAction(0); // scrolls the caret into view
    widget.setFocus();
    widget.repaint();
    Type(widget, std::min(count, 20)); // fonts and glyph caches warm
    CPaintCounter paints;
    widget.installEventFilter(&paints);
    const STimes times = Type(widget, count);
    if (paints.count < count)
        std::printf("warning: %d paints for %d keystrokes\n", paints.count, count);
    return times;
}

void Print(const char* name, const STimes& times, const STimes& anchor)
{
    std::printf("%-24s median %7.3f ms (key event %7.3f)  p99 %7.3f ms  worst %7.3f ms  (median x%.1f of the "
                "anchor)  %s\n",
                name, times.median, times.eventMedian, times.p99, times.worst,
                times.median / std::max(anchor.median, 1e-6),
                times.p99 < 16.0 ? "within 16 ms" : "OVER 16 ms");
}
} // namespace

int main(int argc, char** argv)
{
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const int count = argc > 1 ? std::max(20, std::atoi(argv[1])) : 400;
    QApplication app(argc, argv);
    CLanguageModule language;
    language.LoadBuiltIn(u"English (Default)", EnglishStrings());

    const CRichTextDocument small = Note(60, true);
    const STimes anchor = Measure(language, small, {0, 30}, count);
    Print("anchor: one-line note", anchor, anchor);

    const CRichTextDocument paragraphs = Note(Megabyte, false);
    const auto middle = static_cast<int32_t>(paragraphs.LineCount() / 2);
    std::printf("1 MB note: %zu paragraphs\n", paragraphs.LineCount());
    Print("1 MB note, middle", Measure(language, paragraphs, {middle, 10}, count), anchor);
    Print("1 MB note, end",
          Measure(language, paragraphs, {static_cast<int32_t>(paragraphs.LineCount()) - 1, 0}, count),
          anchor);

    const CRichTextDocument paragraph = Note(Megabyte, true);
    Print("1 MB paragraph, start", Measure(language, paragraph, {0, 100}, count), anchor);
    Print("1 MB paragraph, middle",
          Measure(language, paragraph, {0, static_cast<int32_t>(Megabyte / 2)}, count), anchor);
    return 0;
}
