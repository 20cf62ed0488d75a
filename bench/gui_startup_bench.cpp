// Start-up benchmark of the desktop program: the time from its main() to the first painted main
// window, as the program itself logs it ("Start-up to the painted main window took %d ms."),
// on the document benchmark's shape (N notes, default 100,000, in N/100 folders with texts of
// 1.5-2.5 KB) against the same program on a new default document in the same run.
//   gui_startup_bench [N] [--reuse]
// The program runs on the offscreen platform from a copy in a temporary program folder, so its
// log and preferences stay there. --reuse keeps the generated document for the next run.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Shared/Base/TextConv.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QThread>

#include <cstdio>
#include <filesystem>
#include <random>

namespace
{
constexpr int NotesPerFolder = 100;
constexpr int CreateBatch = 5000;
constexpr int Runs = 3;

std::u16string MakeText(std::mt19937& rng)
{
    static const char16_t* const words[] = {u"note",  u"folder", u"meeting", u"plan",   u"idea",  u"budget",
                                            u"quill", u"tree",   u"backup",  u"search", u"alarm", u"draft"};
    std::u16string text;
    const size_t length = 1500 + rng() % 1000;
    while (text.size() < length)
    {
        text += words[rng() % std::size(words)];
        text += rng() % 12 == 0 ? u"\r\n" : u" ";
    }
    return text;
}

bool CreateDocument(const std::u16string& path, int notes)
{
    CDataCenter center;
    if (!center.CreateDocument(path))
        return false;
    std::mt19937 rng(4711);
    std::vector<CFolderBase*> folders;
    for (int f = 0; f < std::max(1, notes / NotesPerFolder); ++f)
        if (CFolderBase* folder =
                center.AddFolder(*center.GetRoot(), u"Folder " + Utf8ToUtf16(std::to_string(f))))
            folders.push_back(folder);
        else
            return false;
    std::vector<CDBNote*> batch;
    CItemRecords& records = center.GetRecords();
    for (int i = 0; i < notes; ++i)
    {
        const CUInt128 id = records.CreateItemRecord(CItemRecords::NoteItemKind, false);
        if (id.IsZero())
            return false;
        auto note = std::make_unique<CDBNote>(&records, true);
        note->SetId(id);
        note->SetCaption(u"Note " + Utf8ToUtf16(std::to_string(i)));
        note->GetRichText()->BuildFromPlainText(MakeText(rng));
        auto* added = static_cast<CDBNote*>(
            folders[static_cast<size_t>(i / NotesPerFolder) % folders.size()]->AddChild(std::move(note)));
        center.MarkChanged(*added, 1 | 2 | 16);
        batch.push_back(added);
        if (batch.size() == CreateBatch || i + 1 == notes)
        {
            if (!center.Save())
                return false;
            for (CDBNote* saved : batch)
                saved->UnloadText();
            batch.clear();
        }
    }
    center.CloseDocument();
    return true;
}

// The milliseconds of the program's timing line in its UTF-16 log, or -1 while there is none.
int LoggedStartupMs(const QString& logPath, int occurrence)
{
    QFile log(logPath);
    if (!log.open(QIODevice::ReadOnly))
        return -1;
    QStringDecoder decode(QStringDecoder::Utf16LE);
    const QString text = decode(log.readAll());
    static const QRegularExpression line(
        QStringLiteral("Start-up to the painted main window took (\\d+) ms"));
    int found = 0;
    for (auto it = line.globalMatch(text); it.hasNext();)
    {
        const auto match = it.next();
        if (found++ == occurrence)
            return match.captured(1).toInt();
    }
    return -1;
}

// Starts the program on `file` and returns its logged start-up time (the `occurrence`-th line).
int StartOnce(const QString& program, const QString& file, const QString& logPath, int occurrence,
              const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, {file});
    if (!process.waitForStarted(10000))
        return -1;
    QElapsedTimer waited;
    waited.start();
    int ms = -1;
    while (ms < 0 && waited.elapsed() < 60000 && process.state() == QProcess::Running)
    {
        QThread::msleep(50);
        ms = LoggedStartupMs(logPath, occurrence);
    }
    process.terminate();
    process.waitForFinished(10000);
    return ms;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    int notes = 100000;
    bool reuse = false;
    for (int i = 1; i < argc; ++i)
        if (std::string(argv[i]) == "--reuse")
            reuse = true;
        else
            notes = std::max(NotesPerFolder, std::atoi(argv[i]));

