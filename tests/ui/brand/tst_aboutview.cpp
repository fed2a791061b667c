#include "brandview.h"
#include "iconset.h"
#include "temphome.h"

#include <QDesktopServices>
#include <QFont>

namespace {

QString textOf(const QQuickItem *item)
{
    return item->property("text").toString();
}

// The text items under `item`, depth first.
QList<QQuickItem *> texts(QQuickItem *item)
{
    QList<QQuickItem *> found;
    for (QQuickItem *child : item->childItems()) {
        if (child->property("text").isValid())
            found << child;
        found << texts(child);
    }
    return found;
}

} // namespace

// Receives the addresses the views ask the desktop to open, in place of the user's browser.
class BrowserStandIn : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public slots:
    void open(const QUrl &url) { opened << url; }
};

// The about panel, rendered offscreen on a first run: no logo yet, so the drawn one.
class TestAboutView : public QObject
{
    Q_OBJECT

    std::optional<TempHome> m_home;

private slots:
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void showsTheProductTheMakerAndItsLinks()
    {
        BrandAssets assets(QUrl{});
        BrandView about("AboutView.qml", assets);
        const QImage shot = about.grab();
        DisplayFixture::keep(shot, QStringLiteral("brand-about"));
        QCOMPARE(about.item->width(), 460.0);
        const QColor bgPanel = toQColor(AppTheme::bgPanel);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, about.rect(), QColor(1, 2, 3)), bgPanel);

        QCOMPARE(BrandView::inWindow(about.find("aboutLogo")).topLeft(), about.rect().topLeft() + QPoint(28, 28));
        QVERIFY(about.find("drawnLogo")->isVisible());

        QQuickItem *product = about.find("productName");
        QQuickItem *version = about.find("version");
        QCOMPARE(textOf(product), QStringLiteral("Kairon"));
        QCOMPARE(textOf(version), QStringLiteral("1.0.0"));
        QCOMPARE(assets.version(), QStringLiteral("1.0.0"));
        for (const QQuickItem *text : {product, version}) {
            const QFont font = text->property("font").value<QFont>();
            QCOMPARE(font.pixelSize(), 15);
            QVERIFY(font.bold());
            QCOMPARE(text->property("color").value<QColor>(), QColor(Qt::white));
        }

        QStringList taglines;
        for (QQuickItem *text : texts(about.item.get()))
            if (text->objectName() == QLatin1String("tagline")) {
                taglines << textOf(text);
                QCOMPARE(text->property("font").value<QFont>().pixelSize(), 11);
            }
        QCOMPARE(taglines, Brand::taglines());

        const QList<std::pair<const char *, QString>> identity{
            {"identity:building.2", Brand::companyName()},
            {"identity:mappin.and.ellipse", Brand::postalAddress()},
            {"identity:number", Brand::vatNumber()},
            {"identity:phone", Brand::phoneNumber()},
            {"identity:envelope", Brand::emailAddress()}};
        for (const auto &[row, value] : identity) {
            QQuickItem *line = about.find(row);
            QQuickItem *label = findQuickItem(line, QStringLiteral("identityLabel"));
            QQuickItem *shown = findQuickItem(line, QStringLiteral("identityValue"));
            QVERIFY2(label && shown, row);
            QCOMPARE(label->width(), 50.0);
            QCOMPARE(textOf(shown), value);
            const QString symbol = QString::fromLatin1(row).section(u':', 1);
            QCOMPARE(textOf(line->childItems().first()), IconSet::glyph(symbol));
        }

        QCOMPARE(textOf(about.find("siteLink")), QStringLiteral("Site web"));
        QCOMPARE(textOf(about.find("privacyLink")), QStringLiteral("Confidentialité"));
        QCOMPARE(textOf(about.find("termsLink")), QStringLiteral("CGV / CGL"));
        QQuickItem *closing = about.find("copyright");
        QCOMPARE(textOf(closing), QStringLiteral("© 2026 Orv Audiovisual — Tous droits réservés"));
        QCOMPARE(closing->property("font").value<QFont>().pixelSize(), 11);
        QCOMPARE(closing->property("color").value<QColor>(), toQColor(AppTheme::textMuted));
        // The padding below the last line.
        QCOMPARE(qRound(closing->mapToScene(QPointF(0, closing->height())).y()) + 28,
                 about.rect().bottom() + 1);
    }

    void theLinksOpenInTheUsersBrowser()
    {
        BrowserStandIn browser;
        QDesktopServices::setUrlHandler(QStringLiteral("https"), &browser, "open");
        BrandAssets assets(QUrl{});
        BrandView about("AboutView.qml", assets);
        about.grab();
        for (const char *link : {"siteLink", "privacyLink", "termsLink"}) {
            const QRect at = BrandView::inWindow(about.find(link));
            QTest::mouseClick(&about.window, Qt::LeftButton, {}, at.center());
        }
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QCOMPARE(browser.opened, (QList<QUrl>{Brand::siteUrl(), Brand::privacyUrl(), Brand::termsUrl()}));
    }
};

QTEST_MAIN(TestAboutView)
#include "tst_aboutview.moc"
