#pragma once

#include <ktv_datasource_export.h>

#include <datalist/DataList_Element.h>
#include <datalist/LimitList_Element.h>
#include <datalist/MaterialList_Element.h>

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

/**
 * The lists from which the user picks on the measurement screens: object types, object names,
 * materials, limits of resistance and limits of temperature, in the SQLite file "dataList.db".
 *
 * Every row belongs to a language; queries see the rows of the language in effect. The first
 * three lists start with factory rows (read only), read from the text files of the language;
 * the limits start empty.
 *
 * Every query returns a new list of new elements: the caller deletes both. Null means that the
 * store is closed or the query failed; a list without rows is empty, not null. Rows come in the
 * order of their keys, the order in which they were added.
 *
 * One instance at a time, used from one thread: the connection's name is process-wide. A write
 * returns after it has been flushed to the card (tens of milliseconds on an SD card). While another
 * process holds a lock on the file, an operation fails after 5 s, the SQLite driver's own limit;
 * Open(), SetLang() and the constructor, which read three lists, after 15 s. A failed operation
 * leaves the rows as they were, except that what is written but cannot be flushed stays. Nothing
 * throws.
 */
class KTV_DATASOURCE_EXPORT KTV_DataList : public QObject
{
    Q_OBJECT
public:
    /**
     * Opens the file in @p userDataDirectory, creating it when it is missing.
     * @param userDataDirectory prefix of the file's path; ends in "/"
     * @param languagesDirectory prefix of the languages' folders; ends in "/"
     * @param language code of the language in effect
     */
    KTV_DataList(const QString &userDataDirectory, const QString &languagesDirectory,
                 const QString &language, QObject *parent = nullptr);
    /** Closes the file. Lists that were returned stay valid. */
    ~KTV_DataList() override;

    /**
     * Opens the file, closing it first when it is open, and adds the factory rows that the
     * language in effect lacks. A missing file is created.
     * @return whether the store is open. A damaged file opens, too, but then every operation fails.
     */
    bool Open();
    /**
     * Deletes the file and creates one with the factory rows of the language in effect.
     * @return whether the store is open. If the old file cannot be deleted: false, and the file is
     *         unchanged and closed.
     */
    bool CreateNew();
    /** Factory reset: calls CreateNew(). User rows of every language are lost. */
    bool RestoreFabricalSetting();
    /** Closes the file and removes the database connection. Open() opens it again. */
    void freeDB();
    /**
     * Selects another language, also while the store is closed, and adds its factory rows unless it
     * has some. Each factory file that is missing is logged, every time.
     */
    void SetLang(const QString &language);

    int GetDefaultObiectTypCount(); ///< Factory object types of the language; 0 on a failure.
    int GetDefaultObiectNameCount(); ///< Factory object names of the language; 0 on a failure.
    int GetDefaultMaterialsCount(); ///< Factory materials of the language; 0 on a failure.

    /**
     * Adds the object types of the language's file, one per line, unless the language has factory
     * rows already. All of the file's entries are added, or none when the card fails. Empty lines,
     * and texts already stored for any language, are skipped.
     */
    void FillDefaultObiectTyp();
    /** The same for the object names. */
    void FillDefaultObiectName();
    /** The same for the materials, lines such as "Copper?0.00393". Texts may repeat. */
    void FillDefaultMaterials();

    /**
     * Adds a user's object type. An empty text counts as added.
     * @return whether it was added; false also for a text already stored for any language
     */
    bool AddObiectTyp(const QString &value);
    /** Adds an object type, as a factory row when @p readOnly. */
    bool _AddObiectTyp(bool readOnly, const QString &value);
    /**
     * Changes the text of a user's row; the new text may repeat another one.
     * @return whether the statement ran: true also for a factory row or an absent one, which
     *         stay as they are; false for an empty text
     */
    bool UpdateObiectTyp(int id, const QString &value);
    /** Deletes a user's row. @return false for a factory row or an absent one */
    bool DeleteObiectTyp(int id);
    /**
     * Rows of the language in effect.
     * @param readOnlyRows,userRows which kind of rows to return; equal flags mean both kinds
     * @param filter returns only texts that contain it, whatever the case of ASCII letters; "%"
     *        stands for any text and "_" for any character; empty: every text
     * @param limit maximum number of rows returned; 0 or less: all
     * @return new list; the caller deletes the list and every element in it; null on a failure
     */
    QList<DataList_Element *> *GetObiectTyp(bool readOnlyRows, bool userRows, const QString &filter,
                                            int limit);

    /** As AddObiectTyp(). */
    bool AddObiectName(const QString &value);
    /** As _AddObiectTyp(). */
    bool _AddObiectName(bool readOnly, const QString &value);
    /** As UpdateObiectTyp(). */
    bool UpdateObiectName(int id, const QString &value);
    /** As DeleteObiectTyp(). */
    bool DeleteObiectName(int id);
    /** As GetObiectTyp(). */
    QList<DataList_Element *> *GetObiectName(bool readOnlyRows, bool userRows,
                                             const QString &filter, int limit);

    /**
     * Adds a user's material; names may repeat. An empty name counts as added.
     * @param alpha temperature coefficient of resistance, in 1/K
     */
    bool AddMaterial(const QString &name, double alpha);
    /** Adds a material, as a factory row when @p readOnly. */
    bool _AddMaterial(bool readOnly, const QString &name, double alpha);
    /** As UpdateObiectTyp(), for name and coefficient. */
    bool UpdateMaterial(int id, const QString &name, double alpha);
    /** As DeleteObiectTyp(). */
    bool DeleteMaterial(int id);
    /** As GetObiectTyp(). */
    QList<MaterialList_Element *> *GetMaterials(bool readOnlyRows, bool userRows,
                                                const QString &filter, int limit);

    /**
     * Adds a pair of resistance limits; names may repeat.
     * @param high,low limits as the user entered them; either may be empty
     * @return whether it was added; false for an empty name
     */
    bool AddLimit_R(const QString &name, const QString &high, const QString &low);
    /** As AddLimit_R(). */
    bool _AddLimit_R(const QString &name, const QString &high, const QString &low);
    /**
     * Changes a pair.
     * @return whether the statement ran: true also for an absent row; false for an empty name
     */
    bool UpdateLimit_R(int id, const QString &name, const QString &high, const QString &low);
    /** Deletes a pair. @return whether the statement ran, also for an absent row */
    bool DeleteLimit_R(int id);
    /** Pairs of the language in effect; filter, limit and result as for GetObiectTyp(). */
    QList<LimitList_Element *> *GetLimits_R(const QString &filter, int limit);

    /**
     * Adds a pair of temperature limits. While the temperature unit in effect is Fahrenheit or
     * Kelvin, the texts are read as temperatures of that unit and stored in degrees Celsius,
     * with two decimals at most; in Celsius they are stored unchanged.
     */
    bool AddLimit_T(const QString &name, const QString &high, const QString &low);
    /** As AddLimit_T(). */
    bool _AddLimit_T(const QString &name, const QString &high, const QString &low);
    /** As UpdateLimit_R(), the texts converted as by AddLimit_T(). */
    bool UpdateLimit_T(int id, const QString &name, const QString &high, const QString &low);
    /** As DeleteLimit_R(). */
    bool DeleteLimit_T(int id);
    /** As GetLimits_R(), the limits in the temperature unit in effect. */
    QList<LimitList_Element *> *GetLimits_T(const QString &filter, int limit);

private:
    class KTV_DATASOURCE_NO_EXPORT Private;
    const std::unique_ptr<Private> d;
};
