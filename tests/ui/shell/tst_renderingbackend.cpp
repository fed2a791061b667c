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
};

QTEST_MAIN(TestRenderingBackend)
#include "tst_renderingbackend.moc"
