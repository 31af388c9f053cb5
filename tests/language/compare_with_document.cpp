// Mutates language files, makes documents up, and compares the library's result for each with that
// of the QDomDocument of Qt 5: texts, sections, elements, and the message and place of an error.
// More than the tests do is run by hand in the simulated meter:
//
//     compare_with_document COUNT [SEED] [FILE...]
// Without FILE, the meter's own languages and description are mutated. The program also contains
// some difficult files. A file with different results is printed.

#include "RandomDocument.h"

#include "support/Elements.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include "internal/XmlFile_p.h"

#include <language/LangSerwis.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextCodec>

#include <cstdio>
#include <memory>
#include <random>
#include <utility>

using Internal::XmlError;

namespace {

const QString unset = QStringLiteral("no such text");

const char *const pieces[] = {"<",
                              ">",
                              "</",
                              "/>",
                              "<!--",
                              "-->",
                              "--",
                              "<?p i?>",
                              "<?",
                              "?>",
                              "<![CDATA[",
                              "]]>",
                              "]",
                              "[",
                              "&",
                              ";",
                              "&lt;",
                              "&#65;",
                              "&#x10d;",
                              "&#0;",
                              "&e;",
                              "&u;",
                              "%p;",
                              "'",
                              "\"",
                              "=",
                              " value='",
                              " value=\"x\"",
                              " Value='",
                              " ",
                              "\n",
                              "\r\n",
                              "\r",
                              "\t",
                              "<Main>",
                              "</Main>",
                              "<Lang>",
                              "</Lang>",
                              "<k/>",
                              "<k value='1'/>",
                              "xmlns:n='u'",
                              "n:",
                              "(",
                              ")",
                              "*",
                              "<!DOCTYPE a>",
                              "<!DOCTYPE a [<!ENTITY e 'x'>]>",
                              "<!DOCTYPE a [<!ENTITY e \"<k value='2'/>t\">]>",
                              "<!DOCTYPE a [<!ATTLIST k value CDATA 'd'>]>",
                              "<!DOCTYPE a SYSTEM 'a.dtd'>",
                              "<!ENTITY e 'y'>",
                              "<!ENTITY % p 'z'>",
                              "<!ELEMENT a (b|c)*>",
                              "<?xml version='1.0'?>",
                              "<?xml version='1.0' encoding='UTF-8'?>",
                              "<?xml version='1.0' encoding='UTF-16'?>",
                              "<?xml version='1.0' encoding='ISO-8859-2'?>",
                              "\xef\xbb\xbf",
                              "\xff\xfe",
                              "\xfe\xff",
                              "\xef\xbf\xbe",
                              "\xef\xbf\xbf",
                              "\xc4\x8d",
                              "\xf0\x9f\x98\x80",
                              "\xc3",
                              "\xed\xa0\x80"};

const char *const hardFiles[] = {
    "<t><S><k value='1'/><k value='2'/><k/></S><S><k value='3'/></S></t>",
    "<t><S>t<!--c--><?k i?><k value='1'/><![CDATA[c]]>\r\n<k/></S>u</t>",
    "<t><S><k value='1'/><?k i?></S><T>&u;<u value='2&u;3'/></T></t>",
    "<!DOCTYPE t [<!ENTITY e \"t<k value='1'/>\"><!ATTLIST k value CDATA 'd'>]>"
    "<t><S>&e;<k/></S>&e;</t>",
    "<?xml version='1.0' encoding='ISO-8859-2' standalone='yes'?><!-- c --><!DOCTYPE t SYSTEM 't'>"
    "<t:t xmlns:t='u'><n:S><n:k n:value='1' value='2' value='3'/></n:S></t:t>",
    "<!DOCTYPE t [<!ENTITY % p \"<!ENTITY e 'x'>\"> %p; <!ENTITY s SYSTEM 's'><!NOTATION n PUBLIC "
    "'p'><!ELEMENT t (S,(k|l)*)>]><t><S>&s;<k value='&e;'/></S></t>",
    "<t>\r<S>\r\r\n<k\tvalue\n=\r'a\tb\r\nc'\n/></S\n></t>\r\r<!---->\n",
    "<t> \n <S> \n </S><T> x </T><U>&#32;</U><V>&#10;</V><W><![CDATA[ ]]></W></t>"};

QByteArray mutated(QByteArray text, const QList<QByteArray> &seeds, std::mt19937 &random)
{
    const auto below = [&random](int bound) {
        return std::uniform_int_distribution<int>(0, std::max(0, bound - 1))(random);
    };
    for (int i = below(4); i >= 0; --i) {
        const int at = below(int(text.size()) + 1);
        switch (below(7)) {
        case 0:
            text.insert(at, pieces[below(int(std::size(pieces)))]);
            break;
        case 1:
            text.remove(at, 1 + below(8));
            break;
        case 2:
            text.insert(at, text.mid(below(int(text.size())), 1 + below(60)));
            break;
        case 3:
            if (at < text.size())
                text[at] = char(below(256));
            break;
        case 4:
            text.insert(0, pieces[below(int(std::size(pieces)))]);
            break;
        case 5: {
            const QByteArray &other = seeds.at(below(int(seeds.size())));
            text.insert(at, other.mid(below(int(other.size())), 1 + below(200)));
            break;
        }
        default:
            if (below(8) == 0)
                text.truncate(at);
        }
    }
    static const char *const codecs[] = {"UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "ISO-8859-2"};
    if (below(6) == 0)
        text = QTextCodec::codecForName(codecs[below(5)])->fromUnicode(QString::fromUtf8(text));
    if (below(12) == 0)
        text.insert(below(int(text.size())), '\0');
    return text;
}

/** The results of LangSerwis, looked up in a document. */
class Document
{
public:
    bool read(const QString &path, XmlError &error)
    {
        QFile file(path);
        file.open(QIODevice::ReadOnly | QIODevice::Text);
        return m_document.setContent(&file, &error.message, &error.line, &error.column);
    }
    QString elements() const { return elementsOf(m_document); }
    QDomElement root() const { return m_document.firstChildElement(); }

    QString text(const QString &section, const QString &key) const
    {
        return root().firstChildElement(section).firstChildElement(key).attribute("value", unset);
    }
    QHash<QString, QString> section(const QString &name) const
    {
        QHash<QString, QString> table;
        const QDomElement section = root().firstChildElement(name);
        for (auto node = section.firstChild(); !node.isNull(); node = node.nextSibling())
            table.insert(node.nodeName(), node.toElement().attribute("value", node.nodeName()));
        return table;
    }

private:
    QDomDocument m_document;
};

bool sameTexts(const LangSerwis &texts, const Document &document)
{
    const auto sections = document.root().childNodes();
    for (int i = 0; i < sections.count(); ++i) {
        const QString section = sections.at(i).nodeName();
        const auto nodes = std::unique_ptr<QHash<QString, QString>>(texts.getSection(section));
        if (*nodes != document.section(section))
            return false;
        for (auto node = nodes->cbegin(); node != nodes->cend(); ++node) {
            if (texts.getText(section, node.key(), unset) != document.text(section, node.key()))
                return false;
        }
    }
    return texts.getTimeFormat()
        == document.root()
               .firstChildElement("Lang")
               .firstChildElement("timeFormat")
               .attribute("value", "hh:mm");
}

bool isRefusal(const QString &line)
{
    return line.endsWith("Row:0 Col:0");
}

enum Verdict
{
    Same,
    SameFailure,
    Refused,
    Different
};

/** Compares both for the file of the language "XX". */
Verdict compare(const QString &directory, const QString &path)
{
    Document document;
    XmlError error;
    const LogCapture log;
    const bool ok = document.read(path, error);
    LangSerwis texts(directory, KTV_Configuration::KTV_420);
    const bool isLoaded = texts.setLang("XX");
    // Qt itself logs a warning about an unknown encoding.
    const QStringList lines = log.lines().filter(QRegularExpression("^(?!codecForName)"));
    if (!isLoaded && isRefusal(lines.value(0)))
        return Refused;
    const QStringList expected = ok
        ? QStringList()
        : QStringList(QStringLiteral("LangSerwis::setLang(XX) Fail to load file:   %1\n Row:%2 "
                                     "Col:%3")
                          .arg(error.message)
                          .arg(error.line)
                          .arg(error.column));
    QFile file(path);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    QDomDocument parsed;
    XmlError parsedError;
    if (isLoaded != ok || lines != expected || (ok && !sameTexts(texts, document))
        || Internal::parseXml(file, parsed, parsedError) != ok
        || parsedError.message != error.message || parsedError.line != error.line
        || parsedError.column != error.column || (ok && elementsOf(parsed) != document.elements()))
        return Different;
    return ok ? Same : SameFailure;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!Meter::isInside())
        return 1;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int count = arguments.value(1).toInt();
    std::mt19937 random(arguments.value(2).toUInt());
    QStringList files = arguments.mid(3);
    if (files.isEmpty()) {
        files = QStringList("/home/root/globalInfo.xml");
        for (const QString &code :
             QDir("/home/root/Langs").entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            files += "/home/root/Langs/" + code + '/' + code + ".xml";
    }
    QList<QByteArray> seeds;
    for (const QString &file : std::as_const(files))
        seeds += Meter::readFile(file);
    for (const char *text : hardFiles)
        seeds += QByteArray(text);

    const QTemporaryDir directory;
    const QString path = directory.path() + "/XX/XX.xml";
    int verdicts[4] = {};
    for (int i = 0; i < count; ++i) {
        const QByteArray text = i % 2 == 0 ? RandomDocument(random).text()
                                           : mutated(seeds.at(i / 2 % seeds.size()), seeds, random);
        Meter::writeFile(path, text);
        const Verdict verdict = compare(directory.path() + '/', path);
        ++verdicts[verdict];
        if (verdict == Different)
            std::printf("differs: %s\n", text.toPercentEncoding(" <>/='\"&;").constData());
    }
    std::printf("%d files: %d read alike, %d failed alike, %d refused, %d differ\n", count,
                verdicts[Same], verdicts[SameFailure], verdicts[Refused], verdicts[Different]);
    return verdicts[Different] == 0 ? 0 : 1;
}
