#pragma once

// Workbooks made in memory for the reader tests: zip packages written from a few XML parts,
// so that a test shows the exact XML it reads.

#include "ziparchive.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTest>

#include <utility>

// An .xlsx package: sheets by name with their worksheet XML (what goes inside <worksheet>),
// and optionally shared strings and styles. Every part can be replaced or left out.
class XlsxBuilder
{
public:
    XlsxBuilder &sheet(const QString &name, const QByteArray &worksheetBody)
    {
        m_sheets.append({name, worksheetBody});
        return *this;
    }
    // The si elements of xl/sharedStrings.xml.
    XlsxBuilder &sharedStrings(const QByteArray &items)
    {
        m_sharedStrings = items;
        return *this;
    }
    // What goes inside <styleSheet>: numFmts, cellXfs...
    XlsxBuilder &styles(const QByteArray &body)
    {
        m_styles = body;
        return *this;
    }
    XlsxBuilder &date1904()
    {
        m_date1904 = true;
        return *this;
    }
    // The sheets' relationship targets: relative to xl/ (the default) or absolute.
    XlsxBuilder &absoluteTargets()
    {
        m_absoluteTargets = true;
        return *this;
    }
    // A part of its own, or one that replaces a part the builder writes (empty bytes: none).
    XlsxBuilder &part(const QString &name, const QByteArray &bytes)
    {
        m_parts.append({name, bytes});
        return *this;
    }

    QByteArray bytes() const
    {
        const QByteArray main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
        const QByteArray relationships =
            "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
        QByteArray sheets;
        QByteArray workbookRelationships;
        ZipEntries entries;
        for (qsizetype i = 0; i < m_sheets.size(); ++i) {
            const QByteArray id = "rId" + QByteArray::number(i + 1);
            const QByteArray file = "worksheets/sheet" + QByteArray::number(i + 1) + ".xml";
            sheets += "<sheet name=\"" + m_sheets[i].first.toHtmlEscaped().toUtf8()
                + "\" sheetId=\"" + QByteArray::number(i + 1) + "\" r:id=\"" + id + "\"/>";
            workbookRelationships +=
                relationship(id, "worksheet", m_absoluteTargets ? "/xl/" + file : file);
            entries.append({"xl/" + file,
                            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><worksheet xmlns=\"" + main
                                + "\" xmlns:r=\"" + relationships + "\">" + m_sheets[i].second
                                + "</worksheet>"});
        }
        if (!m_sharedStrings.isNull()) {
            workbookRelationships += relationship("rIdS", "sharedStrings", "sharedStrings.xml");
            entries.append({"xl/sharedStrings.xml",
                            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><sst xmlns=\"" + main + "\">"
                                + m_sharedStrings + "</sst>"});
        }
        if (!m_styles.isNull()) {
            workbookRelationships += relationship("rIdY", "styles", "styles.xml");
            entries.append({"xl/styles.xml",
                            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><styleSheet xmlns=\"" + main
                                + "\">" + m_styles + "</styleSheet>"});
        }
        entries.prepend({"xl/_rels/workbook.xml.rels",
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Relationships xmlns=\""
                         "http://schemas.openxmlformats.org/package/2006/relationships\">"
                             + workbookRelationships + "</Relationships>"});
        entries.prepend({"xl/workbook.xml",
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><workbook xmlns=\"" + main
                             + "\" xmlns:r=\"" + relationships + "\">"
                             + (m_date1904 ? "<workbookPr date1904=\"1\"/>" : "<workbookPr/>")
                             + "<sheets>" + sheets + "</sheets></workbook>"});
        entries.prepend({"[Content_Types].xml",
                         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Types xmlns=\"http://"
                         "schemas.openxmlformats.org/package/2006/content-types\"/>"});
        for (const auto &[name, bytes] : m_parts) {
            entries.removeIf([&name](const auto &entry) { return entry.first == name; });
            if (!bytes.isEmpty())
                entries.append({name, bytes});
        }
        return zipOf(entries);
    }

private:
    static QByteArray relationship(const QByteArray &id, const QByteArray &type,
                                   const QByteArray &target)
    {
        return "<Relationship Id=\"" + id
            + "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
            + type + "\" Target=\"" + target + "\"/>";
    }

    QList<std::pair<QString, QByteArray>> m_sheets;
    QByteArray m_sharedStrings;
    QByteArray m_styles;
    bool m_date1904 = false;
    bool m_absoluteTargets = false;
    ZipEntries m_parts;
};

// An .ods package around the body of office:spreadsheet (its table:table elements), with the
// namespaces of LibreOffice's content.xml declared. manifest: META-INF/manifest.xml, if any.
inline QByteArray odsOf(const QByteArray &spreadsheetBody, const QByteArray &manifest = {})
{
    const QByteArray content =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><office:document-content"
        " xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
        " xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\""
        " xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\""
        " xmlns:draw=\"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0\""
        " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
        " xmlns:xlink=\"http://www.w3.org/1999/xlink\""
        " xmlns:calcext=\"urn:org:documentfoundation:names:experimental:calc:xmlns:calcext:1.0\""
        " office:version=\"1.3\"><office:body><office:spreadsheet>"
        + spreadsheetBody + "</office:spreadsheet></office:body></office:document-content>";
    ZipEntries entries{{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
                       {"content.xml", content}};
    if (!manifest.isEmpty())
        entries.append({"META-INF/manifest.xml", manifest});
    return zipOf(entries);
}
