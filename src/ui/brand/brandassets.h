#pragma once

#include "brand.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QStringList>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// The maker's brand for the views: its identity, the product's version, and its logo.
//
// The logo is the last one fetched from the maker's site, kept in the user's caches at
// `cacheFilePath()` (GenericCacheLocation + "/Kairon/logo.png", so ~/.cache/Kairon/logo.png on
// Linux). A cached logo that decodes is shown from creation on, without the network;
// `downloadRemote()` then fetches the current one in the background and, when it decodes,
// writes it to the cache and shows it. A failed fetch changes nothing and reports nothing.
// Views without a logo draw the product's mark instead.
//
// It lives with the brand's own views (the logo, its mark, the about panel); the splash, the
// library, the console and the settings show the logo through them.
class BrandAssets : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application creates the brand once and hands it to the views.")

    // The logo for an Image: the cache file with a revision that changes with each new logo,
    // so that an Image shows the new one; empty while there is none.
    Q_PROPERTY(bool hasLogo READ hasLogo NOTIFY logoChanged FINAL)
    Q_PROPERTY(QUrl logoSource READ logoSource NOTIFY logoChanged FINAL)
    Q_PROPERTY(bool downloading READ downloading NOTIFY downloadingChanged FINAL)

    Q_PROPERTY(QString productName READ productName CONSTANT FINAL)
    Q_PROPERTY(QString version READ version CONSTANT FINAL)
    Q_PROPERTY(QString companyName READ companyName CONSTANT FINAL)
    Q_PROPERTY(QStringList taglines READ taglines CONSTANT FINAL)
    Q_PROPERTY(QString postalAddress READ postalAddress CONSTANT FINAL)
    Q_PROPERTY(QString vatNumber READ vatNumber CONSTANT FINAL)
    Q_PROPERTY(QString phoneNumber READ phoneNumber CONSTANT FINAL)
    Q_PROPERTY(QString emailAddress READ emailAddress CONSTANT FINAL)
    Q_PROPERTY(QUrl siteUrl READ siteUrl CONSTANT FINAL)
    Q_PROPERTY(QUrl privacyUrl READ privacyUrl CONSTANT FINAL)
    Q_PROPERTY(QUrl termsUrl READ termsUrl CONSTANT FINAL)
    Q_PROPERTY(QString copyrightNotice READ copyrightNotice CONSTANT FINAL)

public:
    // `remote`: where downloadRemote() fetches the logo; an empty address fetches nothing.
    explicit BrandAssets(const QUrl &remote = Brand::logoAddress(), QObject *parent = nullptr);

    static QString cacheFilePath();

    QImage logo() const { return m_logo; }
    bool hasLogo() const { return !m_logo.isNull(); }
    QUrl logoSource() const;
    bool downloading() const;

    // Fetches the remote logo in the background; does nothing while a fetch is under way.
    Q_INVOKABLE void downloadRemote();

    QString productName() const { return Brand::productName(); }
    QString version() const;
    QString companyName() const { return Brand::companyName(); }
    QStringList taglines() const { return Brand::taglines(); }
    QString postalAddress() const { return Brand::postalAddress(); }
    QString vatNumber() const { return Brand::vatNumber(); }
    QString phoneNumber() const { return Brand::phoneNumber(); }
    QString emailAddress() const { return Brand::emailAddress(); }
    QUrl siteUrl() const { return Brand::siteUrl(); }
    QUrl privacyUrl() const { return Brand::privacyUrl(); }
    QUrl termsUrl() const { return Brand::termsUrl(); }
    QString copyrightNotice() const { return Brand::copyrightNotice(); }

signals:
    void logoChanged();
    void downloadingChanged();

private:
    void finishDownload();
    void publish(const QImage &logo);

    QUrl m_remote;
    QNetworkAccessManager *m_network = nullptr; // made on the first fetch
    QPointer<QNetworkReply> m_reply;            // the fetch under way
    QImage m_logo;
    int m_revision = 0;
};
