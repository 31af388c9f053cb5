#include "language/LangSerwis.h"

#include "internal/XmlFile_p.h"
#include "internal/log_p.h"

#include <QDir>
#include <QFile>

using Internal::log;

namespace {

const QLatin1String fallbackCode("EN");
const QLatin1String presentationSection("Lang");
const QLatin1String textAttribute("value");
const QLatin1String defaultTimeFormat("hh:mm");
const QLatin1String defaultDateFormat("yyyy.MM.dd");

using Section = QHash<QString, QString>; ///< null text: an entry without one
using Index = QHash<QString, Section>;

QString textOf(const QDomElement &entry)
{
    if (!entry.hasAttribute(textAttribute))
        return {};
    const QString text = entry.attribute(textAttribute);
    return text.isNull() ? QLatin1String("") : text;
}

/** The first section of a name counts, and in it the first entry of a name. */
Index indexOf(const QDomElement &root)
{
    Index index;
    for (auto section = root.firstChildElement(); !section.isNull();
         section = section.nextSiblingElement()) {
        if (index.contains(section.tagName()))
            continue;
        Section &entries = index[section.tagName()];
        for (auto entry = section.firstChildElement(); !entry.isNull();
             entry = entry.nextSiblingElement()) {
            if (!entries.contains(entry.tagName()))
                entries.insert(entry.tagName(), textOf(entry));
        }
    }
    return index;
}

bool offersFixedLanguages(KTV_Configuration::MeterModels model)
{
    return model == KTV_Configuration::KTV_4200 || model == KTV_Configuration::KTV_4400;
}

} // namespace

class LangSerwis::Private
{
public:
    QString filePath(const QString &language) const
    {
        return directory + language + QLatin1Char('/') + language + QStringLiteral(".xml");
    }

    QString code = fallbackCode;
    QString directory;
    QDomDocument document;
    Index index; ///< of the document: a language switch looks up thousands of texts
    QString smallKeyboard;
    QString bigKeyboard;
    QString regionalSmallKeyboard;
    QString regionalBigKeyboard;
    QString timeFormat = defaultTimeFormat;
    QString dateFormat = defaultDateFormat;
    KTV_Configuration::MeterModels model = KTV_Configuration::MeterModels_NaN;
};

LangSerwis::LangSerwis(const QString &directory, KTV_Configuration::MeterModels model,
                       QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    d->directory = directory;
    d->model = model;
}

LangSerwis::~LangSerwis() = default;

bool LangSerwis::setLang(const QString &code)
{
    QString loaded = code;
    QFile file(d->filePath(code));
    if (!file.open(QIODevice::ReadOnly)) {
        log() << "LangSerwis::setLang(" << code << "): " << file.errorString() << ": "
              << file.fileName();
        if (code != fallbackCode) {
            loaded = fallbackCode;
            file.setFileName(d->filePath(loaded));
            if (!file.open(QIODevice::ReadOnly))
                log() << "LangSerwis::setLang to default (EN): " << file.errorString();
        }
    }

    Internal::XmlError error;
    if (!Internal::parseXml(file, d->document, error)) {
        log() << "LangSerwis::setLang(" << loaded << ") Fail to load file:"
              << "   " << error.message << "\n Row:" << error.line << " Col:" << error.column;
        return false;
    }
    d->code = loaded;
    d->index = indexOf(d->document.firstChildElement());

    struct Presentation
    {
        const char *key;
        QString &value;
        QLatin1String defaultValue;
    };
    const Presentation presentation[] = {
        {"smallKeyboard", d->smallKeyboard, QLatin1String("")},
        {"bigKeyboard", d->bigKeyboard, QLatin1String("")},
        {"regionalSmallKeyboard", d->regionalSmallKeyboard, QLatin1String("")},
        {"regionalBigKeyboard", d->regionalBigKeyboard, QLatin1String("")},
        {"timeFormat", d->timeFormat, defaultTimeFormat},
        {"dataFormat", d->dateFormat, defaultDateFormat},
    };
    for (const Presentation &entry : presentation)
        entry.value = getText(presentationSection, QLatin1String(entry.key), entry.defaultValue);
    return true;
}

QString LangSerwis::getCurrentLang() const
{
    return d->code;
}

QString LangSerwis::getText(const QString &section, const QString &key,
                            const QString &defaultValue) const
{
    const auto entries = d->index.constFind(section);
    if (entries == d->index.constEnd())
        return defaultValue;
    const auto text = entries->constFind(key);
    return text == entries->constEnd() || text->isNull() ? defaultValue : *text;
}

QHash<QString, QString> *LangSerwis::getSection(const QString &section) const
{
    auto table = std::make_unique<QHash<QString, QString>>();
    if (section.isEmpty()) // a document would take any section for the nameless one
        return table.release();
    const QDomElement element = d->document.firstChildElement().firstChildElement(section);
    for (auto node = element.firstChild(); !node.isNull(); node = node.nextSibling())
        table->insert(node.nodeName(), node.toElement().attribute(textAttribute, node.nodeName()));
    return table.release();
}

QStringList *LangSerwis::getLangList() const
{
    if (offersFixedLanguages(d->model))
        return new QStringList {QStringLiteral("PL"), QStringLiteral("EN"), QStringLiteral("US")};
    return new QStringList(
        QDir(d->directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name));
}

QString LangSerwis::getSmallKeyboard() const
{
    return d->smallKeyboard;
}

QString LangSerwis::getBigKeyboard() const
{
    return d->bigKeyboard;
}

QString LangSerwis::getRegionalSmallKeyboard() const
{
    return d->regionalSmallKeyboard;
}

QString LangSerwis::getRegionalBigKeyboard() const
{
    return d->regionalBigKeyboard;
}

QString LangSerwis::getTimeFormat() const
{
    return d->timeFormat;
}

QString LangSerwis::getDataFormat() const
{
    return d->dateFormat;
}

void LangSerwis::updateMeterModel(KTV_Configuration::MeterModels model)
{
    d->model = model;
}
