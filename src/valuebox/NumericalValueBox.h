#pragma once

#include "configuration/KTV_Configuration.h"
#include "valuebox/DynamicRounding.h"
#include "valuebox/ValueTypes.h"

#include <ktv_datasource_export.h>

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <limits>
#include <memory>

namespace ValueBox {

/**
 * One measured value, and the text that shows it.
 *
 * The value is kept in its base unit (ohms, henries, volts, amperes, degrees Celsius) as a 32-bit
 * float; a quiet NaN stands for a missing value. A rounding method and a test current select a set
 * of rows; the row for the value's magnitude gives prefix and decimals.
 *
 * No unit of inductance exists. An inductance, in henries, has Unit_None and Round_L: its text ends
 * in the prefix ("12.500 m"), or in the number where there is none ("1.2345"), and the interface
 * adds its own "H". getRealFormatedValue() gives henries.
 *
 * Texts and tables are shared by the whole process. Before anything is shown, set the texts with
 * prepareStaticDefaultValue() or prepareStaticCustomtValue(), and the tables with
 * SetCurrentMeter(). Everything here belongs to the interface's thread. Nothing blocks and nothing
 * fails: a value that cannot be shown is "---", one that cannot be computed is NaN.
 */
class KTV_DATASOURCE_EXPORT NumericalValueBox : public QObject
{
    Q_OBJECT
public:
    /** No value, no unit, two decimals and no prefix. */
    explicit NumericalValueBox(QObject *parent = nullptr);
    /** No value yet, with the given unit and rounding method. */
    NumericalValueBox(Units unit, RoundMetods method, QObject *parent = nullptr);
    /**
     * A value that is always shown with the same prefix and decimals.
     * @param value in the base unit
     */
    NumericalValueBox(float value, Units unit, UnitPrefixs prefix, int digits,
                      QObject *parent = nullptr);
    /**
     * The same with a rounding method: this prefix and these decimals are used until
     * setRoundMetod() or a value with a test current replaces them.
     */
    NumericalValueBox(float value, Units unit, UnitPrefixs prefix, RoundMetods method, int digits,
                      QObject *parent = nullptr);
    /**
     * Value and unit of a text, as parse() reads them; NaN without a unit if parse() fails. Shown
     * with two decimals and no prefix, whatever the text had.
     */
    explicit NumericalValueBox(const QString &text, QObject *parent = nullptr);
    ~NumericalValueBox() override;

    /** Whether negative values are shown with a minus sign; by default they are "< 0". */
    void setNegativeAllowed(bool allowed);
    bool isNegativeAllowed() const; ///< Whether negative values show a minus sign.
    /** Whether this object writes lines to the debug log; off by default. */
    void setDebug(bool enabled);
    bool isDebug() const; ///< Whether this object writes lines to the debug log.

    /** Changes the rounding method; no rows are in use until the next value is set. */
    void setRoundMetod(RoundMetods method);
    /** Sets the value, in the base unit, and keeps the rows in use. NaN for no value. */
    void setRealValue(float value);
    /**
     * Sets the value, in the base unit, measured with a test current, and selects the rows of that
     * current from the method's table. If there are none, the value is shown as "---". With
     * testI_None the rows in use are kept.
     */
    void setRealValue(float value, testI current);
    /** The same with the current's code as a number. */
    void setRealValue(float value, int index);
    /** Resets the object's own single row: two decimals, no prefix, any magnitude. */
    void prepareRound_Static();

    float realValue() const; ///< The stored value, in the base unit; NaN for none.
    /**
     * Index of the row that fits a value. @return -1 for a negative value, -2 without rows in
     * use, and the number of rows above the last one or for NaN
     */
    int findBestRange(float value) const;
    /**
     * Factor of the prefix of the row for a value: 0.001 for milli. @return 0 without rows in use,
     * NaN for NaN and for a row set without rows
     */
    float _calculatePrefixValue(float value) const;
    float getPrefixValue() const; ///< Factor of the prefix of the row for the stored value.
    /**
     * A value scaled and rounded by one row, as text without unit. @param rangeIndex result of
     * findBestRange(). @return "---" without a stored value or without rows
     */
    QString _valueFormat(float value, int rangeIndex) const;
    /** The number shown, for the shown prefix: 0 below zero, the largest above the range. */
    float getFormatedValue() const;
    /** The shown text read back, in the base unit; NaN when no number is shown. */
    float getRealFormatedValue() const;
    /**
     * The text on the screen: "1.2345 mΩ", "> 199.99 mΩ", "< 0 μΩ", "--- V" for a missing value
     * and "---" without rows. Takes one allocation.
     */
    QString toString() const;
    /** Text of a prefix followed by the text of this object's unit. */
    QString _unitAndPrefixToString(UnitPrefixs prefix) const;

    static QString getUnit(Units unit); ///< Text of a unit; empty when it has none.
    static QString _enumUnitsToString(Units unit); ///< Text of a unit; empty when it has none.
    static QString getUnitPrefix(UnitPrefixs prefix); ///< Text of a prefix; empty when it has none.
    /** Text of a prefix; empty when it has none. */
    static QString _enumUnitPrefixsToString(UnitPrefixs prefix);
    static TemperatureUnit getTempUnit(); ///< Unit in which temperatures are shown.
    /** Unit of temperature coefficients: always "K⁻¹". */
    static QString getAlphaUnit();

