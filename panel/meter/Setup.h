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
 * What is measured, and how. The last setting of each quantity is stored; type and name of the
 * object stay the same when another quantity is chosen.
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
    /** Material for the temperature compensation; empty: no compensation. */
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
    /** The object that the simulated hardware measures. */
    const TestObject &testObject() const { return m_testObject; }
    void setTestObject(const TestObject &object);

    bool isCompensated() const;
    /**
     * Whether there are limits for this quantity: the lists have them for resistance and
     * temperature.
     */
    bool canJudge() const { return m_quantity != Quantity::Inductance; }
    ReadingFormat format() const;
    /** Test currents for which the meter's model has rounding rows with this setup's method. */
    QList<ValueBox::testI> testCurrents() const;

    /** Reads the last setting of the current quantity. */
    void load();
    /**
     * To be called after a change of the model: chooses another current if the model does not have
     * this one.
     */
    void adaptToModel();

signals:
    void changed();

private:
    void read();
    void refreshCurrent();
    void store();
    void keep(); ///< Called by every setter: stores the setting and emits changed().

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
