// Reads one JSON object of bmc.json key by key, and names its place in errors.
#pragma once

#include "sim/ipmi.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <limits>
#include <optional>
#include <set>
#include <string>

namespace Frudata_Sim {

class CJsonObject {
  public:
    /// `where` names the object in errors: file and key. Throws std::runtime_error for another kind of value.
    CJsonObject(const nlohmann::json& value, std::string where);

    bool Has(const char* key) const { return m_value.contains(key); }
    /// A number: a JSON number or a text such as "0xA0".
    template <typename INTEGER> std::optional<INTEGER> FindNumber(const char* key) {
        const std::optional<std::uint64_t> number = Number(key, std::numeric_limits<INTEGER>::max());
        return number ? std::optional<INTEGER>(static_cast<INTEGER>(*number)) : std::nullopt;
    }
    /// Replaces `value` if the key is there.
    template <typename INTEGER> void Read(const char* key, INTEGER& value) {
        value = FindNumber<INTEGER>(key).value_or(value);
    }
    void Read(const char* key, bool& value);
    void Read(const char* key, std::string& value);
    template <typename VALUE> VALUE Require(const char* key) {
        RequireKey(key);
        VALUE value{};
        Read(key, value);
        return value;
    }
    /// The objects of an array; none without the key.
    std::vector<CJsonObject> Objects(const char* key);
    /// The object under the key, or an empty one.
    CJsonObject Object(const char* key);

    /// Throws: `file: key: text`.
    [[noreturn]] void Fail(const char* key, const std::string& text) const;
    /// Throws for a key that nobody asked for.
    void RequireAllUsed() const;

  private:
    std::optional<std::uint64_t> Number(const char* key, std::uint64_t most);
    void RequireKey(const char* key) const;
    const nlohmann::json* Find(const char* key);

    nlohmann::json m_value;
    std::string m_where;
    std::set<std::string> m_used;
};

} // namespace Frudata_Sim
