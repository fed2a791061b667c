#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>

// The one icon set of the interface: the Material Icons font from the system's packages, and
// the glyph of each symbol name the views use, in one table.
class IconSet : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT FINAL)

public:
    using QObject::QObject;

    QString fontFamily() const { return QStringLiteral("Material Icons"); }
    // The glyph of a symbol name ("arrow.right.circle.fill"); empty for an unknown name.
    Q_INVOKABLE static QString glyph(const QString &symbol);
    // Every symbol name of the table, for the test that checks the font has each glyph.
    static QStringList symbols();
};
