#pragma once

#include "sound/BuzzerClass.h"

namespace Buzzer {

QMap<BuzzerClass::Tone, QList<BeepParameter>> toneSteps(); ///< Beeps of every tone.
QMap<BuzzerClass::Tone, SoundNamespace::Sound::Sample> toneSamples(); ///< Sample of every tone.

} // namespace Buzzer
