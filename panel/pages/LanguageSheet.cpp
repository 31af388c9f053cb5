#include "pages/LanguageSheet.h"

#include "Context.h"

#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>

#include <memory>

LanguageSheet::LanguageSheet(Context &context, QWidget *somewhere, const Text &title)
    : PickSheet(context, somewhere, title, rows(context),
                codes(context).indexOf(context.library().get_Lang()->getCurrentLang()),
                [&context](int index) { context.setLanguage(codes(context).value(index)); })
{ }

QString LanguageSheet::nameOf(const QString &code)
{
    // A language is not translated: its reader must recognise it among the others.
    static const QHash<QString, QString> names {
        {QStringLiteral("DE"), QStringLiteral("Deutsch")},
        {QStringLiteral("EN"), QStringLiteral("English")},
        {QStringLiteral("PL"), QStringLiteral("Polski")},
        {QStringLiteral("US"), QStringLiteral("English (US)")},
    };
    return names.value(code, code);
}

QStringList LanguageSheet::codes(Context &context)
{
    const std::unique_ptr<QStringList> codes(context.library().get_Lang()->getLangList());
    return *codes;
}

QVector<TouchRow> LanguageSheet::rows(Context &context)
{
    QVector<TouchRow> rows;
    for (const QString &code : codes(context)) {
        TouchRow row;
        row.title = nameOf(code);
        row.detail = code;
        rows += row;
    }
    return rows;
}
