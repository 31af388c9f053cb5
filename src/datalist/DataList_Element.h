#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

/** One row of the object types or of the object names. */
class KTV_DATASOURCE_EXPORT DataList_Element : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    int ID = 0; ///< key of the row
    bool ReadOnly = false; ///< whether the row came with the device
    QString Value; ///< text of the row
};
