#pragma once

#include "Gauge.h"

#include <QObject>

class KTV_Configuration;

namespace Tools_Pendrive {

class Pendrive : public QObject, public Gauge
{
    Q_OBJECT
public:
    explicit Pendrive(KTV_Configuration *configuration, QObject *parent = nullptr);
};

} // namespace Tools_Pendrive
