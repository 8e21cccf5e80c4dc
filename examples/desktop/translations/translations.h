#pragma once

class QLocale;

namespace Translations {

/// Has the application speak the language of @p locale from now on, as far as there is a
/// translation; English otherwise. The windows that are there keep their texts.
void install(const QLocale &locale);

} // namespace Translations
