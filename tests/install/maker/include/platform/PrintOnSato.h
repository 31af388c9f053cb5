#pragma once

#include "Gauge.h"

#include <QObject>

namespace Printing {

class PrintOnSato : public QObject, public Gauge
{
    Q_OBJECT
public:
    explicit PrintOnSato(QObject *parent = nullptr);
};

} // namespace Printing
