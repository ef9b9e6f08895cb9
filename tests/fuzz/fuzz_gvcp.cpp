#include "gige/codec.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // In a buffer of its own, so that a byte read beyond the datagram is seen.
    const std::vector<std::uint8_t> datagram(data, data + size);
    const auto acknowledge = gvcp::decodeAcknowledge(datagram);
    if (!acknowledge) {
        return 0;
    }
    const gvcp::Bytes payload = acknowledge->payload;
    if (const auto identity = gvcp::decodeIdentity(payload);
        identity && (identity->userDefinedName.size() > gvcp::DiscoveryAck::UserDefinedNameSize ||
                     identity->model.find('\0') != std::string::npos)) {
        std::abort();
    }
    const std::size_t count = payload.size() < 4 ? 0 : payload.size() - 4;
    if (const auto memory = gvcp::decodeReadMemAck(payload, 0, count); memory && memory->size() != count) {
        std::abort();
    }
    static_cast<void>(gvcp::decodeReadRegAck(payload));
    static_cast<void>(gvcp::isWriteAck(payload));
    static_cast<void>(gvcp::decodePendingAck(payload));
    return 0;
}
