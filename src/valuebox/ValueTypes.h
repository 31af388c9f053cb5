#pragma once

#include <QtGlobal>

/** Measured values: what they are, how they are rounded and how they are shown. */
namespace ValueBox {

/** Base units. */
enum Units : qint32
{
    Unit_None = 0, ///< a number without unit
    Unit_A = 1, ///< ampere
    Unit_V = 2, ///< volt
    Unit_Temperature = 3, ///< its text follows the temperature unit
    Unit_Ohm = 4 ///< ohm
};

/** Unit prefixes; the value is the power of ten. */
enum UnitPrefixs : qint32
{
    Prefix_G = 9,
    Prefix_M = 6,
    Prefix_k = 3,
    Prefix_None = 0,
    Prefix_m = -3,
    Prefix_u = -6,
    Prefix_n = -9
};

/** Unit in which temperatures are shown; they are stored in degrees Celsius. */
enum TemperatureUnit : qint32
{
    Temp_Celsius = 0,
    Temp_Fahrenheit = 1,
    Temp_Kelvin = 2
};

/** How prefix and decimals of a value are chosen: by the object's own row or by a table. */
enum RoundMetods : qint32
{
    Round_Static = 0, ///< the object's own single row
    Round_R = 1, ///< resistance
    Round_L = 2, ///< inductance
    Round_R_TempCompensation = 3, ///< temperature-compensated resistance
    Round_L_TempCompensation = 4 ///< temperature-compensated inductance
};

/** Codes of the test currents: amperes from 10 A on, four codes for the decades below. */
enum testI : qint32
{
    testI_None = -1, ///< no current given
    testI_1mA = 0,
    testI_10mA = 1,
    testI_100mA = 2,
    testI_1A = 3,
    testI_10A = 10,
    testI_20A = 20,
    testI_30A = 30,
    testI_40A = 40,
    testI_50A = 50,
    testI_60A = 60,
    testI_70A = 70,
    testI_80A = 80,
    testI_90A = 90,
    testI_100A = 100,
    testI_110A = 110,
    testI_120A = 120,
    testI_130A = 130,
    testI_140A = 140,
    testI_150A = 150,
    testI_160A = 160,
    testI_170A = 170,
    testI_180A = 180,
    testI_190A = 190,
    testI_200A = 200
};

} // namespace ValueBox
