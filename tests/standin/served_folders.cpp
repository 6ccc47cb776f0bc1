#include "tests/standin/served_folders.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::string_view token = "the token";

}  // namespace

ServedFolders::ServedFolders(bool writable) : dispatch_(drives_, std::string(token)) {
  fs::create_directory(alpha());
  fs::create_directory(beta());
  drives_.add(alpha(), writable);
  drives_.add(beta(), writable);
}

fs::path ServedFolders::alpha(std::string_view path) const {
  return place_.folder() / "Alpha" / path;
}
fs::path ServedFolders::beta(std::string_view path) const {
  return place_.folder() / "Beta" / path;
}
fs::path ServedFolders::outside(std::string_view path) const {
  return place_.folder() / path;
}

json ServedFolders::reply(std::string_view request) {
  return json::parse(dispatch_.answer(request));
}

json ServedFolders::call(std::string_view tool, json arguments) {
  const json request{
      {"version", 1}, {"token", token}, {"tool", tool}, {"arguments", std::move(arguments)}};
  return reply(request.dump());
}

json ServedFolders::result(std::string_view tool, json arguments) {
  const json answer = call(tool, std::move(arguments));
  if (answer.at("ok") != true) throw std::runtime_error(answer.dump());
  return answer.at("result");
}

std::string ServedFolders::refusal(std::string_view tool, json arguments) {
  const json answer = call(tool, std::move(arguments));
  if (answer.at("ok") != false) throw std::runtime_error(answer.dump());
  return answer.at("error").get<std::string>();
}

void putFile(const fs::path& file, std::string_view content) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

void putBytes(const fs::path& file, std::size_t bytes) {
  putFile(file, std::string(bytes, 'x'));
}

std::string contentOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("can't read " + file.native());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void age(const fs::path& file, int hours) {
  fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(hours));
}

std::vector<std::string> each(const json& list, const char* member) {
  std::vector<std::string> values;
  for (const json& object : list) values.push_back(object.at(member).get<std::string>());
  return values;
}
