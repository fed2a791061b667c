// The project library page on a large library: from the moment the flow enters `sessions`
// to the first frame that shows the page filled with its rows, for 5,000 projects and for 50.
// Each entry makes a new page that lists the folder from scratch, as the application does.
// Prints the first entry and the median and maximum of the next ones.
// Run: QT_QPA_PLATFORM=offscreen build/bench/bench_librarypage [runs]
#include "appfixture.h"
#include "benchsupport.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

TimerSession projectOf(int number)
{
    TimerSession s;
    s.name = QStringLiteral("Convention annuelle des partenaires — édition %1").arg(number);
    s.client = QStringLiteral("Entreprise X");
    s.venue = QStringLiteral("Palais des Congrès de Lyon");
    s.operatorName = QStringLiteral("Max");
    s.eventDate = QDateTime(QDate(2026, 12, 1), QTime(19, 0), Qt::UTC);
    for (int i = 0; i < 8; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Intervention %1").arg(i + 1);
        cue.speaker = QStringLiteral("Orateur %1").arg(i + 1);
        cue.duration = 600 + 60 * i;
        s.cues << cue;
    }
    return s;
}

bool hasRows(QQuickItem *list)
{
    const auto *content = list->property("contentItem").value<QQuickItem *>();
    for (QQuickItem *row : content->childItems())
        if (row->objectName().startsWith(QStringLiteral("projectRow:")))
            return true;
    return false;
}

// Enters the library `runs` times from the console and times each first filled frame.
std::vector<double> measure(AppFlowState &flow, QQuickWindow *window, int projects, int runs)
{
    std::vector<double> ms;
    for (int run = 0; run <= runs; ++run) {
        flow.setStage(AppFlowState::Workspace);
        if (!QTest::qWaitFor([&] { return !findQuickItem(window->contentItem(), "sessionManagerView"); }, 5000))
            qFatal("the library page did not go");
        QElapsedTimer timer;
        double elapsed = -1;
        // The first frame swapped with the rows of the listing laid out.
        auto connection = QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] {
            QQuickItem *list = findQuickItem(window->contentItem(), "projectList");
            if (elapsed < 0 && list && list->property("count").toInt() == projects && hasRows(list))
                elapsed = timer.nsecsElapsed() / 1e6;
        });
        timer.start();
        flow.setStage(AppFlowState::Sessions);
        if (!QTest::qWaitFor([&] { return elapsed >= 0; }, 10000))
            qFatal("no frame showed the %d projects", projects);
        QObject::disconnect(connection);
        ms.push_back(elapsed);
    }
    return ms;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 10;
    AppFixture f; // the whole application in a temporary home; the clock plays no part here

    int saved = 0;
    for (const int projects : {50, 5000}) {
        for (; saved < projects; ++saved)
            f.store.save(projectOf(saved));
        std::vector<double> ms = measure(f.flow, f.operatorWindow, projects, runs);
        // The first entry also loads the page's components.
        std::printf("%d projects, first entry to its first filled frame: %.1f ms\n", projects, ms.front());
        ms.erase(ms.begin());
        printMedianAndMax(qPrintable(QStringLiteral("%1 projects, next entries").arg(projects)), ms);
    }
    return 0;
}
