#include "oscservice.h"
#include "qttranslations.h"

#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

namespace {

// This test's own ports, apart from those of the other tests that run beside it.
constexpr quint16 portA = 53311, portB = 53312, portC = 53313, portD = 53314;

// Collects what a service reports, on the test's (main) thread.
struct Reports {
    explicit Reports(OSCService &service)
    {
        service.onCommand = [this](const OSCMessage &m) { commands << m; };
        service.onListenStatus = [this](const std::optional<QString> &s) { statuses << s; };
    }
    QList<OSCMessage> commands;
    QList<std::optional<QString>> statuses;
};

void sendFromPeer(const QByteArray &datagram, quint16 port)
{
    QUdpSocket peer;
    peer.writeDatagram(datagram, QHostAddress::LocalHost, port);
}

// A local UDP socket that receives what the service sends.
struct Receiver {
    Receiver(quint16 port) { socket.bind(QHostAddress::LocalHost, port); }
    QList<QByteArray> take(int count, int timeoutMs = 5000)
    {
        QList<QByteArray> datagrams;
        QTest::qWaitFor([&] {
            while (socket.hasPendingDatagrams()) {
                QByteArray d(socket.pendingDatagramSize(), Qt::Uninitialized);
                socket.readDatagram(d.data(), d.size());
                datagrams << d;
            }
            return datagrams.size() >= count;
        }, timeoutMs);
        return datagrams;
    }
    QUdpSocket socket;
};

} // namespace

class TestOscService : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(installQtTranslations(*QCoreApplication::instance())); }

    void listeningWorksAndCommandsArriveInOrderOnThisThread()
    {
        OSCService service;
        Reports reports(service);
        service.startListening(portA);
        QTRY_COMPARE(reports.statuses.size(), 1);
        QCOMPARE(reports.statuses[0], std::nullopt);

        const QThread *mine = QThread::currentThread();
        bool onThisThread = true;
        service.onCommand = [&](const OSCMessage &m) {
            onThisThread = onThisThread && QThread::currentThread() == mine;
            reports.commands << m;
        };
        QUdpSocket peer;
        for (int i = 0; i < 20; ++i)
            peer.writeDatagram(OSCCodec::encode(QStringLiteral("/kairon/adjust"), {qint32(i)}),
                               QHostAddress::LocalHost, portA);
        QTRY_COMPARE(reports.commands.size(), 20);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(reports.commands[i].intArg, i);
        QVERIFY(onThisThread);
    }

    void aPortTakenByAnotherProgramIsReported()
    {
        QUdpSocket other;
        QVERIFY(other.bind(QHostAddress::Any, portB, QAbstractSocket::DontShareAddress));
        OSCService service;
        Reports reports(service);
        service.startListening(portB);
        QTRY_COMPARE(reports.statuses.size(), 1);
        QCOMPARE(reports.statuses[0],
                 QStringLiteral("Port 53312 indisponible (L'adresse liée est déjà utilisée). "
                                "Déjà utilisé ? (QLab = 53000)"));
    }

    void twoServicesOnOnePortTheSecondIsRefused()
    {
        OSCService first, second;
        Reports a(first), b(second);
        first.startListening(portB);
        QTRY_COMPARE(a.statuses.size(), 1);
        second.startListening(portB);
        QTRY_COMPARE(b.statuses.size(), 1);
        QCOMPARE(a.statuses[0], std::nullopt);
        QVERIFY(b.statuses[0]->startsWith(QStringLiteral("Port 53312 indisponible (")));
    }

    void portZeroIsRefused()
    {
        OSCService service;
        Reports reports(service);
        service.startListening(0);
        QTRY_COMPARE(reports.statuses.size(), 1);
        QCOMPARE(reports.statuses[0], QStringLiteral("Port invalide"));
    }

    void listeningAgainReplacesTheFirstListener()
    {
        OSCService service;
        Reports reports(service);
        service.startListening(portC);
        service.startListening(portD);
        QTRY_COMPARE(reports.statuses.size(), 2);
        QCOMPARE(reports.statuses.last(), std::nullopt);
        QUdpSocket reuse; // the first port is free again
        QVERIFY(reuse.bind(QHostAddress::Any, portC, QAbstractSocket::DontShareAddress));
    }

    void afterStopNothingMoreComes()
    {
        OSCService service;
        Reports reports(service);
        service.startListening(portC);
        QTRY_COMPARE(reports.statuses.size(), 1);
        service.stop();
        QTRY_VERIFY(QUdpSocket().bind(QHostAddress::Any, portC, QAbstractSocket::DontShareAddress));
        sendFromPeer(OSCCodec::encode(QStringLiteral("/kairon/play"), {}), portC);
        service.startListening(portD); // a marker: everything before it has been handled
        QTRY_COMPARE(reports.statuses.size(), 2);
        QVERIFY(reports.commands.isEmpty());
    }

    void sendsToTheConfiguredDestinationOnly()
    {
        Receiver receiver(portA);
        OSCService service;
        service.send(QStringLiteral("/dropped"), {}); // no destination yet
        service.configureSend(QStringLiteral("127.0.0.1"), portA);
        service.send(QStringLiteral("/kairon/running"), {qint32(1)});
        service.configureSend(QString(), portA); // an empty host removes the destination
        service.send(QStringLiteral("/dropped"), {});
        service.configureSend(QStringLiteral("localhost"), portA); // a name, resolved aside
        QList<QByteArray> got = receiver.take(1);
        // Sent again until the name is resolved: messages before that are dropped.
        QTRY_VERIFY_WITH_TIMEOUT(
            (service.send(QStringLiteral("/kairon/cue"), {QStringLiteral("A")}),
             got += receiver.take(1, 50), got.size() >= 2),
            10000);
        QCOMPARE(got[0], OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(1)}));
        QCOMPARE(got[1], OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("A")}));
    }

    void malformedDatagramsAreDroppedAndTheNextCommandWorks()
    {
        OSCService service;
        Reports reports(service);
        service.startListening(portA);
        QTRY_COMPARE(reports.statuses.size(), 1);
        QByteArray garbage(64 * 1024 - 100, '\x5a');
        for (const QByteArray &d : {QByteArray(), QByteArray("/kairon/play"),
                                    QByteArray("/kairon/\xff\xfe\0\0,\0\0\0", 16),
                                    QByteArray("/kairon/adjust\0\0,i\0\0\xff\xff", 22), garbage})
            sendFromPeer(d, portA);
        sendFromPeer(OSCCodec::encode(QStringLiteral("/kairon/stop"), {}), portA);
        QTRY_COMPARE(reports.commands.size(), 2);
        QCOMPARE(reports.commands[0].address, QStringLiteral("/kairon/adjust"));
        QVERIFY(!reports.commands[0].intArg);
        QCOMPARE(reports.commands[1].address, QStringLiteral("/kairon/stop"));
    }
};

QTEST_GUILESS_MAIN(TestOscService)
#include "tst_oscservice.moc"
