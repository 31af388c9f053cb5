#pragma once

#include "Gauge.h"

#include <QObject>

namespace QRReader {

class skanerQR : public QObject, public Gauge
{
    Q_OBJECT
public:
    explicit skanerQR(QObject *parent = nullptr);
};

} // namespace QRReader
