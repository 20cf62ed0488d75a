#pragma once
// One running copy per data file, over local sockets. Every copy listens on its own socket,
// named after its process ID, in a folder only its user may enter ($XDG_RUNTIME_DIR/quillarium,
// or the temporary folder with the user ID). A copy that starts on a file asks each socket in
// that folder in turn and waits for the answer; a socket whose copy has gone (the connection is
// refused) is removed.
//
// A question is the message kind (u32), the payload's size (u32) and the payload; the answer
// is an i32. All little-endian.
#include "App/RunningInstance.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <string>

class QLocalServer;
class QLocalSocket;

// The folder of the sockets, created owner-only when missing; empty when it cannot be made safe.
QString RunningCopiesFolder();

class CRunningCopyServer : public QObject
{
    Q_OBJECT

public:
    using Answerer = std::function<int(uint32_t messageKind, const std::string& payload)>;

    CRunningCopyServer(QString folder, Answerer answerer, QObject* parent = nullptr);
    ~CRunningCopyServer() override;

    // Starts listening on this process's socket; false (logged) when that fails.
    bool Listen();
    QString SocketPath() const;

private:
    void OnConnection();
    void OnReadable(QLocalSocket* socket);

    QString m_Folder;
    Answerer m_Answerer;
    QLocalServer* m_Server;
};

class CLocalSocketRunningInstances : public IRunningInstanceQuery
{
public:
    // `ownSocket` is this copy's socket path, skipped when asking.
    explicit CLocalSocketRunningInstances(QString folder, QString ownSocket = QString());

    void SetOwnSocket(QString ownSocket) { m_OwnSocket = std::move(ownSocket); }
    bool FindRunningInstance(const std::u16string& path) override;

    // Asks one socket; -1 when it cannot be reached or does not answer in time.
    static int Ask(const QString& socketPath, uint32_t messageKind, const std::string& payload,
                   int timeoutMs);

private:
    QString m_Folder;
    QString m_OwnSocket;
};
