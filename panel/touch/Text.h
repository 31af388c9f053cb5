#pragma once

/**
 * One text of the panel: its section and key in the language files, and the English text.
 *
 * Always written out as Text{"Section", "key", "English"}: a test looks for this form in the
 * sources and finds every entry in every language file.
 */
struct Text
{
    const char *section;
    const char *key;
    const char *english;
};
