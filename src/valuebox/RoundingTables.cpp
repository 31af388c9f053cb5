#include "configuration/MeterModel_p.h"
#include "internal/log_p.h"
#include "valuebox/NumericalValueBox.h"

#include <initializer_list>
#include <vector>

namespace ValueBox {

using DynamicRounding::Round_Current_I;
using DynamicRounding::RoundItem;

QList<Round_Current_I *> NumericalValueBox::tableRound_R;
QList<Round_Current_I *> NumericalValueBox::tableRound_L;
QList<Round_Current_I *> NumericalValueBox::tableRound_R_TempCompensation;
QList<Round_Current_I *> NumericalValueBox::tableRound_L_TempCompensation;
KTV_Configuration::MeterModels NumericalValueBox::currentMeter = KTV_Configuration::MeterModels_NaN;

namespace {

/** The set for temperature-compensated values that belongs to a set for measured values. */
enum CompensatedSet
{
    NoSet, ///< there is none: compensated values are shown as "---"
    Copy, ///< the same rows
    Wider ///< the same rows, then those of "further", then the common tail
};

using Items = std::initializer_list<RoundItem>;

/** The row sets of one or more currents, which all have the same rows. */
struct SetDefinition
{
    std::initializer_list<testI> currents;
    Items rows;
    CompensatedSet compensated;
    Items further;
};

// clang-format off

/** The last rows of a wider set; those that are not above the rows before them are left out. */
constexpr RoundItem commonTail[] = {
    {1999.9F, 1, 0}, {9990.F, 2, 3}, {99900.F, 1, 3}, {999000.F, 0, 3}, {10000000.F, 2, 6}};

// The last maximum of "rows" is half a digit above the range, so that a value that is rounded to
// the end of the range is still shown; the maxima of "further" are exactly the ends of ranges.
constexpr SetDefinition resistance420[] = {
    {{testI_10A},
     {{0.0009999F, 1, -6}, {0.0019999F, 4, -3}, {0.019999F, 3, -3}, {0.199995F, 2, -3}},
     Wider, {{0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.999F, 3, 0}, {199.99F, 2, 0}}},
    {{testI_1A},
     {{0.19999F, 2, -3}, {0.9999F, 1, -3}, {1.99995F, 4, 0}},
     Wider, {{19.999F, 3, 0}, {199.99F, 2, 0}}},
    {{testI_100mA},
     {{0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.9995F, 3, 0}},
     Wider, {{199.99F, 2, 0}}},
    {{testI_10mA}, {{199.995F, 2, 0}}, Wider, {}},
    {{testI_1mA}, {{1999.95F, 1, 0}}, Wider, {}},
};

// Kept, because the meters work like this: from 190 A to 110 A there are no compensated values;
// from 200 A to 20 A their rows are the same as for measured values; and at 10 A one row covers
// everything between 0.2 and 1999.9 ohms.
constexpr SetDefinition resistance4200[] = {
    {{testI_200A}, {{0.0009999F, 1, -6}}, Copy, {}},
    {{testI_190A, testI_180A, testI_170A, testI_160A, testI_150A, testI_140A, testI_130A,
      testI_120A, testI_110A}, {{0.0009999F, 1, -6}}, NoSet, {}},
    {{testI_100A, testI_90A, testI_80A, testI_70A, testI_60A},
     {{0.0009999F, 1, -6}, {0.0019999F, 4, -3}}, Copy, {}},
    {{testI_50A, testI_40A, testI_30A},
     {{0.0009999F, 1, -6}, {0.0039999F, 4, -3}}, Copy, {}},
    {{testI_20A},
     {{0.0009999F, 1, -6}, {0.0079999F, 4, -3}}, Copy, {}},
    {{testI_10A},
     {{0.0009999F, 1, -6}, {0.0019999F, 4, -3}, {0.019999F, 3, -3}, {0.199995F, 2, -3}},
     Wider, {}},
    {{testI_1A},
     {{0.19999F, 2, -3}, {0.9999F, 1, -3}, {1.99995F, 4, 0}},
     Wider, {{19.999F, 3, 0}, {199.99F, 2, 0}}},
    {{testI_100mA},
     {{0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.9995F, 3, 0}},
     Wider, {{199.99F, 2, 0}}},
    {{testI_10mA}, {{199.995F, 2, 0}}, Wider, {}},
    {{testI_1mA}, {{1999.95F, 1, 0}}, Wider, {}},
};

constexpr SetDefinition inductance[] = {
    {{testI_10A},
     {{0.0009999F, 1, -6}, {0.0019999F, 4, -3}, {0.019999F, 3, -3}, {0.19999F, 2, -3},
      {0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.999F, 3, 0}},
     Wider, {{199.99F, 2, 0}}},
    {{testI_1A},
     {{0.0009999F, 2, -3}, {0.0019999F, 2, -3}, {0.019999F, 2, -3}, {0.19999F, 2, -3},
      {0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.999F, 3, 0}, {199.99F, 2, 0}},
     Wider, {}},
    {{testI_100mA},
     {{0.0009999F, 1, -3}, {0.0019999F, 1, -3}, {0.019999F, 1, -3}, {0.19999F, 1, -3},
      {0.9999F, 1, -3}, {1.9999F, 4, 0}, {19.999F, 3, 0}, {199.99F, 2, 0}, {1999.9F, 1, 0}},
     Wider, {}},
    {{testI_10mA},
     {{0.0009999F, 2, 0}, {0.0019999F, 2, 0}, {0.019999F, 2, 0}, {0.19999F, 2, 0},
      {0.9999F, 2, 0}, {1.9999F, 2, 0}, {19.999F, 2, 0}, {199.99F, 2, 0}, {1999.9F, 1, 0}},
     Wider, {}},
    {{testI_1mA},
     {{0.0009999F, 1, 0}, {0.0019999F, 1, 0}, {0.019999F, 1, 0}, {0.19999F, 1, 0},
      {0.9999F, 1, 0}, {1.9999F, 1, 0}, {19.999F, 1, 0}, {199.99F, 1, 0}, {1999.9F, 1, 0}},
     Wider, {}},
};

// clang-format on

using Table = QList<Round_Current_I *>;

/** A new set. It is never deleted, because values may still use sets of earlier fills. */
template <typename... Arguments> Round_Current_I *newSet(Arguments... arguments)
{
    static auto &all = *new std::vector<std::unique_ptr<Round_Current_I>>;
    all.push_back(std::make_unique<Round_Current_I>(arguments...));
    return all.back().get();
}

template <typename Range> void append(Round_Current_I *set, const Range &rows)
{
    for (const RoundItem &row : rows) {
        if (set->items.isEmpty() || row.maximum > set->items.last()->maximum)
            set->items.append(new RoundItem(row));
    }
}

template <std::size_t Size>
void fill(const SetDefinition (&definitions)[Size], Table &plain, Table &compensatedSets)
{
    plain.clear();
    compensatedSets.clear();
    for (const SetDefinition &definition : definitions) {
        for (const testI current : definition.currents) {
            Round_Current_I *set = newSet(current, static_cast<Round_Current_I *>(nullptr));
            append(set, definition.rows);
            plain.append(set);
            if (definition.compensated == NoSet)
                continue;
            Round_Current_I *compensated = newSet(set);
            append(compensated, definition.further);
            if (definition.compensated == Wider)
                append(compensated, commonTail);
            compensatedSets.append(compensated);
        }
    }
}

void fillFamily420()
{
    NumericalValueBox::prepareRound_R_KTV420();
    NumericalValueBox::prepareRound_L_KTV420();
}

void fillFamily4200()
{
    NumericalValueBox::prepareRound_L_KTV4200();
    NumericalValueBox::prepareRound_R_KTV4200();
}

struct FamilyTables
{
    Internal::RoundingFamily family;
    void (*fillTables)();
};

constexpr FamilyTables familyTables[] = {
    {Internal::RoundingFamily::Ktv420, fillFamily420},
    {Internal::RoundingFamily::Ktv4200, fillFamily4200},
};

} // namespace

void NumericalValueBox::SetCurrentMeter(KTV_Configuration::MeterModels model)
{
    currentMeter = model;
    Internal::log() << "NumericalValueBox::SetCurrentMeter(" << int(model) << ")";
    for (const FamilyTables &entry : familyTables) {
        if (entry.family == Internal::meterModel(model).rounding)
            entry.fillTables();
    }
}

void NumericalValueBox::prepareRound_R_KTV420()
{
    fill(resistance420, tableRound_R, tableRound_R_TempCompensation);
}

void NumericalValueBox::prepareRound_L_KTV420()
{
    fill(inductance, tableRound_L, tableRound_L_TempCompensation);
}

void NumericalValueBox::prepareRound_R_KTV4200()
{
    fill(resistance4200, tableRound_R, tableRound_R_TempCompensation);
}

void NumericalValueBox::prepareRound_L_KTV4200()
{
    fill(inductance, tableRound_L, tableRound_L_TempCompensation);
}

} // namespace ValueBox
