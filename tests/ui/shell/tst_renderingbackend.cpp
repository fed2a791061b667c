#include "fulldisk.h"
#include "renderingbackend.h"
#include "temphome.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTest>

// The choice of Qt Quick backend, and the renderer kept between runs so that start-up does not
// wait for a copy of the program to answer.
class TestRenderingBackend : public QObject
{
    Q_OBJECT

private slots:
    void softwareRasterisersAreToldFromGPUs()
    {
        QVERIFY(RenderingBackend::isSoftwareRasteriser(QStringLiteral("llvmpipe (LLVM 15.0.6, 256 bits)")));
        QVERIFY(RenderingBackend::isSoftwareRasteriser(QString()));
        QVERIFY(!RenderingBackend::isSoftwareRasteriser(QStringLiteral("Mesa Intel(R) UHD Graphics 620")));
    }

    void theRendererIsAskedOnceThenReadFromTheCache()
    {
        TempHome home;
        const QString kept = home.file(QStringLiteral(".cache/Kairon/renderer"));
        QVERIFY(!QFileInfo::exists(kept));
        const QString first = RenderingBackend::chooseForThisMachine();
        QFile file(kept);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString key = QGuiApplication::platformName() + u' ' + QString::fromLatin1(qVersion());
        QCOMPARE(QString::fromUtf8(file.readAll()), key + u'\n' + first);
        file.close();

        // A kept answer is used as it stands: a GPU named there keeps the OpenGL path.
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write((key + u'\n' + QStringLiteral("Mesa Intel(R) UHD Graphics 620")).toUtf8());
        file.close();
        QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
        QCOMPARE(RenderingBackend::chooseForThisMachine(), QStringLiteral("Mesa Intel(R) UHD Graphics 620"));
        QCOMPARE(QQuickWindow::graphicsApi(), QSGRendererInterface::OpenGL);

        // One kept for another platform or Qt is asked again.
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("xcb 6.0.0\nMesa Intel(R) UHD Graphics 620");
        file.close();
        QCOMPARE(RenderingBackend::chooseForThisMachine(), first);
    }

    // On a real file system filled to the last byte, the answer cannot be kept: the kept file
    // stays as it was, with nothing beside it, and the next run asks again.
    void aFullDiskKeepsTheKeptFileAsItWas()
    {
        TempHome home;
        FullDisk disk(home.file(QStringLiteral(".cache/Kairon")));
        FULL_DISK_OR_SKIP(disk);
        const QString kept = home.file(QStringLiteral(".cache/Kairon/renderer"));
        const QByteArray elsewhere("xcb 6.0.0\nMesa Intel(R) UHD Graphics 620");
        QFile file(kept);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(elsewhere);
        file.close();
        disk.fill();

        const QString first = RenderingBackend::chooseForThisMachine();
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), elsewhere);
        file.close();
        QCOMPARE(disk.files(), QStringList{QStringLiteral("renderer")});

        disk.makeRoom();
        QCOMPARE(RenderingBackend::chooseForThisMachine(), first);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString key = QGuiApplication::platformName() + u' ' + QString::fromLatin1(qVersion());
        QCOMPARE(QString::fromUtf8(file.readAll()), key + u'\n' + first);
    }
};

QTEST_MAIN(TestRenderingBackend)
#include "tst_renderingbackend.moc"
