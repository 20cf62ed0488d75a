#include "Gui/RunningCopies.h"

#include "Gui/QtText.h"
#include "Shared/Log/Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QtEndian>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
// A question carries at most a path; anything bigger is not ours.
constexpr uint32_t MaxPayloadSize = 1 << 20;
constexpr int HeaderSize = 8;
// The answering copy may be busy (a save, a modal dialog's own loop still answers).
constexpr int AnswerTimeoutMs = 5000;

bool IsPrivateFolder(const QString& folder)
{
    struct stat info
    {
    };
    const QByteArray native = QFile::encodeName(folder);
    return ::lstat(native.constData(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::getuid() &&
           (info.st_mode & 077) == 0;
}
} // namespace

QString RunningCopiesFolder()
{
    QString base = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QString folder = base.isEmpty() ? QDir::tempPath() + QStringLiteral("/quillarium-%1").arg(::getuid())
                                    : base + QStringLiteral("/quillarium");
    const QByteArray native = QFile::encodeName(folder);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST)
    {
        LogMessage(u"Error: Cannot create the running copies folder %s, cause - %d", ToU16(folder), errno);
        return {};
    }
    if (!IsPrivateFolder(folder))
    {
        LogMessage(u"Error: The running copies folder %s is not private to this user.", ToU16(folder));
        return {};
    }
    return folder;
}

CRunningCopyServer::CRunningCopyServer(QString folder, Answerer answerer, QObject* parent)
    : QObject(parent), m_Folder(std::move(folder)), m_Answerer(std::move(answerer)),
      m_Server(new QLocalServer(this))
{
    connect(m_Server, &QLocalServer::newConnection, this, &CRunningCopyServer::OnConnection);
}

CRunningCopyServer::~CRunningCopyServer()
{
    m_Server->close();
}

QString CRunningCopyServer::SocketPath() const
{
    return m_Folder + QLatin1Char('/') + QString::number(QCoreApplication::applicationPid());
}

bool CRunningCopyServer::Listen()
{
    if (m_Folder.isEmpty())
        return false;
    // A socket of this process ID is a leftover of an ended process that had the same ID.
    QLocalServer::removeServer(SocketPath());
    m_Server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_Server->listen(SocketPath()))
    {
        LogMessage(u"Error: Cannot listen on the running copy socket %s: %s", ToU16(SocketPath()),
                   ToU16(m_Server->errorString()));
        return false;
    }
    return true;
}

void CRunningCopyServer::OnConnection()
{
    while (QLocalSocket* socket = m_Server->nextPendingConnection())
    {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { OnReadable(socket); });
        OnReadable(socket);
    }
}

void CRunningCopyServer::OnReadable(QLocalSocket* socket)
{
    if (socket->bytesAvailable() < HeaderSize)
        return;
    char header[HeaderSize];
    socket->peek(header, HeaderSize);
    const uint32_t kind = qFromLittleEndian<uint32_t>(header);
    const uint32_t size = qFromLittleEndian<uint32_t>(header + 4);
    if (size > MaxPayloadSize)
    {
        socket->abort();
        return;
    }
    if (socket->bytesAvailable() < HeaderSize + static_cast<qint64>(size))
        return;
    socket->skip(HeaderSize);
    const QByteArray payload = socket->read(size);
    const int answer =
        m_Answerer ? m_Answerer(kind, std::string(payload.constData(), static_cast<size_t>(payload.size())))
                   : 0;
    char reply[4];
    qToLittleEndian<int32_t>(answer, reply);
    socket->write(reply, sizeof reply);
    socket->flush();
    socket->disconnectFromServer();
}

CLocalSocketRunningInstances::CLocalSocketRunningInstances(QString folder, QString ownSocket)
    : m_Folder(std::move(folder)), m_OwnSocket(std::move(ownSocket))
{
}

int CLocalSocketRunningInstances::Ask(const QString& socketPath, uint32_t messageKind,
                                      const std::string& payload, int timeoutMs)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(timeoutMs))
        return socket.error() == QLocalSocket::ConnectionRefusedError ? -2 : -1;
    QByteArray message(HeaderSize, '\0');
    qToLittleEndian<uint32_t>(messageKind, message.data());
    qToLittleEndian<uint32_t>(static_cast<uint32_t>(payload.size()), message.data() + 4);
    message.append(payload.data(), static_cast<qsizetype>(payload.size()));
    socket.write(message);
    if (!socket.waitForBytesWritten(timeoutMs))
        return -1;
    while (socket.bytesAvailable() < 4)
        if (!socket.waitForReadyRead(timeoutMs))
            return -1;
    char reply[4];
    socket.read(reply, sizeof reply);
    return qFromLittleEndian<int32_t>(reply);
}

bool CLocalSocketRunningInstances::FindRunningInstance(const std::u16string& path)
{
    if (path.empty() || m_Folder.isEmpty())
        return false;
    const std::string payload = EncodeRunningInstancePayload(path);
    const QDir folder(m_Folder);
    for (const QString& name : folder.entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot))
    {
        const QString socketPath = folder.filePath(name);
        if (socketPath == m_OwnSocket)
            continue;
        const int answer = Ask(socketPath, kRunningInstanceMessageKind, payload, AnswerTimeoutMs);
        // Only a refused connection proves the copy is gone; a slow one keeps its socket.
        if (answer == -2)
            QFile::remove(socketPath);
        if (answer > 0)
            return true;
    }
    return false;
}
