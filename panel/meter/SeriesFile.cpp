#include "meter/SeriesFile.h"

#include <tools/Tools.h>

#include <QDir>
#include <QSaveFile>

#include <cmath>

using QERNTools::Tools;

namespace {

struct QuantityRow
{
    const char *name;
    const char *unit;
};

/** By Quantity. */
constexpr QuantityRow quantities[] = {
    {"resistance", "ohm"},
    {"inductance", "henry"},
    {"temperature", "degree Celsius"},
};

/** By Verdict::Outcome. */
constexpr const char *outcomes[] = {"", "pass", "fail"};

/** By Verdict::Reason. */
constexpr const char *reasons[] = {
    "",
    "nothing measured",
    "leads swapped",
    "a bound is no number",
    "the limit has no bounds",
    "above the range of the meter",
    "",
    "above the high limit",
    "below the low limit",
};

QString quoted(QString text)
{
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\""))
        + QLatin1Char('"');
}

/** A name that a user has entered, changed so that no spreadsheet takes it for a formula. */
QString name(const QString &text)
{
    const bool isFormula = !text.isEmpty() && QStringLiteral("=+-@").contains(text.at(0));
    return quoted(isFormula ? QLatin1Char('\'') + text : text);
}

QString bound(Quantity quantity, const QString &kept)
{
    const QString text = Limit::text(quantity, kept);
    return std::isnan(Limit::number(quantity, kept)) ? name(text) : quoted(text);
}

QString figure(float value)
{
    return std::isnan(value) ? QString() : QString::number(double(value), 'g', 7);
}

/** Name of the client's folder. A name of dots only would be another folder. */
QString folderOf(const QString &client)
{
    const QString folder = Tools::validFileName(client);
    return folder.startsWith(QLatin1Char('.')) ? QLatin1Char('_') + folder : folder;
}

} // namespace

QByteArray SeriesFile::head(const Series &series)
{
    const SeriesConditions &conditions = series.conditions();
    const ReadingFormat &format = conditions.format;
    const QuantityRow &quantity = quantities[int(format.quantity)];
    const bool isCompensated = !conditions.material.isEmpty();
    const struct
    {
        const char *name;
        QString value;
    } lines[] = {
        {"meter", quoted(conditions.meterName)},
        {"serial number", quoted(conditions.serialNumber)},
        {"quantity", QLatin1String(quantity.name)},
        {"unit", QLatin1String(quantity.unit)},
        {"test current", format.currentText()},
        {"object type", name(conditions.objectType)},
        {"object name", name(conditions.objectName)},
        {"material", name(conditions.material)},
        {"temperature coefficient in 1/K",
         isCompensated ? QString::number(conditions.alpha) : QString()},
        {"limit", name(conditions.limit.name)},
        {"low limit", bound(format.quantity, conditions.limit.low)},
        {"high limit", bound(format.quantity, conditions.limit.high)},
        {"verdict", QLatin1String(outcomes[series.verdict().outcome()])},
        {"reason", QLatin1String(reasons[series.verdict().reason()])},
        {"start", conditions.start.toString(Qt::ISODate)},
        {"interval in s", QString::number(conditions.interval / 1000.)},
        {"count", QString::number(series.presentCount())},
        {"minimum", figure(series.minimum())},
        {"maximum", figure(series.maximum())},
        {"mean", figure(series.mean())},
        {"standard deviation", figure(series.standardDeviation())},
    };
    QString text;
    for (const auto &line : lines)
        text += QLatin1String(line.name) + QLatin1Char(',') + line.value + QLatin1String("\r\n");
    return text.toUtf8();
}

QByteArray SeriesFile::csv(const QByteArray &head, const Series &series)
{
    QByteArray content = head;
    content += "\r\n";
    content += "number,time,seconds,value,shown,verdict\r\n";
    for (int index = 0; index < series.count(); ++index) {
        content += QByteArray::number(index + 1) + ',';
        content += series.time(index).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")).toUtf8();
        content += ',' + QByteArray::number(series.seconds(index), 'f', 3) + ',';
        content += figure(series.value(index)).toUtf8() + ',';
        content += quoted(series.text(index)).toUtf8() + ',';
        content += outcomes[series.verdict(index).outcome()];
        content += "\r\n";
    }
    return content;
}

SeriesFile::Result SeriesFile::save(const QByteArray &head, const Series &series,
                                    const QString &directory, const QString &client,
                                    const QDate &day)
{
    const QString folder = directory + folderOf(client) + QLatin1Char('/');
    QDir().mkpath(folder);
    const QString name = Tools::findFreeFileName(folder, day.toString(QStringLiteral("yyyy-MM-dd")),
                                                 QStringLiteral("csv"));
    const QByteArray content = csv(head, series);
    // The flush is needed: commit() does not notice if there is no space for the buffered content.
    QSaveFile file(folder + name);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush()
        && file.commit())
        return {Outcome::Saved, folder + name};
    const qint64 free = Tools::getFreeSpace(directory);
    return {free >= 0 && free < content.size() ? Outcome::CardFull : Outcome::Failed, QString()};
}
