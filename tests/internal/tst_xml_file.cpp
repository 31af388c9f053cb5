#include "support/Hostile.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include "internal/XmlFile_p.h"

#include <QBuffer>
#include <QTextCodec>
#include <QtTest>

/** Parsing of files that may be anything. */
class TstXmlFile : public QObject
{
    Q_OBJECT
private slots:
    void sameAsTheDocument_data();
    void sameAsTheDocument();
    void depth_data();
    void depth();
    void declarations_data();
    void declarations();
    void size();
    void failureKeepsTheDocument();
    void closedDevice();
};

void TstXmlFile::sameAsTheDocument_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray many = QByteArray("<b/>").repeated(10001); // enough to be looked at closely
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
}

void TstXmlFile::sameAsTheDocument()
{
    QFETCH(QByteArray, text);
    QDomDocument expected;
    Internal::XmlError reason;
    const bool ok = expected.setContent(text, &reason.message, &reason.line, &reason.column);
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QDomDocument document;
    Internal::XmlError error;
    QCOMPARE(Internal::parseXml(buffer, document, error), ok);
    QCOMPARE(error.message, reason.message);
    QCOMPARE(error.line, reason.line);
    QCOMPARE(error.column, reason.column);
    if (ok)
        QCOMPARE(document.toByteArray(), expected.toByteArray());
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
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QDomDocument document;
    Internal::XmlError error;
    QCOMPARE(Internal::parseXml(buffer, document, error), ok);
    QCOMPARE(error.message, ok ? QString() : QStringLiteral("elements nested too deeply"));
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
    QTest::newRow("too many of them") << declared(brackets(1001)) << tooMany;
    QTest::newRow("far too many") << declared(brackets(1000000)) << tooMany;
    QTest::newRow("in UTF-16") << QTextCodec::codecForName("UTF-16")->fromUnicode(declared(
        brackets(100000))) << tooMany;
    QTest::newRow("brackets of a text") << "<a>" + QByteArray(2000, '(') + "</a>" << QString();
    QTest::newRow("so, with a document type")
        << "<!DOCTYPE a><a>" + QByteArray(2000, '(') + "</a>" << QString();
    QTest::newRow("entities") << declared(text4k, QByteArray("&e;").repeated(999)) << QString();
    QTest::newRow("too many entities")
        << declared(text4k, QByteArray("&e;").repeated(1000)) << tooMany;
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
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QDomDocument document;
    Internal::XmlError error;
    QCOMPARE(Internal::parseXml(buffer, document, error), message.isEmpty());
    QCOMPARE(error.message, message);
}

void TstXmlFile::size()
{
    for (const bool tooLarge : {false, true}) {
        QByteArray text = "<a><!--";
        text += QByteArray(4 * 1024 * 1024 + int(tooLarge) - text.size() - 7, 'x') + "--></a>";
        QBuffer buffer(&text);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QDomDocument document;
        Internal::XmlError error;
        QCOMPARE(Internal::parseXml(buffer, document, error), !tooLarge);
        QCOMPARE(error.message, tooLarge ? QStringLiteral("file too large") : QString());
    }
}

void TstXmlFile::failureKeepsTheDocument()
{
    QDomDocument document;
    QVERIFY(document.setContent(QByteArray("<kept/>")));
    for (QByteArray text : {QByteArray("<a>"), Hostile::nested(30000), Hostile::huge()}) {
        QBuffer buffer(&text);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        Internal::XmlError error;
        QVERIFY(!Internal::parseXml(buffer, document, error));
        QCOMPARE(document.firstChildElement().tagName(), QStringLiteral("kept"));
    }
}

void TstXmlFile::closedDevice()
{
    QBuffer closed;
    QDomDocument document;
    Internal::XmlError error;
    const LogCapture log;
    QVERIFY(!Internal::parseXml(closed, document, error));
    QCOMPARE(error.message, QStringLiteral("unexpected end of file"));
    QCOMPARE(error.line, 1);
    QCOMPARE(error.column, 1);
    QCOMPARE(log.lines(), QStringList());
}

KTV_METER_TEST_MAIN(TstXmlFile)
#include "tst_xml_file.moc"
