#include "support/Elements.h"
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

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
/** What a reader of sections finds in a document. */
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
#endif

QByteArray inUtf16(const QString &text, const char *codec = "UTF-16")
{
    return QTextCodec::codecForName(codec)->fromUnicode(text);
}

/** A file of spaces, which records how many bytes are read at once, and in all. */
class Blanks : public QIODevice
{
public:
    explicit Blanks(qint64 size) : m_left(size) { open(ReadOnly | Unbuffered); }

    qint64 maxAtOnce = 0;
    qint64 total = 0;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        maxAtOnce = std::max(maxAtOnce, size);
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
    void files_data();
    void files();
    void elements();
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

void TstXmlFile::files_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error"); // with line and column; empty on success
    QTest::addColumn<QStringList>("lines");
    const QStringList none;
    const auto good = [](const QByteArray &name, const QByteArray &text, const QStringList &lines) {
        QTest::newRow(name) << text << QString() << lines;
    };
    const auto bad = [&none](const QByteArray &name, const QByteArray &text, const char *error) {
        QTest::newRow(name) << text << error << none;
    };
    // Many elements at every end of the root: entities that are referred to so often are counted.
    constexpr int count = 10001;
    const QByteArray many = QByteArray("<b/>").repeated(count);
    const auto large = [&many](QByteArray text) {
        return text.replace("<a/>", "<a>" + many + "</a>").replace("</a>", many + "</a>");
    };
    const auto sections = [](int number) {
        QStringList lines;
        for (int i = 0; i < number; ++i)
            lines += "b";
        return lines;
    };
    for (const QByteArray text : {"<a x='1' x='2'/>", "<a:b c:d='1'/>"})
        good(text, text, none);
    for (const QByteArray text : {"<a/>", "<?xml version='1.0' encoding='no such'?><a/>"}) {
        good(text, text, none);
        good("large: " + text, large(text), sections(2 * count));
    }
    for (const QByteArray text :
         {"<a>&undeclared;</a>", "<a>&#1;</a>", "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>",
          "<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/passwd'>]><a>&e;</a>"}) {
        good(text, text, none);
        good("large: " + text, large(text), sections(count));
    }
    bad("nothing", "", "unexpected end of file 1:1");
    bad("not closed", "<a>", "unexpected end of file 1:4");
    bad("closed by another", "<a></b>", "tag mismatch 1:7");
    bad("no quotes", "<a x=1/>", "unexpected character 1:6");
    bad("text behind", "<a/>behind", "unexpected character 1:5");
    bad("large, text behind", large("<a/>behind"), "unexpected character 1:80016");
    bad("large, broken at its end", "<a>" + many + "</b>", "tag mismatch 1:40011");
    bad("large, broken early", "<a></b>" + many, "tag mismatch 1:7");
    bad("entity bomb", Hostile::entityBomb(),
        "The XML entity \"e3\" expands to a string that is too large to process (9000 characters > "
        "4096). 1:278");

