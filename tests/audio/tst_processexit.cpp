#include "processexit.h"
#include "soundmanager.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

// A process that has opened an alert output and quits as the application does: torn down, then ended
// by exitProcess(). Each must end normally with status 0 and what it printed last, however its
// exit falls against the sound library's own thread. Runs against the private server of
// with-pulseaudio.sh.
class TestProcessExit : public QObject
{
    Q_OBJECT

    // Says so on standard output when it is destroyed.
    struct Announcer
    {
        ~Announcer() { std::fputs("statics destroyed\n", stdout); }
    };

public:
    // A process of this test run with this variable set is one quitting application; set to
    // "library", one whose library calls exit().
    static constexpr const char *childVariable = "KAIRON_EXIT_CHILD";

    static int runChild(int argc, char *argv[])
    {
        {
            QCoreApplication app(argc, argv);
            // Opens the first alert's output ahead; quitting closes it.
            SoundManager sounds;
            QTimer::singleShot(100, &app, &QCoreApplication::quit);
            app.exec();
        }
        // Buffered, not yet written: exitProcess() must write it before the process ends.
        std::fputs("closed\n", stdout);
        exitProcess(7);
    }

    // A process in which a library calls exit() in the middle of the run, as Qt's X11 plugin does
    // when the X server goes: the handler ends it with status 1, after writing what it printed,
    // and before the destructors of the statics made until then.
    [[noreturn]] static void runLibraryExitChild(int argc, char *argv[])
    {
        static const Announcer announcer;
        QCoreApplication app(argc, argv);
        SoundManager sounds;
        exitAtOnceOnLibraryExit();
        std::fputs("running\n", stdout);
        std::exit(0);
    }

private slots:
    void everyExitIsClean()
    {
        // A race lost about once in thirty exits without exitProcess(): 150 exits miss it
        // with a chance below one in a hundred.
        constexpr int exits = 150;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(childVariable), QStringLiteral("1"));
        for (int i = 1; i <= exits; ++i) {
            QProcess child;
            child.setProcessEnvironment(environment);
            child.start(QCoreApplication::applicationFilePath(), {});
            QVERIFY(child.waitForFinished(30000));
            const QByteArray output = child.readAllStandardOutput();
            QVERIFY2(child.exitStatus() == QProcess::NormalExit,
                     qPrintable(QStringLiteral("exit %1 crashed: %2")
                                    .arg(i)
                                    .arg(QString::fromLocal8Bit(child.readAllStandardError()))));
            QCOMPARE(child.exitCode(), 7);
            QCOMPARE(output, QByteArray("closed\n"));
        }
    }

    void aLibraryExitEndsAtOnce()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(childVariable), QStringLiteral("library"));
        QProcess child;
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForFinished(30000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 1);
        QCOMPARE(child.readAllStandardOutput(), QByteArray("running\n"));
    }
};

int main(int argc, char *argv[])
{
    if (qEnvironmentVariable(TestProcessExit::childVariable) == QStringLiteral("library"))
        TestProcessExit::runLibraryExitChild(argc, argv);
    if (qEnvironmentVariableIsSet(TestProcessExit::childVariable))
        return TestProcessExit::runChild(argc, argv);
    QCoreApplication app(argc, argv);
    TestProcessExit test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_processexit.moc"
