#include "../Models.h"
#include "Checks.h"

#include <sound/Sound.h>

#include <QFileInfo>
#include <QMetaEnum>

using SoundNamespace::Sound;

void checkSamples(const Image &image, const Places &places, Report &report)
{
    if (places.samples.isNull())
        return; // reported by the check of the description
    constexpr int bytesOfASample = 2;
    const QMetaEnum samples = QMetaEnum::fromType<Sound::Sample>();
    for (int i = 0; i < samples.keyCount(); ++i) {
        if (samples.value(i) == Sound::SOUND_Empty)
            continue;
        const QString path =
            places.samples + QLatin1String(samples.key(i)) + QStringLiteral(".raw");
        const QString place = image.locate(path);
        if (place.isNull()) {
            report.warning(path,
                           QStringLiteral("missing: %1 play it").arg(modelsThatPlaySamples()));
            continue;
        }
        const QFileInfo file(place);
        if (!file.isFile() || file.size() == 0)
            report.error(path, QStringLiteral("holds no sound"));
        else if (file.size() % bytesOfASample != 0)
            report.error(path,
                         QStringLiteral("has an odd length: its samples have two bytes each"));
    }
}
