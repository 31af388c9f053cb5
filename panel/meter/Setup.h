#pragma once

#include "meter/TestObject.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <valuebox/ValueTypes.h>

#include <QList>
#include <QString>

class KTV_DataSource;

/** What is measured, and how. Each kind keeps its last setting in the settings store. */
class Setup
{
public:
    enum Kind
    {
        Resistance,
        Inductance,
        Temperature
    };

    /** Temperature to which compensated values refer, in degrees Celsius. */
    static constexpr float referenceTemperature = 20;

    explicit Setup(KTV_DataSource &library);

    /** Takes the last setting of the kind that is chosen. */
    void load();
    void save() const;
    /** Takes another current when the model, or compensation, lacks the one that is chosen. */
    void refreshCurrent();
    /** Reads the chosen limit anew when it is one of temperature: it follows their unit. */
    void refreshLimit();
    void setKind(Kind kind);
    Kind kind() const { return m_kind; }

    /** Test currents that the meter's model has rounding rows for, with this setup's method. */
    QList<ValueBox::testI> testCurrents() const;
    ValueBox::RoundMetods roundingMethod() const;
    bool isCompensated() const { return !material.isEmpty(); }

    ValueBox::testI current = ValueBox::testI_10A;
    QString material; ///< compensates for this material; empty: plain
    double alpha = 0; ///< its temperature coefficient, in 1/K
    QString limitName; ///< judged by this pair of limits; empty: by none
    QString lowLimit; ///< as it stands in the lists
    QString highLimit; ///< as it stands in the lists
    TestObject object;

private:
    KTV_InterfaceConfig::SettingKey key() const;

    KTV_DataSource &m_library;
    Kind m_kind = Resistance;
};
