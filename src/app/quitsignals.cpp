#include "quitsignals.h"

#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int signal)
{
    const unsigned char byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[0], &byte, 1);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return;
    m_notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &QuitSignals::readSignal);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals()
{
    // Back to the default: a signal after the event loop is gone ends the program at once.
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_DFL);
}

void QuitSignals::readSignal()
{
    unsigned char byte = 0;
    if (::read(signalPipe[1], &byte, 1) == 1)
        emit quitRequested(byte);
}
#else
// Elsewhere the platform's own session end reaches the application as a quit.
QuitSignals::QuitSignals(QObject *parent) : QObject(parent) {}
QuitSignals::~QuitSignals() = default;
void QuitSignals::readSignal() {}
#endif
