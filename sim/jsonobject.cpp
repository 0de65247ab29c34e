#include "sim/jsonobject.h"

#include <charconv>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

std::optional<std::uint64_t> ParseNumber(const std::string& text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const char* const first = text.data() + (isHex ? 2 : 0);
    const char* const last = text.data() + text.size();
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number, isHex ? 16 : 10);
    return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
}

} // namespace

CJsonObject::CJsonObject(const nlohmann::json& value, std::string where) : m_value(value), m_where(std::move(where)) {
    if (!m_value.is_object())
        throw std::runtime_error(m_where + ": must be an object");
}

void CJsonObject::Fail(const char* key, const std::string& text) const {
    const bool isTop = m_where.ends_with(".json");
    throw std::runtime_error(m_where + (isTop ? ": " : ".") + key + ": " + text);
}

const nlohmann::json* CJsonObject::Find(const char* key) {
    m_used.insert(key);
    const auto found = m_value.find(key);
    return found == m_value.end() ? nullptr : &*found;
}

std::optional<std::uint64_t> CJsonObject::Number(const char* key, std::uint64_t most) {
    const nlohmann::json* const value = Find(key);
    if (!value)
        return std::nullopt;
    std::optional<std::uint64_t> number;
    if (value->is_number_unsigned())
        number = value->get<std::uint64_t>();
    else if (value->is_string())
        number = ParseNumber(value->get<std::string>());
    if (!number || *number > most)
        Fail(key, "must be a number from 0 to " + std::to_string(most) + " or a text such as \"0xA0\"");
    return number;
}

void CJsonObject::Read(const char* key, bool& value) {
    const nlohmann::json* const found = Find(key);
    if (!found)
        return;
    if (!found->is_boolean())
        Fail(key, "must be true or false");
    value = found->get<bool>();
}

void CJsonObject::Read(const char* key, std::string& value) {
    const nlohmann::json* const found = Find(key);
    if (!found)
        return;
    if (!found->is_string())
        Fail(key, "must be a text");
    value = found->get<std::string>();
}

std::vector<CJsonObject> CJsonObject::Objects(const char* key) {
    const nlohmann::json* const found = Find(key);
    std::vector<CJsonObject> objects;
    if (!found)
        return objects;
    if (!found->is_array())
        Fail(key, "must be an array");
    const std::string start = m_where + (m_where.ends_with(".json") ? ": " : ".") + key + '[';
    for (const nlohmann::json& element : *found)
        objects.emplace_back(element, start + std::to_string(objects.size()) + ']');
    return objects;
}

CJsonObject CJsonObject::Object(const char* key) {
    const nlohmann::json* const found = Find(key);
    const std::string where = m_where + (m_where.ends_with(".json") ? ": " : ".") + key;
    return {found ? *found : nlohmann::json::object(), where};
}

void CJsonObject::RequireKey(const char* key) const {
    if (!Has(key))
        Fail(key, "is missing");
}

void CJsonObject::RequireAllUsed() const {
    for (const auto& [key, value] : m_value.items())
        if (!m_used.contains(key))
            Fail(key.c_str(), "is not a known key");
}

} // namespace Frudata_Sim
