// quillmark_exhaustive LENGTH
//
// Compares the JSON reader and both writers with the reference on every text of up to LENGTH
// symbols, and the reader's UTF-8 rules on every sequence of up to four bytes.

#include <cstdlib>
#include <iostream>
#include <string>

#include "tests/exhaustive/json_texts.h"
#include "tests/exhaustive/utf8_sequences.h"

int main(int count, char** words) {
  const std::string length = count == 2 ? words[1] : "";
  if (length.size() != 1 || length < "1" || length > "9") {
    std::cerr << "usage: quillmark_exhaustive LENGTH (1 to 9)\n";
    return 2;
  }
  const bool texts = checkJsonTexts(std::stoul(length));
  const bool sequences = checkUtf8Sequences();
  return texts && sequences ? EXIT_SUCCESS : EXIT_FAILURE;
}
