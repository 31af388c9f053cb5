#include "Command.h"
#include "Settings.h"

#include <language/LangSerwis.h>
#include <language/helpManager.h>

#include <QDir>
#include <QJsonObject>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

QString languagesDirectory()
{
    return KTV_Configuration().get_mainInterfaceLangsDirectory();
}

QString helpDirectory()
{
    return KTV_Configuration().get_mainInterfaceUserHelpDirectory();
}

/** Loads exactly that language: for a user who has named one, the fallback is a failure. */
bool load(LangSerwis &texts, const QString &code)
{
    return texts.setLang(code) && texts.getCurrentLang() == code;
}

int noLanguage(const QString &code)
{
    return fail(QStringLiteral("language '%1' cannot be loaded; --verbose tells more").arg(code));
}

int listLanguages(const Call &call)
{
    const LangSerwis texts(languagesDirectory(), modelOf(call));
    const std::unique_ptr<QStringList> codes(texts.getLangList());
    call.print(*codes);
    return Success;
}

int setLanguage(const Call &call)
{
    LangSerwis texts(languagesDirectory(), KTV_Configuration::MeterModels_NaN);
    if (!load(texts, call.argument(0)))
        return noLanguage(call.argument(0));
    Settings settings(Settings::Writing);
    return settings.isUsable() && settings.write(KTV_InterfaceConfig::MAIN_Lang, call.argument(0))
        ? Success
        : settings.failure();
}

int printText(const Call &call)
{
    const QString code = languageOf(call);
    LangSerwis texts(languagesDirectory(), KTV_Configuration::MeterModels_NaN);
    if (!load(texts, code))
        return noLanguage(code);
    const QString text = texts.getText(call.argument(0), call.argument(1), call.argument(2));
    if (text.isNull())
        return fail(QStringLiteral("%1 has no text '%2' in section '%3'")
                        .arg(code, call.argument(1), call.argument(0)));
    call.print(text, text);
    return Success;
}

int printSection(const Call &call)
{
    const QString code = languageOf(call);
    LangSerwis texts(languagesDirectory(), KTV_Configuration::MeterModels_NaN);
    if (!load(texts, code))
        return noLanguage(code);
    const std::unique_ptr<QHash<QString, QString>> section(texts.getSection(call.argument(0)));
    if (section->isEmpty())
        return fail(QStringLiteral("%1 has no section '%2'").arg(code, call.argument(0)));
    QStringList keys = section->keys();
    std::sort(keys.begin(), keys.end());
    QJsonObject machine;
    NamedValues human;
    for (const QString &key : std::as_const(keys)) {
        machine.insert(key, section->value(key));
        human.add(key, section->value(key));
    }
    call.print(machine, human.text());
    return Success;
}

int unknownModel()
{
    return misuse(QStringLiteral("the meter has no serial number yet; give --serial"));
}

int listPages(const Call &call)
{
    const auto model = modelOf(call);
    if (model == KTV_Configuration::MeterModels_NaN)
        return unknownModel();
    const QERNTools::helpManager help(helpDirectory(), model, languageOf(call));
    const std::unique_ptr<QStringList> pages(help.GetHelpFileList(call.argument(0)));
    if (pages->isEmpty())
        return fail(QStringLiteral("no help page on '%1'").arg(call.argument(0)));
    call.print(*pages);
    return Success;
}

/**
 * Name of a model's help folder, found as the folder that a help manager creates in an empty
 * directory.
 */
QString modelFolder(KTV_Configuration::MeterModels model)
{
    const QTemporaryDir empty;
    const QERNTools::helpManager help(empty.path(), model, QString());
    return QDir(empty.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0);
}

int listTopics(const Call &call)
{
    const auto model = modelOf(call);
    if (model == KTV_Configuration::MeterModels_NaN)
        return unknownModel();
    const QERNTools::helpManager help(helpDirectory(), model, languageOf(call));
    const QDir folder(helpDirectory() + QLatin1Char('/') + modelFolder(model));
    QStringList topics = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    topics.erase(std::remove_if(topics.begin(), topics.end(),
                                [&help](const QString &topic) { return !help.HasHelp(topic); }),
                 topics.end());
    call.print(topics);
    return Success;
}

QCommandLineOption languageOption()
{
    return {QStringLiteral("lang"), QStringLiteral("Language code (else the user's setting)."),
            QStringLiteral("CODE")};
}

QCommandLineOption modelOption()
{
    return serialOption("Serial number that decides the model (else the stored one).");
}

} // namespace

Family langFamily()
{
    return {
        "lang",
        "Languages and their texts. Safe at any time but for 'set': the interface reads the "
        "setting when it starts, and may write its own.",
        {{"list", "", "print the languages that a user may choose", listLanguages, {modelOption()}},
         {"set", "CODE", "make a language that loads the user's setting", setLanguage},
         {"text", "SECTION KEY [DEFAULT]", "print a text", printText, {languageOption()}},
         {"section", "SECTION", "print all texts of a section", printSection, {languageOption()}}}};
}

Family helpFamily()
{
    return {"help",
            "Help pages of a model. Safe at any time; a topic without a folder gets an empty one.",
            {{"list",
              "TOPIC",
              "print the paths of a topic's pages",
              listPages,
              {languageOption(), modelOption()}},
             {"topics",
              "",
              "print the topics that have a page",
              listTopics,
              {languageOption(), modelOption()}}}};
}
