#pragma once

#include "touch/Texts.h"

class Session;

/** The texts of the library's language files. */
class LibraryTexts : public Texts
{
    Q_OBJECT
public:
    explicit LibraryTexts(Session &session, QObject *parent = nullptr);

    QString text(const Text &text) const override;

private:
    const Session &m_session;
};
