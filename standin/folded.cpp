#include "standin/folded.h"

#include <utf8.h>

#include <iterator>

namespace standin {
namespace {

bool within(char32_t letter, char32_t first, char32_t last) {
  return first <= letter && letter <= last;
}

// In these ranges a capital stands directly before its small letter.
bool isCapitalOfPair(char32_t letter) {
  const bool even = letter % 2 == 0;
  if (within(letter, 0x139, 0x148) || within(letter, 0x179, 0x17E)) return !even;
  const bool paired = within(letter, 0x100, 0x137) || within(letter, 0x14A, 0x177) ||
                      within(letter, 0x460, 0x481) || within(letter, 0x48A, 0x4BF);
  return paired && even && letter != 0x130;  // U+0130 has no small letter of its own
}

char32_t small(char32_t letter) {
  if (within(letter, U'A', U'Z')) return letter + 32;
  if (letter < 0x80) return letter;
  if (within(letter, 0xC0, 0xDE) && letter != 0xD7) return letter + 32;  // U+00D7 is a sign
  if (within(letter, 0x391, 0x3A9)) return letter + 32;
  if (letter == 0x3C2) return 0x3C3;  // the sigma at the end of a word
  if (within(letter, 0x400, 0x40F)) return letter + 80;
  if (within(letter, 0x410, 0x42F)) return letter + 32;
  return isCapitalOfPair(letter) ? letter + 1 : letter;
}

}  // namespace

std::u32string folded(std::string_view text) {
  std::string wellFormed;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(wellFormed));
  std::u32string result;
  utf8::utf8to32(wellFormed.begin(), wellFormed.end(), std::back_inserter(result));
  for (char32_t& letter : result) letter = small(letter);
  return result;
}

}  // namespace standin
