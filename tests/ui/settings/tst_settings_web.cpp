#include "theme.h"
#include "pixels.h"
#include "ports.h"
#include "preferences.h"
#include "qrcodeitem.h"
#include "qttranslations.h"
#include "settingsfixture.h"
#include "webaddresses.h"
#include "enginefixture.h"

#include <QClipboard>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <memory>

// The settings' "Web" tab through its real items: clicks and keys, the preferences it writes,
// the web server it starts (reached over the loopback only), the QR codes read back by zbarimg.
// Run twice: on a 1920 × 1080 screen and on a 3840 × 2160 screen at twice the scale.
class TestSettingsWeb : public QObject
{
    Q_OBJECT

    static constexpr int webTab = 2;

    static QVariant stored(const char *key) { return QSettings().value(QLatin1StringView(key)); }
    static bool listening(quint16 port)
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        return socket.waitForConnected(2000);
    }
    // The status of a request to the server on this machine, or 0 when none came.
    static int request(const QByteArray &method, quint16 port, const QString &path,
                       const QString &code = QString())
    {
        QNetworkAccessManager network;
        network.setProxy(QNetworkProxy::NoProxy);
        QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path)));
        if (!code.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + code.toUtf8());
        std::unique_ptr<QNetworkReply> reply(network.sendCustomRequest(request, method));
        (void)QTest::qWaitFor([&] { return reply->isFinished(); }, 5000);
        return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }
    // The screen's scale in the names of the pictures kept.
    static QString shotName(const SettingsFixture &f, const char *name)
    {
        return QString::fromLatin1(name)
               + (f.settingsWindow->effectiveDevicePixelRatio() > 1 ? QStringLiteral("-3840x2160")
                                                                      : QStringLiteral("-1920x1080"));
    }
    // Waits for a new frame: the layout is then done (positioners place their items just before
    // a frame) and a picture of the window shows it.
    static void waitForFrame(SettingsFixture &f)
    {
        QSignalSpy swapped(f.settingsWindow, &QQuickWindow::frameSwapped);
        f.settingsWindow->update();
        QVERIFY(swapped.wait(5000));
    }
    // Sets where the tab is scrolled to, and waits for the frame that shows it.
    static void scrollTab(SettingsFixture &f, qreal contentY)
    {
        QQuickItem *page = f.at("webTab"); // a Flickable
        page->setProperty("contentY", contentY);
        waitForFrame(f);
    }
    // Scrolls the tab so that `item` shows whole (or its top, when taller than the tab).
    static void scrollTo(SettingsFixture &f, QQuickItem *item)
    {
        waitForFrame(f);
        QQuickItem *page = f.at("webTab"); // a Flickable
        auto *content = page->property("contentItem").value<QQuickItem *>();
        const qreal top = item->mapToItem(content, QPointF(0, 0)).y();
        const qreal bottom = top + item->height() + 20;
        qreal y = bottom > page->height() ? bottom - page->height() : 0;
        y = std::min(y, top - 10);
        const qreal most = std::max(0.0, page->property("contentHeight").toReal() - page->height());
        scrollTab(f, std::round(std::clamp(y, 0.0, most)));
    }
    // The item's place in the window's picture, in device pixels.
    static QRect deviceRect(const SettingsFixture &f, const QQuickItem *item)
    {
        const qreal ratio = f.settingsWindow->effectiveDevicePixelRatio();
        const QRectF scene = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        return QRectF(scene.topLeft() * ratio, scene.size() * ratio).toAlignedRect();
    }
    // Everything zbarimg reads in a picture, one text a line.
    static QStringList decoded(const QImage &image)
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("qr.png"));
        if (!image.save(file))
            return {QStringLiteral("(not saved)")};
        QProcess zbar;
        zbar.start(QStringLiteral("zbarimg"), {QStringLiteral("--raw"), QStringLiteral("-q"), file});
        zbar.waitForFinished(20000);
        return QString::fromUtf8(zbar.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }
    // Turns the server on at `port` on `interfaceAddress` through the tab and applies.
    static void serve(SettingsFixture &f, quint16 port, const QString &interfaceAddress = QString())
    {
        f.openTab(webTab);
        f.click("webSwitch");
        f.settle("webSwitch");
        f.type("webPort", QString::number(port));
        if (!interfaceAddress.isEmpty())
            chooseInterface(f, interfaceAddress);
        f.click("applyWeb");
    }
    static int interfaceEntry(SettingsFixture &f, const QString &address)
    {
        const QVariantList choices = f.settings.web()->interfaceChoices();
        for (qsizetype i = 0; i < choices.size(); ++i)
            if (choices[i].toMap().value("address").toString() == address)
                return int(i);
        return -1;
    }
    // Opens the interface menu with a click and chooses the entry of that address with another.
    static void chooseInterface(SettingsFixture &f, const QString &address)
    {
        const int index = interfaceEntry(f, address);
        QVERIFY2(index >= 0, qPrintable(address));
        f.chooseEntry("webInterfaceMenu", index);
    }

