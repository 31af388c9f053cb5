#pragma once

#include "Gauge.h"

#include <configuration/KTV_Configuration.h>

#include <QObject>
#include <QString>

namespace Tools_Pendrive {
class Pendrive;
}

namespace Updater {

class Update : public QObject, public Gauge
{
    Q_OBJECT
public:
    Update(QString updateDirectory, KTV_Configuration::MeterModels model,
           Tools_Pendrive::Pendrive *pendrive, QObject *parent = nullptr);
};

} // namespace Updater
