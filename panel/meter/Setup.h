#pragma once

#include "meter/Limit.h"
#include "meter/Quantity.h"
#include "meter/Reading.h"
#include "meter/TestObject.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <valuebox/ValueTypes.h>

#include <QList>
#include <QObject>
#include <QString>

/**
 * What is measured, and how. Each quantity keeps its last setting; the object's type and name stay
 * when another of its quantities is measured.
 */
class Setup : public QObject
{
    Q_OBJECT
public:
    /** Temperature to which compensated values refer, in degrees Celsius. */
    static constexpr float referenceTemperature = 20;

    explicit Setup(KTV_InterfaceConfig &settings, QObject *parent = nullptr);

    Quantity quantity() const { return m_quantity; }
    void setQuantity(Quantity quantity);
    ValueBox::testI current() const { return m_current; }
    void setCurrent(ValueBox::testI current);
    /** Material that readings are compensated for; empty: they are not. */
    QString material() const { return m_material; }
    double alpha() const { return m_alpha; } ///< the material's temperature coefficient, in 1/K
    void setMaterial(const QString &name, double alpha);
    const Limit &limit() const { return m_limit; }
    void setLimit(const Limit &limit);
    QString objectType() const { return m_objectType; } ///< of the lists; may be empty
    QString objectName() const { return m_objectName; } ///< of the lists; may be empty
    void setObject(const QString &type, const QString &name);
    /** "Transformer · T1" */
    static QString objectText(const QString &type, const QString &name);
    /** What lies between the leads of the simulated hardware. */
    const TestObject &testObject() const { return m_testObject; }
    void setTestObject(const TestObject &object);

    bool isCompensated() const;
    /** The lists know limits of resistance and of temperature. */
    bool canJudge() const { return m_quantity != Quantity::Inductance; }
    Form form() const;
    /** Test currents that the meter's model has rounding rows for, with this setup's method. */
    QList<ValueBox::testI> testCurrents() const;

    /** Takes the last setting of the quantity that is chosen. */
    void load();
    /** Takes another current when the model lacks the one that is chosen. */
    void takeModel();

signals:
    void changed();

private:
    void read();
    void refreshCurrent();
    void store();
    void keep(); ///< What every setter ends with.

    KTV_InterfaceConfig &m_settings;
    Quantity m_quantity = Quantity::Resistance;
    ValueBox::testI m_current = ValueBox::testI_10A;
    QString m_material;
    double m_alpha = 0;
    Limit m_limit;
    QString m_objectType;
    QString m_objectName;
    TestObject m_testObject;
};
