// Where an output window opens as a window, and which display is the one an output lost: the
// rules alone, over rectangles.
#include "outputplacement.h"

#include <QTest>

using namespace OutputPlacement;

namespace {

const Screen Operator{"VIRTUAL-1", {0, 0, 1920, 1080}, {0, 0, 1920, 1080}};
const Screen Second{"VIRTUAL-2", {1920, 0, 1280, 720}, {1920, 0, 1280, 720}};
const QRect ConsoleWindow(0, 0, 1150, 750); // the console at its usual size, top left

// A console filling the operator's display, with its top bar, timer and transport.
const QRect FullConsole(0, 0, 1920, 1080);
const QList<QRect> FullConsoleInSight{{0, 0, 1920, 80}, {496, 96, 1408, 430}, {496, 542, 1408, 72}};

bool coversAny(const QRect &rect, const QList<QRect> &rects)
{
    return std::any_of(rects.cbegin(), rects.cend(), [&](const QRect &r) { return r.intersects(rect); });
}

} // namespace

class TestOutputPlacement : public QObject
{
    Q_OBJECT

private slots:
    void aWindowIsAQuarterOfItsDisplayIn16By9()
    {
        QCOMPARE(windowSize({0, 0, 1920, 1080}), QSize(480, 270));
        QCOMPARE(windowSize({0, 0, 1280, 720}), QSize(320, 180));
        QCOMPARE(windowSize({0, 0, 3840, 2160}), QSize(960, 540));
        QCOMPARE(windowSize({0, 0, 1366, 768}), QSize(341, 192));
    }

    void goesToAnotherDisplayWhenThereIsOne()
    {
        const Place place = windowPlace({Operator, Second}, ConsoleWindow, {}, {});
        QCOMPARE(place.screen, 1);
        QCOMPARE(place.rect, QRect(1920 + Margin, Margin, 320, 180));
        // The other output already there as a window: the next corner.
        const Place next = windowPlace({Operator, Second}, ConsoleWindow, {}, {place.rect});
        QCOMPARE(next.screen, 1);
        QCOMPARE(next.rect, QRect(3200 - Margin - 320, Margin, 320, 180));
    }

    void theOtherDisplayCanBeTheFirst()
    {
        const QRect console(1920, 0, 1150, 700);
        const Place place = windowPlace({Operator, Second}, console, {}, {});
        QCOMPARE(place.screen, 0);
        QCOMPARE(place.rect, QRect(Margin, Margin, 480, 270));
    }

    void aDisplayFilledByTheOtherOutputIsNotFree()
    {
        const Place place = windowPlace({Operator, Second}, ConsoleWindow, {}, {Second.geometry});
        QCOMPARE(place.screen, 0);
        QCOMPARE(place.rect, QRect(1150 + Margin, 0, 480, 270)); // right of the console
        const Place next = windowPlace({Operator, Second}, ConsoleWindow, {}, {Second.geometry, place.rect});
        QCOMPARE(next.rect, QRect(1150 + Margin, 270 + Margin, 480, 270)); // under the first
        QVERIFY(!next.rect.intersects(ConsoleWindow));
    }

    void besideTheConsoleOnItsLeftWhenTheRightIsTooNarrow()
    {
        const QRect console(700, 100, 1150, 750);
        const Place place = windowPlace({Operator}, console, {}, {});
        QCOMPARE(place.rect, QRect(700 - Margin - 480, 100, 480, 270));
    }

    void belowTheConsoleWhenItIsWideButShort()
    {
        const QRect console(0, 0, 1920, 600);
        const Place place = windowPlace({Operator}, console, {}, {});
        QCOMPARE(place.rect, QRect(0, 600 + Margin, 480, 270));
        const Place next = windowPlace({Operator}, console, {}, {place.rect});
        QCOMPARE(next.rect, QRect(480 + Margin, 600 + Margin, 480, 270));
    }

    void inACornerOfAConsoleFillingTheDisplay()
    {
        const Place stage = windowPlace({Operator}, FullConsole, FullConsoleInSight, {});
        QCOMPARE(stage.screen, 0);
        QCOMPARE(stage.rect, QRect(Margin, 1080 - Margin - 270, 480, 270)); // bottom left
        const Place confidence = windowPlace({Operator}, FullConsole, FullConsoleInSight, {stage.rect});
        QCOMPARE(confidence.rect, QRect(1920 - Margin - 480, 1080 - Margin - 270, 480, 270));
        QVERIFY(!coversAny(stage.rect, FullConsoleInSight));
        QVERIFY(!coversAny(confidence.rect, FullConsoleInSight));
    }

    // A smaller display where the transport reaches the bottom right: the second window goes
    // above the first, in the bottom left.
    void aboveTheFirstWhenTheOtherBottomCornerIsTaken()
    {
        const Screen laptop{"eDP-1", {0, 0, 1280, 800}, {0, 0, 1280, 800}};
        const QList<QRect> inSight{{0, 0, 1280, 80}, {436, 96, 828, 400}, {436, 512, 828, 288}};
        const Place first = windowPlace({laptop}, laptop.geometry, inSight, {});
        QCOMPARE(first.rect, QRect(Margin, 800 - Margin - 180, 320, 180));
        const Place second = windowPlace({laptop}, laptop.geometry, inSight, {first.rect});
        QCOMPARE(second.rect, QRect(Margin, 800 - Margin - 180 - Margin - 180, 320, 180));
        QVERIFY(!coversAny(second.rect, inSight + QList<QRect>{first.rect}));
    }

