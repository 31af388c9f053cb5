#pragma once

/**
 * One text of the panel: where it stands in the language files, and its English.
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
