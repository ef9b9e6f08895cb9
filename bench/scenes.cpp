#include "scenes.h"

#include "net/links.h"
#include "support/simulator.h"

#include <QFile>
#include <QTemporaryDir>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <stdexcept>

using nlohmann::json;

namespace {

/// Cameras of one kind; the first has this address and this serial number, the others count on from there.
json group(const std::string& firstAddress, std::size_t count, std::size_t serial, const Layout& layout)
{
    constexpr std::size_t makersPrefix = 0x025E41000000;
    std::array<char, 13> mac{};
    std::snprintf(mac.data(), mac.size(), "%012zX", makersPrefix + serial);
    return {{"name", "camera" + std::to_string(serial)},
            {"count", count},
            {"mac", mac.data()},
            {"vendor", "Orvik"},
            {"model", "km-1300"},
            {"serial", std::to_string(21'000'000 + serial)},
            {"enabled", {"persistent"}},
            {"persistent", {{"ip", firstAddress}, {"mask", "255.255.0.0"}}},
            {"discoveryDelayMs", layout.delayMs}};
}

/// How many of `all` go to this one of `adapters`; the shares add up to `all`.
std::size_t share(std::size_t all, std::size_t adapter, std::size_t adapters)
{
    return (all * (adapter + 1)) / adapters - (all * adapter) / adapters;
}

std::string sceneOf(const Layout& layout)
{
    const std::size_t foreign = layout.cameras * layout.foreignPercent / 100;
    if (foreign + layout.mute > layout.cameras) {
        throw std::runtime_error("more special cameras than cameras");
    }
    std::size_t serial = 1;
    json adapters = json::array();
    for (std::size_t i = 0; i < layout.adapters; ++i) {
        const std::string local = "10." + std::to_string(i) + ".";
        json cameras = json::array();
        const auto add = [&](const std::string& address, std::size_t all, bool isMute) {
            const std::size_t count = share(all, i, layout.adapters);
            if (count == 0) {
                return;
            }
            json added = group(address, count, serial, layout);
            if (isMute) {
                added["muteToUnicast"] = true;
            }
            cameras.push_back(std::move(added));
            serial += count;
        };
        add(local + "1.1", layout.cameras - foreign - layout.mute, false);
        add(local + "32.1", layout.mute, true);
        add("172." + std::to_string(16 + i) + ".1.1", foreign, false);
        adapters.push_back({{"name", "lab" + std::to_string(i)},
                            {"addresses", {local + "0.1/16"}},
                            {"cameras", std::move(cameras)}});
    }
    return json{{"adapters", std::move(adapters)}}.dump();
}

} // namespace

Bench::Bench()
{
    for (const auto& link : net::links()) {
        if (net::mayLeadToRealCamera(link)) {
            throw std::runtime_error("the adapter " + link.name +
                                     " may lead to real cameras; run this in scripts/lab");
        }
    }
}

Bench::~Bench() = default;

void Bench::show(const Layout& layout)
{
    if (m_running && m_layout == layout && m_sceneFile.empty()) {
        return;
    }
    const QTemporaryDir directory;
    const QString name = directory.filePath("scene.json");
    QFile file(name);
    const std::string scene = sceneOf(layout);
    if (!file.open(QIODevice::WriteOnly) || file.write(scene.c_str()) < 0) {
        throw std::runtime_error("cannot write a scene");
    }
    file.close();
    show(name.toStdString());
    m_sceneFile.clear();
    m_layout = layout;
}

void Bench::show(const std::string& sceneFile)
{
    if (m_running && m_sceneFile == sceneFile) {
        return;
    }
    m_running.reset();
    m_running = std::make_unique<Simulator>(QString::fromStdString(sceneFile));
    m_sceneFile = sceneFile;
}

std::vector<std::string> Bench::adapters() const
{
    std::vector<std::string> names;
    for (const auto& link : net::links()) {
        if (link.kind == "tun") {
            names.push_back(link.name);
        }
    }
    return names;
}
