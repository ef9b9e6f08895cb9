#include "errors.h"
#include "gigetransportlayer.h"
#include "log.h"

#include <memory>
#include <vector>

namespace Tessal {

namespace {

std::vector<std::unique_ptr<ITransportLayer>>& transportLayers()
{
    static std::vector<std::unique_ptr<ITransportLayer>> layers;
    return layers;
}

} // namespace

CTlFactory& CTlFactory::GetInstance()
{
    static CTlFactory factory;
    return factory;
}

ITransportLayer* CTlFactory::CreateTl(const GenICam::gcstring& deviceClass)
{
    if (!(deviceClass == GigEDeviceClass)) {
        return nullptr;
    }
    transportLayers().push_back(std::make_unique<gige::GigETransportLayer>());
    return transportLayers().back().get();
}

void CTlFactory::ReleaseTl(const ITransportLayer* transportLayer)
{
    if (transportLayer == nullptr) {
        return;
    }
    const auto released =
        std::erase_if(transportLayers(), [&](const auto& owned) { return owned.get() == transportLayer; });
    if (released == 0) {
        gige::raise<GenICam::LogicalErrorException>("The transport layer was not made by this factory");
    }
}

void TessalInitialize()
{
    // Fails at once on a host that grants no sockets, rather than at the first search.
    const gige::UdpSocket socket;
}

void TessalTerminate(bool)
{
    if (!transportLayers().empty()) {
        gige::logSearch(ozlog::LogLevel::Warning, "%u transport layers were not released.",
                        static_cast<unsigned>(transportLayers().size()));
        transportLayers().clear();
    }
}

} // namespace Tessal
