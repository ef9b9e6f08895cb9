#include "support/packets.h"

#include <QMap>
#include <QtEndian>

namespace packets {

namespace {

QByteArray word(std::uint32_t value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray halfWord(std::uint16_t value)
{
    return word(value).last(2);
}

QByteArray bytesOf(const net::MacAddress& mac)
{
    return {reinterpret_cast<const char*>(mac.bytes.data()), std::ssize(mac.bytes)};
}

const QMap<gvcp::Ack, QString> acknowledges{
    {gvcp::Ack::Discovery, "DISCOVERY"}, {gvcp::Ack::ForceIp, "FORCEIP"}, {gvcp::Ack::ReadReg, "READREG"},
    {gvcp::Ack::WriteReg, "WRITEREG"},   {gvcp::Ack::ReadMem, "READMEM"}, {gvcp::Ack::Pending, "PENDING"}};

const QMap<gvcp::Status, QString> statuses{{gvcp::Status::Success, "success"},
                                           {gvcp::Status::InvalidAddress, "invalid address"},
                                           {gvcp::Status::BadAlignment, "bad alignment"},
                                           {gvcp::Status::AccessDenied, "access denied"}};

} // namespace

QByteArray command(gvcp::Command code, const QByteArray& payload)
{
    QByteArray header;
    header += static_cast<char>(gvcp::Key);
    header += static_cast<char>(gvcp::Flag::AckRequired);
    header += halfWord(static_cast<std::uint16_t>(code));
    header += halfWord(static_cast<std::uint16_t>(payload.size()));
    return header + halfWord(1) + payload;
}

QByteArray discovery()
{
    return command(gvcp::Command::Discovery, {});
}

QByteArray forceIp(const net::MacAddress& camera, net::Ipv4 ip, net::Ipv4 mask)
{
    const QByteArray gap(12, '\0');
    const QByteArray payload =
        halfWord(0) + bytesOf(camera) + gap + word(ip.value) + gap + word(mask.value) + gap + word(0);
    return command(gvcp::Command::ForceIp, payload);
}

QByteArray readRegister(std::uint32_t address)
{
    return command(gvcp::Command::ReadReg, word(address));
}

QByteArray writeRegisters(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& values)
{
    QByteArray payload;
    for (const auto& [address, value] : values) {
        payload += word(address) + word(value);
    }
    return command(gvcp::Command::WriteReg, payload);
}

QByteArray readMemory(std::uint32_t address, std::uint16_t count)
{
    return command(gvcp::Command::ReadMem, word(address) + word(count));
}

QByteArray withId(QByteArray message, std::uint16_t id)
{
    return message.replace(gvcp::Header::RequestId, 2, halfWord(id));
}

QString describe(const QByteArray& acknowledge, std::uint16_t id)
{
    const auto field = [&](std::size_t offset) {
        return qFromBigEndian<std::uint16_t>(acknowledge.constData() + offset);
    };
    const auto payloadSize = acknowledge.size() - static_cast<qsizetype>(gvcp::HeaderSize);
    if (payloadSize < 0 || field(gvcp::Header::Length) != payloadSize) {
        return "no acknowledge";
    }
    if (field(gvcp::Header::RequestId) != id) {
        return "an acknowledge of another request";
    }
    const QByteArray payload = acknowledge.sliced(gvcp::HeaderSize).toHex().toUpper();
    return (acknowledges.value(gvcp::Ack{field(gvcp::Header::Code)}, "another code") + ' ' +
            statuses.value(gvcp::Status{field(gvcp::Header::Status)}, "another status") + ' ' + payload)
        .trimmed();
}

} // namespace packets
