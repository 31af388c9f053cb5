#pragma once

#include <configuration/KTV_Configuration.h>
#include <valuebox/ValueTypes.h>

#include <QVector>

/** The rounding tables, written down independently of those in the library. */
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

/** Sets of one model and method, in order; none for an unknown model. */
QVector<Set> sets(KTV_Configuration::MeterModels model, ValueBox::RoundMetods method);

/** Models with tables, and methods that use a table. */
const QVector<KTV_Configuration::MeterModels> &models();
const QVector<ValueBox::RoundMetods> &methods();

} // namespace ExpectedTables
