#include "tests/support/protocol_schema.h"

#include <functional>
#include <initializer_list>
#include <map>

#include <nlohmann/json.hpp>

// The facts of the schema that concern what a server with tools sends. A member that the schema
// does not name is allowed there; here it is a violation, because this server sends none.

namespace {

using nlohmann::json;

/// Why a value violates a rule; empty if it does not.
using Rule = std::function<std::string(const json&)>;

struct Member {
  Rule rule;
  bool isRequired = true;
};

std::string isString(const json& value) {
  return value.is_string() ? "" : "is not a string: " + value.dump();
}
std::string isInteger(const json& value) {
  return value.is_number_integer() ? "" : "is not an integer: " + value.dump();
}
std::string isBoolean(const json& value) {
  return value.is_boolean() ? "" : "is not a boolean: " + value.dump();
}
std::string isAnything(const json& /*value*/) {
  return "";
}

Rule is(std::string_view text) {
  return [text](const json& value) {
    return value == text ? std::string() : "is not " + std::string(text) + ": " + value.dump();
  };
}

Rule array(const Rule& element) {
  return [element](const json& value) -> std::string {
    if (!value.is_array()) return "is not an array: " + value.dump();
    for (const json& item : value) {
      if (const std::string violation = element(item); !violation.empty()) return violation;
    }
    return "";
  };
}

Rule map(const Rule& value) {
  return [value](const json& object) -> std::string {
    if (!object.is_object()) return "is not an object: " + object.dump();
    for (const auto& [name, member] : object.items()) {
      if (const std::string violation = value(member); !violation.empty())
        return std::string(name).append(" ").append(violation);
    }
    return "";
  };
}

Rule object(std::map<std::string, Member> members) {
  return [members = std::move(members)](const json& value) -> std::string {
    if (!value.is_object()) return "is not an object: " + value.dump();
    for (const auto& [name, member] : members) {
      if (!value.contains(name)) {
        if (member.isRequired) return "lacks " + name;
        continue;
      }
      if (const std::string violation = member.rule(value.at(name)); !violation.empty()) {
        return std::string(name).append(" ").append(violation);
      }
    }
    for (const auto& [name, member] : value.items()) {
      if (!members.contains(name)) return "has an unknown member: " + name;
    }
    return "";
  };
}

const Rule initializeResult =
    object({{"protocolVersion", {isString}},
            {"capabilities",
             {object({{"tools", {object({{"listChanged", {isBoolean, false}}}), false}}})}},
            {"serverInfo", {object({{"name", {isString}}, {"version", {isString}}})}}});

const Rule property = object({{"type", {isString}}, {"description", {isString}}});

const Rule tool = object({{"name", {isString}},
                          {"description", {isString, false}},
                          {"inputSchema",
                           {object({{"type", {is("object")}},
                                    {"properties", {map(property), false}},
                                    {"required", {array(isString), false}}})}}});

const Rule listToolsResult = object({{"tools", {array(tool)}}, {"nextCursor", {isString, false}}});

const Rule callToolResult =
    object({{"content", {array(object({{"type", {is("text")}}, {"text", {isString}}}))}},
            {"isError", {isBoolean, false}}});

const Rule errorObject =
    object({{"code", {isInteger}}, {"message", {isString}}, {"data", {isAnything, false}}});

std::string isResult(const json& result) {
  if (result.contains("protocolVersion")) return initializeResult(result);
  return result.contains("tools") ? listToolsResult(result) : callToolResult(result);
}

}  // namespace

std::string schemaViolation(std::string_view line) {
  const json reply = json::parse(line, nullptr, false);
  const Member outcome = reply.contains("error") ? Member{errorObject} : Member{isResult};
  const std::string kind = reply.contains("error") ? "error" : "result";
  return object({{"jsonrpc", {is("2.0")}}, {"id", {isAnything}}, {kind, outcome}})(reply);
}
