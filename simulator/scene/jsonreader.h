#pragma once

#include <nlohmann/json.hpp>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

/// An error in a scene and its place: the JSON path, or line and column.
class SceneError : public std::runtime_error
{
public:
    SceneError(const std::string& place, const std::string& reason)
        : std::runtime_error(place + ": " + reason)
    {}
};

/// Reads one JSON object; keys that are not read are errors. All members throw SceneError with the path of
/// the missing or invalid value.
class JsonObject
{
public:
    JsonObject(const nlohmann::json& value, std::string path);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] std::string pathOf(const std::string& key) const;
    [[noreturn]] void fail(const std::string& key, const std::string& reason) const;

    /// The value of a key, or null when it is absent.
    [[nodiscard]] const nlohmann::json* find(const std::string& key);
    [[nodiscard]] const nlohmann::json& require(const std::string& key);

    /// A text of at most `limit` bytes.
    [[nodiscard]] std::string text(const std::string& key, std::size_t limit);
    [[nodiscard]] std::string textOr(const std::string& key, std::size_t limit, const std::string& otherwise);
    [[nodiscard]] bool flagOr(const std::string& key, bool otherwise);
    /// A whole number within the bounds.
    [[nodiscard]] unsigned numberOr(const std::string& key, unsigned from, unsigned to, unsigned otherwise);
    /// 0 to 100, fractions allowed.
    [[nodiscard]] double percentOr(const std::string& key);
    /// The elements of a list, each with its path; none when the key is absent.
    [[nodiscard]] std::vector<std::pair<const nlohmann::json*, std::string>> listOr(const std::string& key);

    /// Fails if the object has keys that were not read.
    void finish() const;

private:
    const nlohmann::json& m_value;
    std::string m_path;
    std::set<std::string> m_asked;
};

/// A text element of a list.
[[nodiscard]] std::string jsonText(const nlohmann::json& value, const std::string& path);

/// Parses JSON that has no key twice in one object. Throws SceneError.
[[nodiscard]] nlohmann::json parseJson(const std::string& text);

} // namespace sim
