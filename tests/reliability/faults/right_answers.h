#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reliability/faults/run.h"

/// The right answers of a session, as the server writes them.
struct RightAnswers {
  std::vector<std::string> lines;  ///< one for each request, without line feeds
  std::size_t launches = 0;        ///< all during the first tool call
};

/// Output that was read from the server.
struct Lines {
  std::vector<std::string> whole;  ///< without their line feeds
  std::string unterminated;        ///< what follows the last line feed
};

Lines linesOf(std::string_view output);

/// Takes the right answers from a session without faults. Throws std::runtime_error if one of them
/// is not what the session expects, or if anything else is wrong.
RightAnswers rightAnswers(const Session& session, const Observed& observed);
