#include "Models.h"
#include "Settings.h"
#include "ValueOptions.h"
#include "meter/LimitText.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <map>
#include <utility>

using namespace ValueBox;
using DynamicRounding::RoundItem;

namespace {

constexpr Word<Units> unitWords[] = {
    {"none", Unit_None}, {"A", Unit_A}, {"V", Unit_V}, {"temperature", Unit_Temperature},
    {"ohm", Unit_Ohm},
};

constexpr Word<TemperatureUnit> temperatureWords[] = {
    {"C", Temp_Celsius},
    {"F", Temp_Fahrenheit},
    {"K", Temp_Kelvin},
};

QJsonValue toJson(float number)
{
    return std::isfinite(number) ? QJsonValue(double(number)) : QJsonValue();
}

QString plain(float number)
{
    return QString::number(double(number), 'g', std::numeric_limits<float>::digits10 + 1);
}

/** The code of every label that the library knows. */
std::map<testI, QString> currentLabels()
{
    constexpr int highest = 200;
    std::map<testI, QString> labels;
    for (int amount = 1; amount <= highest; ++amount) {
        for (const char *unit : {" mA", " A"}) {
            const QString label = QString::number(amount) + QLatin1String(unit);
            const testI code = NumericalValueBox::testI_parse(label);
            if (code != testI_None)
                labels.emplace(code, label);
        }
    }
    return labels;
}

/** The current that an option gives, as label or as code; no value for an unknown one. */
std::optional<testI> currentOf(const Call &call)
{
    if (call.isSet("code")) {
        bool ok = false;
        const int code = call.option("code").toInt(&ok);
        return ok ? std::optional(testI(code)) : std::nullopt;
    }
    const QString word = call.option("current");
    // Amperes are tried before labels, because the label of 20 A is "20 mA".
    static const QRegularExpression amount(QStringLiteral("^([0-9]+) ?(m?)A$"));
    const auto match = amount.match(word);
    const float divisor = match.captured(2).isEmpty() ? 1.F : 1000.F;
    const float wanted = match.captured(1).toFloat() / divisor;
    for (const auto &[code, label] : currentLabels()) {
        if (match.hasMatch() && NumericalValueBox::ConvertTestI_ToFlota(code) == wanted)
            return code;
    }
    const testI labelled = NumericalValueBox::testI_parse(word);
    return labelled != testI_None ? std::optional(labelled) : std::nullopt;
}

bool namesCurrent(const Call &call)
{
    return call.isSet("current") || call.isSet("code");
}

/** Arguments of `value format`. */
struct FormatRequest
{
    float value = 0;
    Units unit = Unit_Ohm;
    RoundMetods method = Round_R;
    bool isNegativeAllowed = false;
    QList<testI> currents;
};

/** Reads the arguments. @return what is wrong with them; empty if they are valid */
QString read(const Call &call, FormatRequest &request)
{
    bool ok = false;
    request.value = call.argument(0).toFloat(&ok);
    if (!ok)
        return QStringLiteral("'%1' is no number").arg(call.argument(0));
    const auto unit = valueOf(unitWords, call.option("unit"));
    if (!unit)
        return QStringLiteral("--unit knows %1").arg(wordList(unitWords));
    request.unit = *unit;
    const auto temperature = valueOf(temperatureWords, call.option("temperature"));
    if (!temperature)
        return QStringLiteral("--temperature knows %1").arg(wordList(temperatureWords));
    if (request.unit == Unit_Temperature) {
        NumericalValueBox::prepareStaticDefaultValue(*temperature);
        return {};
    }
    const auto method = valueOf(methodWords, call.option("method"));
    if (!method)
        return QStringLiteral("--method knows %1").arg(wordList(methodWords));
    request.method = *method;
    request.isNegativeAllowed = call.isSet("negative");
    QString problem = prepareTables(call);
    if (!problem.isEmpty())
        return problem;
    if (namesCurrent(call)) {
        const auto current = currentOf(call);
        if (!current)
            return QStringLiteral("no current '%1'; see ktvctl value currents")
                .arg(call.option(call.isSet("code") ? "code" : "current"));
        request.currents = {*current};
    } else {
        for (const auto *set : tableOf(request.method))
            request.currents += set->current;
    }
    return {};
}

int formatTemperature(const Call &call, float celsius)
{
    const QString text = NumericalValueBox::formatTemperature(celsius);
    call.print(QJsonObject {{QStringLiteral("text"), text}}, text);
    return Success;
}

int format(const Call &call)
{
    FormatRequest request;
    const QString problem = read(call, request);
    if (!problem.isEmpty())
        return misuse(problem);
    if (request.unit == Unit_Temperature)
        return formatTemperature(call, request.value);
    NumericalValueBox box(request.unit, request.method);
    box.setNegativeAllowed(request.isNegativeAllowed);
    QJsonArray machine;
    NamedValues human;
    for (const testI current : std::as_const(request.currents)) {
        box.setRealValue(request.value, current);
        const QString text = box.toString();
        machine += QJsonObject {{QStringLiteral("current"), int(current)},
                                {QStringLiteral("text"), text},
                                {QStringLiteral("readBack"), toJson(box.getRealFormatedValue())}};
        human.add(currentName(current), text);
    }
    if (namesCurrent(call))
        call.print(machine.first(), box.toString());
    else
        call.print(machine, human.text());
    return Success;
}

int parse(const Call &call)
{
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    float value = 0;
    int precision = 0;
    auto unit = Unit_None;
    auto prefix = Prefix_None;
    if (!NumericalValueBox::parse(LimitText::asShown(call.argument(0)), value, precision, unit,
                                  prefix))
        return fail(QStringLiteral("'%1' shows no number").arg(call.argument(0)));
    NamedValues human;
    human.add("Value", plain(value));
    human.add("Decimals", QString::number(precision));
    human.add("Unit", wordOf(unitWords, unit));
    human.add("Prefix", QStringLiteral("10^%1").arg(int(prefix)));
    call.print(QJsonObject {{QStringLiteral("value"), toJson(value)},
                            {QStringLiteral("decimals"), precision},
                            {QStringLiteral("unit"), wordOf(unitWords, unit)},
                            {QStringLiteral("prefix"), int(prefix)}},
               human.text());
    return Success;
}

int currents(const Call &call)
{
    QJsonArray machine;
    QStringList human {QStringLiteral("code  label     amperes")};
    for (const auto &[code, label] : currentLabels()) {
        const float amperes = NumericalValueBox::ConvertTestI_ToFlota(code);
        machine += QJsonObject {{QStringLiteral("code"), int(code)},
                                {QStringLiteral("label"), label},
                                {QStringLiteral("amperes"), double(amperes)}};
        human += QString::number(code).leftJustified(6) + label.leftJustified(10) + plain(amperes);
    }
    call.print(machine, human.join(QLatin1Char('\n')));
    return Success;
}

/** A text such as "up to 0.0019999: 4 decimals, m". */
QString described(const RoundItem &row)
{
    QString text = QStringLiteral("  up to %1: %2 decimal%3")
                       .arg(plain(row.maximum))
                       .arg(row.digits)
                       .arg(QLatin1String(row.digits == 1 ? "" : "s"));
    if (row.prefix != Prefix_None)
        text += QLatin1String(", ") + NumericalValueBox::getUnitPrefix(UnitPrefixs(row.prefix));
    return text;
}

/** The row sets of one method, as lines and for --json. */
QJsonArray describe(const QString &name, const RowSets &table, QStringList &human)
{
    QJsonArray sets;
    for (const auto *set : table) {
        human += QStringLiteral("%1, %2").arg(name, currentName(set->current));
        QJsonArray rows;
        for (const RoundItem *row : set->items) {
            human += described(*row);
            rows += QJsonObject {{QStringLiteral("maximum"), double(row->maximum)},
                                 {QStringLiteral("decimals"), row->digits},
                                 {QStringLiteral("prefix"), row->prefix}};
        }
        sets += QJsonObject {{QStringLiteral("current"), int(set->current)},
                             {QStringLiteral("rows"), rows}};
    }
    return sets;
}

int tables(const Call &call)
{
    const auto wanted = valueOf(methodWords, call.option("method"));
    if (call.isSet("method") && !wanted)
        return misuse(QStringLiteral("--method knows %1").arg(wordList(methodWords)));
    const QString problem = prepareTables(call);
    if (!problem.isEmpty())
        return misuse(problem);
    QJsonObject machine;
    QStringList human;
    for (const auto &[word, method] : methodWords) {
        const QString name = QLatin1String(word);
        if (!wanted || *wanted == method)
            machine.insert(name, describe(name, tableOf(method), human));
    }
    call.print(machine, human.join(QLatin1Char('\n')));
    return Success;
}

QCommandLineOption option(const char *name, const QString &description, const char *value,
                          const char *byDefault)
{
    return {QString::fromLatin1(name), description, QString::fromLatin1(value),
            QString::fromLatin1(byDefault)};
}

QCommandLineOption modelOption()
{
    return {QStringLiteral("model"),
            QStringLiteral("Model: %1. Default: that of the stored serial number.")
                .arg(modelWords().join(QLatin1String(", "))),
            QStringLiteral("MODEL")};
}

QCommandLineOption methodOption(const char *byDefault)
{
    return option("method",
                  QStringLiteral("Resistance, inductance, and the same with temperature "
                                 "compensation: %1.")
                      .arg(wordList(methodWords)),
                  "METHOD", byDefault);
}

} // namespace

