#include "language/LangSerwis.h"

#include "configuration/MeterModel_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "internal/log_p.h"
#include "language/SectionIndex_p.h"

#include <QDir>

using Internal::guarded;
using Internal::log;

namespace {

const QLatin1String fallbackCode("EN");
const QLatin1String presentationSection("Lang");
const QLatin1String textAttribute("value");
const QLatin1String defaultTimeFormat("hh:mm");
const QLatin1String defaultDateFormat("yyyy.MM.dd");

} // namespace

class LangSerwis::Private
{
public:
    QString filePath(const QString &language) const
    {
        return directory + language + QLatin1Char('/') + language + QStringLiteral(".xml");
    }

    bool load(const QString &requested);

    QString code = fallbackCode;
    QString directory;
    Internal::SectionIndex texts;
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

bool LangSerwis::Private::load(const QString &requested)
{
    QString loaded = requested;
    Internal::RegularFile file(filePath(requested));
    if (!file.open(QIODevice::ReadOnly)) {
        log() << "LangSerwis::setLang(" << requested << "): " << file.errorString() << ": "
              << file.fileName();
        if (requested != fallbackCode) {
            loaded = fallbackCode;
            file.setFileName(filePath(loaded));
            if (!file.open(QIODevice::ReadOnly))
                log() << "LangSerwis::setLang to default (EN): " << file.errorString();
        }
    }

    Internal::SectionIndex index;
    Internal::XmlError error;
    if (!Internal::readSections(file, textAttribute, index, error)) {
        log() << "LangSerwis::setLang(" << loaded << ") Fail to load file:"
              << "   " << error.message << "\n Row:" << error.line << " Col:" << error.column;
        return false;
    }
    code = loaded;
    texts = std::move(index);

    struct Presentation
    {
        const char *key;
        QString &value;
        QLatin1String defaultValue;
    };
    const Presentation presentation[] = {
        {"smallKeyboard", smallKeyboard, QLatin1String("")},
        {"bigKeyboard", bigKeyboard, QLatin1String("")},
        {"regionalSmallKeyboard", regionalSmallKeyboard, QLatin1String("")},
        {"regionalBigKeyboard", regionalBigKeyboard, QLatin1String("")},
        {"timeFormat", timeFormat, defaultTimeFormat},
        {"dataFormat", dateFormat, defaultDateFormat},
    };
    for (const Presentation &entry : presentation)
        entry.value = texts.text(presentationSection, QLatin1String(entry.key), entry.defaultValue);
    return true;
}

bool LangSerwis::setLang(const QString &code)
{
    return guarded("LangSerwis::setLang: ", [&] { return d->load(code); });
}

QString LangSerwis::getCurrentLang() const
{
    return d->code;
}

QString LangSerwis::getText(const QString &section, const QString &key,
                            const QString &defaultValue) const
{
    return d->texts.text(section, key, defaultValue);
}

QHash<QString, QString> *LangSerwis::getSection(const QString &section) const
{
    return new QHash<QString, QString>(d->texts.section(section));
}

QStringList *LangSerwis::getLangList() const
{
    const auto offered = Internal::wordsOf(Internal::meterModel(d->model).languages);
    if (!offered.isEmpty())
        return new QStringList(offered);
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
