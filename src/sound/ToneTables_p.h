#pragma once

#include "sound/BuzzerClass.h"

namespace Internal {

/** Beeps of every tone. */
QMap<Buzzer::BuzzerClass::Tone, QList<Buzzer::BeepParameter>> toneSteps();
/** Sample of every tone. */
QMap<Buzzer::BuzzerClass::Tone, SoundNamespace::Sound::Sample> toneSamples();

} // namespace Internal
