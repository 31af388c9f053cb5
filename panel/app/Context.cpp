#include "app/Context.h"

#include "touch/Theme.h"

Context::Context(QObject *parent) : QObject(parent), m_texts(m_session), m_keyboard(m_session)
{
    applyAppearance();
    connect(&m_session.preferences(), &Preferences::appearanceChanged, this,
            &Context::applyAppearance);
}

void Context::applyAppearance()
{
    Theme::use(m_session.preferences().isDark() ? Theme::dark() : Theme::light());
}
