#include "tests/reliability/faults/run.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "tests/reliability/faults/attached_strace.h"
#include "tests/reliability/faults/session_place.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// The longest call takes 57 seconds, and a fault delays one call.
constexpr auto longAfterEveryLimit = 150s;

/// False if the server has ended. What it wrote before shows whether it was allowed to.
bool send(ServerProcess& server, const std::string& input) {
  try {
    server.send(input);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

/// Ends the server's input and collects what the server, and an `open` that it launched, leave.
void finish(ServerProcess& server, SessionPlace& place, Observed& observed) {
  server.closeInput();
  try {
    observed.exit = server.waitForExit(longAfterEveryLimit);
  } catch (const std::runtime_error&) {
    observed.ended = false;
  }
  // A launched `open` keeps the output open until it has recorded the launch.
  for (bool more = true; more;) {
    const std::string some = server.readSome(1U << 20U, 5s);
    observed.output += some;
    more = !some.empty();
  }
  observed.standardError = server.standardError();
  observed.calls = place.calls();
  observed.launches = place.launches();
  observed.trace = place.trace();
}

ServerSetup setupFor(const Session& session, const RecordedOpen& open) {
  ServerSetup setup;
  setup.overUsrBin = open.folder();
  setup.nonBlockingPipes = session.pipesDoNotBlock;
  return setup;
}

}  // namespace

Observed Runner::runUnder(const Session& session, const Options& strace) const {
  SessionPlace place(session);
  ServerSetup setup = setupFor(session, open_);
  setup.command = {straceProgram, "-qq", "-o", place.traceFile()};
  setup.command.insert(setup.command.end(), strace.begin(), strace.end());
  setup.command.push_back(server_);

  Observed observed;
  const auto start = Clock::now();
  ServerProcess server(place.home(), setup);
  send(server, session.input());
  finish(server, place, observed);
  observed.took = Clock::now() - start;
  return observed;
}

Observed Runner::runAttached(const Session& session, const Options& strace) const {
  SessionPlace place(session);
  place.holdLateAnswer();
  ServerSetup setup = setupFor(session, open_);
  setup.command = {server_};

  Observed observed;
  const auto start = Clock::now();
  ServerProcess server(place.home(), setup);
  send(server, session.asked.front().line);
  observed.output = server.readLine(60s).value_or("") + "\n";
  {
    const AttachedStrace attached(backgroundThreadOf(server.pid()), strace, place.traceFile());
    place.answerLate();
  }  // waits until the thread has ended
  for (std::size_t i = 1; i < session.asked.size(); ++i) send(server, session.asked[i].line);
  finish(server, place, observed);
  observed.took = Clock::now() - start;
  return observed;
}

Observed Runner::run(const Session& session, const std::vector<Fault>& faults) const {
  using Where = Fault::Where;
  const auto has = [&](Where where) {
    return std::ranges::find(faults, where, &Fault::where) != faults.end();
  };
  Options strace;
  std::string traced = "trace=write,restart_syscall";
  for (const Fault& fault : faults) {
    traced += "," + std::string(fault.row->call);
    strace.insert(strace.end(), {"-e", fault.expression()});
  }
  strace.insert(strace.end(), {"-e", traced});
  if (has(Where::backgroundThread)) return runAttached(session, strace);
  // Otherwise strace leaves children and threads alone: the numbers are the main thread's.
  if (has(Where::launchedChild)) strace.insert(strace.end(), {"-f", "-b", "execve"});
  return runUnder(session, strace);
}

Observed Runner::runTraced(const Session& session) const {
  return runUnder(session, {"-f", "-b", "execve", "-y"});
}

Observed Runner::runBackgroundTraced(const Session& session) const {
  return runAttached(session, {"-y"});
}