private slots:
    void initTestCase()
    {
        installQtTranslations(*QCoreApplication::instance()); // as the program: Qt's errors in French
        // On a 3840 × 2160 screen at twice the scale, or on a 1920 × 1080 one.
        QVERIFY(QGuiApplication::primaryScreen());
        qInfo() << "screen" << QGuiApplication::primaryScreen()->size()
                << "scale" << QGuiApplication::primaryScreen()->devicePixelRatio();
    }

    void aFreshInstallationShowsTheServerOffOnPort8080OnEveryInterface()
    {
        SettingsFixture f;
        f.openTab(webTab);
        QCOMPARE(f.text("settingsTab2"), QStringLiteral("Web"));
        QCOMPARE(f.at("webSwitch")->property("checked").toBool(), false);
        QCOMPARE(f.text("webSwitch"), QStringLiteral("Activer le serveur web (écrans dans un navigateur, pilotage par l'API web)"));
        QCOMPARE(f.text("webPort"), QStringLiteral("8080"));
        QCOMPARE(f.at("webInterfaceMenu")->property("displayText").toString(), QStringLiteral("Toutes les interfaces"));
        QCOMPARE(f.text("applyWeb"), QStringLiteral("Appliquer la configuration web"));
        QCOMPARE(f.text("newAccessCode"), QStringLiteral("Nouveau code"));
        QVERIFY(!f.shown("webStatus"));
        QVERIFY(!f.shown("webAddresses"));
        // The code is made on first reading and shown as it is stored.
        const QString code = f.text("webAccessCode");
        QVERIFY2(Preferences::isWebAccessCode(code), qPrintable(code));
        QCOMPARE(stored("webAccessCode").toString(), code);
        QCOMPARE(QSettings().allKeys(), QStringList{"webAccessCode"});
        // The tab starts 20 from the edges, like the others.
        QCOMPARE(f.at("webSwitch")->mapToScene(QPointF(0, 0)).x(), 20.0);
        QCOMPARE(f.at("webSwitch")->mapToScene(QPointF(0, 0)).y(),
                 f.at("settingsTabs")->height() + 20.0);
        keepScreenshot(f.shot(), shotName(f, "settings-web-off"));
        // Turned on but not applied: the line says how to start it.
        f.click("webSwitch");
        QCOMPARE(stored("webEnabled").toBool(), true);
        QCOMPARE(stored("webPort").toInt(), 8080); // the port shown is the port applied
        QCOMPARE(Preferences::storedWebSettings().port, 8080);
        QVERIFY(f.shown("webStatus"));
        QCOMPARE(f.text("webStatusText"),
                 QStringLiteral("Serveur web arrêté : « Appliquer la configuration web » le démarre"));
        QCOMPARE(f.at("webStatusIcon")->property("symbol").toString(), QStringLiteral("info.circle"));
        QVERIFY(!f.shown("webAddresses"));
    }

    void thePortFieldStoresOnlyWholeNumbersFrom1To65535()
    {
        SettingsFixture f;
        f.openTab(webTab);
        f.type("webPort", QStringLiteral("0"));
        QVERIFY(!stored("webPort").isValid());
        QVERIFY(f.at("webPort")->property("invalid").toBool());
        f.type("webPort", QStringLiteral("8x0-8.1"));
        QCOMPARE(f.text("webPort"), QStringLiteral("8081"));
        QCOMPARE(stored("webPort").toInt(), 8081);
        f.type("webPort", QString());
        f.click("webSwitch");
        QTRY_COMPARE(f.text("webPort"), QStringLiteral("8081"));
    }

    void theInterfaceMenuListsEveryIPv4AddressOfTheMachine()
    {
        SettingsFixture f;
        f.openTab(webTab);
        QStringList expected{QStringLiteral("Toutes les interfaces")};
        for (const WebAddresses::InterfaceAddress &entry : WebAddresses::machineAddresses())
            expected << entry.address.toString() + " (" + entry.interfaceName + ")";
        QStringList labels;
        for (const QVariant &choice : f.settings.web()->interfaceChoices())
            labels << choice.toMap().value("label").toString();
        QCOMPARE(labels, expected);
        QVERIFY(labels.contains(QStringLiteral("127.0.0.1 (lo)")));
        chooseInterface(f, QStringLiteral("127.0.0.1"));
        QCOMPARE(stored("webInterface").toString(), QStringLiteral("127.0.0.1"));
        QCOMPARE(f.at("webInterfaceMenu")->property("displayText").toString(), QStringLiteral("127.0.0.1 (lo)"));
        chooseInterface(f, QString());
        QCOMPARE(stored("webInterface").toString(), QString());
        // An address the machine no longer has stays chosen, and says so.
        f.settings.web()->setWebInterface(QStringLiteral("198.51.100.7"));
        QTRY_COMPARE(f.at("webInterfaceMenu")->property("displayText").toString(),
                     QStringLiteral("198.51.100.7 (absente de cette machine)"));
    }

    void applyingStartsTheServerWhichAnswersThenStopsIt()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        serve(f, port);
        QTRY_COMPARE(f.web.serverPort(), port);
        QVERIFY(listening(port));
        QCOMPARE(request("GET", port, QStringLiteral("/api/state")), 200);
        QVERIFY(f.shown("webStatus"));
        QCOMPARE(f.text("webStatusText"), QStringLiteral("Serveur web actif sur le port %1").arg(port));
        QCOMPARE(f.at("webStatusIcon")->property("symbol").toString(), QStringLiteral("checkmark.circle.fill"));
        const QImage image = f.shot();
        const QQuickItem *icon = f.at("webStatusIcon");
        KAIRON_COMPARE_COLOUR(dominantColour(image, deviceRect(f, icon), toQColor(AppTheme::bgMain)),
                              toQColor(AppTheme::success));
        keepScreenshot(image, shotName(f, "settings-web-on"));

        // Every interface: each address of the machine but the loopback, four pages each.
        QVERIFY(f.shown("webAddresses"));
        const QList<WebAddresses::InterfaceAddress> hosts =
            WebAddresses::reachableAt(WebAddresses::machineAddresses(), QHostAddress::Any);
        QVERIFY(!hosts.isEmpty());
        for (qsizetype h = 0; h < hosts.size(); ++h) {
            const QString base = QStringLiteral("http://%1:%2").arg(hosts[h].address.toString()).arg(port);
            const QStringList urls{base + "/stage", base + "/confidence", base + "/overlay", base + "/"};
            for (int p = 0; p < 4; ++p) {
                const QByteArray name = QStringLiteral("webPage%1_%2").arg(h).arg(p).toLatin1();
                QCOMPARE(f.text((name + "Url").constData()), urls[p]);
                QCOMPARE(f.at((name + "Qr").constData())->property("text").toString(), urls[p]);
            }
        }
        scrollTo(f, f.at("webPage0_0"));
        keepScreenshot(f.shot(), shotName(f, "settings-web-on-addresses"));
        scrollTo(f, f.at(qPrintable(QStringLiteral("webPage%1_3").arg(hosts.size() - 1))));
        keepScreenshot(f.shot(), shotName(f, "settings-web-on-addresses-end"));

        // Off and applied: the server stops and the addresses go.
        scrollTab(f, 0);
        f.click("webSwitch");
        QVERIFY(f.shown("webStatus")); // still serving until applied
        f.click("applyWeb");
        QTRY_COMPARE(f.web.serverPort(), quint16(0));
        QVERIFY(!listening(port));
        QVERIFY(!f.shown("webStatus"));
        QVERIFY(!f.shown("webAddresses"));
    }

    // A real program holds the port: the line shows the warning and the server's own text.
    void aTakenPortShowsTheWarningAndItsText()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::Any, 0));
        const quint16 port = other.serverPort();
        SettingsFixture f;
        serve(f, port);
        const QString prefix = QStringLiteral("Port %1 indisponible (").arg(port);
        QTRY_VERIFY2(f.text("webStatusText").startsWith(prefix), qPrintable(f.text("webStatusText")));
        QCOMPARE(f.text("webStatusText"), *f.web.webStatus());
        QCOMPARE(f.at("webStatusIcon")->property("symbol").toString(),
                 QStringLiteral("exclamationmark.triangle.fill"));
        QVERIFY(!f.shown("webAddresses"));
        const QImage image = f.shot();
        keepScreenshot(image, shotName(f, "settings-web-port-taken"));
        KAIRON_COMPARE_COLOUR(dominantColour(image, deviceRect(f, f.at("webStatusIcon")),
                                             toQColor(AppTheme::bgMain)),
                              toQColor(AppTheme::stateWarning));
        KAIRON_COMPARE_COLOUR(dominantColour(image, deviceRect(f, f.at("webStatusText")),
                                             toQColor(AppTheme::bgMain)),
                              toQColor(AppTheme::stateWarning));
        // Freed and applied again: serving.
        other.close();
        f.click("applyWeb");
        QTRY_COMPARE(f.text("webStatusText"), QStringLiteral("Serveur web actif sur le port %1").arg(port));
        QVERIFY(listening(port));
    }

    // A page's address is copied by its button; Space stays the transport's key after it.
    void anAddressIsCopiedAndSpaceStillPlays()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        serve(f, port, QStringLiteral("127.0.0.1"));
        QTRY_COMPARE(f.web.serverPort(), port);
        const QString url = QStringLiteral("http://127.0.0.1:%1/confidence").arg(port);
        QCOMPARE(f.text("webPage0_1Url"), url);
        QCOMPARE(f.text("webPage0_1Copy"), QStringLiteral("Copier l'adresse"));
        scrollTo(f, f.at("webPage0_1"));
        f.click("webPage0_1Copy");
        QCOMPARE(QGuiApplication::clipboard()->text(), url);
        QCOMPARE(f.text("webPage0_1Copy"), QStringLiteral("Adresse copiée"));
        QTRY_COMPARE_WITH_TIMEOUT(f.text("webPage0_1Copy"), QStringLiteral("Copier l'adresse"), 4000);
        QTest::keyClick(f.settingsWindow, Qt::Key_Space);
        QVERIFY(f.engine.isRunning());
    }

    // The address chosen is gone (another network): the line says so, not that the port is taken.
    void anAddressTheMachineNoLongerHasIsSaid()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        f.settings.web()->setWebInterface(QStringLiteral("198.51.100.7"));
        serve(f, port);
        QTRY_COMPARE(f.text("webStatusText"),
                     QStringLiteral("Adresse 198.51.100.7 absente de cette machine : choisir une autre interface"));
        QCOMPARE(f.at("webStatusIcon")->property("symbol").toString(),
                 QStringLiteral("exclamationmark.triangle.fill"));
        QCOMPARE(f.at("webInterfaceMenu")->property("displayText").toString(),
                 QStringLiteral("198.51.100.7 (absente de cette machine)"));
    }

    void aNewCodeReplacesTheOldOneAtOnce()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        serve(f, port, QStringLiteral("127.0.0.1"));
        QTRY_COMPARE(f.web.serverPort(), port);
        const QString old = f.text("webAccessCode");
        QCOMPARE(request("POST", port, QStringLiteral("/api/blackout"), old), 200);
        f.click("newAccessCode");
        const QString fresh = f.text("webAccessCode");
        QVERIFY2(Preferences::isWebAccessCode(fresh), qPrintable(fresh));
        QVERIFY(fresh != old);
        QCOMPARE(stored("webAccessCode").toString(), fresh);
        // In force without Apply, and the server kept running.
        QCOMPARE(request("POST", port, QStringLiteral("/api/blackout"), old), 401);
        QCOMPARE(request("POST", port, QStringLiteral("/api/blackout"), fresh), 200);
        QCOMPARE(f.web.serverPort(), port);
    }

    void aTypedCodeIsTakenOnlyWhole()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        serve(f, port, QStringLiteral("127.0.0.1"));
        QTRY_COMPARE(f.web.serverPort(), port);
        const QString old = f.text("webAccessCode");
        f.type("webAccessCode", QStringLiteral("kair")); // half a code: shown refused, not stored
        QVERIFY(f.at("webAccessCode")->property("invalid").toBool());
        QCOMPARE(stored("webAccessCode").toString(), old);
        f.type("webAccessCode", QStringLiteral("i0o1kairon26")); // I, O, 0 and 1 are refused
        QCOMPARE(f.text("webAccessCode"), QStringLiteral("karn26"));
        QCOMPARE(stored("webAccessCode").toString(), old);
        f.type("webAccessCode", QStringLiteral("gala2026"));
        QCOMPARE(stored("webAccessCode").toString(), old); // 0 is refused: "gala226" is 7 long
        f.type("webAccessCode", QStringLiteral("gala2728"));
        QCOMPARE(stored("webAccessCode").toString(), QStringLiteral("GALA2728"));
        QVERIFY(!f.at("webAccessCode")->property("invalid").toBool());
        QCOMPARE(request("POST", port, QStringLiteral("/api/blackout"), QStringLiteral("GALA2728")), 200);
        // Text that is not a whole code gives way to the stored code once the field is left.
        f.type("webAccessCode", QStringLiteral("ABC"));
        f.click("webPort");
        QTRY_COMPARE(f.text("webAccessCode"), QStringLiteral("GALA2728"));
        keepScreenshot(f.shot(), shotName(f, "settings-web-typed-code"));
    }

    // Each QR code, taken from the window's picture, reads back as its page's exact URL; its
    // modules are whole device pixels of pure black and white, at least 5 (10 at twice the scale)
    // to a module, the symbol with its quiet zone over 150 pixels.
    void eachQRCodeReadsAsItsPagesURL()
    {
        const quint16 port = freeTcpPort();
        SettingsFixture f;
        serve(f, port, QStringLiteral("127.0.0.1"));
        QTRY_COMPARE(f.web.serverPort(), port);
        const QString base = QStringLiteral("http://127.0.0.1:%1").arg(port);
        const QStringList urls{base + "/stage", base + "/confidence", base + "/overlay", base + "/"};
        const QStringList titles{"Stage", "Confidence", "Overlay", "Accueil"};
        QVERIFY(!f.at("webPage1_0")); // bound to one address: that one only
        const qreal ratio = f.settingsWindow->effectiveDevicePixelRatio();
        QQuickItem *page = f.at("webTab");
        const QRectF shown = page->mapRectToScene(QRectF(0, 0, page->width(), page->height()));
        for (int p = 0; p < 4; ++p) {
            const QByteArray name = "webPage0_" + QByteArray::number(p);
            QCOMPARE(f.at(name.constData())->property("title").toString(), titles[p]);
            auto *code = qobject_cast<QrCodeItem *>(f.at((name + "Qr").constData()));
            QVERIFY(code);
            QCOMPARE(code->text(), urls[p]);
            scrollTo(f, code);
            QTRY_VERIFY(shown.contains(code->mapRectToScene(QRectF(0, 0, code->width(), code->height()))));
            const QImage shot = f.shot();
            // The pixels wholly inside the item: its edges may fall between two pixels.
            const QImage symbol = shot.copy(deviceRect(f, code).adjusted(1, 1, -1, -1));
            const QStringList read = decoded(symbol);
            if (read != QStringList{urls[p]}) {
                keepScreenshot(symbol, shotName(f, "settings-web-qr-unread"));
                keepScreenshot(shot, shotName(f, "settings-web-qr-unread-window"));
            }
            QCOMPARE(read, QStringList{urls[p]});
            QVERIFY(code->modulePixels() >= 5 * ratio);
            QVERIFY(code->moduleCount() * code->modulePixels() >= 150 * ratio);
            for (int y = 0; y < symbol.height(); ++y)
                for (int x = 0; x < symbol.width(); ++x) {
                    const QRgb pixel = symbol.pixel(x, y) & 0xFFFFFF;
                    if (pixel != 0 && pixel != 0xFFFFFF)
                        QFAIL(qPrintable(QStringLiteral("#%1 at %2,%3 of the code of %4")
                                             .arg(pixel, 6, 16, QChar(u'0')).arg(x).arg(y).arg(urls[p])));
                }
            if (p == 0)
                keepScreenshot(shot, shotName(f, "settings-web-qr-stage"));
        }
    }

    void theAddressesFollowWhatTheServerIsBoundTo()
    {
        using Entry = WebAddresses::InterfaceAddress;
        const Entry lo{QStringLiteral("lo"), QHostAddress(QStringLiteral("127.0.0.1")), true};
        const Entry eth{QStringLiteral("eth0"), QHostAddress(QStringLiteral("192.168.1.20")), false};
        const Entry wifi{QStringLiteral("wlan0"), QHostAddress(QStringLiteral("10.0.0.7")), false};
        using WebAddresses::reachableAt;
        // Every interface: each address but the loopback, which no other device reaches…
        QVERIFY(reachableAt({lo, eth, wifi}, QHostAddress(QHostAddress::Any)) == (QList<Entry>{eth, wifi}));
        // …unless the machine has no other.
        QVERIFY(reachableAt({lo}, QHostAddress(QHostAddress::Any)) == QList<Entry>{lo});
        // One address: that one, the loopback too when it is the one chosen.
        QVERIFY(reachableAt({lo, eth, wifi}, QHostAddress(QStringLiteral("10.0.0.7"))) == QList<Entry>{wifi});
        QVERIFY(reachableAt({lo, eth}, QHostAddress(QStringLiteral("127.0.0.1"))) == QList<Entry>{lo});
        // Not serving: none.
        QVERIFY(reachableAt({lo, eth}, QHostAddress()).isEmpty());
        QCOMPARE(WebAddresses::pageUrl(QHostAddress(QStringLiteral("10.0.0.7")), 8080, QStringLiteral("/")),
                 QStringLiteral("http://10.0.0.7:8080/"));
        QCOMPARE(WebAddresses::pageUrl(QHostAddress(QStringLiteral("10.0.0.7")), 80, QStringLiteral("/stage")),
                 QStringLiteral("http://10.0.0.7:80/stage"));
    }
};

QTEST_MAIN(TestSettingsWeb)
#include "tst_settings_web.moc"