    const QString crlf = QStringLiteral("<a>\r\n<S>\r\n<k value='\u010d\u0d0d'/></S></a>\r\n");
    for (const char *codec : {"UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "UTF-8"}) {
        good(QByteArray("CR in ") + codec, inUtf16(crlf, codec),
             {"S", QStringLiteral(" k=\u010d\u0d0d")});
        bad(QByteArray("broken, CR in ") + codec, inUtf16(crlf + '<', codec),
            "unexpected end of file 4:2");
    }
    bad("lone CR", "<a>\r<b>\r\r</b>\r <", "unexpected end of file 5:3");
    good("line ends in a text", "<a><S><k value='\r\n\r\t\n'/></S></a>", {"S", " k=\r\n\r\t\n"});
    good("encoding named late",
         "<?xml version='1.0'" + QByteArray(2000, ' ') + "encoding='UTF-16'?><a/>", none);
    good("letters of two bytes, across pieces",
         "<a><S><k value='x" + QByteArray("\u010d").repeated(3000) + "'/></S></a>",
         {"S", " k=x" + QStringLiteral("\u010d").repeated(3000)});
    good("NUL within", QByteArray("<a>\0</a>", 8), none);
    for (const char *end : {"\xef\xbf\xbe", "\xef\xbf\xbf"})
        bad("what a reader takes for an end", QByteArray("<a>") + end + "</a>",
            "unexpected end of file 1:4");

    const auto section = [](const QByteArray &nodes, const QByteArray &head = {}) {
        return head + "<a>x<!--c--><S x='1'>" + nodes + "</S><T><k value='2'/></T>y</a>";
    };
    const auto found = [](const QStringList &nodes) {
        return QStringList("S") + nodes + QStringList({"T", " k=2"});
    };
    good("all kinds of nodes",
         section("t<!--c--><?p i?><![CDATA[]]><![CDATA[ c ]]>\n<k value='1'>u<l "
                 "value='2'/></k><m/>&amp;"),
         found({" (#text)", " (#comment)", " (p)", " (#cdata-section)", " (#cdata-section)", " k=1",
                " m", " (#text)"}));
    good("empty text", section("<k value=''/><l Value='1'/><m value=' '/>"),
         found({" k=", " l", " m= "}));
    good("text twice", section("<k value='1' value='2'/>"), found({" k=2"}));
    good("prefixes", section("<n:k n:value='1' xmlns='u' value='2'/>"), found({" n:k=2"}));
    good("undeclared entity in a section", section("&u;<k value='1'/>"), found({" (u)", " k=1"}));
    good("undeclared entity in an attribute", section("<k value='1&u;2'/>"), found({" k=12"}));
    good("undeclared entity in an attribute, behind a comment",
         section("<!--c--><k value='1&u;2'/>"), found({" (#comment)", " k=12"}));
    good("undeclared entity in an attribute, behind an instruction",
         section("<?p i?><k value='1&u;2'/>"), found({" (p)", " k=12"}));
    good("undeclared entity in an attribute, behind character data",
         section("<![CDATA[c]]><k value='1&u;2'/>"), found({" (#cdata-section)", " k=12"}));
    good("undeclared entities behind every kind of node",
         section("t>&t;t<k value='>&no;2'>&no;</k>&k;<!--<-->&c;<?p <?>&p;<![CDATA[<]]>&d;"),
         found({" (#text)", " (t)", " (#text)", " k=>2", " (k)", " (#comment)", " (c)", " (p)",
                " (p)", " (#cdata-section)", " (d)"}));
    bad("undeclared entity, broken", section("&u;<k value='1'>"), "tag mismatch 1:41");
    good("default of an attribute", section("<k/>", "<!DOCTYPE a [<!ATTLIST k value CDATA 'd'>]>"),
         found({" k"}));
    good("entity with nodes",
         section("&e;", "<!DOCTYPE a [<!ENTITY e \"u<k value='1'/><!--c-->\">]>"),
         found({" (#text)", " k=1", " (#comment)"}));
    good("entity with an undeclared one",
         section("&e;", "<!DOCTYPE a [<!ENTITY e \"&u;<k value='1'/>\">]>"),
         found({" (u)", " k=1"}));
    good("entity with an undeclared one, in an attribute",
         section("<k value='&e;'/>", "<!DOCTYPE a [<!ENTITY e \"1&u;\">]>"), found({" k=1"}));
    good("external entity", section("&e;<k value='1'/>", "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]>"),
         found({" (e)", " k=1"}));
    good("parameter entity",
         section("<k value='1'/>", "<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'> %p;]>"), found({" k=1"}));
}

/** Both Qts give the same; the QDomDocument of Qt 5 does, too. */
void TstXmlFile::files()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, error);
    const QTemporaryDir directory;
    QFile file(directory.filePath("file.xml"));
    Meter::writeFile(file.fileName(), text);
    const auto reopen = [&file, &text] {
        file.close();
        return file.open(QIODevice::ReadOnly | QIODevice::Text) && file.size() == text.size();
    };
    const bool ok = error.isEmpty();
    const auto worded = [](const XmlError &found) {
        return found.message.isEmpty()
            ? QString()
            : QStringLiteral("%1 %2:%3").arg(found.message).arg(found.line).arg(found.column);
    };
    QDomDocument document;
    XmlError found;
    QVERIFY(reopen());
    QCOMPARE(Internal::parseXml(file, document, found), ok);
    QCOMPARE(worded(found), error);
    Nodes nodes;
    XmlError foundInSections;
    QVERIFY(reopen());
    QCOMPARE(Internal::readSections(file, "value", nodes, foundInSections), ok);
    QCOMPARE(worded(foundInSections), error);
    if (ok)
        QTEST(nodes.lines(), "lines");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QDomDocument expected;
    XmlError reason;
    QVERIFY(reopen());
    QCOMPARE(expected.setContent(&file, &reason.message, &reason.line, &reason.column), ok);
    QCOMPARE(worded(reason), error);
    if (ok) {
        QCOMPARE(elementsOf(document), elementsOf(expected));
        QCOMPARE(nodes.lines(), linesOf(expected));
    }
#endif
}

/** The document has the elements with their attributes, and nothing else. */
void TstXmlFile::elements()
{
    QByteArray text = "<!--c--><a y='1' x='2' y='3'>t<b>u<c/>&u;<d e='&lt;&u;'/></b><b/></a>";
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QDomDocument document;
    XmlError error;
    QVERIFY(Internal::parseXml(buffer, document, error));
    QCOMPARE(elementsOf(document), QStringLiteral("<a x=2 y=3><b><c></><d e=<></></><b></></>"));
    QCOMPARE(document.documentElement().text(), QString());
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
    QVERIFY2(few.maxAtOnce <= 100000, QByteArray::number(few.maxAtOnce));
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
