#pragma once

class QString;

namespace Internal {

/**
 * Whether the declarations of a document type, or the entities that it declares, would cost the
 * parser more stack, time or memory than a device has. Looks at the characters alone.
 */
bool declaresTooMuch(const QString &text);

} // namespace Internal
