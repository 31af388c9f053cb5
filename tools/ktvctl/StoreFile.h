#pragma once

#include <QString>

/**
 * What a look at a store's file tells without opening the store. A command that only reads looks
 * first: the library creates a file that is missing, and begins one anew that it cannot open.
 */
struct StoreFile
{
    bool isEmpty = false; ///< there is nothing to be read: the file is missing or holds nothing
    QString problem; ///< why it cannot be read; null when it can

    static StoreFile lookAt(const QString &path);
};
