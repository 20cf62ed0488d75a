#pragma once
// SIGTERM, SIGINT and SIGHUP (the session ending, kill, Ctrl+C in a terminal) end the program
// the normal way: the event loop quits, so the note being edited is saved, a backup made when
// asked for and the preferences written. The handler only writes a byte to a pipe; the main
// thread hears it through a socket notifier owned by `parent`.
class QObject;

// False (logged) when the signals cannot be caught; the program then runs as before.
bool InstallQuitSignals(QObject* parent);
