#include "app/LibraryKeyboard.h"

#include "meter/Session.h"

#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <valuebox/NumericalValueBox.h>

using ValueBox::NumericalValueBox;

namespace {

/** Prefixes for which the keyboard has keys when a number of ohms is entered. */
constexpr ValueBox::UnitPrefixs ohmPrefixes[] = {ValueBox::Prefix_u, ValueBox::Prefix_m,
                                                 ValueBox::Prefix_None, ValueBox::Prefix_k};

} // namespace

bool LibraryKeyboard::isOnScreen() const
{
    return m_session.preferences().usesScreenKeyboard();
}

QVector<QStringList> LibraryKeyboard::letters(bool isRegional, bool isBig) const
{
    const LangSerwis *language = m_session.library().get_Lang();
    const QString layout = isRegional
        ? (isBig ? language->getRegionalBigKeyboard() : language->getRegionalSmallKeyboard())
        : (isBig ? language->getBigKeyboard() : language->getSmallKeyboard());
    QVector<QStringList> rows;
    for (const QString &row : layout.split(QLatin1Char('|')))
        rows += row.split(QString(), Qt::SkipEmptyParts);
    return rows;
}

QString LibraryKeyboard::regionalName() const
{
    return m_session.library().get_Lang()->getCurrentLang();
}

QStringList LibraryKeyboard::units() const
{
    QStringList units;
    for (const ValueBox::UnitPrefixs prefix : ohmPrefixes)
        units += NumericalValueBox::getUnitPrefix(prefix)
            + NumericalValueBox::getUnit(ValueBox::Unit_Ohm);
    return units;
}
