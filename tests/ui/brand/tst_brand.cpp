#include "brandview.h"
#include "fulldisk.h"
#include "ports.h"
#include "temphome.h"

#include <QBuffer>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include <optional>

namespace {

const QColor bgDeep = toQColor(AppTheme::bgDeep);
const QColor accent = toQColor(AppTheme::accent);
const QColor white(Qt::white);
const QColor blue(30, 90, 200), green(40, 170, 90), red(200, 40, 40), yellow(230, 200, 30);

// A logo of two colours side by side, as PNG bytes.
QByteArray twoColourPng(QSize size, const QColor &left, const QColor &right)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(right);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width() / 2; ++x)
            image.setPixelColor(x, y, left);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

// The logo already in the cache (1.6 : 1, shown unscaled at size 100) and the one on the site.
QByteArray cachedPng()
{
    static const QByteArray png = twoColourPng({160, 100}, blue, green);
    return png;
}
QByteArray servedPng()
{
    static const QByteArray png = twoColourPng({320, 200}, red, yellow);
    return png;
}

void writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(data);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool answers(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(200);
}

// The central part of `rect`, a fraction `keep` of each side.
QRect centre(const QRect &rect, double keep)
{
    const int w = qRound(rect.width() * keep), h = qRound(rect.height() * keep);
    return QRect(rect.center().x() - w / 2, rect.center().y() - h / 2, w, h);
}

// The logo's two halves as shown in `box`, where the logo fills the central `logoWidth` pixels.
void expectLogo(const QImage &shot, const QRect &box, int logoWidth, const QColor &left, const QColor &right)
{
    const int x0 = box.left() + (box.width() - logoWidth) / 2;
    const int half = logoWidth / 2;
    const QRect leftHalf(x0 + 6, box.top() + 6, half - 12, box.height() - 12);
    KAIRON_COMPARE_COLOUR(dominantColour(shot, leftHalf, bgDeep), left);
    KAIRON_COMPARE_COLOUR(dominantColour(shot, leftHalf.translated(half, 0), bgDeep), right);
}

// The drawn mark: an accent square with rounded corners and a white initial in its middle.
void expectDrawnSquare(const QImage &shot, const QRect &square)
{
    KAIRON_COMPARE_COLOUR(dominantColour(shot, square, bgDeep), accent);
    KAIRON_COMPARE_COLOUR(dominantColour(shot, centre(square, 0.3), accent), white);
    KAIRON_COMPARE_COLOUR(shot.pixelColor(square.topLeft() + QPoint(1, 1)), bgDeep);
    KAIRON_COMPARE_COLOUR(shot.pixelColor(square.bottomRight() - QPoint(1, 1)), bgDeep);
}

} // namespace

// The maker's logo (cached, downloaded, or drawn) and the about panel, rendered offscreen in a
// temporary home whose cache starts empty.
class TestBrand : public QObject
{
    Q_OBJECT

    QTemporaryDir m_served;
    QProcess m_server;
    quint16 m_port = 0;
    std::optional<TempHome> m_home;

    QUrl served(const QString &name) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/%2").arg(m_port).arg(name));
    }
    static QUrl unreachable() { return QUrl(QStringLiteral("http://127.0.0.1:%1/logo.png").arg(freeTcpPort())); }

