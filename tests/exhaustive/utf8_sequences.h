#pragma once

/// Compares skipNonAscii() on every sequence of up to four bytes with a plain decoder. Prints the
/// number of sequences and the first differences. False if there are any.
bool checkUtf8Sequences();
