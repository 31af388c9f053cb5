#pragma once

#include <QString>

/**
 * What can be known about a store's file without opening the store. Commands that only read check
 * this first, because the library creates a missing file and replaces one that it cannot open.
 */
struct StoreFile
{
    bool isEmpty = false; ///< the file is missing or empty
    QString problem; ///< why it cannot be read; null if it can

    static StoreFile lookAt(const QString &path);
};
