#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTest>

// The bytes of a fixture in tests/data.
inline QByteArray readTestData(const QString &name)
{
    QFile file(QStringLiteral(KAIRON_TEST_DATA "/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test fixture %s", qPrintable(file.fileName()));
    return file.readAll();
}
