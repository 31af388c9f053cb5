#include "datalist/ListFamily_p.h"

#include "internal/NamedDatabase_p.h"

namespace Internal {

namespace {

constexpr int schemaVersion = 0;

QVariantList textEntry(const QString &line)
{
    return {line};
}

/** "Copper?0.00393" */
QVariantList materialEntry(const QString &line)
{
    const QStringList parts = line.split(QLatin1Char('?'));
    if (parts.size() != 2)
        return {};
    bool ok = false;
    const double alpha = parts.last().toDouble(&ok);
    return ok ? QVariantList {parts.first(), alpha} : QVariantList {};
}

QString quoted(const QString &column)
{
    return QLatin1Char('`') + column + QLatin1Char('`');
}

QString placeholder(const QString &column)
{
    return QLatin1Char(':') + column;
}

QString assignment(const QString &column)
{
    return quoted(column) + QLatin1Char('=') + placeholder(column);
}

QString joined(const QStringList &columns, QString (*form)(const QString &))
{
    QString text;
    for (const QString &column : columns) {
        if (!text.isEmpty())
            text += QLatin1Char(',');
        text += form(column);
    }
    return text;
}

/** An SQL string constant; quotes inside are doubled, so that they cannot end it. */
QString constant(const QString &text)
{
    QString doubled = text;
    doubled.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + doubled + QLatin1Char('\'');
}

} // namespace

// clang-format off
const ListFamily objectTypes {
    "OBIECT_TYP", "OBTk_1_ID", "OBT_Lang", "OBT_ReadOnly", {"OBT_Value"},
    false, " ", true, false, "default_obiectTyp.txt", textEntry};
const ListFamily objectNames {
    "OBIECT_NAME", "OBNk_1_ID", "OBN_Lang", "OBN_ReadOnly", {"OBN_Value"},
    true, "", true, false, "default_obiectName.txt", textEntry};
const ListFamily materials {
    "MATERIALS", "MATk_1_ID", "MAT_Lang", "MAT_ReadOnly", {"MAT_Name", "MAT_Alpha"},
    true, "", false, false, "default_materials.txt", materialEntry};
const ListFamily resistanceLimits {
    "LIMITS_R", "LIMk_1_ID", "LIM_Lang", nullptr, {"LIM_Name", "LIM_HighLimit", "LIM_LoLimit"},
    true, "", false, false, nullptr, nullptr};
const ListFamily temperatureLimits {
    "LIMITS_T", "LIMk_1_ID", "LIM_Lang", nullptr, {"LIM_Name", "LIM_HighLimit", "LIM_LoLimit"},
    true, "", false, true, nullptr, nullptr};
// clang-format on

QStringList ListFamily::storedColumns() const
{
    QStringList stored;
    if (hasFactoryRows())
        stored += QLatin1String(readOnly);
    for (const char *column : columns) {
        if (column)
            stored += QLatin1String(column);
    }
    return stored;
}

QString ListFamily::condition(const QString &text) const
{
    return hasParentheses ? QLatin1Char('(') + text + QLatin1Char(')') : text;
}

QString ListFamily::countFactoryRows(const QString &languageCode) const
{
    return QLatin1String("SELECT COUNT(*) FROM ") + QLatin1String(table) + QLatin1String(" WHERE ")
        + quoted(QLatin1String(readOnly)) + QLatin1String(" = 1 AND ")
        + quoted(QLatin1String(language)) + QLatin1Char('=') + constant(languageCode);
}

QString ListFamily::countDuplicates() const
{
    const QLatin1String name(columns.front());
    return QLatin1String("SELECT COUNT(*) FROM ") + QLatin1String(table) + QLatin1String(" WHERE ")
        + quoted(name) + QLatin1String(" = ") + placeholder(name);
}

QString ListFamily::insert() const
{
    const QStringList all = QStringList {QLatin1String(language)} + storedColumns();
    return QLatin1String("INSERT INTO ") + QLatin1String(table) + QLatin1String(" (")
        + joined(all, quoted) + QLatin1String(") VALUES (") + joined(all, placeholder)
        + QLatin1Char(')');
}

QString ListFamily::update(int id) const
{
    const QStringList changed = storedColumns().mid(hasFactoryRows() ? 1 : 0);
    QString text = QLatin1String("UPDATE ") + QLatin1String(table) + QLatin1String(" SET ")
        + joined(changed, assignment) + QLatin1String(" WHERE ") + quoted(QLatin1String(key))
        + QLatin1Char('=') + QString::number(id);
    if (hasFactoryRows())
        text += QLatin1String(" AND ") + quoted(QLatin1String(readOnly)) + QLatin1String("= 0");
    return text;
}

QString ListFamily::selectFlag(int id) const
{
    return QLatin1String("SELECT ") + quoted(QLatin1String(readOnly)) + QLatin1String(" FROM ")
        + QLatin1String(table) + QLatin1String(" WHERE ") + quoted(QLatin1String(key))
        + QLatin1Char('=') + QString::number(id);
}

QString ListFamily::remove(int id) const
{
    return QLatin1String("DELETE FROM ") + QLatin1String(table) + QLatin1String(" WHERE ")
        + quoted(QLatin1String(key)) + QLatin1Char('=') + QString::number(id);
}

QString ListFamily::select(const QString &languageCode, RowKind kind, bool hasFilter,
                           int limit) const
{
    const QLatin1String conjunction(" AND ");
    const QLatin1String name(columns.front());
    const QString flag = quoted(QLatin1String(readOnly));
    QString text = QLatin1String("SELECT ")
        + joined(QStringList {QLatin1String(key)} + storedColumns(), quoted)
        + QLatin1String(" FROM ") + QLatin1String(table) + QLatin1String(" WHERE ")
        + condition(quoted(QLatin1String(language)) + QLatin1Char('=') + constant(languageCode));
    if (kind == RowKind::Factory)
        text += conjunction + condition(flag + QLatin1String(" = 1"));
    else if (kind == RowKind::User)
        text += conjunction + condition(flag + QLatin1String(" = 0")) + QLatin1String(userRowsEnd);
    if (hasFilter)
        text += conjunction + condition(quoted(name) + QLatin1String(" LIKE ") + placeholder(name));
    if (limit > 0)
        text += QLatin1String(" LIMIT ") + QString::number(limit);
    return text;
}

QStringList listSchema()
{
    return versionTable(schemaVersion)
        + QStringList {
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS OBIECT_TYP (OBTk_1_ID INTEGER UNIQUE PRIMARY "
                "KEY,OBT_Lang VARCHAR(2),OBT_ReadOnly BOOL,OBT_Value VARCHAR(255))"),
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS OBIECT_NAME (OBNk_1_ID INTEGER UNIQUE PRIMARY "
                "KEY,OBN_Lang VARCHAR(2),OBN_ReadOnly BOOL,OBN_Value VARCHAR(255))"),
            QStringLiteral("CREATE TABLE IF NOT EXISTS MATERIALS (MATk_1_ID INTEGER UNIQUE PRIMARY "
                           "KEY,MAT_Lang VARCHAR(2),MAT_ReadOnly BOOL,MAT_Name VARCHAR(255),"
                           "MAT_Alpha REAL)"),
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS LIMITS_R (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                "LIM_Lang VARCHAR(2),LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),"
                "LIM_LoLimit VARCHAR(255))"),
            QStringLiteral(
                "CREATE TABLE IF NOT EXISTS LIMITS_T (LIMk_1_ID INTEGER UNIQUE PRIMARY KEY,"
                "LIM_Lang VARCHAR(2),LIM_Name VARCHAR(255),LIM_HighLimit VARCHAR(255),"
                "LIM_LoLimit VARCHAR(255))"),
        };
}

} // namespace Internal
