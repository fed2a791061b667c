#include "displayfixture.h"
#include "theme.h"

using namespace std::chrono_literals;

namespace {

const QColor bgDeep = toQColor(AppTheme::bgDeep);
const QColor bannerBackground = blend(Qt::black, 0.7, bgDeep);

// A long operator's message, of which the tests take as many words as fill the lines they want.
const QString longMessage = QStringLiteral(
    "Merci de conclure, il reste deux minutes avant la pause déjeuner, puis nous accueillerons sur "
    "la grande scène les lauréats du prix de la fondation pour la photographie officielle avec tous "
    "les partenaires et les mécènes de la soirée, qui nous font l'honneur de leur présence ce soir, "
    "avant le dîner servi dans les salons du premier étage où l'orchestre de chambre jouera jusqu'à "
    "minuit pour tous les invités de la fondation et leurs familles venues de loin.");

QString tagOf(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

// The stage's message banner against the content above it: at every window shape, with one to
// three lines of message, the banner stays where it is (60 above the bottom edge) and the
// digits, the bar and the badge stay whole above it, lifted and made smaller when they must.
class TestStageBanner : public QObject
{
    Q_OBJECT

    // The longest beginning of the long message that the banner lays out on `lines` lines at
    // its size, put on air.
    static QString putMessageOfLines(DisplayFixture &f, int lines, bool urgent = false)
    {
        const QStringList words = longMessage.split(u' ');
        QQuickItem *text = f.item("bannerText");
        QString fitting;
        for (qsizetype n = 1; n <= words.size(); ++n) {
            const QString message = words.first(n).join(u' ');
            f.engine.sendMessage(message, urgent);
            QCoreApplication::processEvents();
            const int taken = text->property("naturalLines").toInt();
            if (taken > lines)
                break;
            if (taken == lines)
                fitting = message;
        }
        if (fitting.isEmpty())
            qFatal("no message takes %d lines", lines);
        f.engine.sendMessage(fitting, urgent);
        QCoreApplication::processEvents();
        return fitting;
    }

    // The banner's top as drawn: the first row of its background above its middle.
    static int drawnBannerTop(DisplayFixture &f, const QImage &shot)
    {
        const QRect area = f.sceneRect(f.item("banner"));
        const int x = area.left() + 20; // in the padding, clear of the rounded corner
        int top = area.center().y();
        while (top > 0 && near(QColor(shot.pixel(x, top - 1)), bannerBackground))
            --top;
        return top;
    }

    static void addSizesAndLines()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("lines");
        // The described screens, the console's preview, a phone held sideways, a small window.
        for (const QSize size : {QSize(1280, 720), QSize(1920, 1080), QSize(3840, 2160), QSize(1150, 750),
                                 QSize(844, 390), QSize(700, 400)})
            for (int lines = 1; lines <= 3; ++lines)
                QTest::addRow("%dx%d, %d line(s)", size.width(), size.height(), lines) << size << lines;
    }

private slots:
    void theBarAndTheDigitsStayWholeAboveTheBanner_data() { addSizesAndLines(); }
    void theBarAndTheDigitsStayWholeAboveTheBanner()
    {
        QFETCH(QSize, size);
        QFETCH(int, lines);
        DisplayFixture f("StageWindow.qml", size);
        f.engine.loadSession(showOf({durationCue("Keynote", 600), durationCue("Table ronde", 1200)}));
        f.engine.start();
        f.advance(150s);
        f.engine.tick();
        f.grab(); // laid out
        QQuickItem *time = f.item("stageTime");
        QQuickItem *bar = f.item("progressBar");
        const QRect timeAlone = sceneBounds(time);
        const int fullSize = pixelSize(time);
        QCOMPARE(fullSize, qRound(size.width() * 0.22));

        putMessageOfLines(f, lines);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("stage-banner-%1-lines-%2").arg(lines).arg(tagOf(size)));

        // The banner where it is described: 60 above the bottom edge, its text at its size
        // (smaller only past the lower half of the window).
        QQuickItem *banner = f.item("banner");
        QQuickItem *text = f.item("bannerText");
        const QRect area = f.sceneRect(banner);
        QCOMPARE(area.bottom() + 1, size.height() - 60);
        QCOMPARE(pixelSize(text), qRound(std::min(size.width() * 0.05, 64.0)));
        if (size.height() >= 720)
            QVERIFY(!text->property("shrunk").toBool());
        QVERIFY(area.top() >= qFloor(size.height() * 0.5));
        const int top = drawnBannerTop(f, shot);
        QCOMPARE(top, area.top());

        // The bar whole above it: its track at the right end and its fill, in their colours.
        const QRect track = f.sceneRect(bar);
        QCOMPARE(track.width(), qRound(size.width() * 0.6));
        QVERIFY2(track.bottom() < top, qPrintable(QStringLiteral("bar to %1, banner from %2").arg(track.bottom()).arg(top)));
        KAIRON_COMPARE_COLOUR(QColor(shot.pixel(track.right() - 10, track.center().y())), blend(Qt::white, 0.1, bgDeep));
        KAIRON_COMPARE_COLOUR(QColor(shot.pixel(f.sceneRect(f.item("progressFill")).center())),
                              toQColor(AppTheme::stateNormal));

        // The digits whole: the name, the digits and the bar inside the window, above the
        // banner, and the green ink of "07:30" with a blank row above and below it.
        QCOMPARE(time->property("text").toString(), QStringLiteral("07:30"));
        const QRect digits = sceneBounds(time);
        const QRect name = sceneBounds(f.item("cueName"));
        QVERIFY2(name.top() >= 0 && name.bottom() < digits.top() && digits.bottom() < track.top(),
                 qPrintable(QStringLiteral("name %1..%2, digits %3..%4, bar at %5")
                                .arg(name.top()).arg(name.bottom()).arg(digits.top()).arg(digits.bottom()).arg(track.top())));
        const QRect ink = inkOf(shot, digits, toQColor(AppTheme::stateNormal));
        QVERIFY(ink.top() > digits.top() && ink.bottom() < digits.bottom() && ink.bottom() < top);
        QVERIFY2(ink.width() > size.width() * 0.2, qPrintable(QString::number(ink.width())));

        // Where the content fitted above the banner, it did not move; where it fitted once
        // lifted, it kept its size.
        const int gap = qRound(size.height() * 0.02);
        if (timeAlone.bottom() + 1 + (track.bottom() - digits.bottom()) <= top - gap)
            QCOMPARE(digits, timeAlone);
        if (size.width() >= 1920)
            QCOMPARE(pixelSize(time), fullSize);
        else
            QVERIFY(pixelSize(time) <= fullSize);
    }

