#pragma once

#include "Gauge.h"

#include <QObject>

class PowerManager : public QObject, public Gauge
{
    Q_OBJECT
public:
    explicit PowerManager(QObject *parent = nullptr);
    ~PowerManager() override;
    void SetBrightness(int percent);

private:
    Gauge m_second;
};
