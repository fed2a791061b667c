#include "jsonwriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QStringList>

#include <algorithm>

#include <cmath>

QByteArray shortestNumberText(double value)
{
    return QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

namespace {

class Writer
{
public:
    QByteArray out;
    QString error;

    bool value(const QJsonValue &v, int depth)
    {
        switch (v.type()) {
        case QJsonValue::Null:
        case QJsonValue::Undefined:
            out += "null";
            return true;
        case QJsonValue::Bool:
            out += v.toBool() ? "true" : "false";
            return true;
        case QJsonValue::Double:
            return number(v.toDouble());
        case QJsonValue::String:
            string(v.toString());
            return true;
        case QJsonValue::Array:
            return array(v.toArray(), depth);
        case QJsonValue::Object:
            return object(v.toObject(), depth);
        }
        return true;
    }

private:
    void indent(int depth) { out.append(depth * 2, ' '); }

    bool number(double d)
    {
        if (!std::isfinite(d)) {
            error = QStringLiteral("un nombre n'est pas fini (NaN ou infini)");
            return false;
        }
        out += shortestNumberText(d);
        return true;
    }

    void string(const QString &s)
    {
        out += '"';
        // The byte-order mark is written escaped: Qt's reader drops it, raw, at the start of a
        // text, and the text read back would differ.
        const QList<QStringView> parts = QStringView(s).split(QChar(0xFEFF));
        for (qsizetype i = 0; i < parts.size(); ++i) {
            if (i > 0)
                out += "\\ufeff";
            stringPart(parts[i].toUtf8());
        }
        out += '"';
    }

    void stringPart(const QByteArray &utf8)
    {
        for (const char ch : utf8) {
            const auto c = static_cast<unsigned char>(ch);
            switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '/': out += "\\/"; break;
            case '\b': out += "\\b"; break;
            case '\f': out += "\\f"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (c < 0x20) {
                    static const char hex[] = "0123456789abcdef";
                    out += "\\u00";
                    out += hex[c >> 4];
                    out += hex[c & 0xF];
                } else {
                    out += ch;
                }
            }
        }
    }

    bool array(const QJsonArray &a, int depth)
    {
        if (a.isEmpty()) {
            out += "[]";
            return true;
        }
        out += "[\n";
        for (qsizetype i = 0; i < a.size(); ++i) {
            indent(depth + 1);
            if (!value(a.at(i), depth + 1))
                return false;
            out += i + 1 < a.size() ? ",\n" : "\n";
        }
        indent(depth);
        out += ']';
        return true;
    }

    bool object(const QJsonObject &o, int depth)
    {
        if (o.isEmpty()) {
            out += "{}";
            return true;
        }
        out += "{\n";
        QStringList keys = o.keys();
        std::sort(keys.begin(), keys.end()); // by UTF-16 code unit, independent of the locale
        for (qsizetype i = 0; i < keys.size(); ++i) {
            indent(depth + 1);
            string(keys[i]);
            out += " : ";
            if (!value(o.value(keys[i]), depth + 1))
                return false;
            out += i + 1 < keys.size() ? ",\n" : "\n";
        }
        indent(depth);
        out += '}';
        return true;
    }
};

} // namespace

std::optional<QByteArray> writeProjectJson(const QJsonValue &value, QString *error)
{
    Writer writer;
    if (!writer.value(value, 0)) {
        if (error)
            *error = writer.error;
        return std::nullopt;
    }
    return writer.out;
}

QByteArray compactJsonKeepingMarks(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).replace("\xEF\xBB\xBF", "\\ufeff");
}
