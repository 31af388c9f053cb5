#pragma once

#include "Image.h"
#include "Report.h"

#include <QDomDocument>

#include <optional>

/** Places that the description of the device may move. */
struct Places
{
    QString languages = QStringLiteral("/home/root/Langs/");
    QString help = QStringLiteral("/home/root/Help/");
    /** Null without a description: the library then knows no samples. */
    QString samples;
};

/** The document that a file holds; nothing, and an error is reported, unless it is one. */
std::optional<QDomDocument> readDocument(const Image &image, const QString &path, Report &report);
/** Its root: the first element, whatever its name. */
QDomElement rootOf(const QDomDocument &document);
/** Whether the bytes are UTF-8; an error names the first line that is not. */
bool isUtf8(const QByteArray &bytes, const QString &path, Report &report);

Places checkDescription(const Image &image, Report &report);
void checkLanguages(const Image &image, const Places &places, Report &report);
void checkDefaultLists(const Image &image, const Places &places, Report &report);
void checkHelpPages(const Image &image, const Places &places, Report &report);
void checkSamples(const Image &image, const Places &places, Report &report);
/** Programs, units, and what else the system brings. */
void checkSystem(const Image &image, Report &report);

/** Codes of the languages that the folder holds: two capital letters each. */
QStringList languageCodes(const Image &image, const Places &places);
/** Codes of the languages that models with a codec offer, whatever the folder holds. */
QStringList fixedLanguages();
