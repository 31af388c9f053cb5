#pragma once

#include <configuration/KTV_Configuration.h>
#include <valuebox/ValueTypes.h>

#include <QVector>

/** The rounding tables of the meter's manual, written down apart from the library's. */
namespace ExpectedTables {

struct Row
{
    float maximum;
    int digits;
    int prefix;
};

struct Set
{
    ValueBox::testI current;
    QVector<Row> rows;
};

/** Sets of one model and method in their order; none for an unknown model. */
QVector<Set> sets(KTV_Configuration::MeterModels model, ValueBox::RoundMetods method);

/** Models that have tables, and methods that use one. */
const QVector<KTV_Configuration::MeterModels> &models();
const QVector<ValueBox::RoundMetods> &methods();

} // namespace ExpectedTables
