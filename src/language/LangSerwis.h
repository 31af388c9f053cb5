#pragma once

#include <ktv_datasource_export.h>

#include <configuration/KTV_Configuration.h>

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

/**
 * Translated texts, keyboards and time formats, from one XML file per language.
 *
 * Used from the interface's thread only. Nothing is loaded until setLang().
 */
class KTV_DATASOURCE_EXPORT LangSerwis : public QObject
{
    Q_OBJECT
public:
    /**
     * @param directory holds one folder per language; ends in "/"
     * @param model decides which languages getLangList() offers
     */
    LangSerwis(const QString &directory, KTV_Configuration::MeterModels model,
               QObject *parent = nullptr);
    ~LangSerwis() override;

    /**
     * Loads the language @p code, or "EN" when its file cannot be opened. If a file can be opened
     * but not parsed, or is larger than 4 MiB, the current language stays. Blocks while the file is
     * read.
     * @return whether a language was loaded, even if only the fallback
     */
    bool setLang(const QString &code);
    /** Code of the current language, which may be the fallback; "EN" before the first setLang(). */
    QString getCurrentLang() const;

    /** Text of an entry, or @p defaultValue when there is no such section, entry or text. */
    QString getText(const QString &section, const QString &key, const QString &defaultValue) const;
    /**
     * All entries of a section, by name; the text of an entry without one is its name.
     * @return new table; the caller deletes it. Empty when there is no such section; never null.
     */
    QHash<QString, QString> *getSection(const QString &section) const;
    /**
     * Codes that a user may choose: three fixed ones on KTV-4200 and KTV-4400, otherwise the names
     * of the folders in the languages directory, whether or not they have a language file.
     * @return new list; the caller deletes it; never null
     */
    QStringList *getLangList() const;

    /** Layout of the small keyboard, unchanged from the language file. */
    QString getSmallKeyboard() const;
    /** Layout of the big keyboard. */
    QString getBigKeyboard() const;
    /** Layout of the small keyboard with the language's own letters. */
    QString getRegionalSmallKeyboard() const;
    /** Layout of the big keyboard with the language's own letters. */
    QString getRegionalBigKeyboard() const;
    /** Time format in the style of "hh:mm". */
    QString getTimeFormat() const;
    /** Date format in the style of "yyyy.MM.dd". */
    QString getDataFormat() const;

    /** Sets the model, once the serial number is known; getLangList() depends on it. */
    void updateMeterModel(KTV_Configuration::MeterModels model);

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
