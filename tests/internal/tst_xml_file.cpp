#include "support/Hostile.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include "internal/XmlFile_p.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <algorithm>
#include <limits>

using Internal::XmlError;

namespace {

/** Records the calls that it gets. */
class Nodes : public Internal::XmlSections
{
public:
    void clear() override { m_lines.clear(); }
    void addSection(const QString &name) override { m_lines += name; }
    void addEntry(const QString &name, const QString &text) override
    {
        m_lines += ' ' + name + (text.isNull() ? QString() : '=' + text);
    }
    void addOther(const QString &name) override { m_lines += " (" + name + ')'; }

    QStringList lines() const { return m_lines; }

private:
    QStringList m_lines;
};

/** The same calls, made from a document. */
QStringList linesOf(const QDomDocument &document)
{
    Nodes nodes;
    const auto sections = document.documentElement().childNodes();
    for (int i = 0; i < sections.count(); ++i) {
        if (!sections.at(i).isElement())
            continue;
        nodes.addSection(sections.at(i).nodeName());
        const auto entries = sections.at(i).childNodes();
        for (int j = 0; j < entries.count(); ++j) {
            const QDomNode node = entries.at(j);
            const QDomNode value = node.attributes().namedItem("value");
            if (!node.isElement())
                nodes.addOther(node.nodeName());
            else
                nodes.addEntry(node.nodeName(),
                               value.isNull() ? QString() : "" + value.nodeValue());
        }
    }
    return nodes.lines();
}

QByteArray inUtf16(const QString &text, const char *codec = "UTF-16")
{
    return QTextCodec::codecForName(codec)->fromUnicode(text);
}

/** A file of spaces, which records how many bytes are read at once, and in all. */
class Blanks : public QIODevice
{
public:
    explicit Blanks(qint64 size) : m_left(size) { open(ReadOnly | Unbuffered); }

    qint64 mostAtOnce = 0;
    qint64 total = 0;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        mostAtOnce = std::max(mostAtOnce, size);
        const qint64 count = std::min(size, m_left);
        std::fill_n(data, count, ' ');
        m_left -= count;
        total += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    qint64 m_left;
};

/** The error of parsing the text; its message is empty if there is none. */
XmlError errorOf(QByteArray text)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    QDomDocument document;
    XmlError error;
    if (!Internal::parseXml(buffer, document, error) && error.message.isEmpty())
        error.message = "failed without a message";
    return error;
}

} // namespace

/** Parsing of files with any content. */
class TstXmlFile : public QObject
{
    Q_OBJECT
private slots:
    void sameAsTheDocument_data();
    void sameAsTheDocument();
    void sectionsOfATextWithoutThem();
    void depth_data();
    void depth();
    void declarations_data();
    void declarations();
    void numberOfNodes_data();
    void numberOfNodes();
    void size();
    void allocatesOnlyWhatIsRead();
    void failureKeepsTheDocument();
    void closedDevice();
};

