#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/** A word of the command line and its value; each command has a table of its words. */
template <typename Value> struct Word
{
    const char *word;
    Value value;
};

/** The words of a table for the help text: "R, L, RC, LC". */
template <typename Value, std::size_t Size> QString wordList(const Word<Value> (&words)[Size])
{
    QStringList names;
    for (const auto &entry : words)
        names += QLatin1String(entry.word);
    return names.join(QLatin1String(", "));
}

/** The value of a word, in any letter case; no value for an unknown one. */
template <typename Value, std::size_t Size>
std::optional<Value> valueOf(const Word<Value> (&words)[Size], const QString &name)
{
    for (const auto &entry : words) {
        if (name.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0)
            return entry.value;
    }
    return std::nullopt;
}

/** The word for a value; empty if there is none. */
template <typename Value, std::size_t Size>
QString wordOf(const Word<Value> (&words)[Size], Value value)
{
    for (const auto &entry : words) {
        if (entry.value == value)
            return QLatin1String(entry.word);
    }
    return {};
}
