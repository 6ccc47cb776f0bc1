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