void TstXmlFile::sameAsTheDocument_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray many = QByteArray("<b/>").repeated(10001); // enough references to be counted
    const char *const texts[] = {"<a/>",
                                 "",
                                 "<a>",
                                 "<a></b>",
                                 "<a x='1' x='2'/>",
                                 "<a:b c:d='1'/>",
                                 "<a>&undeclared;</a>",
                                 "<a>&#1;</a>",
                                 "<a x=1/>",
                                 "<a/>behind",
                                 "<?xml version='1.0' encoding='no such'?><a/>",
                                 "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>",
                                 "<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/passwd'>]><a>&e;</a>"};
    for (const char *text : texts) {
        QTest::addRow("%s", text) << QByteArray(text);
        QTest::addRow("large: %s", text) << QByteArray(text)
                                                .replace("<a/>", "<a>" + many + "</a>")
                                                .replace("</a>", many + "</a>");
    }
    QTest::newRow("large, broken at its end") << "<a>" + many + "</b>";
    QTest::newRow("large, broken early") << "<a></b>" + many;
    QTest::newRow("entity bomb") << Hostile::entityBomb();

    const QString crlf = QStringLiteral("<a>\r\n<S>\r\n<k value='\u010d\u0d0d'/></S></a>\r\n");
    for (const char *codec : {"UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "UTF-8"}) {
        QTest::addRow("CR in %s", codec) << inUtf16(crlf, codec);
        QTest::addRow("CR in %s, broken", codec) << inUtf16(crlf + '<', codec);
    }
    QTest::newRow("lone CR") << QByteArray("<a>\r<b>\r\r</b>\r <");
    QTest::newRow("line ends in a text") << QByteArray("<a><S><k value='\r\n\r\t\n'/></S></a>");
    QTest::newRow("encoding named late")
        << "<?xml version='1.0'" + QByteArray(2000, ' ') + "encoding='UTF-16'?><a/>";
    QTest::newRow("letters of two bytes, across pieces")
        << "<a><S><k value='x" + QByteArray("\u010d").repeated(3000) + "'/></S></a>";
    QTest::newRow("three bytes") << QByteArray("<a>");
    QTest::newRow("NUL within") << QByteArray("<a>\0</a>", 8);
    QTest::newRow("what a reader takes for an end")
        << QByteArray("<a>\xef\xbf\xbe\xef\xbf\xbf</a>");

    const auto section = [](const QByteArray &nodes, const QByteArray &head = {}) {
        return head + "<a>x<!--c--><S x='1'>" + nodes + "</S><T><k value='2'/></T>y</a>";
    };
    QTest::newRow("all kinds of nodes") << section(
        "t<!--c--><?p i?><![CDATA[]]><![CDATA[ c ]]>\n<k value='1'>u<l value='2'/></k><m/>&amp;");
    QTest::newRow("empty text") << section("<k value=''/><l Value='1'/><m value=' '/>");
    QTest::newRow("text twice") << section("<k value='1' value='2'/>");
    QTest::newRow("prefixes") << section("<n:k n:value='1' xmlns='u' value='2'/>");
    QTest::newRow("undeclared entity in a section") << section("&u;<k value='1'/>");
    QTest::newRow("undeclared entity in an attribute") << section("<k value='1&u;2'/>");
    QTest::newRow("undeclared entity, broken") << section("&u;<k value='1'>");
    QTest::newRow("default of an attribute")
        << section("<k/>", "<!DOCTYPE a [<!ATTLIST k value CDATA 'd'>]>");
    QTest::newRow("entity with nodes")
        << section("&e;", "<!DOCTYPE a [<!ENTITY e \"u<k value='1'/><!--c-->\">]>");
    QTest::newRow("external entity")
        << section("&e;<k value='1'/>", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]>");
    QTest::newRow("parameter entity")
        << section("<k value='1'/>", "<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'> %p;]>");
}

/** The result of QDomDocument for the same file, opened as text. */
void TstXmlFile::sameAsTheDocument()
{
    QFETCH(QByteArray, text);
    const QTemporaryDir directory;
    QFile file(directory.filePath("file.xml"));
    Meter::writeFile(file.fileName(), text);
    const auto reopen = [&file, &text] {
        file.close();
        return file.open(QIODevice::ReadOnly | QIODevice::Text) && file.size() == text.size();
    };
    QDomDocument expected;
    XmlError reason;
    QVERIFY(reopen());
    const bool ok = expected.setContent(&file, &reason.message, &reason.line, &reason.column);
    const auto compareErrors = [&reason](const XmlError &error) {
        QCOMPARE(error.message, reason.message);
        QCOMPARE(error.line, reason.line);
        QCOMPARE(error.column, reason.column);
    };
    {
        QDomDocument document;
        XmlError error;
        QVERIFY(reopen());
        QCOMPARE(Internal::parseXml(file, document, error), ok);
        compareErrors(error);
        if (ok)
            QCOMPARE(document.toByteArray(), expected.toByteArray());
    }
    Nodes nodes;
    XmlError error;
    QVERIFY(reopen());
    QCOMPARE(Internal::readSections(file, "value", nodes, error), ok);
    compareErrors(error);
    if (ok)
        QCOMPARE(nodes.lines(), linesOf(expected));
}

