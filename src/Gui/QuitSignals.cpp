#include "Gui/QuitSignals.h"

#include "Shared/Log/Log.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{
int g_WriteFd = -1;

void OnSignal(int)
{
    const int saved = errno;
    const char byte = 1;
    // Nothing to do when the pipe is full: a quit is already on its way.
    [[maybe_unused]] const ssize_t written = ::write(g_WriteFd, &byte, 1);
    errno = saved;
}
} // namespace

bool InstallQuitSignals(QObject* parent)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
    {
        LogMessage(u"Error: Cannot create the pipe for quit signals, cause - %d", errno);
        return false;
    }
    g_WriteFd = fds[1];
    const int readFd = fds[0];
    auto* notifier = new QSocketNotifier(readFd, QSocketNotifier::Read, parent);
    QObject::connect(notifier, &QSocketNotifier::activated, parent,
                     [readFd]
                     {
                         char bytes[16];
                         while (::read(readFd, bytes, sizeof bytes) > 0)
                         {
                         }
                         QCoreApplication::quit();
                     });
    struct sigaction action
    {
    };
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        if (::sigaction(signal, &action, nullptr) != 0)
        {
            LogMessage(u"Error: Cannot catch signal %d, cause - %d", signal, errno);
            return false;
        }
    return true;
}
