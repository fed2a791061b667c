#include "osccodec.h"
#include "testdata.h"

#include <QTest>

namespace {

// A datagram written by hand in tests/data/osc, as hexadecimal with blanks and newlines.
QByteArray datagram(const char *name)
{
    QByteArray hex = readTestData(QStringLiteral("osc/%1.hex").arg(QLatin1StringView(name)));
    hex.replace(' ', "").replace('\n', "");
    return QByteArray::fromHex(hex);
}

OSCMessage message(const char *address, std::optional<QString> text = std::nullopt,
                   std::optional<qint32> number = std::nullopt)
{
    return OSCMessage{QString::fromUtf8(address), text, number};
}

} // namespace

class TestOscCodec : public QObject
{
    Q_OBJECT

private slots:
    void paddingEndsWithOneToFourZeroBytes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << "" << QByteArray("\0\0\0\0", 4);
        QTest::newRow("three") << "abc" << QByteArray("abc\0", 4);
        QTest::newRow("four") << "abcd" << QByteArray("abcd\0\0\0\0", 8);
        QTest::newRow("five") << "abcde" << QByteArray("abcde\0\0\0", 8);
        QTest::newRow("utf-8 of four bytes") << "Zoë" << QByteArray("Zo\xc3\xab\0\0\0\0", 8);
        QTest::newRow("byte-order mark kept") << QString(QChar(0xFEFF)) << QByteArray("\xef\xbb\xbf\0", 4);
        QTest::newRow("half a UTF-16 pair: from nothing")
            << QStringLiteral("A") + QChar(0xD800) + QStringLiteral("B") << QByteArray("\0\0\0\0", 4);
        QTest::newRow("half a UTF-16 pair at the end: from nothing")
            << QStringLiteral("Fin") + QChar(0xDC00) << QByteArray("\0\0\0\0", 4);
    }

    void paddingEndsWithOneToFourZeroBytes()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(OSCCodec::padded(text), bytes);
    }

    void decodesWhatCommandsCarry_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<OSCMessage>("expected");
        QTest::newRow("no type tags") << datagram("play-without-typetags") << message("/kairon/play");
        QTest::newRow("no arguments") << datagram("play") << message("/kairon/play");
        QTest::newRow("integer -60") << datagram("adjust-int-minus60")
                                     << message("/kairon/adjust", std::nullopt, -60);
        QTest::newRow("integer FF FF FF E2") << datagram("adjust-int-minus30")
                                             << message("/kairon/adjust", std::nullopt, -30);
        QTest::newRow("float is no integer") << datagram("adjust-float-30") << message("/kairon/adjust");
        QTest::newRow("string") << datagram("message")
                                << message("/kairon/message", QStringLiteral("Merci de conclure"));
        QTest::newRow("integer only") << datagram("message-int-only")
                                      << message("/kairon/message", std::nullopt, 7);
        QTest::newRow("empty string") << datagram("message-empty-string")
                                      << message("/kairon/message", QString());
        QTest::newRow("first of two strings") << datagram("two-strings")
                                              << message("/kairon/message", QStringLiteral("A"));
        QTest::newRow("first of two integers") << datagram("two-ints")
                                               << message("/kairon/adjust", std::nullopt, 1);
        QTest::newRow("unterminated string, then integer from its bytes")
            << datagram("string-unterminated-then-int")
            << message("/kairon/message", std::nullopt, 0x61626364);
        QTest::newRow("double not skipped") << datagram("double-then-int")
                                            << message("/kairon/adjust", std::nullopt, 0x3ff80000);
        QTest::newRow("tag without payload") << datagram("true-then-int")
                                             << message("/kairon/adjust", std::nullopt, 42);
        QTest::newRow("float skipped") << datagram("float-then-int")
                                       << message("/kairon/adjust", std::nullopt, 9);
        QTest::newRow("3-byte address: tags at 4") << datagram("address-of-3-bytes")
                                                   << message("/ab", std::nullopt, 5);
        QTest::newRow("4-byte address: tags at 8") << datagram("address-of-4-bytes")
                                                   << message("/abc", std::nullopt, 6);
        QTest::newRow("type tags not utf-8") << datagram("typetags-not-utf8") << message("/kairon/adjust");
        QTest::newRow("type tags unterminated") << datagram("typetags-unterminated")
                                                << message("/kairon/adjust");
        QTest::newRow("integer truncated") << datagram("int-truncated") << message("/kairon/adjust");
        QTest::newRow("string not utf-8: integer from its place")
            << datagram("string-not-utf8-then-int")
            << message("/kairon/message", std::nullopt, qint32(0xff000000));
        QTest::newRow("capital letter kept") << datagram("capital-play") << message("/kairon/Play");
        QTest::newRow("string starting with a byte-order mark keeps it")
            << datagram("message-starting-with-byte-order-mark")
            << message("/kairon/message", QStringLiteral("\uFEFFFin"));
    }

    void decodesWhatCommandsCarry()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(OSCMessage, expected);
        const std::optional<OSCMessage> decoded = OSCCodec::decode(bytes);
        QVERIFY(decoded);
        QCOMPARE(decoded->address, expected.address);
        QCOMPARE(decoded->stringArg, expected.stringArg);
        QCOMPARE(decoded->intArg, expected.intArg);
    }

    void dropsWhatIsNotAMessage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no zero byte") << datagram("no-zero-byte");
        QTest::newRow("bundle") << datagram("bundle");
        QTest::newRow("address not utf-8") << datagram("address-not-utf8");
        QTest::newRow("address without slash") << datagram("address-without-slash");
        QTest::newRow("byte-order mark before the slash") << datagram("play-after-byte-order-mark");
        QTest::newRow("zero byte first") << QByteArray("\0/kairon/play", 13);
    }

    void dropsWhatIsNotAMessage()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!OSCCodec::decode(bytes));
    }

    void survivesAnyGarbage()
    {
        QByteArray garbage(64 * 1024, Qt::Uninitialized);
        quint32 state = 12345;
        for (char &c : garbage) {
            state = state * 1664525u + 1013904223u;
            c = char(state >> 24);
        }
        OSCCodec::decode(garbage);
        for (int cut = 0; cut < 64; ++cut) {
            const QByteArray full = datagram("send-mixed");
            OSCCodec::decode(full.left(cut));
        }
        garbage[0] = '/';
        garbage[1] = '\0';
        garbage.replace(4, 4, ",fff");
        QCOMPARE(OSCCodec::decode(garbage)->address, QStringLiteral("/"));
    }

    void encodesTheStateMessages_data()
    {
        QTest::addColumn<QByteArray>("encoded");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("remaining 599.5")
            << OSCCodec::encode(QStringLiteral("/kairon/remaining"), {599.5f})
            << datagram("send-remaining-599.5");
        QTest::newRow("remaining -12.25")
            << OSCCodec::encode(QStringLiteral("/kairon/remaining"), {-12.25f})
            << datagram("send-remaining-minus-12.25");
        QTest::newRow("running") << OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(1)})
                                 << datagram("send-running-1");
        QTest::newRow("stopped") << OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(0)})
                                 << datagram("send-running-0");
        QTest::newRow("cue") << OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("Keynote")})
                             << datagram("send-cue-keynote");
        QTest::newRow("cue without name") << OSCCodec::encode(QStringLiteral("/kairon/cue"), {QString()})
                                          << datagram("send-cue-empty");
        QTest::newRow("cue name of four bytes")
            << OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("Zoë")})
            << datagram("send-cue-zoe");
        QTest::newRow("64-bit integer clamped")
            << OSCCodec::encode(QStringLiteral("/x"), {qint64(5000000000)}) << datagram("send-int64-clamped");
        QTest::newRow("64-bit integer clamped below")
            << OSCCodec::encode(QStringLiteral("/x"), {qint64(-5000000000)})
            << datagram("send-int64-clamped-low");
        QTest::newRow("bool skipped") << OSCCodec::encode(QStringLiteral("/x"), {true})
                                      << datagram("send-bool-skipped");
        QTest::newRow("no arguments") << OSCCodec::encode(QStringLiteral("/x"), {})
                                      << datagram("send-no-arguments");
        QTest::newRow("double as float") << OSCCodec::encode(QStringLiteral("/x"), {0.1})
                                         << datagram("send-double-as-float");
        QTest::newRow("mixed, tags of four bytes")
            << OSCCodec::encode(QStringLiteral("/mix"), {qint32(2), QStringLiteral("hi!"), 1.0f})
            << datagram("send-mixed");
    }

    void encodesTheStateMessages()
    {
        QFETCH(QByteArray, encoded);
        QFETCH(QByteArray, expected);
        QCOMPARE(encoded.toHex(), expected.toHex());
    }

    void whatIsEncodedDecodes()
    {
        const QByteArray bytes = OSCCodec::encode(QStringLiteral("/kairon/message"),
                                                  {QStringLiteral("Dernière question"), qint32(-5)});
        const OSCMessage decoded = OSCCodec::decode(bytes).value();
        QCOMPARE(decoded.stringArg, QStringLiteral("Dernière question"));
        QCOMPARE(decoded.intArg, -5);
    }

    void aByteOrderMarkSurvivesEncodeThenDecode()
    {
        const QString text = QStringLiteral("\uFEFFDernière question");
        const QByteArray bytes = OSCCodec::encode(QStringLiteral("/kairon/message"), {text});
        QCOMPARE(OSCCodec::decode(bytes).value().stringArg, text);
        const QByteArray marked = OSCCodec::encode(QStringLiteral("\uFEFF/kairon/play"), {});
        QVERIFY(!OSCCodec::decode(marked));
    }
};

QTEST_GUILESS_MAIN(TestOscCodec)
#include "tst_osccodec.moc"
