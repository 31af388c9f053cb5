#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class KTV_DataList;

/**
 * The library's five pick lists, as rows of texts. Limits of temperature are numbers in the current
 * unit, as a user enters them.
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

    /** Why values cannot be entered. */
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
    // Each returns whether it has succeeded.
    bool add(Family family, const QStringList &values);
    bool update(Family family, int id, const QStringList &values);
    bool remove(Family family, int id);

    /**
     * To be called after a change of the language or of the unit of temperature: the rows are other
     * ones.
     */
    void refresh() { emit changed(); }

signals:
    void changed();

private:
    bool emitIfChanged(bool isChanged);

    KTV_DataList &m_lists;
};