    // A freeze badge under the bar stays above the banner too.
    void theFreezeBadgeStaysAboveTheBanner()
    {
        DisplayFixture f("StageWindow.qml", QSize(1280, 720));
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.start();
        f.engine.toggleFreeze();
        putMessageOfLines(f, 3, true);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("stage-banner-freeze-1280x720"));
        const QRect badge = f.sceneRect(f.item("freezeBadge"));
        QVERIFY(f.item("freezeBadge")->isVisible());
        QVERIFY2(badge.bottom() < f.sceneRect(f.item("banner")).top(), qPrintable(QString::number(badge.bottom())));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, badge, bgDeep), toQColor(AppTheme::stateWarning));
    }

    // A message far longer than three lines gets smaller rather than taller.
    void aVeryLongMessageGetsSmallerNotTaller_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1920x1080") << QSize(1920, 1080);
        QTest::newRow("844x390") << QSize(844, 390);
    }

    void aVeryLongMessageGetsSmallerNotTaller()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.start();
        f.engine.sendMessage(longMessage, false);
        QCoreApplication::processEvents();
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("stage-banner-long-%1").arg(tagOf(size)));
        QQuickItem *text = f.item("bannerText");
        QVERIFY(text->property("naturalLines").toInt() > 3);
        QVERIFY(text->property("shrunk").toBool());
        QVERIFY(!text->property("truncated").toBool());
        QVERIFY(text->property("contentHeight").toDouble() <= text->height());
        QVERIFY(text->property("contentWidth").toDouble() <= text->width() + 0.5);
        const QRect area = f.sceneRect(f.item("banner"));
        QCOMPARE(area.bottom() + 1, size.height() - 60);
        QVERIFY(area.top() >= qFloor(size.height() * 0.5));
        QVERIFY(sceneBounds(f.item("progressBar")).bottom() < area.top());
        QVERIFY(sceneBounds(f.item("stageTime")).top() >= 0);
    }

    // The wall clock and the doors countdown are digits too.
    void theClockAndTheDoorsStayWholeAboveTheBanner_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("doors");
        for (const QSize size : {QSize(1920, 1080), QSize(844, 390)}) {
            QTest::addRow("clock %s", qPrintable(tagOf(size))) << size << false;
            QTest::addRow("doors %s", qPrintable(tagOf(size))) << size << true;
        }
    }

    void theClockAndTheDoorsStayWholeAboveTheBanner()
    {
        QFETCH(QSize, size);
        QFETCH(bool, doors);
        DisplayFixture f("StageWindow.qml", size);
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        if (doors)
            f.engine.startDoors(QDateTime(QDate(2026, 11, 21), QTime(20, 45), QTimeZone("Europe/Paris")));
        else
            f.engine.setClockMode(true);
        putMessageOfLines(f, 3);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("stage-banner-%1-%2").arg(doors ? "doors" : "clock", tagOf(size)));
        const int top = drawnBannerTop(f, shot);
        QCOMPARE(top, f.sceneRect(f.item("banner")).top());
        QQuickItem *digits = f.item(doors ? "doorsTime" : "clockTime");
        QQuickItem *other = f.item(doors ? "doorsTitle" : "clockDate");
        const QRect digitsRect = sceneBounds(digits);
        const QRect otherRect = sceneBounds(other);
        QVERIFY2(digitsRect.top() >= 0 && otherRect.top() >= 0 && digitsRect.bottom() < top && otherRect.bottom() < top,
                 qPrintable(QStringLiteral("digits %1..%2, banner from %3").arg(digitsRect.top()).arg(digitsRect.bottom()).arg(top)));
        const QRect ink = inkOf(shot, digitsRect, doors ? toQColor(AppTheme::accent) : QColor(Qt::white));
        QVERIFY(ink.top() > digitsRect.top() && ink.bottom() < digitsRect.bottom());
        QVERIFY2(ink.width() > size.width() * 0.2, qPrintable(QString::number(ink.width())));
    }
};

QTEST_MAIN(TestStageBanner)
#include "tst_stagebanner.moc"
