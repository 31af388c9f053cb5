#include "Command.h"
#include "image/Checks.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

QString levelName(const Finding &finding)
{
    return finding.level == Finding::Error ? QStringLiteral("error") : QStringLiteral("warning");
}

/**
 * A line such as "/home/root/Langs/EN/EN.xml:12: error: …", the format of compilers, which editors
 * understand.
 */
QString lineOf(const Finding &finding)
{
    QString place = finding.file;
    if (finding.line > 0)
        place += QLatin1Char(':') + QString::number(finding.line);
    return place + QStringLiteral(": ") + levelName(finding) + QStringLiteral(": ") + finding.text;
}

int checkImage(const Call &call)
{
    const QString folder = call.argument(0);
    if (!folder.isNull() && !QDir(folder).exists())
        return misuse(QStringLiteral("no folder '%1'").arg(folder));
    const Image image(folder.isNull() ? QString() : QDir(folder).absolutePath());
    Report report;
    const Places places = checkDescription(image, report);
    checkLanguages(image, places, report);
    checkDefaultLists(image, places, report);
    checkHelpPages(image, places, report);
    checkSamples(image, places, report);
    checkSystem(image, report);

    QJsonArray machine;
    QStringList human;
    const auto &findings = report.findings();
    for (const Finding &finding : findings) {
        machine += QJsonObject {{QStringLiteral("level"), levelName(finding)},
                                {QStringLiteral("file"), finding.file},
                                {QStringLiteral("line"), finding.line},
                                {QStringLiteral("text"), finding.text}};
        human += lineOf(finding);
    }
    call.print(machine, human.isEmpty() ? QString() : human.join(QLatin1Char('\n')));
    const bool hasError = std::any_of(findings.begin(), findings.end(), [](const Finding &finding) {
        return finding.level == Finding::Error;
    });
    return hasError ? Failure : Success;
}

} // namespace

Family checkImageFamily()
{
    return {
        "check-image",
        "For people who make device images. Safe at any time: it only reads. Ends with 1 when "
        "there is an error; warnings alone end with 0.",
        {{"", "[DIR]", "check the device, or the root file system in DIR, and print what is off",
          checkImage}}};
}
