#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class KTV_DataList;

/**
 * The library's five pick lists, as rows of texts. Limits of temperature are numbers of the unit in
 * effect, as somebody would enter them.
 */
class Lists : public QObject
{
    Q_OBJECT
public:
    enum Family
    {
        ObjectTypes, ///< name
        ObjectNames, ///< name
        Materials, ///< name, temperature coefficient in 1/K
        ResistanceLimits, ///< name, low, high
        TemperatureLimits ///< name, low, high
    };

    struct Entry
    {
        int id = 0;
        bool isFactory = false; ///< cannot be changed
        QStringList values;
    };

    /** What is wrong with values to be entered. */
    enum Problem
    {
        NoProblem,
        NameMissing,
        NotANumber,
        BoundsMissing,
        LowAboveHigh
    };

    explicit Lists(KTV_DataList &lists, QObject *parent = nullptr);

    QVector<Entry> entries(Family family, const QString &filter = QString()) const;
    static Problem problemOf(Family family, const QStringList &values);
    // Whether the lists have taken it.
    bool add(Family family, const QStringList &values);
    bool update(Family family, int id, const QStringList &values);
    bool remove(Family family, int id);

    /** Another language or another unit of temperatures: the lists have other rows. */
    void refresh() { emit changed(); }

signals:
    void changed();

private:
    bool told(bool isDone);

    KTV_DataList &m_lists;
};
