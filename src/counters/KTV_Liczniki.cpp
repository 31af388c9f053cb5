#include "counters/KTV_Liczniki.h"

#include "internal/RegularFile_p.h"
#include "internal/log_p.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaEnum>
#include <QSaveFile>

using Internal::log;

namespace {

constexpr qint64 fileMarker = 1234567890;
constexpr auto streamVersion = QDataStream::Qt_4_6;

// By name, not by value: stored files depend on it.
constexpr KTV_Liczniki::Licznik fileOrder[] = {
    KTV_Liczniki::Licznik_AutomatycznyDoborMetody,
    KTV_Liczniki::Licznik_Demagnetyzacja,
    KTV_Liczniki::Licznik_PomiarObiektowIndukcyjnych,
    KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych,
    KTV_Liczniki::Licznik_PomiarTemperaturySilnika,
    KTV_Liczniki::Licznik_RejestracjaObiektowIndukcyjnych,
    KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych,
};

/** A file that only its own mark protects may be replaced: its directory decides. */
void makeWritable(const QString &path)
{
    const QFileInfo file(path);
    if (file.isFile() && !file.isWritable())
        QFile::setPermissions(path, file.permissions() | QFile::WriteOwner | QFile::WriteUser);
}

} // namespace

class KTV_Liczniki::Private
{
public:
    explicit Private(const QString &prefix)
        : directory(prefix)
        , path(prefix + QStringLiteral("liczniki.bin"))
    { }

    const QString directory;
    const QString path;
    QHash<Licznik, qint64> counters;
};

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
    try {
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
        for (const Licznik counter : fileOrder) {
            if (!d->counters.contains(counter))
                d->counters.insert(counter, 0);
        }
    } catch (const std::exception &exception) {
        log() << "Liczniki load error: " << exception.what();
    }
}

void KTV_Liczniki::SaveLiczniki()
{
    try {
        if (!QDir(d->directory).exists() && !QDir().mkdir(d->directory)) {
            log() << "Liczniki create path error!!!";
            return;
        }
        const bool replaces = QFile::exists(d->path);
        makeWritable(d->path);
        QSaveFile file(d->path); // the old file stays until the new one is whole
        if (!file.open(QIODevice::WriteOnly)) {
            log() << (replaces ? "Liczniki override file error!!!"
                               : "Liczniki create file error!!!");
            return;
        }
        QDataStream stream(&file);
        stream.setVersion(streamVersion);
        stream << fileMarker;
        for (const Licznik counter : fileOrder)
            stream << get_dictionary(counter);
        // Flushed first: a commit does not notice that its own flush fails on a full card.
        if (!file.flush() || !file.commit())
            log() << "Liczniki save error: " << file.errorString();
    } catch (const std::exception &exception) {
        log() << "Liczniki save error: " << exception.what();
    }
}

void KTV_Liczniki::load(QDataStream *stream, Licznik counter)
{
    qint64 count = 0;
    *stream >> count;
    set_dictionary(counter, count);
}

void KTV_Liczniki::up_dictionary(Licznik counter)
{
    ++d->counters[counter];
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
