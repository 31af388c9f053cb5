#include "valuebox/DynamicRounding.h"

#include <utility>

namespace ValueBox::DynamicRounding {

Round_Current_I::Round_Current_I(Round_Current_I *other)
    : Round_Current_I(other ? other->current : testI_None, other)
{ }

Round_Current_I::Round_Current_I(ValueBox::testI testCurrent, Round_Current_I *base)
    : current(testCurrent)
{
    if (!base)
        return;
    items.reserve(base->items.size());
    for (const RoundItem *row : std::as_const(base->items))
        items.append(new RoundItem(*row));
}

Round_Current_I::~Round_Current_I()
{
    qDeleteAll(items);
}

} // namespace ValueBox::DynamicRounding
