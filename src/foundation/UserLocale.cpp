#include "foundation/UserLocale.h"

#include <cstdlib>
#include <string_view>

namespace snaplift {

icu::Locale userLocale(const char* category) {
  for (const char* variable : {"LC_ALL", category, "LANG"}) {
    const char* name = std::getenv(variable);
    if (name && *name) {
      const std::string_view language = std::string_view(name).substr(0, 2);
      return language == "C" || language == "C." || language == "PO"
                 ? icu::Locale::getUS()
                 : icu::Locale::createCanonical(name);
    }
  }
  return icu::Locale::getUS();
}

icu::Locale gregorianLocale(const char* category) {
  icu::Locale locale = userLocale(category);
  UErrorCode error = U_ZERO_ERROR;
  locale.setKeywordValue("calendar", "gregorian", error);
  return locale;
}

}  // namespace snaplift
