#pragma once

#include "internal/NamedDatabase_p.h"
#include "wifi/NetworkList_p.h"

#include <QString>

namespace Internal {

/** Whether a text has a valid length for a WPA pass phrase, 8 to 63 characters. */
bool isPassphrase(const QString &text);

/**
 * The table of known networks in "wifi.db". Keys are stored in plain text, so the file is
 * readable by its owner only. No operation logs a key.
 */
class KnownNetworks
{
public:
    /** @param directory prefix of the file's path; ends in "/" */
    explicit KnownNetworks(const QString &directory);

    /** Opens the file as it is, or creates it when it is missing. @return success */
    bool open();
    /** Deletes the file and creates an empty one. @return success */
    bool createNew();
    void release();

    /** Stores a network, replacing rows with the same name. @return success */
    bool add(const QString &essid, const QString &key);
    /** Removes the rows of that name, if any. @return success */
    bool remove(const QString &essid);
    /** The same for the row with this id. */
    bool updateRow(int id, const QString &essid, const QString &key);
    bool removeRow(int id);

    /** Every network, in the order of the rows; never null. */
    NetworkList all();

private:
    bool isOpenOrLog(QLatin1String text) const;
    /**
     * Runs the steps in a transaction, which is committed if all of them succeed. @param failure
     * begins the log line if they throw or the commit fails
     */
    template <typename Steps> bool change(QLatin1String failure, Steps steps);
    bool run(const QString &text, const QVariantList &values, QLatin1String failure);
    bool removeName(const QString &essid, QLatin1String failure);

    const QString m_directory;
    const QString m_path;
    NamedDatabase m_database;
};

} // namespace Internal
