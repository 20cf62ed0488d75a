// One running copy per data file: the question over the local sockets, stale sockets, hostile
// peers, and the real program started a second time on a shown file and on another one.
#include "Gui/RunningCopies.h"
#include "App/RunningInstance.h"
#include "Gui/QtText.h"
#include "GuiSession.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>

namespace
{
// A copy that answers from its own thread, so the asking test thread may block.
class CAnsweringCopy
{
public:
    CAnsweringCopy(const QString& folder, const std::u16string& openPath)
    {
        m_Context.moveToThread(&m_Thread);
        m_Thread.start();
        QMetaObject::invokeMethod(
            &m_Context,
            [this, folder, openPath]
            {
                m_Server =
                    new CRunningCopyServer(folder,
                                           [this, openPath](uint32_t kind, const std::string& payload)
                                           {
                                               ++questions;
                                               return AnswerRunningInstanceQuery(kind, payload, openPath);
                                           });
                listening = m_Server->Listen();
                socketPath = m_Server->SocketPath();
            },
            Qt::BlockingQueuedConnection);
    }
    ~CAnsweringCopy()
    {
        QMetaObject::invokeMethod(
            &m_Context, [this] { delete m_Server; }, Qt::BlockingQueuedConnection);
        m_Thread.quit();
        m_Thread.wait();
    }
    CAnsweringCopy(const CAnsweringCopy&) = delete;
    CAnsweringCopy& operator=(const CAnsweringCopy&) = delete;

    std::atomic<int> questions{0};
    bool listening = false;
    QString socketPath;

private:
    QThread m_Thread;
    QObject m_Context;
    CRunningCopyServer* m_Server = nullptr;
};

// Runs the event loop until `process` ends or `ms` pass; true when it ended.
bool WaitForEnd(QProcess& process, int ms)
{
    if (process.state() == QProcess::NotRunning)
        return true;
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
    return process.state() == QProcess::NotRunning;
}
} // namespace

TEST_F(GuiSession, TheFolderOfTheSocketsIsPrivateAndQuestionsReachOnlyTheCopyWithTheFile)
{
    const QString folder = RunningCopiesFolder();
    ASSERT_EQ(folder, QString::fromStdString(m_Runtime.Path()) + QStringLiteral("/quillarium"));
    EXPECT_EQ(QFile::permissions(folder) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther), 0);
    // A folder others may enter is refused, not used.
    std::filesystem::permissions(folder.toStdString(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    EXPECT_TRUE(RunningCopiesFolder().isEmpty());
    std::filesystem::permissions(folder.toStdString(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::remove);

    CLocalSocketRunningInstances query(folder);
    EXPECT_FALSE(query.FindRunningInstance(u"/data/a.ddb")) << "no copy runs";

    // Two copies stand in for two processes: sockets are named after the process ID, so the
    // second gets a name of its own here.
    CAnsweringCopy holder(folder, u"/data/a.ddb");
    ASSERT_TRUE(holder.listening);
    ASSERT_TRUE(QFile::rename(holder.socketPath, folder + QStringLiteral("/1")));
    CAnsweringCopy other(folder, u"/data/b.ddb");
    ASSERT_TRUE(other.listening);

    EXPECT_FALSE(query.FindRunningInstance(u"/data/A.ddb")) << "paths compare case-sensitively";
    EXPECT_FALSE(query.FindRunningInstance(u"/data/c.ddb"));
    EXPECT_TRUE(query.FindRunningInstance(u"/data/a.ddb"));
    EXPECT_TRUE(query.FindRunningInstance(u"/data/b.ddb"));
    EXPECT_FALSE(query.FindRunningInstance(u""));
    EXPECT_GE(holder.questions.load(), 3);

    // The copy's own socket is never asked.
    CLocalSocketRunningInstances own(folder, other.socketPath);
    EXPECT_FALSE(own.FindRunningInstance(u"/data/b.ddb"));
    // Another kind of message is answered 0.
    EXPECT_EQ(CLocalSocketRunningInstances::Ask(other.socketPath, 4299,
                                                EncodeRunningInstancePayload(u"/data/b.ddb"), 2000),
              0);
}

TEST_F(GuiSession, StaleSocketsAreRemovedAndHostileQuestionsAreDropped)
{
    const QString folder = RunningCopiesFolder();
    // A socket file nobody listens on, as a crashed copy leaves behind.
    const QString stale = folder + QStringLiteral("/999999");
    {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_GE(fd, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray native = QFile::encodeName(stale);
        std::memcpy(address.sun_path, native.constData(), static_cast<size_t>(native.size()));
        ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ::close(fd);
    }
    ASSERT_TRUE(QFileInfo::exists(stale));
    CLocalSocketRunningInstances query(folder);
    EXPECT_FALSE(query.FindRunningInstance(u"/data/a.ddb"));
    EXPECT_FALSE(QFileInfo::exists(stale));

    CAnsweringCopy copy(folder, u"/data/a.ddb");
    ASSERT_TRUE(copy.listening);
    // A size beyond any path closes the connection without an answer.
    EXPECT_EQ(CLocalSocketRunningInstances::Ask(copy.socketPath, kRunningInstanceMessageKind,
                                                std::string(2 * 1024 * 1024, 'a'), 2000),
              -1);
    // A payload without its terminating zero is no question.
    EXPECT_EQ(CLocalSocketRunningInstances::Ask(copy.socketPath, kRunningInstanceMessageKind,
                                                std::string("a"), 2000),
              0);
    // The copy still answers afterwards, and a live socket is never removed.
    EXPECT_TRUE(query.FindRunningInstance(u"/data/a.ddb"));
    EXPECT_TRUE(QFileInfo::exists(copy.socketPath));
}

TEST_F(GuiSession, ASecondProgramOnTheShownFileHandsOverAndOnAnotherFileRuns)
{
    const QString built = QCoreApplication::applicationDirPath() + QStringLiteral("/quillarium");
    ASSERT_TRUE(QFileInfo::exists(built)) << "the desktop program is built with the GUI tests";
    // The copies run from the test's program folder, so their log and preferences go there; a
    // first run writes preferences that no longer ask for the first-launch wizard.
    const QString program = ToQString(m_Program.Path16()) + QStringLiteral("/quillarium");
    ASSERT_TRUE(QFile::copy(built, program));
    const std::u16string shown = MakeFileWithTwoNotes();
    const std::u16string other = MakeFileWithTwoNotes("other.ddb");
    Start(shown)->Shutdown();
    auto app = Start(shown);
    CMainWindow& window = *app->MainWindow();
    window.showMinimized();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess second;
    second.setProcessEnvironment(environment);
    QElapsedTimer clock;
    clock.start();
    second.start(program, {ToQString(shown)});
    ASSERT_TRUE(WaitForEnd(second, 20000)) << "the second copy should end";
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_FALSE(window.isMinimized()) << "the copy with the file comes back from minimised";
    EXPECT_TRUE(window.isVisible());

    QProcess third;
    third.setProcessEnvironment(environment);
    third.start(program, {ToQString(other)});
    EXPECT_FALSE(WaitForEnd(third, 3000)) << "a copy on another file runs";
    // Ended by a signal (as when the session ends), it shuts down the normal way and lets go of
    // its file.
    third.terminate();
    ASSERT_TRUE(WaitForEnd(third, 10000));
    EXPECT_EQ(third.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(third.exitCode(), 0);
    CDataCenter center;
    EXPECT_TRUE(center.OpenDocument(other));
}