/** Checks that the comparison finds differences. */
void TstXmlFile::sectionsOfATextWithoutThem()
{
    Nodes nodes;
    XmlError error;
    QByteArray text = "<a>x<S>t<k value='1'/><l/><m value=''/></S>y<T/></a>";
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(Internal::readSections(buffer, "value", nodes, error));
    QCOMPARE(nodes.lines(), (QStringList {"S", " (#text)", " k=1", " l", " m=", "T"}));
}

void TstXmlFile::depth_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("ok");
    const auto wide = QByteArray("<y/>").repeated(10000);
    QTest::newRow("10000 levels") << Hostile::nested(10000) << true;
    QTest::newRow("10001 levels") << Hostile::nested(10001) << false;
    QTest::newRow("20001 levels") << Hostile::nested(20001) << false;
    QTest::newRow("50000 levels") << Hostile::nested(50000) << false;
    QTest::newRow("400000 levels") << Hostile::nested(400000) << false;
    QTest::newRow("behind many beside each other")
        << "<a>" + wide + Hostile::nested(10000) + "</a>" << false;
    QTest::newRow("closing tags in comments close nothing")
        << QByteArray("<x><!--</x>-->").repeated(15000) + QByteArray("</x>").repeated(15000)
        << false;
    QTest::newRow("closing tags in texts close nothing")
        << QByteArray("<x a='/>'><![CDATA[</x>]]>").repeated(15000)
            + QByteArray("</x>").repeated(15000)
        << false;
}

void TstXmlFile::depth()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, ok);
    QCOMPARE(errorOf(text).message, ok ? QString() : QStringLiteral("elements nested too deeply"));
}

void TstXmlFile::declarations_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const auto declared = [](const QByteArray &declaration, const QByteArray &content = {}) {
        return "<!DOCTYPE a [" + declaration + "]><a>" + content + "</a>";
    };
    const QByteArray text4k = "<!ENTITY e \"" + QByteArray(4000, 'x') + "\">";
    const QByteArray tags4k = "<!ENTITY e \"" + QByteArray("<a>").repeated(1300) + "\">";
    const auto brackets = [](int levels) -> QByteArray {
        return "<!ELEMENT a " + QByteArray(levels, '(') + 'a' + QByteArray(levels, ')') + '>';
    };
    const QString tooMany = QStringLiteral("too many declarations");
    QTest::newRow("brackets of a declaration") << declared(brackets(1000)) << QString();
    QTest::newRow("too many brackets of a declaration") << declared(brackets(1001)) << tooMany;
    QTest::newRow("far too many") << declared(brackets(1000000)) << tooMany;
    QTest::newRow("in UTF-16") << inUtf16(declared(brackets(100000))) << tooMany;
    QTest::newRow("brackets of a text") << "<a>" + QByteArray(2000, '(') + "</a>" << QString();
    QTest::newRow("brackets of a text, with a document type")
        << "<!DOCTYPE a><a>" + QByteArray(2000, '(') + "</a>" << QString();
    QTest::newRow("entities") << declared(text4k, QByteArray("&e;").repeated(999)) << QString();
    QTest::newRow("too many entities")
        << declared(text4k, QByteArray("&e;").repeated(1100)) << tooMany;
    QTest::newRow("a short entity, often")
        << declared("<!ENTITY e 'x'>", QByteArray("&e;").repeated(10000)) << QString();
    QTest::newRow("an entity for a character by its number, often")
        << declared("<!ENTITY ohm '&#937;'>", QByteArray("&ohm;").repeated(10000)) << QString();
    for (const char *ampersand : {"&#38;", "&#038;", "&#x26;"})
        QTest::addRow("an entity made of %s, as often", ampersand)
            << declared(QByteArray("<!ENTITY d 'x'><!ENTITY e '") + ampersand + "d;'>",
                        QByteArray("&e;").repeated(10000))
            << tooMany;
    QTest::newRow("an entity that may expand, as often")
        << declared("<!ENTITY d 'x'><!ENTITY e '&d;'>", QByteArray("&e;").repeated(10000))
        << tooMany;
    QTest::newRow("texts with brackets, a percent sign and references")
        << declared("<!ENTITY e 'x'>", QByteArray("Range % (min) &lt;(max) &#65;").repeated(600))
        << QString();
    QTest::newRow("a document type that only a comment names")
        << "<!--<!DOCTYPE a>-->" + declared(brackets(1001)) << tooMany;
    QTest::newRow("ends of the document type within a text, a comment and an instruction")
        << declared("<!ENTITY e ']>'><!-- ]> --><?p ]> ?>" + brackets(1001)) << tooMany;
    QTest::newRow("entities of an attribute")
        << "<!DOCTYPE a [" + text4k + "]><a b='" + QByteArray("&e;").repeated(900000) + "'/>"
        << tooMany;
    QTest::newRow("declared entities")
        << declared(QByteArray("<!ENTITY e ''>").repeated(100000)) << tooMany;
    QTest::newRow("few entities that nest deeply")
        << declared(tags4k, QByteArray("&e;").repeated(100))
        << QStringLiteral("elements nested too deeply");
}

