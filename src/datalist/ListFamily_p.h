#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>

namespace Internal {

/** Which rows of a list a query returns. */
enum class RowKind
{
    All,
    Factory,
    User
};

/**
 * Table and columns of one of the lists, and the SQL statements made from them.
 *
 * The first of the columns is the name of the entry: it must not be empty, filters search in it,
 * and the duplicate test compares it.
 */
struct ListFamily
{
    const char *table;
    const char *key;
    const char *language;
    const char *readOnly; ///< flag of factory rows; null: the list has none
    std::array<const char *, 3> columns; ///< texts that a user enters; null after the last one
    bool hasParentheses; ///< whether the conditions of a query are put in parentheses
    const char *userRowsEnd; ///< what follows the condition for user rows
    bool isUnique; ///< whether a text that the table holds already is refused
    bool isTemperature; ///< whether the columns after the first are temperatures
    const char *factoryFile; ///< in the language's folder; null: the list starts empty
    QVariantList (*factoryEntry)(const QString &line); ///< columns of a line; empty: not an entry

    bool hasFactoryRows() const { return readOnly != nullptr; }

    QString countFactoryRows(const QString &languageCode) const;
    QString countDuplicates() const; ///< binds the name
    QString insert() const; ///< binds language, flag (where there is one) and columns
    QString update(int id) const; ///< binds columns
    QString selectFlag(int id) const;
    QString remove(int id) const;
    /** Key, flag (where there is one) and columns; binds the pattern when there is a filter. */
    QString select(const QString &languageCode, RowKind kind, bool hasFilter, int limit) const;

private:
    QStringList storedColumns() const;
    QString condition(const QString &text) const;
};

extern const ListFamily objectTypes;
extern const ListFamily objectNames;
extern const ListFamily materials;
extern const ListFamily resistanceLimits;
extern const ListFamily temperatureLimits;

/** The statements that create the tables of a new file, in order. */
QStringList listSchema();

} // namespace Internal
