#pragma once

#include <string>
#include <vector>

namespace snaplift {

// Marks a text of the core that a window translates, for the tool that collects such texts (lupdate
// knows it as QT_TRANSLATE_NOOP), and is that text. All of the core is one context, "Core".
constexpr const char* translatable(const char* /*context*/, const char* english) {
  return english;
}

// Something that the core has to say to a person: an English sentence, apart from the words of
// strangers (a path, a name) in it, so that it can be said in another language and they cannot.
struct Sentence {
  const char* english;             // translatable; "%1" and "%2" stand for the words
  std::vector<std::string> words;  // as they are, control characters included

  // In English, as a terminal says it.
  std::string text() const;
};

}  // namespace snaplift
