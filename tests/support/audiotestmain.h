#pragma once

#include "processexit.h"

#include <QCoreApplication>
#include <QTest>

// QTEST_GUILESS_MAIN for a test that talks to a sound server: the test ends the way the
// application does, through exitProcess(), once its QCoreApplication is gone. Ending through
// static destructors lets Qt's PulseAudio engine race its own main loop thread at exit, which
// aborts about one run in thirty, after every test function has passed.
#define KAIRON_AUDIO_TEST_MAIN(TestObject)                                                         \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        int status = 0;                                                                            \
        {                                                                                          \
            QCoreApplication app(argc, argv);                                                      \
            TestObject test;                                                                       \
            status = QTest::qExec(&test, argc, argv);                                              \
        }                                                                                          \
        exitProcess(status);                                                                       \
    }
