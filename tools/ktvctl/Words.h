#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/** A word of the command line and what it stands for; a service keeps its words in a table. */
template <typename Value> struct Word
{
    const char *word;
    Value value;
};

/** The words of a table, as help shows them: "R, L, RC, LC". */
template <typename Value, std::size_t Size> QString wordList(const Word<Value> (&words)[Size])
{
    QStringList names;
    for (const auto &entry : words)
        names += QLatin1String(entry.word);
    return names.join(QLatin1String(", "));
}

/** What a word stands for, upper or lower case; nothing for an unknown one. */
template <typename Value, std::size_t Size>
std::optional<Value> valueOf(const Word<Value> (&words)[Size], const QString &name)
{
    for (const auto &entry : words) {
        if (name.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0)
            return entry.value;
    }
    return std::nullopt;
}

/** The word of a value; empty for one without. */
template <typename Value, std::size_t Size>
QString wordOf(const Word<Value> (&words)[Size], Value value)
{
    for (const auto &entry : words) {
        if (entry.value == value)
            return QLatin1String(entry.word);
    }
    return {};
}
