#pragma once

#include "touch/Keyboard.h"
#include "touch/Text.h"

#include <QString>
#include <QStringList>
#include <QVector>

class KTV_DataList;

/** One row of any of the library's lists. */
struct ListEntry
{
    int id = 0;
    bool isFactory = false;
    QStringList values; ///< as many as the family has fields
};

/** What differs between the five lists: their fields, and the library's operations on them. */
struct ListFamily
{
    struct Field
    {
        Text caption;
        TextField::Kind kind;
    };

    Text title;
    Text shortTitle;
    QVector<Field> fields;
    QVector<ListEntry> (*fetch)(KTV_DataList &lists, const QString &filter);
    bool (*add)(KTV_DataList &lists, const QStringList &values);
    bool (*update)(KTV_DataList &lists, int id, const QStringList &values);
    bool (*remove)(KTV_DataList &lists, int id);
};

const QVector<ListFamily> &listFamilies();
