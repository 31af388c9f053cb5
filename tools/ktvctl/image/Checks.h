#pragma once

#include "Image.h"
#include "Report.h"

#include <QDomDocument>

#include <optional>

/** Directories that the description of the device may change. */
struct Places
{
    QString languages = QStringLiteral("/home/root/Langs/");
    QString help = QStringLiteral("/home/root/Help/");
    /** Null if there is no description, because the library then has no directory of samples. */
    QString samples;
};

/** The elements in a file, as the library reads them; if it refuses them, no value, and an error.
 */
std::optional<QDomDocument> readDocument(const Image &image, const QString &path, Report &report);
/** Its root: the first element, whatever its name. */
QDomElement rootOf(const QDomDocument &document);
int lineOf(const QDomElement &element);
/** Whether the bytes are UTF-8; an error names the first line that is not. */
bool isUtf8(const QByteArray &bytes, const QString &path, Report &report);

Places checkDescription(const Image &image, Report &report);
void checkLanguages(const Image &image, const Places &places, Report &report);
void checkDefaultLists(const Image &image, const Places &places, Report &report);
void checkHelpPages(const Image &image, const Places &places, Report &report);
void checkSamples(const Image &image, const Places &places, Report &report);
/** Checks programs, units and other parts of the system. */
void checkSystem(const Image &image, Report &report);

/** Codes of the languages in the folder: two capital letters each. */
QStringList languageCodes(const Image &image, const Places &places);
