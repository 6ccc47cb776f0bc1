# cmake -DMISTAKE=NAME -DSOURCE=FILE -DOUTPUT=FILE -P plant.cmake
#
# Copies a source of the server and makes one mistake in the copy.

if(MISTAKE STREQUAL "ignored_write")  # a reply that could not be written counts as written
  set(right "return written > 0 ? Written::some : Written::nothing")
  set(wrong "return Written::all")
elseif(MISTAKE STREQUAL "second_send")  # a call without a reply is made again
  set(right "exchange(endpoint->port, appRequest(*endpoint, tool, arguments), callLimit)")
  set(wrong [[
[&] {
    Outcome first = exchange(endpoint->port, appRequest(*endpoint, tool, arguments), callLimit);
    const auto again = first.reply ? std::nullopt : waitForApp(startLimit);
    if (!again) return first;
    return exchange(again->port, appRequest(*again, tool, arguments), callLimit);
  }()]])
elseif(MISTAKE STREQUAL "slow_poll")  # the endpoint file is read too seldom
  set(right "pause = 400ms")
  set(wrong "pause = 900ms")
elseif(MISTAKE STREQUAL "wakes_up")  # the input is looked at every second
  set(right "const ssize_t count = read(input_, bytes_.room(piece), piece);")
  set(wrong [[
    timeval second{};
    fd_set set;
    do {
      FD_ZERO(&set);
      FD_SET(input_, &set);
      second = {.tv_sec = 1, .tv_usec = 0};
    } while (select(input_ + 1, &set, nullptr, nullptr, &second) == 0);
    const ssize_t count = read(input_, bytes_.room(piece), piece);]])
elseif(MISTAKE STREQUAL "cleared_buffer")  # all of the buffer for a line is written to
  set(right "dropTakenLines();\n  while")
  set(wrong [[
  dropTakenLines();
  for (char *to = bytes_.room(piece), *end = to + piece; to != end;) *to++ = 0;
  while]])
elseif(MISTAKE STREQUAL "busy_retry")  # the next attempt to connect is made at once
  set(right "retryPause = 20ms")
  set(wrong "retryPause = 0ms")
elseif(MISTAKE STREQUAL "launched_again")  # every time that it does not answer
  set(right "while (dependencies.wallClock() < deadline) {")
  set(wrong "while (dependencies.wallClock() < deadline && dependencies.launch()) {")
else()
  message(FATAL_ERROR "unknown mistake: ${MISTAKE}")
endif()

file(READ ${SOURCE} text)
string(FIND "${text}" "${right}" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${SOURCE} has no place for the mistake: ${right}")
endif()
string(REPLACE "${right}" "${wrong}" text "${text}")
file(WRITE ${OUTPUT} "${text}")