const RowSets &tableOf(RoundMetods method)
{
    static const std::map<RoundMetods, const RowSets *> tables {
        {Round_R, &NumericalValueBox::tableRound_R},
        {Round_L, &NumericalValueBox::tableRound_L},
        {Round_R_TempCompensation, &NumericalValueBox::tableRound_R_TempCompensation},
        {Round_L_TempCompensation, &NumericalValueBox::tableRound_L_TempCompensation},
    };
    return *tables.at(method);
}

QString currentName(testI current)
{
    const float amperes = NumericalValueBox::ConvertTestI_ToFlota(current);
    if (std::isnan(amperes))
        return QStringLiteral("code %1").arg(int(current));
    const bool isSmall = amperes < 1;
    return plain(isSmall ? amperes * 1000 : amperes) + QLatin1String(isSmall ? " mA" : " A");
}

QString prepareTables(const Call &call)
{
    auto model =
        call.isSet("model") ? modelOfWord(call.option("model")) : std::optional(modelOf(call));
    if (!model)
        return QStringLiteral("--model knows %1").arg(modelWords().join(QLatin1String(", ")));
    if (*model == KTV_Configuration::MeterModels_NaN)
        return QStringLiteral("the meter has no serial number yet; give --model");
    NumericalValueBox::prepareStaticDefaultValue(Temp_Celsius);
    NumericalValueBox::SetCurrentMeter(*model);
    return {};
}

