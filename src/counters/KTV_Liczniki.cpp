#include "counters/KTV_Liczniki.h"

#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/RegularFile_p.h"
#include "internal/log_p.h"

#include <QDataStream>
#include <QFile>
#include <QMetaEnum>

#include <cerrno>
#include <limits>

using Internal::guarded;
using Internal::log;

namespace {

constexpr qint64 fileMarker = 1234567890;
constexpr auto streamVersion = QDataStream::Qt_4_6;

// Sorted by name, not by number: stored files depend on it.
constexpr KTV_Liczniki::Licznik fileOrder[] = {
    KTV_Liczniki::Licznik_AutomatycznyDoborMetody,
    KTV_Liczniki::Licznik_Demagnetyzacja,
    KTV_Liczniki::Licznik_PomiarObiektowIndukcyjnych,
    KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych,
    KTV_Liczniki::Licznik_PomiarTemperaturySilnika,
    KTV_Liczniki::Licznik_RejestracjaObiektowIndukcyjnych,
    KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych,
};

/**
 * Overwrites the content of the file, so that it is never empty. The bytes are in one sector, which
 * a card writes whole or not at all, and need no further space. Replacing the file would need space
 * for a second one, and on FAT takes several steps.
 *
 * @return success; otherwise the file has the reason
 */
bool overwrite(QFile &file, const QByteArray &bytes)
{
    return file.seek(0) && file.write(bytes) == bytes.size()
        && (file.size() == bytes.size() || file.resize(bytes.size()));
}

} // namespace

class KTV_Liczniki::Private
{
public:
    explicit Private(const QString &prefix)
        : directory(prefix)
        , path(prefix + QStringLiteral("liczniki.bin"))
    { }

    QByteArray bytes() const;
    bool save(QFile &file, bool exists, QString *reason) const;

    const QString directory;
    const QString path;
    QHash<Licznik, qint64> counters;
};

QByteArray KTV_Liczniki::Private::bytes() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << fileMarker;
    for (const Licznik counter : fileOrder)
        stream << counters.value(counter, 0);
    return bytes;
}

bool KTV_Liczniki::Private::save(QFile &file, bool exists, QString *reason) const
{
    if (!overwrite(file, bytes())) {
        *reason = file.errorString();
        if (!exists)
            file.remove(); // the next start would report an empty file as damaged
        return false;
    }
    if (Internal::flushFile(file.handle()) && (exists || Internal::flushDirectoryOf(path)))
        return true;
    *reason = qt_error_string(errno);
    return false;
}

KTV_Liczniki::KTV_Liczniki(const QString &directory, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(directory))
{
    LoadLiczniki();
}

KTV_Liczniki::~KTV_Liczniki()
{
    SaveLiczniki();
}

void KTV_Liczniki::LoadLiczniki()
{
    guarded("Liczniki load error: ", [&] {
        // First, so that none is missing whatever happens to the file.
        for (const Licznik counter : fileOrder) {
            if (!d->counters.contains(counter))
                d->counters.insert(counter, 0);
        }
        Internal::RegularFile file(d->path);
        if (file.exists()) {
            if (file.open(QIODevice::ReadOnly)) {
                QDataStream stream(&file);
                stream.setVersion(streamVersion);
                qint64 marker = 0;
                stream >> marker;
                if (marker == fileMarker) {
                    for (const Licznik counter : fileOrder)
                        load(&stream, counter);
                } else {
                    log() << "LICZNIKI file damage!";
                }
            } else {
                log() << "Liczniki open file error!!!";
            }
        }
    });
}

void KTV_Liczniki::SaveLiczniki()
{
    guarded("Liczniki save error: ", [&] {
        if (!Internal::makeDirectory(d->directory)) {
            log() << "Liczniki create path error!!!";
            return;
        }
        QString reason;
        const bool exists = QFile::exists(d->path);
        QFile file(d->path);
        // Not WriteOnly, which would empty the file first.
        if (!Internal::isSpecialFile(d->path)
            && file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
            if (d->save(file, exists, &reason))
                return;
            log() << "Liczniki save error: " << reason;
        } else if (!exists) {
            log() << "Liczniki create file error!!!";
        } else if (!Internal::replaceFile(d->path, d->bytes(), &reason)) {
            log() << "Liczniki override file error!!!";
        }
    });
}

void KTV_Liczniki::load(QDataStream *stream, Licznik counter)
{
    qint64 count = 0;
    *stream >> count;
    set_dictionary(counter, count);
}

void KTV_Liczniki::up_dictionary(Licznik counter)
{
    qint64 &count = d->counters[counter];
    if (count < std::numeric_limits<qint64>::max()) // a damaged file may hold any number
        ++count;
}

qint64 KTV_Liczniki::get_dictionary(Licznik counter) const
{
    return d->counters.value(counter, 0);
}

void KTV_Liczniki::set_dictionary(Licznik counter, qint64 count)
{
    d->counters.insert(counter, count);
}

QHash<KTV_Liczniki::Licznik, qint64> *KTV_Liczniki::getLiczniki() const
{
    return new QHash<Licznik, qint64>(d->counters);
}

void KTV_Liczniki::printLiczniki() const
{
    const auto names = QMetaEnum::fromType<Licznik>();
    for (const Licznik counter : fileOrder)
        log() << names.valueToKey(counter) << ":" << get_dictionary(counter);
}

void KTV_Liczniki::Up_Licznik_AutomatycznyDoborMetody()
{
    up_dictionary(Licznik_AutomatycznyDoborMetody);
}

void KTV_Liczniki::Up_Licznik_PomiarObiektowRezystancyjnych()
{
    up_dictionary(Licznik_PomiarObiektowRezystancyjnych);
}

void KTV_Liczniki::Up_Licznik_PomiarObiektowIndukcyjnych()
{
    up_dictionary(Licznik_PomiarObiektowIndukcyjnych);
}

void KTV_Liczniki::Up_Licznik_Demagnetyzacja()
{
    up_dictionary(Licznik_Demagnetyzacja);
}

void KTV_Liczniki::Up_Licznik_PomiarTemperaturySilnika()
{
    up_dictionary(Licznik_PomiarTemperaturySilnika);
}

void KTV_Liczniki::Up_Licznik_RejestracjaObiektowRezystancyjnych()
{
    up_dictionary(Licznik_RejestracjaObiektowRezystancyjnych);
}

void KTV_Liczniki::Up_Licznik_RejestracjaObiektowIndukcyjnych()
{
    up_dictionary(Licznik_RejestracjaObiektowIndukcyjnych);
}
