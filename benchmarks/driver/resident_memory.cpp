#include "benchmarks/driver/resident_memory.h"

#include <stdexcept>

#ifdef __APPLE__

#include <libproc.h>
#include <sys/resource.h>

ResidentMemory residentMemory(pid_t process) {
  rusage_info_v4 usage{};
  if (proc_pid_rusage(process, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&usage)) != 0) {
    throw std::runtime_error("the system doesn't tell the memory use of a contestant");
  }
  return {static_cast<double>(usage.ri_resident_size),
          static_cast<double>(usage.ri_lifetime_max_phys_footprint)};
}

#else

#include <fstream>
#include <string>

ResidentMemory residentMemory(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  ResidentMemory memory;
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) memory.now = std::stod(line.substr(6)) * 1024;
    if (line.starts_with("VmHWM:")) memory.peak = std::stod(line.substr(6)) * 1024;
  }
  if (memory.now == 0 || memory.peak == 0) {
    throw std::runtime_error("the system doesn't tell the memory use of a contestant");
  }
  return memory;
}

#endif
