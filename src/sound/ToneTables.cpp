#include "sound/ToneTables_p.h"

#include <iterator>

namespace Internal {

namespace {

using Buzzer::BeepParameter;
using Buzzer::BuzzerClass;
using SoundNamespace::Sound;

struct Step
{
    BuzzerClass::Tone tone;
    BeepParameter beep;
};

// Hertz, milliseconds, milliseconds of silence, repeats. The steps of a tone are in the order in
// which they are played; some tones are the same.
constexpr Step steps[] = {
    {BuzzerClass::Tone_Empty, {0, 0, 0, 0}},
    {BuzzerClass::Tone_Decline, {1400, 100, 0, 1}},
    {BuzzerClass::Tone_Question, {750, 500, 0, 1}},
    {BuzzerClass::Tone_Decline_Short, {1400, 100, 30, 1}},
    {BuzzerClass::Tone_Measure_Fail, {2470, 600, 200, 2}},
    {BuzzerClass::Tone_Series_Fail, {2470, 600, 200, 2}},
    {BuzzerClass::Tone_Measure_Pass, {1400, 100, 100, 3}},
    {BuzzerClass::Tone_Fuse, {2470, 600, 200, 2}},
    {BuzzerClass::Tone_Alarm, {2470, 600, 200, 2}},
    {BuzzerClass::Tone_Error, {750, 100, 100, 1}},
    {BuzzerClass::Tone_Error, {1000, 100, 100, 1}},
    {BuzzerClass::Tone_Error, {1400, 100, 0, 1}},
    {BuzzerClass::Tone_Error_Measure, {2470, 500, 0, 1}},
    {BuzzerClass::Tone_Error_Measure, {1976, 500, 0, 1}},
    {BuzzerClass::Tone_Error_Device, {2470, 500, 0, 1}},
    {BuzzerClass::Tone_Error_Device, {1976, 500, 0, 1}},
    {BuzzerClass::Tone_Notice, {750, 500, 0, 1}},
    {BuzzerClass::Tone_Saved, {1308, 200, 2, 1}},
    {BuzzerClass::Tone_Saved, {1469, 200, 2, 1}},
    {BuzzerClass::Tone_Saved, {2470, 300, 0, 1}},
};

// A call, a theme in C and its answer, a middle part in F, the theme once more and an octave
// higher, a walk in the bass, broken chords, a run upwards and the close.
constexpr BeepParameter melody[] = {
    // clang-format off
    {330, 100, 100, 1}, {330, 100, 300, 2}, {262, 100, 100, 1}, {330, 100, 300, 1},
    {392, 100, 700, 1}, {196, 100, 700, 1}, {262, 200, 100, 1}, {330, 100, 100, 1},
    {392, 100, 100, 1}, {523, 300, 150, 1}, {494, 100, 100, 1}, {440, 100, 100, 1},
    {392, 300, 300, 1}, {440, 200, 100, 1}, {349, 100, 100, 1}, {440, 100, 100, 1},
    {392, 300, 150, 1}, {330, 100, 100, 1}, {262, 100, 100, 1}, {294, 300, 400, 1},
    {262, 200, 100, 1}, {330, 100, 100, 1}, {392, 100, 100, 1}, {523, 300, 150, 1},
    {587, 100, 100, 1}, {523, 100, 100, 1}, {440, 300, 300, 1}, {392, 200, 100, 1},
    {330, 100, 100, 1}, {294, 100, 100, 1}, {262, 300, 150, 1}, {196, 100, 100, 1},
    {262, 300, 700, 1}, {349, 200, 100, 1}, {440, 100, 100, 1}, {523, 100, 100, 1},
    {698, 300, 150, 1}, {659, 100, 100, 1}, {587, 100, 100, 1}, {523, 300, 300, 1},
    {466, 200, 100, 1}, {587, 100, 100, 1}, {523, 100, 100, 1}, {440, 300, 150, 1},
    {349, 100, 100, 1}, {392, 100, 100, 1}, {440, 300, 400, 1}, {349, 200, 100, 1},
    {440, 100, 100, 1}, {523, 100, 100, 1}, {587, 300, 150, 1}, {523, 100, 100, 1},
    {466, 100, 100, 1}, {440, 300, 300, 1}, {392, 200, 100, 1}, {440, 100, 100, 1},
    {392, 100, 100, 1}, {349, 300, 150, 1}, {330, 100, 100, 1}, {294, 100, 100, 1},
    {392, 300, 1300, 1}, {262, 200, 100, 1}, {330, 100, 100, 1}, {392, 100, 100, 1},
    {523, 300, 150, 1}, {494, 100, 100, 1}, {440, 100, 100, 1}, {392, 300, 300, 1},
    {440, 200, 100, 1}, {349, 100, 100, 1}, {440, 100, 100, 1}, {392, 300, 150, 1},
    {330, 100, 100, 1}, {262, 100, 100, 1}, {294, 300, 400, 1}, {523, 200, 100, 1},
    {659, 100, 100, 1}, {784, 100, 100, 1}, {1046, 300, 150, 1}, {784, 100, 100, 1},
    {659, 100, 100, 1}, {523, 300, 300, 1}, {165, 300, 200, 1}, {196, 300, 200, 1},
    {220, 300, 200, 1}, {175, 300, 200, 1}, {196, 300, 200, 1}, {247, 300, 200, 1},
    {262, 300, 600, 1}, {784, 200, 100, 1}, {659, 200, 100, 1}, {523, 200, 100, 1},
    {392, 200, 100, 1}, {440, 200, 100, 1}, {698, 200, 100, 1}, {587, 200, 100, 1},
    {440, 200, 100, 1}, {494, 200, 100, 1}, {698, 200, 100, 1}, {880, 200, 100, 1},
    {698, 200, 100, 1}, {587, 200, 100, 1}, {494, 300, 500, 1}, {262, 100, 50, 1},
    {294, 100, 50, 1}, {330, 100, 50, 1}, {349, 100, 50, 1}, {392, 100, 50, 1},
    {440, 100, 50, 1}, {494, 100, 50, 1}, {523, 100, 50, 1}, {587, 100, 50, 1},
    {659, 100, 50, 1}, {698, 100, 50, 1}, {784, 100, 50, 1}, {330, 100, 50, 1},
    {349, 100, 50, 1}, {392, 100, 50, 1}, {440, 100, 50, 1}, {494, 100, 50, 1},
    {523, 100, 50, 1}, {587, 100, 50, 1}, {659, 100, 50, 1}, {698, 100, 50, 1},
    {784, 100, 50, 1}, {880, 100, 50, 1}, {932, 150, 250, 1}, {880, 150, 250, 1},
    {932, 100, 575, 1}, {932, 100, 125, 1}, {932, 100, 125, 1}, {1046, 675, 0, 1},
    // clang-format on
};
static_assert(std::size(melody) == 132, "the tune is not whole");

struct Transcoding
{
    BuzzerClass::Tone tone;
    Sound::Sample sample;
};

constexpr Transcoding transcodings[] = {
    {BuzzerClass::Tone_Empty, Sound::SOUND_Empty},
    {BuzzerClass::Tone_Decline, Sound::SOUND_SET_DECLINE},
    {BuzzerClass::Tone_Question, Sound::SOUND_USER_MUST_DECIDE},
    {BuzzerClass::Tone_Decline_Short, Sound::SOUND_SET_DECLINE},
    {BuzzerClass::Tone_Measure_Fail, Sound::SOUND_MEAS_END_WITH_FAIL},
    {BuzzerClass::Tone_Series_Fail, Sound::SOUND_MEAS_END_WITH_FAIL},
    {BuzzerClass::Tone_Measure_Pass, Sound::SOUND_MEAS_END_WITH_PASS},
    {BuzzerClass::Tone_Fuse, Sound::SOUND_FUSE_TEST},
    {BuzzerClass::Tone_Alarm, Sound::SOUND_USER_MUST_DECIDE},
    {BuzzerClass::Tone_Error, Sound::SOUND_ERROR},
    {BuzzerClass::Tone_Error_Measure, Sound::SOUND_ERROR},
    {BuzzerClass::Tone_Error_Device, Sound::SOUND_ERROR},
    {BuzzerClass::Tone_Notice, Sound::SOUND_USER_MUST_DECIDE},
    {BuzzerClass::Tone_Saved, Sound::SOUND_MEM_WRITE},
    {BuzzerClass::Tone_Melody, Sound::sheep},
};

} // namespace

QMap<BuzzerClass::Tone, QList<BeepParameter>> toneSteps()
{
    QMap<BuzzerClass::Tone, QList<BeepParameter>> definition;
    for (const Step &step : steps)
        definition[step.tone] += step.beep;
    for (const BeepParameter &beep : melody)
        definition[BuzzerClass::Tone_Melody] += beep;
    return definition;
}

QMap<BuzzerClass::Tone, Sound::Sample> toneSamples()
{
    QMap<BuzzerClass::Tone, Sound::Sample> samples;
    for (const Transcoding &transcoding : transcodings)
        samples.insert(transcoding.tone, transcoding.sample);
    return samples;
}

} // namespace Internal
