#pragma once

#include <QKeySequence>
#include <QObject>
#include <QQmlEngine>

// Key combinations as this platform writes them: "Ctrl+Z" here, "⌘Z" on macOS.
class KeyText : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    // `portable` in Qt's portable form ("Ctrl+Left").
    Q_INVOKABLE static QString native(const QString &portable)
    {
        return QKeySequence(portable, QKeySequence::PortableText).toString(QKeySequence::NativeText);
    }
};
