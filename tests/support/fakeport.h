#pragma once

#include "errors.h"
#include "gvcp/gvcp.h"
#include "registerport.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <utility>

/// What reading a register does instead.
using Fault = void (*)(gige::RegisterPort&);
inline constexpr Fault refuse = [](gige::RegisterPort&) {
    gige::raise<gige::RefusalException>("no such register");
};
inline constexpr Fault deny = [](gige::RegisterPort&) {
    gige::raise<GenICam::AccessException>("no such register");
};
inline constexpr Fault keepSilent = [](gige::RegisterPort&) {
    gige::raise<GenICam::TimeoutException>("no answer");
};
inline constexpr Fault outlastTheLimit = [](gige::RegisterPort& port) {
    port.setDeadline(std::chrono::steady_clock::now());
    gige::raise<GenICam::TimeoutException>("no answer in time");
};

inline constexpr std::uint32_t fileAddress = 0x10000;

/// The first registers of a camera, at first 0; what is beyond them is refused. From 0x10000 on there is
/// memory, in which no register can be read.
struct FakePort : gige::RegisterPort
{
    void put(std::uint32_t address, const QByteArray& data) { memory.replace(address, data.size(), data); }
    /// Lets the first URL point to a file. Its length is no multiple of what is read at once but by a word.
    void putFile(const QByteArray& file, const QByteArray& name = "a.xml")
    {
        put(gvcp::Register::FirstUrl, "Local:" + name + ";10000;" + QByteArray::number(file.size(), 16));
        put(fileAddress, file);
    }
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        if (address >= fileAddress && to.size() <= 4) {
            refuse(*this);
        }
        readMemory(address, to);
    }
    void readMemory(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        ++reads;
        if (faults.contains(address)) {
            faults[address](*this);
        }
        if (std::cmp_greater(address + to.size(), memory.size())) {
            refuse(*this);
        }
        std::copy_n(memory.cbegin() + address, to.size(), to.begin());
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        if ((address | from.size()) % gvcp::RegisterSize != 0) {
            refuse(*this);
        }
        put(address, QByteArray(reinterpret_cast<const char*>(from.data()), std::ssize(from)));
    }
    [[nodiscard]] net::Ipv4 address() const override { return {}; }
    /// The first bytes at an address, NUL shown as a dot.
    [[nodiscard]] QString bytesAt(std::uint32_t address, int count = 8) const
    {
        return memory.mid(address, count).replace('\0', '.');
    }

    std::map<std::uint32_t, Fault> faults;
    int reads = 0;
    QByteArray memory{0x20000, '\0'};
};
