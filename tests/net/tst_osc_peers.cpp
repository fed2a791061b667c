#include "enginefixture.h"
#include "networkcoordinator.h"
#include "preferences.h"
#include "qttranslations.h"
#include "settingssandbox.h"
#include "ports.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

using namespace std::chrono_literals;

// End to end with real OSC peers from liblo-tools: oscsend drives the engine, oscdump reads
// what it sends.
namespace {

constexpr quint16 listenPort = 53331, sendPort = 53332;

bool oscsend(const QStringList &arguments)
{
    QProcess p;
    p.start(QStringLiteral("oscsend"),
            QStringList{QStringLiteral("localhost"), QString::number(listenPort)} + arguments);
    return p.waitForFinished(5000) && p.exitCode() == 0;
}

// oscdump on the send port, one line per message: "<time> <address> <types> <values>".
class Oscdump
{
public:
    Oscdump()
    {
        m_process.start(QStringLiteral("oscdump"), {QStringLiteral("-L"), QString::number(sendPort)});
        m_process.waitForStarted();
        // Ready once its port is taken.
        QTest::qWaitFor([] { return udpPortBound(sendPort); }, 5000);
    }
    ~Oscdump()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    // The messages printed so far, without their time stamps.
    QStringList waitForLines(int count)
    {
        QTest::qWaitFor([&] {
            m_buffer += QString::fromUtf8(m_process.readAllStandardOutput());
            return m_buffer.count(u'\n') >= count;
        }, 5000);
        QStringList lines;
        for (const QString &line : m_buffer.split(u'\n', Qt::SkipEmptyParts))
            lines << line.section(u' ', 1);
        return lines;
    }

private:
    QProcess m_process;
    QString m_buffer;
};

QString remainingLine(double seconds)
{
    return QStringLiteral("/kairon/remaining f ") + QString::asprintf("%f", double(float(seconds)));
}

} // namespace

class TestOscPeers : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsSandbox> m_settings;
    std::unique_ptr<EngineFixture> m_fixture;
    std::unique_ptr<NetworkCoordinator> m_coordinator;

    TimerEngine &engine() { return m_fixture->engine; }

    // Sends a command that toggles pause twice as a marker: once its effect is seen, every
    // datagram sent before it has been handled.
    void syncWithMarker()
    {
        const bool paused = engine().isPaused();
        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_VERIFY(engine().isPaused() != paused);
        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_COMPARE(engine().isPaused(), paused);
    }

