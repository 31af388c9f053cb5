#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

/** One material. */
class KTV_DATASOURCE_EXPORT MaterialList_Element : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    int ID = 0; ///< key of the row
    bool ReadOnly = false; ///< whether the row came with the device
    QString Name; ///< name of the material
    double Alpha = 0; ///< temperature coefficient of resistance, in 1/K
};
