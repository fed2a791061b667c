#include "toastcenter.h"

#include "apptheme.h"
#include "theme.h"

#include <cmath>

ToastCenter::ToastCenter(Clock &clock, QObject *parent) : QObject(parent), m_clock(clock) {}

ToastCenter::~ToastCenter() = default;

QString ToastCenter::symbolFor(ToastMessage::Kind kind)
{
    switch (kind) {
    case ToastMessage::Success: return QStringLiteral("checkmark.circle.fill");
    case ToastMessage::Error: return QStringLiteral("exclamationmark.triangle.fill");
    case ToastMessage::Info: break;
    }
    return QStringLiteral("info.circle.fill");
}

QColor ToastCenter::colorFor(ToastMessage::Kind kind)
{
    switch (kind) {
    case ToastMessage::Success: return toQColor(AppTheme::success);
    case ToastMessage::Error: return toQColor(AppTheme::stateDanger);
    case ToastMessage::Info: break;
    }
    return toQColor(AppTheme::accent);
}

void ToastCenter::show(const QString &text, ToastMessage::Kind kind, double seconds)
{
    m_current = ToastMessage{QUuid::createUuid(), text, kind};
    m_last = *m_current;
    // Replacing the pending dismissal cancels it: the older toast's time is over.
    m_dismissal = m_clock.createTimer([this] { dismiss(); });
    const double ms = std::isfinite(seconds) ? std::max(seconds, 0.0) * 1000.0 : 0.0;
    m_dismissal->start(qint64(std::llround(ms)));
    emit currentChanged();
}

void ToastCenter::dismiss()
{
    if (m_dismissal)
        m_dismissal->stop();
    if (!m_current)
        return;
    m_current.reset();
    emit currentChanged();
}
