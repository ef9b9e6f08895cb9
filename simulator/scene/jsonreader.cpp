#include "scene/jsonreader.h"

#include <algorithm>
#include <utility>

namespace sim {

using nlohmann::json;

namespace {

std::string lineAndColumn(const std::string& text, std::size_t byte)
{
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text.size());
    const std::string before = text.substr(0, end);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n');
    const std::size_t column = lineStart == std::string::npos ? end + 1 : end - lineStart;
    return "line " + std::to_string(line) + " column " + std::to_string(column);
}

} // namespace

JsonObject::JsonObject(const json& value, std::string path) : m_value(value), m_path(std::move(path))
{
    if (!m_value.is_object()) {
        throw SceneError(m_path.empty() ? "$" : m_path, "must be an object");
    }
}

std::string JsonObject::pathOf(const std::string& key) const
{
    return m_path.empty() ? key : m_path + "." + key;
}

void JsonObject::fail(const std::string& key, const std::string& reason) const
{
    throw SceneError(pathOf(key), reason);
}

const json* JsonObject::find(const std::string& key)
{
    m_asked.insert(key);
    const auto found = m_value.find(key);
    return found == m_value.end() ? nullptr : &*found;
}

const json& JsonObject::require(const std::string& key)
{
    const json* const value = find(key);
    if (value == nullptr) {
        fail(key, "is missing");
    }
    return *value;
}

std::string JsonObject::text(const std::string& key, std::size_t limit)
{
    std::string text = jsonText(require(key), pathOf(key));
    if (text.size() > limit) {
        fail(key, "is longer than " + std::to_string(limit) + " bytes");
    }
    return text;
}

std::string JsonObject::textOr(const std::string& key, std::size_t limit, const std::string& otherwise)
{
    return find(key) == nullptr ? otherwise : text(key, limit);
}

bool JsonObject::flagOr(const std::string& key, bool otherwise)
{
    const json* const value = find(key);
    if (value != nullptr && !value->is_boolean()) {
        fail(key, "must be true or false");
    }
    return value == nullptr ? otherwise : value->get<bool>();
}

unsigned JsonObject::numberOr(const std::string& key, unsigned from, unsigned to, unsigned otherwise)
{
    const json* const value = find(key);
    if (value == nullptr) {
        return otherwise;
    }
    if (!value->is_number_unsigned() || value->get<std::uint64_t>() < from ||
        value->get<std::uint64_t>() > to) {
        fail(key, "must be a whole number from " + std::to_string(from) + " to " + std::to_string(to));
    }
    return value->get<unsigned>();
}

double JsonObject::percentOr(const std::string& key)
{
    const json* const value = find(key);
    if (value == nullptr) {
        return 0;
    }
    if (!value->is_number() || value->get<double>() < 0 || value->get<double>() > 100) {
        fail(key, "must be a number from 0 to 100");
    }
    return value->get<double>();
}

std::vector<std::pair<const json*, std::string>> JsonObject::listOr(const std::string& key)
{
    std::vector<std::pair<const json*, std::string>> elements;
    const json* const list = find(key);
    if (list == nullptr) {
        return elements;
    }
    if (!list->is_array()) {
        fail(key, "must be a list");
    }
    for (std::size_t i = 0; i < list->size(); ++i) {
        elements.emplace_back(&(*list)[i], pathOf(key) + "[" + std::to_string(i) + "]");
    }
    return elements;
}

void JsonObject::finish() const
{
    for (const auto& [key, value] : m_value.items()) {
        if (!m_asked.contains(key)) {
            fail(key, "is no known key");
        }
    }
}

std::string jsonText(const json& value, const std::string& path)
{
    if (!value.is_string()) {
        throw SceneError(path, "must be a text");
    }
    return value.get<std::string>();
}

json parseJson(const std::string& text)
{
    std::vector<std::set<std::string>> keys;
    std::string repeated;
    const auto watchKeys = [&](int /*depth*/, json::parse_event_t event, json& parsed) {
        if (event == json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == json::parse_event_t::key && repeated.empty() &&
                   !keys.back().insert(parsed.get<std::string>()).second) {
            repeated = parsed.get<std::string>();
        }
        return true;
    };
    json value;
    try {
        value = json::parse(text, watchKeys);
    } catch (const json::parse_error& error) {
        throw SceneError(lineAndColumn(text, error.byte), "is not valid JSON");
    }
    if (!repeated.empty()) {
        throw SceneError(repeated, "appears twice in one object");
    }
    return value;
}

} // namespace sim