private slots:
    void initTestCase() { installQtTranslations(*QCoreApplication::instance()); }

    void init()
    {
        m_settings = std::make_unique<SettingsSandbox>();
        Preferences::setOscListenEnabled(true);
        Preferences::setOscListenPort(listenPort);
        Preferences::setOscSendEnabled(true);
        Preferences::setOscSendHost(QStringLiteral("127.0.0.1"));
        Preferences::setOscSendPort(sendPort);
        m_fixture = std::make_unique<EngineFixture>();
        engine().loadSession(showOf({durationCue("A", 600), durationCue("B", 300), durationCue("C", 60)}));
        m_coordinator = std::make_unique<NetworkCoordinator>();
        QSignalSpy status(m_coordinator.get(), &NetworkCoordinator::oscStatusChanged);
        m_coordinator->attach(&engine(), m_fixture->clock);
        QVERIFY(status.wait(5000));
        QVERIFY(!m_coordinator->oscStatus());
    }

    void cleanup()
    {
        m_coordinator.reset();
        m_fixture.reset();
        m_settings.reset();
    }

    void theTenCommandsFromOscsend()
    {
        QVERIFY(oscsend({QStringLiteral("/kairon/play")}));
        QTRY_VERIFY(engine().isRunning());
        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_VERIFY(engine().isPaused());
        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_VERIFY(!engine().isPaused());
        QVERIFY(oscsend({QStringLiteral("/kairon/next")}));
        QTRY_COMPARE(engine().activeCueIndex(), 1);
        QVERIFY(oscsend({QStringLiteral("/kairon/prev")}));
        QTRY_COMPARE(engine().activeCueIndex(), 0);
        QVERIFY(oscsend({QStringLiteral("/kairon/adjust"), QStringLiteral("i"), QStringLiteral("-60")}));
        QTRY_COMPARE(engine().plannedDuration(), 540.0);
        QVERIFY(oscsend({QStringLiteral("/kairon/reset")}));
        QTRY_COMPARE(engine().plannedDuration(), 600.0);
        QVERIFY(oscsend({QStringLiteral("/kairon/message"), QStringLiteral("s"),
                         QStringLiteral("Merci de conclure")}));
        QTRY_COMPARE(engine().currentMessage(), QStringLiteral("Merci de conclure"));
        QVERIFY(oscsend({QStringLiteral("/kairon/blackout")}));
        QTRY_VERIFY(engine().blackout());
        QVERIFY(oscsend({QStringLiteral("/kairon/blink")}));
        QTRY_VERIFY(engine().blinkActive());
        QVERIFY(oscsend({QStringLiteral("/kairon/stop")}));
        QTRY_VERIFY(!engine().isRunning());
    }

    void whatIsNotACommandDoesNothing()
    {
        QVERIFY(oscsend({QStringLiteral("/kairon/play")}));
        QTRY_VERIFY(engine().isRunning());
        QVERIFY(oscsend({QStringLiteral("/kairon/adjust"), QStringLiteral("f"), QStringLiteral("-60.0")}));
        QVERIFY(oscsend({QStringLiteral("/kairon/Play")}));
        QVERIFY(oscsend({QStringLiteral("/kairon/message"), QStringLiteral("i"), QStringLiteral("3")}));
        // A bundle holding a stop command is dropped whole.
        QByteArray bundle("#bundle\0", 8);
        bundle += QByteArray(8, '\0');
        bundle += QByteArray::fromHex("00000010") + OSCCodec::encode(QStringLiteral("/kairon/stop"), {});
        QUdpSocket().writeDatagram(bundle, QHostAddress::LocalHost, listenPort);
        syncWithMarker();
        QVERIFY(engine().isRunning());
        QCOMPARE(engine().plannedDuration(), 600.0);
        QVERIFY(!engine().currentMessage());
    }

    void malformedDatagramsNeverStopTheNextCommand()
    {
        QUdpSocket peer;
        QByteArray garbage(65000, Qt::Uninitialized);
        for (int i = 0; i < garbage.size(); ++i)
            garbage[i] = char((i * 7919) >> 3);
        const QList<QByteArray> bad{QByteArray(), QByteArray("/kairon/play"),
                                    QByteArray("/kairon/\xc3\x28\0\0", 12),
                                    QByteArray("/kairon/adjust\0\0,i\0\0\0\0", 22), garbage};
        for (const QByteArray &d : bad)
            peer.writeDatagram(d, QHostAddress::LocalHost, listenPort);
        QVERIFY(oscsend({QStringLiteral("/kairon/play")}));
        QTRY_VERIFY(engine().isRunning());
    }

    void theStateGoesToOscdumpOncePerSecondAndNotWhilePaused()
    {
        Oscdump dump;
        QVERIFY(oscsend({QStringLiteral("/kairon/play")}));
        QTRY_VERIFY(engine().isRunning());
        m_fixture->clock.advance(2500ms); // ticks at 1 ms, 1001 ms and 2001 ms past the start
        QStringList lines = dump.waitForLines(12);
        QCOMPARE(lines.mid(0, 3), (QStringList{remainingLine(600), QStringLiteral("/kairon/running i 1"),
                                               QStringLiteral("/kairon/cue s \"A\"")}));
        QCOMPARE(lines[3], remainingLine(599.999));
        QCOMPARE(lines[6], remainingLine(598.999));
        QCOMPARE(lines[9], remainingLine(597.999));
        QCOMPARE(lines.size(), 12);

        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_VERIFY(engine().isPaused());
        m_fixture->clock.advance(5s); // paused: the same second, nothing goes out
        QVERIFY(oscsend({QStringLiteral("/kairon/pause")}));
        QTRY_VERIFY(!engine().isPaused());
        m_fixture->clock.advance(600ms); // the next second
        lines = dump.waitForLines(15);
        QCOMPARE(lines.size(), 15);
        QCOMPARE(lines[12], remainingLine(596.999));
    }

    void aSecondListenerOnThePortIsTold()
    {
        QProcess other; // oscdump takes the listening port of a second coordinator
        other.start(QStringLiteral("oscdump"), {QString::number(listenPort + 10)});
        QVERIFY(other.waitForStarted());
        QTest::qWaitFor([] { return udpPortBound(listenPort + 10); }, 5000);
        Preferences::setOscListenPort(listenPort + 10);
        QSignalSpy status(m_coordinator.get(), &NetworkCoordinator::oscStatusChanged);
        m_coordinator->applyOSCSettings();
        QVERIFY(status.wait(5000));
        QCOMPARE(*m_coordinator->oscStatus(),
                 QStringLiteral("Port 53341 indisponible (L'adresse liée est déjà utilisée). "
                                "Déjà utilisé ? (QLab = 53000)"));
        other.kill();
        other.waitForFinished();
    }

    void aPortNeverStoredStopsListening()
    {
        QSettings().remove(QStringLiteral("oscListenPort"));
        m_coordinator->applyOSCSettings();
        // The port is free: this socket takes it, and the command lands here instead.
        auto probe = std::make_unique<QUdpSocket>();
        QTRY_VERIFY((probe = std::make_unique<QUdpSocket>(),
                     probe->bind(QHostAddress::Any, listenPort, QAbstractSocket::DontShareAddress)));
        QVERIFY(oscsend({QStringLiteral("/kairon/play")}));
        QTRY_VERIFY(probe->hasPendingDatagrams());
        QCoreApplication::sendPostedEvents();
        QVERIFY(!engine().isRunning());
    }
};

QTEST_GUILESS_MAIN(TestOscPeers)
#include "tst_osc_peers.moc"