Family valueFamily()
{
    const QList<QCommandLineOption> model {modelOption(),
                                           serialOption("Model of this serial number.")};
    const QList<QCommandLineOption> tableOptions =
        model + QList<QCommandLineOption> {methodOption("")};
    const QList<QCommandLineOption> modelAndMethod =
        model + QList<QCommandLineOption> {methodOption("R")};
    const QList<QCommandLineOption> formatOptions = modelAndMethod
        + QList<QCommandLineOption> {
            option("current", QStringLiteral("Test current: 1A, 100mA. Default: every one."),
                   "CURRENT", ""),
            option("code", QStringLiteral("Test current by its code, as 'value currents' has it."),
                   "CODE", ""),
            option("unit", QStringLiteral("Unit: %1.").arg(wordList(unitWords)), "UNIT", "ohm"),
            option("temperature",
                   QStringLiteral("Unit of temperatures, given in Celsius: %1.")
                       .arg(wordList(temperatureWords)),
                   "UNIT", "C"),
            {QStringLiteral("negative"), QStringLiteral("Show negative values with a sign.")}};
    const QList<QCommandLineOption> plotOptions = modelAndMethod
        + QList<QCommandLineOption> {
            {QStringLiteral("svg"), QStringLiteral("Draw an SVG picture instead of text.")}};
    return {"value",
            "Measured values: their texts by meter model, method, test current and unit.",
            {{"format", "VALUE", "show a value, in its base unit", format, formatOptions},
             {"parse", "TEXT", "read a shown value", parse},
             {"currents", "", "list the test currents", currents},
             {"tables", "", "print the rounding tables of a model", tables, tableOptions},
             {"plot", "", "draw the resolution over the magnitude", plotValues, plotOptions}}};
}