    /**
     * A number as fixed-point text. First a 5 in the tenth decimal is rounded up, then the result
     * is converted to single precision and rounded to @p digits decimals.
     */
    static QString round(double value, unsigned int digits);
    /**
     * A value with a fixed prefix and number of decimals: "1.500 V". @param value in the base
     * unit. @param trimZeros removes trailing zeros of the decimals: "1.5 V"
     */
    static QString autoFormat(float value, Units unit, UnitPrefixs prefix, int digits,
                              bool trimZeros);
    /** Test current of an inductive measurement, in amperes up to 200: "10.0 mA"; else "---". */
    static QString formatIinduction(float amperes);
    /**
     * Voltage drop across the object, in ranges that depend on the test current. @param u in volts.
     * @param limited whether the upper limit of that current applies, otherwise 10 V
     * @return "< 0 V" below zero; "> 10.000 V" from the limit on and for NaN
     */
    static QString formatDeltaU(float u, testI current, bool limited);
    /**
     * A temperature in the unit in use, rounded to one decimal and then down to half a degree,
     * below zero to a whole one: "20.5 °C", "-4.0 °C". Resets the texts of units and prefixes to
     * their defaults. @param celsius for NaN or infinity: "--- °C", and the texts are not reset
     */
    static QString formatTemperature(float celsius);

    /**
     * Reads a text as toString() writes it; the first of three parts is a marker such as ">". If
     * the texts of several units match, the longest one decides, and of equal ones that with the
     * smallest code.
     * @param value in the base unit; NaN when there is no number
     * @param precision characters after the number's decimal point
     * @param unit,prefix set if the text has a unit part, otherwise unchanged; the unit is also
     *        unchanged if that part ends in no known unit
     * @return whether there is a number
     */
    static bool parse(const QString &text, float &value, int &precision, Units &unit,
                      UnitPrefixs &prefix);
    /** Value of a text in the base unit, as parse() reads it; NaN when there is no number. */
    static float getValue(const QString &text);

    /** Code of a test current's label, exactly; testI_None for any other text. */
    static testI testI_parse(const QString &label);
    static bool MergeTestI(testI a, testI b); ///< Whether two codes are the same current.
    /** Amperes of a test current; NaN for a code without one. */
    static float ConvertTestI_ToFlota(testI code);
    /**
     * First code whose current, times 1.1, lies above a measured one, in amperes: 120 A gives
     * 110 A. testI_None from 220 A on and for NaN.
     */
    static testI roundTestIValue(float amperes);

    /** Sets the default texts of units and prefixes, and the temperature unit with its text. */
    static void prepareStaticDefaultValue(TemperatureUnit unit);
    /**
     * Sets custom texts: of the units A, V, temperature, ohm (four) and of the prefixes G, M, k, m,
     * μ, n (six). A list of another length is ignored.
     */
    static void prepareStaticCustomtValue(const QStringList &units, const QStringList &prefixes,
                                          TemperatureUnit unit);

    /** Sets the meter's model and fills the rounding tables; unchanged for an unknown model. */
    static void SetCurrentMeter(KTV_Configuration::MeterModels model);
    static void prepareRound_R_KTV420(); ///< Fills the resistance tables of the 420 family.
    static void prepareRound_L_KTV420(); ///< Fills the inductance tables of the 420 family.
    static void prepareRound_R_KTV4200(); ///< Fills the resistance tables of the 4200 family.
    static void prepareRound_L_KTV4200(); ///< Fills the inductance tables of the 4200 family.

    static QHash<Units, QString> unitString; ///< Texts of the units; empty at first.
    static QHash<UnitPrefixs, QString> prefixString; ///< Texts of the prefixes; empty at first.
    static TemperatureUnit _tUnit; ///< As last set with the texts; Celsius at first.
    static KTV_Configuration::MeterModels currentMeter; ///< As last set; MeterModels_NaN at first.

    /**
     * Rounding table of resistances, a row set for each test current; empty at first. Row sets are
     * never freed, so that existing values can still use theirs when a table is filled again.
     */
    static QList<DynamicRounding::Round_Current_I *> tableRound_R;
    /** Rounding table of inductances. */
    static QList<DynamicRounding::Round_Current_I *> tableRound_L;
    /** Rounding table of temperature-compensated resistances. */
    static QList<DynamicRounding::Round_Current_I *> tableRound_R_TempCompensation;
    /** Rounding table of temperature-compensated inductances. */
    static QList<DynamicRounding::Round_Current_I *> tableRound_L_TempCompensation;

private:
    QString shownText() const;
    void logBeforeText() const;
    void logText(const QString &text) const;
    void makeOwnRow(int digits, UnitPrefixs prefix);
    void useOwnRow();
    void setValue(float value, testI current);
    void chooseRows(testI current);

    // No private class: it would take an allocation, and these objects are created by thousands.
    bool m_negativeAllowed = false;
    bool m_debug = false;
    float m_value = std::numeric_limits<float>::quiet_NaN();
    Units m_unit;
    RoundMetods m_method;
    DynamicRounding::RoundItem m_ownRow;
    const DynamicRounding::Round_Current_I *m_active = nullptr; // rows in use; null for none
    std::unique_ptr<DynamicRounding::Round_Current_I> m_ownSet; // made when it is used
};

} // namespace ValueBox