private slots:
    void initTestCase()
    {
        writeFile(m_served.filePath(QStringLiteral("logo.png")), servedPng());
        writeFile(m_served.filePath(QStringLiteral("notes.png")), "Ceci n'est pas une image.\n");
        m_port = freeTcpPort();
        m_server.setStandardOutputFile(QProcess::nullDevice());
        m_server.setStandardErrorFile(QProcess::nullDevice());
        m_server.start(QStringLiteral("python3"),
                       {QStringLiteral("-m"), QStringLiteral("http.server"), QStringLiteral("--bind"),
                        QStringLiteral("127.0.0.1"), QString::number(m_port), QStringLiteral("--directory"),
                        m_served.path()});
        QVERIFY(m_server.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(answers(m_port), 15000);
    }
    void cleanupTestCase()
    {
        m_server.kill();
        m_server.waitForFinished();
    }
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void theCacheIsTheApplicationsFolderOfTheUsersCaches()
    {
        QCOMPARE(BrandAssets::cacheFilePath(), m_home->file(QStringLiteral(".cache/Kairon/logo.png")));
    }

    void aFirstRunWithoutNetworkDrawsTheMark()
    {
        BrandAssets assets(unreachable());
        assets.downloadRemote();
        QVERIFY(assets.downloading());
        QTRY_VERIFY(!assets.downloading());
        QVERIFY(!assets.hasLogo());
        QVERIFY(assets.logoSource().isEmpty());
        QVERIFY(!QFile::exists(BrandAssets::cacheFilePath()));

        BrandView mark("OrvLogoMark.qml", assets, 200);
        QImage shot = mark.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-logo-mark-drawn"));
        QCOMPARE(mark.rect(), QRect(20, 20, 200, 200));
        expectDrawnSquare(shot, mark.rect());

        BrandView view("OrvLogoView.qml", assets, 100);
        shot = view.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-logo-view-drawn"));
        QCOMPARE(view.item->height(), 100.0);
        const QRect square = BrandView::inWindow(view.find("drawnSquare"));
        QCOMPARE(square, QRect(20, 40, 60, 60));
        expectDrawnSquare(shot, square);
        QQuickItem *light = view.find("wordmarkWhite");
        QQuickItem *accented = view.find("wordmarkAccent");
        QCOMPARE(light->property("text").toString() + accented->property("text").toString(),
                 QStringLiteral("KAIRON"));
        QCOMPARE(light->property("font").value<QFont>().pixelSize(), 34);
        QCOMPARE(light->property("font").value<QFont>().weight(), QFont::Black);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, BrandView::inWindow(light), bgDeep), white);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, BrandView::inWindow(accented), bgDeep), accent);
    }

    void aCachedLogoShowsAtOnceBeforeAnyNetwork()
    {
        writeFile(BrandAssets::cacheFilePath(), cachedPng());
        BrandAssets assets(unreachable());
        QVERIFY(assets.hasLogo()); // from the constructor: no event has run, no fetch was asked
        QCOMPARE(assets.logo().pixelColor(10, 10), blue);
        QCOMPARE(assets.logo().size(), QSize(160, 100));

        BrandView view("OrvLogoView.qml", assets, 100);
        QImage shot = view.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-logo-view-image"));
        QCOMPARE(view.rect(), QRect(20, 20, 160, 100));
        expectLogo(shot, view.rect(), 160, blue, green);

        BrandView mark("OrvLogoMark.qml", assets, 100);
        shot = mark.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-logo-mark-image"));
        QCOMPARE(mark.rect(), QRect(20, 20, 180, 100));
        expectLogo(shot, mark.rect(), 160, blue, green);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, QRect(21, 25, 8, 90), QColor(1, 2, 3)), bgDeep);
    }

    void aDownloadReplacesTheLogoAndFillsTheCache_data()
    {
        QTest::addColumn<bool>("cached");
        QTest::newRow("first run") << false;
        QTest::newRow("over a cached logo") << true;
    }
    void aDownloadReplacesTheLogoAndFillsTheCache()
    {
        QFETCH(bool, cached);
        if (cached)
            writeFile(BrandAssets::cacheFilePath(), cachedPng());
        BrandAssets assets(served(QStringLiteral("logo.png")));
        BrandView view("OrvLogoView.qml", assets, 100);
        if (cached)
            expectLogo(view.grab(), view.rect(), 160, blue, green);
        QSignalSpy changed(&assets, &BrandAssets::logoChanged);
        assets.downloadRemote();
        QVERIFY(changed.wait());
        QTRY_VERIFY(!assets.downloading());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(readFile(BrandAssets::cacheFilePath()), servedPng());
        QCOMPARE(assets.logo().size(), QSize(320, 200));

        const QImage shot = view.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-logo-view-downloaded"));
        QCOMPARE(view.rect(), QRect(20, 20, 160, 100));
        expectLogo(shot, view.rect(), 160, red, yellow);

        BrandAssets nextRun(QUrl{});
        QVERIFY(nextRun.hasLogo());
        QCOMPARE(nextRun.logo(), assets.logo());
    }

    void aCorruptCacheIsIgnored()
    {
        writeFile(BrandAssets::cacheFilePath(), cachedPng().left(cachedPng().size() / 2));
        BrandAssets assets(QUrl{});
        QVERIFY(!assets.hasLogo());
        BrandView mark("OrvLogoMark.qml", assets, 200);
        QCOMPARE(mark.rect(), QRect(20, 20, 200, 200));
        expectDrawnSquare(mark.grab(), mark.rect());
    }

    void aFailedDownloadLeavesTheLogoAsItWas_data()
    {
        QTest::addColumn<QString>("address"); // "" for none, "unreachable" for a closed port
        QTest::addColumn<bool>("cached");
        for (const bool cached : {false, true}) {
            const char *when = cached ? ", with a cached logo" : ", first run";
            QTest::addRow("HTTP 404%s", when) << QStringLiteral("missing.png") << cached;
            QTest::addRow("not an image%s", when) << QStringLiteral("notes.png") << cached;
            QTest::addRow("no network%s", when) << QStringLiteral("unreachable") << cached;
            QTest::addRow("no address%s", when) << QString() << cached;
        }
    }
    void aFailedDownloadLeavesTheLogoAsItWas()
    {
        QFETCH(QString, address);
        QFETCH(bool, cached);
        if (cached)
            writeFile(BrandAssets::cacheFilePath(), cachedPng());
        const QUrl remote = address.isEmpty() ? QUrl()
                            : address == QLatin1String("unreachable") ? unreachable()
                                                                       : served(address);
        BrandAssets assets(remote);
        QCOMPARE(assets.hasLogo(), cached);
        const QUrl source = assets.logoSource();
        QSignalSpy changed(&assets, &BrandAssets::logoChanged);
        assets.downloadRemote();
        QCOMPARE(assets.downloading(), !remote.isEmpty());
        QTRY_VERIFY(!assets.downloading());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(assets.hasLogo(), cached);
        QCOMPARE(assets.logoSource(), source);
        QCOMPARE(readFile(BrandAssets::cacheFilePath()), cached ? cachedPng() : QByteArray());

        BrandView mark("OrvLogoMark.qml", assets, 100);
        const QImage shot = mark.grab();
        if (cached)
            expectLogo(shot, mark.rect(), 160, blue, green);
        else
            expectDrawnSquare(shot, mark.rect());
    }

    // The cache on a real file system filled to the last byte: the downloaded logo cannot be
    // kept there, so it is not shown, and the cached one stays as it was, with nothing beside it.
    void aFullDiskKeepsTheCachedLogo()
    {
        FullDisk disk(QFileInfo(BrandAssets::cacheFilePath()).absolutePath());
        FULL_DISK_OR_SKIP(disk);
        writeFile(BrandAssets::cacheFilePath(), cachedPng());
        disk.fill();
        BrandAssets assets(served(QStringLiteral("logo.png")));
        const QUrl source = assets.logoSource();
        QSignalSpy changed(&assets, &BrandAssets::logoChanged);
        assets.downloadRemote();
        QTRY_VERIFY(!assets.downloading());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(assets.logoSource(), source);
        QCOMPARE(readFile(BrandAssets::cacheFilePath()), cachedPng());
        QCOMPARE(disk.files(), QStringList{QStringLiteral("logo.png")});

        disk.makeRoom();
        assets.downloadRemote();
        QVERIFY(changed.wait());
        QCOMPARE(readFile(BrandAssets::cacheFilePath()), servedPng());
        QCOMPARE(disk.files(), QStringList{QStringLiteral("logo.png")});
    }
};

QTEST_MAIN(TestBrand)
#include "tst_brand.moc"