    void aTopCornerWhenTheBottomIsKeptInSight()
    {
        const QList<QRect> inSight{{0, 540, 1920, 540}};
        const Place place = windowPlace({Operator}, FullConsole, inSight, {});
        QCOMPARE(place.rect, QRect(Margin, Margin, 480, 270));
    }

    // A console in the middle of the display: smaller windows beside it rather than over it.
    void smallerBesideACentredConsole()
    {
        const QRect console(384, 150, 1152, 780);
        const Place stage = windowPlace({Operator}, console, {}, {});
        QCOMPARE(stage.rect, QRect(1536 + Margin, 150, 360, 203));
        const Place confidence = windowPlace({Operator}, console, {}, {stage.rect});
        QCOMPARE(confidence.rect, QRect(1536 + Margin, 150 + 203 + Margin, 360, 203));
    }

    void theSmallestWindowInAFreeCornerWhenNothingIsFree()
    {
        const Place stage = windowPlace({Operator}, FullConsole, {FullConsole}, {});
        QCOMPARE(stage.screen, 0);
        QCOMPARE(stage.rect, QRect(Margin, 1080 - Margin - 135, 240, 135));
        const Place confidence = windowPlace({Operator}, FullConsole, {FullConsole}, {stage.rect});
        QCOMPARE(confidence.rect, QRect(1920 - Margin - 240, 1080 - Margin - 135, 240, 135));
        // Not even that: over the other one rather than nowhere.
        const Place last = windowPlace({{"tiny", {0, 0, 960, 200}, {0, 0, 960, 200}}},
                                       {0, 0, 960, 200}, {{0, 0, 960, 200}}, {{0, 0, 960, 200}});
        QCOMPARE(last.rect, QRect(Margin, 200 - Margin - 135, 240, 135));
    }

    void keepsOffTheDesktopsPanels()
    {
        const Screen withPanel{"VIRTUAL-1", {0, 0, 1920, 1080}, {0, 32, 1920, 1048}};
        const Place place = windowPlace({withPanel}, FullConsole, {{0, 0, 1920, 80}}, {});
        QCOMPARE(place.rect, QRect(Margin, 1080 - Margin - 270, 480, 270));
        const Place top = windowPlace({withPanel}, FullConsole, {{0, 540, 1920, 540}}, {});
        QCOMPARE(top.rect, QRect(Margin, 32 + Margin, 480, 270));
    }

    void atFourK()
    {
        const Screen uhd{"HDMI-1", {0, 0, 3840, 2160}, {0, 0, 3840, 2160}};
        const QList<QRect> inSight{{0, 0, 3840, 160}, {992, 192, 2816, 860}, {992, 1084, 2816, 144}};
        const Place place = windowPlace({uhd}, uhd.geometry, inSight, {});
        QCOMPARE(place.rect, QRect(Margin, 2160 - Margin - 540, 960, 540));
    }

    void noDisplayNoPlace()
    {
        QCOMPARE(windowPlace({}, ConsoleWindow, {}, {}).screen, -1);
    }

    void findsTheDisplayThatCameBack_data()
    {
        QTest::addColumn<QList<Screen>>("screens");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("geometry");
        QTest::addColumn<int>("match");

        const QRect lost = Second.geometry;
        QTest::newRow("same name and place") << QList<Screen>{Operator, Second} << "VIRTUAL-2" << lost << 1;
        QTest::newRow("same name, elsewhere")
            << QList<Screen>{Operator, {"VIRTUAL-2", {0, 1080, 1920, 1080}, {0, 1080, 1920, 1080}}}
            << "VIRTUAL-2" << lost << 1;
        QTest::newRow("another name, same size and place")
            << QList<Screen>{Operator, {"HDMI-2", lost, lost}} << "VIRTUAL-2" << lost << 1;
        QTest::newRow("the name wins over the place")
            << QList<Screen>{{"HDMI-2", lost, lost}, {"VIRTUAL-2", {0, 1080, 1280, 720}, {}}}
            << "VIRTUAL-2" << lost << 1;
        QTest::newRow("a different display")
            << QList<Screen>{Operator, {"VIRTUAL-3", {1920, 720, 1280, 360}, {}}} << "VIRTUAL-2" << lost << -1;
        QTest::newRow("same size, another place")
            << QList<Screen>{Operator, {"HDMI-2", {1920, 360, 1280, 720}, {}}} << "VIRTUAL-2" << lost << -1;
        QTest::newRow("same place, another size")
            << QList<Screen>{Operator, {"HDMI-2", {1920, 0, 1920, 1080}, {}}} << "VIRTUAL-2" << lost << -1;
        QTest::newRow("nothing to go by")
            << QList<Screen>{{"", {}, {}}} << "" << QRect() << -1;
        QTest::newRow("a geometry alone") << QList<Screen>{Operator, Second} << "" << lost << 1;
    }

    void findsTheDisplayThatCameBack()
    {
        QFETCH(QList<Screen>, screens);
        QFETCH(QString, name);
        QFETCH(QRect, geometry);
        QFETCH(int, match);
        QCOMPARE(matchingScreen(screens, name, geometry), match);
    }
};

QTEST_APPLESS_MAIN(TestOutputPlacement)
#include "tst_outputplacement.moc"
