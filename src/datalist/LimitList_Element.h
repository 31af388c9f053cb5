#pragma once

#include <ktv_datasource_export.h>

#include <QObject>
#include <QString>

/** One pair of limits, of resistance or of temperature. */
class KTV_DATASOURCE_EXPORT LimitList_Element : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    int ID = 0; ///< key of the row
    QString Name; ///< name of the pair
    QString HighLimit; ///< upper limit as text, temperatures in the unit in effect; may be empty
    QString LoLimit; ///< lower limit as text, temperatures in the unit in effect; may be empty
};
