#pragma once

#include <ktv_datasource_export.h>

#include <QHash>
#include <QObject>
#include <QString>

#include <memory>

class QDataStream;

/**
 * Usage counters of the meter's main functions, kept in "liczniki.bin".
 *
 * Counts are kept in memory and written to the file only when the object is destroyed. They are
 * written in one step: a pulled battery leaves the old counts or the new ones, also on a FAT card.
 * Once the file exists it can be written even on a full card. Used from the interface's thread
 * only. Failures are not returned to the caller, only logged.
 */
class KTV_DATASOURCE_EXPORT KTV_Liczniki : public QObject
{
    Q_OBJECT
public:
    /** What is counted. */
    enum Licznik : qint32
    {
        Licznik_AutomatycznyDoborMetody = 0, ///< automatic selection of the method
        Licznik_PomiarObiektowRezystancyjnych = 1, ///< measurement of a resistive object
        Licznik_PomiarObiektowIndukcyjnych = 2, ///< measurement of an inductive object
        Licznik_Demagnetyzacja = 3, ///< demagnetisation
        Licznik_PomiarTemperaturySilnika = 4, ///< motor temperature measurement
        Licznik_RejestracjaObiektowRezystancyjnych = 5, ///< recording of a resistive object
        Licznik_RejestracjaObiektowIndukcyjnych = 6 ///< recording of an inductive object
    };
    Q_ENUM(Licznik)

    /** Loads the counters. @param directory prefix of the file's path; ends in "/" */
    explicit KTV_Liczniki(const QString &directory, QObject *parent = nullptr);
    /** Saves the counters as SaveLiczniki() does. */
    ~KTV_Liczniki() override;

    void Up_Licznik_AutomatycznyDoborMetody(); ///< Counts one automatic selection.
    void Up_Licznik_PomiarObiektowRezystancyjnych(); ///< Counts one resistive measurement.
    void Up_Licznik_PomiarObiektowIndukcyjnych(); ///< Counts one inductive measurement.
    void Up_Licznik_Demagnetyzacja(); ///< Counts one demagnetisation.
    void Up_Licznik_PomiarTemperaturySilnika(); ///< Counts one motor temperature measurement.
    void Up_Licznik_RejestracjaObiektowRezystancyjnych(); ///< Counts one resistive recording.
    void Up_Licznik_RejestracjaObiektowIndukcyjnych(); ///< Counts one inductive recording.

    /** Adds 1 to a counter; a missing one becomes 1, and one at its highest number stays there. */
    void up_dictionary(KTV_Liczniki::Licznik counter);
    /** Count of a counter; 0 for a missing one. */
    qint64 get_dictionary(KTV_Liczniki::Licznik counter) const;
    /** Sets a counter. */
    void set_dictionary(KTV_Liczniki::Licznik counter, qint64 count);
    /** Reads a counter from the stream; 0 past the stream's end. The caller keeps the stream. */
    void load(QDataStream *stream, KTV_Liczniki::Licznik counter);

    /** @return new copy of all counters; the caller deletes it; never null */
    QHash<KTV_Liczniki::Licznik, qint64> *getLiczniki() const;
    /** Writes one debug line for each counter, in the order of the file. */
    void printLiczniki() const;

    /** Reads the file. Counters missing from it become 0; a damaged file changes no counter. */
    void LoadLiczniki();
    /**
     * Overwrites the file in place, creating it and its directory (one level) when they are
     * missing. Blocks until it has been flushed to the card. A file that cannot be opened for
     * writing is replaced; if it cannot be replaced either, the old one stays.
     */
    void SaveLiczniki();

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