void TstXmlFile::declarations()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    QCOMPARE(errorOf(text).message, message);
}

void TstXmlFile::numberOfNodes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("ok");
    const auto row = [](const char *name, const QByteArray &node, int count, bool ok) {
        QTest::newRow(name) << "<a>" + node.repeated(count) + "</a>" << ok;
    };
    row("elements", "<b/>", 119999, true);
    row("too many", "<b/>", 120000, false);
    row("elements with attributes", "<b c='' d=''/>", 39999, true);
    row("too many elements with attributes", "<b c='' d=''/>", 40000, false);
    row("too many comments", "<!---->", 120000, false);
    row("too many instructions", "<?b?>", 120000, false);
    row("too many texts", "t<b/>", 60000, false);
    row("too many unknown entities", "&u;", 120000, false);
    QTest::newRow("deep and wide at once") << QByteArray("<x>").repeated(9999)
            + QByteArray("<y/>").repeated(30000) + QByteArray("</x>").repeated(9999)
                                           << false;
}

void TstXmlFile::numberOfNodes()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, ok);
    QCOMPARE(errorOf(text).message, ok ? QString() : QStringLiteral("too many elements"));
}

void TstXmlFile::size()
{
    for (const bool tooLarge : {false, true}) {
        QByteArray text = "<a><!--";
        text += QByteArray(4 * 1024 * 1024 + int(tooLarge) - text.size() - 7, 'x') + "--></a>";
        QCOMPARE(errorOf(text).message, tooLarge ? QStringLiteral("file too large") : QString());
    }
}

void TstXmlFile::allocatesOnlyWhatIsRead()
{
    QDomDocument document;
    XmlError error;
    Blanks few(1000);
    QVERIFY(!Internal::parseXml(few, document, error));
    QVERIFY2(few.mostAtOnce <= 100000, QByteArray::number(few.mostAtOnce));
    QCOMPARE(few.total, 1000);
    Blanks endless(std::numeric_limits<qint64>::max());
    QVERIFY(!Internal::parseXml(endless, document, error));
    QCOMPARE(error.message, QStringLiteral("file too large"));
    QVERIFY2(endless.total < 5000000, QByteArray::number(endless.total));
}

void TstXmlFile::failureKeepsTheDocument()
{
    QDomDocument document;
    QVERIFY(document.setContent(QByteArray("<kept/>")));
    for (QByteArray text : {QByteArray("<a>"), Hostile::nested(30000), Hostile::huge()}) {
        QBuffer buffer(&text);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        XmlError error;
        QVERIFY(!Internal::parseXml(buffer, document, error));
        QCOMPARE(document.firstChildElement().tagName(), QStringLiteral("kept"));
    }
}

void TstXmlFile::closedDevice()
{
    QBuffer closed;
    QDomDocument document;
    XmlError error;
    const LogCapture log;
    QVERIFY(!Internal::parseXml(closed, document, error));
    QCOMPARE(error.message, QStringLiteral("unexpected end of file"));
    QCOMPARE(error.line, 1);
    QCOMPARE(error.column, 1);
    QCOMPARE(log.lines(), QStringList());
}

KTV_METER_TEST_MAIN(TstXmlFile)
#include "tst_xml_file.moc"
