#pragma once

#include "apptheme.h"

#include <QColor>
#include <QObject>
#include <QQmlEngine>

inline QColor toQColor(const ThemeColor &c)
{
    QColor color(c.red, c.green, c.blue);
    color.setAlphaF(float(c.alpha));
    return color;
}

// The palette for QML, as the singleton AppTheme: the same constants as the C++ code's.
class ThemeSingleton : public QObject
{
    Q_OBJECT
    QML_NAMED_ELEMENT(AppTheme)
    QML_SINGLETON

    Q_PROPERTY(QColor accent READ accent CONSTANT FINAL)
    Q_PROPERTY(QColor accentLogo READ accentLogo CONSTANT FINAL)
    Q_PROPERTY(QColor accentHover READ accentHover CONSTANT FINAL)
    Q_PROPERTY(QColor accentBorder READ accentBorder CONSTANT FINAL)
    Q_PROPERTY(QColor bgDeep READ bgDeep CONSTANT FINAL)
    Q_PROPERTY(QColor bgMain READ bgMain CONSTANT FINAL)
    Q_PROPERTY(QColor bgPanel READ bgPanel CONSTANT FINAL)
    Q_PROPERTY(QColor bgElevated READ bgElevated CONSTANT FINAL)
    Q_PROPERTY(QColor bgInput READ bgInput CONSTANT FINAL)
    Q_PROPERTY(QColor textPrimary READ textPrimary CONSTANT FINAL)
    Q_PROPERTY(QColor textSecondary READ textSecondary CONSTANT FINAL)
    Q_PROPERTY(QColor textMuted READ textMuted CONSTANT FINAL)
    Q_PROPERTY(QColor stateNormal READ stateNormal CONSTANT FINAL)
    Q_PROPERTY(QColor stateWarning READ stateWarning CONSTANT FINAL)
    Q_PROPERTY(QColor stateDanger READ stateDanger CONSTANT FINAL)
    Q_PROPERTY(QColor stateOvertime READ stateOvertime CONSTANT FINAL)
    Q_PROPERTY(QColor separator READ separator CONSTANT FINAL)
    Q_PROPERTY(QColor success READ success CONSTANT FINAL)

    // The typefaces: text in Inter, countdowns in DejaVu Sans, whose digits all have the same
    // width so that a changing number never shifts sideways.
    Q_PROPERTY(QString textFont READ textFont CONSTANT FINAL)
    Q_PROPERTY(QString digitsFont READ digitsFont CONSTANT FINAL)

public:
    QColor accent() const { return toQColor(AppTheme::accent); }
    QColor accentLogo() const { return toQColor(AppTheme::accentLogo); }
    QColor accentHover() const { return toQColor(AppTheme::accentHover); }
    QColor accentBorder() const { return toQColor(AppTheme::accentBorder); }
    QColor bgDeep() const { return toQColor(AppTheme::bgDeep); }
    QColor bgMain() const { return toQColor(AppTheme::bgMain); }
    QColor bgPanel() const { return toQColor(AppTheme::bgPanel); }
    QColor bgElevated() const { return toQColor(AppTheme::bgElevated); }
    QColor bgInput() const { return toQColor(AppTheme::bgInput); }
    QColor textPrimary() const { return toQColor(AppTheme::textPrimary); }
    QColor textSecondary() const { return toQColor(AppTheme::textSecondary); }
    QColor textMuted() const { return toQColor(AppTheme::textMuted); }
    QColor stateNormal() const { return toQColor(AppTheme::stateNormal); }
    QColor stateWarning() const { return toQColor(AppTheme::stateWarning); }
    QColor stateDanger() const { return toQColor(AppTheme::stateDanger); }
    QColor stateOvertime() const { return toQColor(AppTheme::stateOvertime); }
    QColor separator() const { return toQColor(AppTheme::separator); }
    QColor success() const { return toQColor(AppTheme::success); }

    QString textFont() const { return QStringLiteral("Inter"); }
    QString digitsFont() const { return QStringLiteral("DejaVu Sans"); }
};
