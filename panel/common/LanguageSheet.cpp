#include "common/LanguageSheet.h"

#include "meter/Session.h"

#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>

#include <memory>

LanguageSheet::LanguageSheet(Texts &texts, Session &session, QWidget *somewhere, const Text &title)
    : PickSheet(texts, somewhere, title, rows(session),
                int(codes(session).indexOf(session.library().get_Lang()->getCurrentLang())),
                [&texts, &session, window = somewhere->window()](int index) {
                    // The first use of a language writes its factory lists, which takes time.
                    new StillSheet(texts, window, Text {"Settings", "language", "Language"},
                                   [&session, code = codes(session).value(index)] {
                                       session.setLanguage(code);
                                   });
                })
{ }

QString LanguageSheet::nameOf(const QString &code)
{
    // The names of languages are not translated, so that everybody recognises their own.
    static const QHash<QString, QString> names {
        {QStringLiteral("DE"), QStringLiteral("Deutsch")},
        {QStringLiteral("EN"), QStringLiteral("English")},
        {QStringLiteral("PL"), QStringLiteral("Polski")},
        {QStringLiteral("US"), QStringLiteral("English (US)")},
    };
    return names.value(code, code);
}

QStringList LanguageSheet::codes(const Session &session)
{
    const std::unique_ptr<QStringList> codes(session.library().get_Lang()->getLangList());
    return *codes;
}

QVector<TouchRow> LanguageSheet::rows(const Session &session)
{
    QVector<TouchRow> rows;
    for (const QString &code : codes(session)) {
        TouchRow row;
        row.title = nameOf(code);
        row.detail = code;
        rows += row;
    }
    return rows;
}