    const std::filesystem::path work = std::filesystem::temp_directory_path() / "gui_startup_bench";
    const std::filesystem::path document = work / ("bench-" + std::to_string(notes) + ".ddb");
    const std::filesystem::path home = work / "home";
    std::filesystem::remove_all(home);
    std::filesystem::create_directories(home / "Documents");
    std::filesystem::create_directories(home / "runtime");
    std::filesystem::permissions(home / "runtime", std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::replace);
    if (!reuse || !std::filesystem::exists(document))
    {
        std::filesystem::remove(document);
        std::printf("gui_startup_bench: creating %d notes...\n", notes);
        if (!CreateDocument(Utf8ToUtf16(document.string()), notes))
        {
            std::fprintf(stderr, "gui_startup_bench: cannot create the document\n");
            return 1;
        }
    }

    const QString built = QCoreApplication::applicationDirPath() + QStringLiteral("/quillarium");
    const QString program = QString::fromStdString((home / "quillarium").string());
    if (!QFile::copy(built, program))
    {
        std::fprintf(stderr, "gui_startup_bench: no program at %s\n", built.toLocal8Bit().constData());
        return 1;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(home.string()));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"),
                       QString::fromStdString((home / "runtime").string()));
    environment.remove(QStringLiteral("XDG_DOCUMENTS_DIR"));
    const QString logPath = QString::fromStdString((home / "Quillarium.log").string());
    // Preferences without the first-launch wizard, which would wait for a person.
    {
        QFile ini(QString::fromStdString((home / "Quillarium.ini").string()));
        if (!ini.open(QIODevice::WriteOnly))
            return 1;
        const QString text = QStringLiteral("\uFEFFStartupShowFirstLaunchWizard=0\r\n");
        ini.write(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    }
    // The first start creates the default document and warms the disk cache; it is not counted.
    // Later starts name their file, as an ended copy leaves its file as the one to open next.
    const QString small = QString::fromStdString((home / "Documents" / "Quillarium Documents.ddb").string());
    int occurrence = 0;
    StartOnce(program, QString(), logPath, occurrence++, environment);
    StartOnce(program, QString::fromStdString(document.string()), logPath, occurrence++, environment);
    int smallBest = -1, bigBest = -1;
    for (int run = 0; run < Runs; ++run)
    {
        const int smallMs = StartOnce(program, small, logPath, occurrence++, environment);
        const int bigMs =
            StartOnce(program, QString::fromStdString(document.string()), logPath, occurrence++, environment);
        if (smallMs >= 0 && (smallBest < 0 || smallMs < smallBest))
            smallBest = smallMs;
        if (bigMs >= 0 && (bigBest < 0 || bigMs < bigBest))
            bigBest = bigMs;
    }
    if (smallBest < 0 || bigBest < 0)
    {
        std::fprintf(stderr, "gui_startup_bench: the program logged no start-up time\n");
        return 1;
    }
    std::printf("start-up to the painted window (best of %d), from the program's log:\n", Runs);
    std::printf("  new default document        %6d ms\n", smallBest);
    std::printf("  %d notes in %d folders  %6d ms   ratio %.2f   goal < 1500 ms\n", notes,
                std::max(1, notes / NotesPerFolder), bigBest,
                smallBest > 0 ? double(bigBest) / smallBest : 0.0);
    std::filesystem::remove_all(home);
    if (!reuse)
        std::filesystem::remove(document);
    return 0;
}
