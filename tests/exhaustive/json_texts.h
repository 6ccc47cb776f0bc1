#pragma once

#include <cstddef>

/// Reads and writes every text of up to `length` symbols and compares the result with the
/// reference. The symbols are those of JSON's structure and numbers; then, inside a string, those
/// of escapes and UTF-8. Prints the number of texts and the first differences. False if there are
/// any.
bool checkJsonTexts(std::size_t length);
