#include "app/LibraryTexts.h"

#include "meter/Session.h"

#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>

LibraryTexts::LibraryTexts(Session &session, QObject *parent) : Texts(parent), m_session(session)
{
    connect(&session, &Session::languageChanged, this, &Texts::textsChanged);
    connect(&session.preferences(), &Preferences::temperatureUnitChanged, this,
            &Texts::textsChanged);
}

QString LibraryTexts::text(const Text &text) const
{
    return m_session.library().get_Lang()->getText(
        QLatin1String(text.section), QLatin1String(text.key), QString::fromUtf8(text.english));
}
