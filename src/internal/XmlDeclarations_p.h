#pragma once

class QString;

namespace Internal {

/**
 * Whether parsing the declarations of a document type, or the entities that it declares, would take
 * more stack, time or memory than a device has. Examines the text without parsing it.
 */
bool declaresTooMuch(const QString &text);

} // namespace Internal
