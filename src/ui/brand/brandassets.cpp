#include "brandassets.h"

#include "userfolders.h"
#include "version.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStandardPaths>

namespace {

// A logo is a few hundred kilobytes at most; anything far larger is not one.
constexpr qint64 maxLogoBytes = 8 * 1024 * 1024;
constexpr int fetchTimeoutMs = 30'000;

QImage readCachedLogo()
{
    QFile file(BrandAssets::cacheFilePath());
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxLogoBytes)
        return {};
    return QImage::fromData(file.readAll());
}

// Replaces the cached logo in one step: a reader sees the old file or the new, never half, and
// a disk that refuses the new one keeps the old.
bool writeCachedLogo(const QByteArray &data)
{
    const QString path = BrandAssets::cacheFilePath();
    return QDir().mkpath(QFileInfo(path).absolutePath()) && UserFolders::writeAtomically(path, data);
}

} // namespace

BrandAssets::BrandAssets(const QUrl &remote, QObject *parent)
    : QObject(parent), m_remote(remote), m_logo(readCachedLogo())
{
}

QString BrandAssets::cacheFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
           + QStringLiteral("/Kairon/logo.png");
}

QUrl BrandAssets::logoSource() const
{
    if (!hasLogo())
        return {};
    QUrl url = QUrl::fromLocalFile(cacheFilePath());
    url.setQuery(QStringLiteral("revision=%1").arg(m_revision));
    return url;
}

bool BrandAssets::downloading() const
{
    return m_reply != nullptr;
}

QString BrandAssets::version() const
{
    return QStringLiteral(KAIRON_VERSION);
}

void BrandAssets::downloadRemote()
{
    if (m_reply || !m_remote.isValid() || m_remote.isEmpty())
        return;
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(m_remote);
    request.setTransferTimeout(fetchTimeoutMs);
    QNetworkReply *reply = m_network->get(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > maxLogoBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, &BrandAssets::finishDownload);
    emit downloadingChanged();
}

void BrandAssets::finishDownload()
{
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    reply->deleteLater();
    if (reply->error() == QNetworkReply::NoError) {
        const QByteArray data = reply->readAll();
        const QImage logo = QImage::fromData(data);
        // Shown from the cache file: a logo that could not be kept there is not shown either.
        if (!logo.isNull() && writeCachedLogo(data))
            publish(logo);
    }
    emit downloadingChanged();
}

void BrandAssets::publish(const QImage &logo)
{
    m_logo = logo;
    ++m_revision;
    emit logoChanged();
}
